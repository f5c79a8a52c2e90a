#include "protocol/EftOutcome.h"

#include "protocol/DeviceReply.h"

#include <array>
#include <utility>

namespace {

// The terminal's texts of a transaction that took nothing, as the register
// passes them on.
constexpr std::array<std::pair<const char16_t*, EftOutcome>, 21> kTerminalTexts{{
    {u"TRANSACTION WAS DECLINED", EftOutcome::TryAgain},
    {u"DECLINED BY THE TERMINAL", EftOutcome::FinalRefusal},
    {u"DECLINED BY THE HOST", EftOutcome::TryAgain},
    {u"COMMUNICATION PROBLEM", EftOutcome::TryAgain},
    {u"BANK'S HOST UNREACHABLE", EftOutcome::TryAgain},
    {u"TRANSACTION FAILED - POS ERROR", EftOutcome::TryAgain},
    {u"PROTOCOL NOT SUPPORTED", EftOutcome::FinalRefusal},
    {u"DUPLICATE REQUEST RECEIVED", EftOutcome::FinalRefusal},
    {u"SYNTAX ERROR IN REQUEST", EftOutcome::FinalRefusal},
    {u"INVALID CURRENCY", EftOutcome::FinalRefusal},
    {u"INTERNAL POS ERROR", EftOutcome::FinalRefusal},
    {u"INVALID COMMAND", EftOutcome::FinalRefusal},
    {u"WRONG PARAMETER", EftOutcome::FinalRefusal},
    {u"POS IS BUSY", EftOutcome::TerminalBusy},
    {u"ECR-POS DISCONNECTION", EftOutcome::FinalRefusal},
    {u"USER CANCELLATION OR TIMEOUT", EftOutcome::FinalRefusal},
    {u"ECR INACTIVE EFTPOS", EftOutcome::FinalRefusal},
    {u"RECEIVE:WRONG CMD RECEIVED", EftOutcome::TryAgain},
    {u"SEND:ENCRYPTION ERROR", EftOutcome::FinalRefusal},
    {u"MAC ERROR", EftOutcome::FinalRefusal},
    {u"CONNECTION CLOSED-ABORTED BY POS", EftOutcome::TryAgain},
}};

// The terminal adds its own details behind this one, so only its start is compared.
constexpr const char16_t* kNoContactText = u"SEND:TIMEOUT WHILE SEND DATA TO POS";

} // namespace

EftOutcome ClassifyTerminalText(const QString& text)
{
    for (const auto& [known, outcome] : kTerminalTexts) {
        if (text == QString::fromUtf16(known))
            return outcome;
    }
    if (text.startsWith(QString::fromUtf16(kNoContactText)))
        return EftOutcome::NoContact;
    return EftOutcome::Approved;
}

EftOutcome ClassifyEftOutcome(const QString& reply)
{
    return ClassifyTerminalText(DeviceReply::fromStatusAndText(0, reply).lastButOneField());
}
