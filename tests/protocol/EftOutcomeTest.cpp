#include "protocol/EftOutcome.h"

#include "PrintQString.h"

#include <gtest/gtest.h>

namespace {

// A query reply whose last transaction ends with the terminal's text.
QString replyWith(const QString& text)
{
    return QStringLiteral("00/00/00/1/1/2/3/10.00/VISA/****1234/1/0101/05/42/7/978/ACQ/") + text
        + QStringLiteral("/");
}

TEST(EftOutcome, EveryTerminalTextOfTheTableGivesItsOutcomeExactly)
{
    const std::pair<const char*, EftOutcome> table[] = {
        {"TRANSACTION WAS DECLINED", EftOutcome::TryAgain},
        {"DECLINED BY THE TERMINAL", EftOutcome::FinalRefusal},
        {"DECLINED BY THE HOST", EftOutcome::TryAgain},
        {"COMMUNICATION PROBLEM", EftOutcome::TryAgain},
        {"BANK'S HOST UNREACHABLE", EftOutcome::TryAgain},
        {"TRANSACTION FAILED - POS ERROR", EftOutcome::TryAgain},
        {"PROTOCOL NOT SUPPORTED", EftOutcome::FinalRefusal},
        {"DUPLICATE REQUEST RECEIVED", EftOutcome::FinalRefusal},
        {"SYNTAX ERROR IN REQUEST", EftOutcome::FinalRefusal},
        {"INVALID CURRENCY", EftOutcome::FinalRefusal},
        {"INTERNAL POS ERROR", EftOutcome::FinalRefusal},
        {"INVALID COMMAND", EftOutcome::FinalRefusal},
        {"WRONG PARAMETER", EftOutcome::FinalRefusal},
        {"POS IS BUSY", EftOutcome::TerminalBusy},
        {"ECR-POS DISCONNECTION", EftOutcome::FinalRefusal},
        {"USER CANCELLATION OR TIMEOUT", EftOutcome::FinalRefusal},
        {"ECR INACTIVE EFTPOS", EftOutcome::FinalRefusal},
        {"RECEIVE:WRONG CMD RECEIVED", EftOutcome::TryAgain},
        {"SEND:ENCRYPTION ERROR", EftOutcome::FinalRefusal},
        {"MAC ERROR", EftOutcome::FinalRefusal},
        {"SEND:TIMEOUT WHILE SEND DATA TO POS", EftOutcome::NoContact},
        {"CONNECTION CLOSED-ABORTED BY POS", EftOutcome::TryAgain},
    };
    for (const auto& [text, outcome] : table) {
        EXPECT_EQ(ClassifyEftOutcome(replyWith(QString::fromUtf8(text))), outcome) << text;
        EXPECT_EQ(ClassifyTerminalText(QString::fromUtf8(text)), outcome) << text;
    }
}

TEST(EftOutcome, OnlyTheNoContactTextMayHaveMoreBehindItEverythingElseUnknownIsApproved)
{
    EXPECT_EQ(ClassifyTerminalText("SEND:TIMEOUT WHILE SEND DATA TO POS 00:12"), EftOutcome::NoContact);
    EXPECT_EQ(ClassifyTerminalText("SEND:TIMEOUT WHILE SEND DATA TO PO"), EftOutcome::Approved);
    EXPECT_EQ(ClassifyTerminalText("MAC ERROR "), EftOutcome::Approved);
    EXPECT_EQ(ClassifyTerminalText("pos is busy"), EftOutcome::Approved);
    EXPECT_EQ(ClassifyTerminalText(" POS IS BUSY"), EftOutcome::Approved);
    EXPECT_EQ(ClassifyTerminalText("APPROVED"), EftOutcome::Approved);
    EXPECT_EQ(ClassifyTerminalText(""), EftOutcome::Approved);
    // The reply's last field but one is the text; a reply too short for one is approved.
    EXPECT_EQ(ClassifyEftOutcome("00/00/00/POS IS BUSY/"), EftOutcome::TerminalBusy);
    EXPECT_EQ(ClassifyEftOutcome("00/00/00/POS IS BUSY/x/"), EftOutcome::Approved);
    EXPECT_EQ(ClassifyEftOutcome("00"), EftOutcome::Approved);
    EXPECT_EQ(ClassifyEftOutcome(""), EftOutcome::Approved);
}

} // namespace
