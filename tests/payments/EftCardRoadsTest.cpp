#include "payments/EftCardRoads.h"

#include "DataFile.h"
#include "PrintQString.h"
#include "ScriptedLink.h"
#include "ScriptedOperator.h"
#include "shell/Clock.h"
#include "shell/ModuleVariables.h"

#include <QFile>
#include <gtest/gtest.h>

using namespace Qt::Literals::StringLiterals;

namespace {

const QString kQuery = u"5/99/0/ ///1/1/"_s;

// The commands a golden file lists, one a line.
QStringList expectedCommands(const QString& name)
{
    return DataLines(QStringLiteral("payments/") + name);
}

// The outcome query's reply with one transaction whose terminal text is text.
QString queryReply(const QString& text)
{
    return u"00/00/00/1/1/2/3/10.00/VISA/****1234/123456/0101/05/42/7/978/ACQ/"_s + text + u"/"_s;
}

PayEftRecord cardRecord(qint16 retries, qint16 altPayment)
{
    PayEftRecord r;
    r.payId = 4;
    r.ecrPayment = 3;
    r.ecrEft = 2;
    r.active = -1;
    r.retries = retries;
    r.altPayment = altPayment;
    return r;
}

class EftCardRoadsTest : public ::testing::Test {
protected:
    ScriptedLink link;
    ScriptedOperator op;
    VirtualClock clock;
    ModuleVariables vars;
    EftCardRoads roads{link, vars, op, clock};
    // Terminal texts the outcome queries answer, in order; approved once they run out.
    QStringList terminal;
    // Statuses the card commands answer, in order; 0 once they run out.
    QList<qint16> cardStatuses;
    QList<bool> busyAtCard;
    // When set, every outcome query gets this answer instead.
    std::optional<ScriptedLink::Answer> queryAnswer;

    void SetUp() override
    {
        link.responder = [this](const QString& command, ScriptedLink::Answer& answer) {
            if (command == kQuery) {
                if (queryAnswer)
                    answer = *queryAnswer;
                else
                    answer.reply = queryReply(terminal.isEmpty() ? u"APPROVED"_s : terminal.takeFirst());
                return true;
            }
            if (command.endsWith(QLatin1String("/2/1/"))) {
                busyAtCard << vars.EftBusy;
                answer.status = cardStatuses.isEmpty() ? qint16(0) : cardStatuses.takeFirst();
                return true;
            }
            return false;
        };
    }

    int count(const QString& command) const { return link.commands().count(command); }
};

TEST_F(EftCardRoadsTest, AnApprovedCardIsOneCommandSentOnceWithTheLongWaitThenTheQuery)
{
    roads.payInReceipt(cardRecord(2, 1), 10.0, u"VISA ΠΕΛΑΤΗ/1"_s, u"T1"_s);

    EXPECT_EQ(link.commands(), (QStringList{"5/3/10.00/VISA ΠΕΛΑΤΗ/1///2/1/", kQuery}));
    const ScriptedLink::Sent &card = link.sent.at(0), &query = link.sent.at(1);
    EXPECT_EQ(std::tuple(card.quiet, card.timeoutSeconds, card.logMode, card.sendOnce),
              std::tuple(false, qint16(301), SendOptions::kLogModeCard, true));
    EXPECT_EQ(std::tuple(query.quiet, query.logMode, query.sendOnce),
              std::tuple(false, SendOptions::kLogModeResultFile, false));
    EXPECT_EQ(busyAtCard, QList<bool>{true});
    EXPECT_EQ(std::tuple(vars.EftBusy, vars.EftFallbackUsed), std::tuple(false, false));
}

TEST_F(EftCardRoadsTest, RetriesRunOutThenTheAlternativePaysAndTheNoticePrintsOnce)
{
    terminal = {"TRANSACTION WAS DECLINED", "DECLINED BY THE HOST", "COMMUNICATION PROBLEM"};
    roads.payInReceipt(cardRecord(2, 1), 12.5, u"MASTERCARD ΧΡΥΣΗ"_s, u"T1"_s);

    EXPECT_EQ(count("5/3/12.50/MASTERCARD ΧΡΥΣΗ///2/1/"), 3);
    EXPECT_EQ(count(kQuery), 3);
    // "ΑΝΤΙ:" and the text, 15 characters together.
    EXPECT_EQ(link.commands().last(), "5/1/12.50/ΑΝΤΙ:MASTERCARD//////");
    EXPECT_EQ(std::tuple(vars.EftBusy, vars.EftFallbackUsed), std::tuple(false, true));

    link.sent.clear();
    roads.PrintPendingPaymentNotice();
    EXPECT_EQ(link.commands(), expectedCommands("pending-payment-notice.txt"));
    EXPECT_FALSE(vars.EftFallbackUsed);
    link.sent.clear();
    roads.PrintPendingPaymentNotice();
    EXPECT_TRUE(link.sent.isEmpty());
}

TEST_F(EftCardRoadsTest, AFinalRefusalEndsTheAttemptsAndWithoutAlternativeNothingMoreIsSent)
{
    terminal = {"DECLINED BY THE TERMINAL"};
    roads.payInReceipt(cardRecord(2, 0), 5.0, QString(), u"T"_s);
    EXPECT_EQ(link.commands(), (QStringList{"5/3/5.00////2/1/", kQuery}));
    EXPECT_FALSE(vars.EftFallbackUsed);

    // An alternative the register refuses gives no notice either.
    link.sent.clear();
    terminal = {"USER CANCELLATION OR TIMEOUT"};
    link.queue.push_back({0x40, u"inactive payment"_s});
    roads.payInReceipt(cardRecord(0, 6), 5.0, u"X"_s, u"T"_s);
    EXPECT_EQ(link.commands().last(), "5/6/5.00/ΑΝΤΙ:X//////");
    EXPECT_FALSE(vars.EftFallbackUsed);
}

TEST_F(EftCardRoadsTest, ABusyTerminalGetsThreeSecondsAndANoContactIsAPlainNextAttemptOutsideATable)
{
    terminal = {"POS IS BUSY", "SEND:TIMEOUT WHILE SEND DATA TO POS (3)"};
    const qint64 start = clock.monotonicMs();
    roads.payInReceipt(cardRecord(2, 0), 1.0, QString(), u"T"_s);
    EXPECT_EQ(clock.monotonicMs() - start, EftCardRoads::kBusyTerminalWaitMs);
    EXPECT_EQ(count("5/3/1.00////2/1/"), 3);
    EXPECT_EQ(count(")/33/"), 0);
}

TEST_F(EftCardRoadsTest, OnlyTheStatusesOfATakenPaymentAreQueriedOthersTryAgainAtOnce)
{
    // 201 is a table's closing: on a receipt it is one more refusal.
    cardStatuses = {0xBC, 201, 193, 207};
    terminal = {"TRANSACTION WAS DECLINED", "TRANSACTION WAS DECLINED"};
    roads.payInReceipt(cardRecord(3, 0), 2.0, QString(), u"T"_s);
    const QString card = u"5/3/2.00////2/1/"_s;
    EXPECT_EQ(link.commands(), (QStringList{card, card, card, kQuery, card, kQuery}));
    EXPECT_EQ(busyAtCard, (QList<bool>{true, true, true, true}));
}

TEST_F(EftCardRoadsTest, ALostAnswerAsksTheOutcomeFirstAndNeverSendsTheCardAgainUnlearntNorOnAnEmptyList)
{
    // The register tells: the terminal declined, so the next attempt may go.
    cardStatuses = {-4};
    terminal = {"DECLINED BY THE HOST"};
    roads.payInReceipt(cardRecord(1, 0), 3.0, QString(), u"T"_s);
    EXPECT_EQ(link.commands(), (QStringList{"5/3/3.00////2/1/", kQuery, "5/3/3.00////2/1/", kQuery}));
    EXPECT_TRUE(op.messages.isEmpty());

    // The register cannot tell: no card command, no alternative, the operator told.
    link.sent.clear();
    cardStatuses = {-4};
    queryAnswer = ScriptedLink::Answer{-4, {}};
    roads.payInReceipt(cardRecord(3, 1), 3.0, QString(), u"T"_s);
    EXPECT_EQ(link.commands(), (QStringList{"5/3/3.00////2/1/", kQuery}));
    ASSERT_EQ(op.messages.size(), 1);
    EXPECT_TRUE(op.messages[0].text.startsWith(u"Άγνωστη έκβαση πληρωμής με κάρτα"_s));
    EXPECT_EQ(std::tuple(vars.EftBusy, vars.EftFallbackUsed), std::tuple(false, false));

    // An empty list reads as approved, yet it is no approval.
    link.sent.clear();
    cardStatuses = {-207};
    queryAnswer = ScriptedLink::Answer{0, u"00/00/00/0/"_s};
    roads.payInReceipt(cardRecord(2, 1), 3.0, QString(), u"T"_s);
    EXPECT_EQ(link.commands(), (QStringList{"5/3/3.00////2/1/", kQuery}));
    EXPECT_EQ(op.messages.size(), 2);
}

TEST_F(EftCardRoadsTest, APayLineReadsTheBalanceForTheCardAndAgainForTheAlternative)
{
    terminal = {"INVALID CURRENCY"};
    QList<double> balances{8.4, 3.1};
    roads.payFromMapInReceipt(cardRecord(0, 1), [&] { return balances.takeFirst(); });
    EXPECT_EQ(link.commands(), (QStringList{"5/3/8.40////2/1/", kQuery, "5/1/3.10/ΑΝΤΙ ΚΑΡΤΑΣ//////"}));
    EXPECT_TRUE(vars.EftFallbackUsed);
}

TEST_F(EftCardRoadsTest, APreCollectionIsADocumentEachAttemptAndClosesAtZeroWhenUnpaid)
{
    PayEftRecord r = cardRecord(1, 4);
    r.preCollect = -1;
    terminal = {"TRANSACTION WAS DECLINED", "TRANSACTION WAS DECLINED"};
    roads.payInReceipt(r, 20.0, u"VISA"_s, u"ΤΔΑ-17"_s);
    const QStringList opening{"6/0/1//", "7/1/1/Αριθμ. Παραστατικού:/", "7/1/2/#ΤΔΑ-17#/"};
    const QStringList expected = opening + QStringList{"5/3/20.00/VISA///2/1/", kQuery, "5/1/0.00////"}
        + opening + QStringList{"5/3/20.00/VISA///2/1/", kQuery, "5/1/0.00////", "5/1/0.00////"};
    EXPECT_EQ(link.commands(), expected);
    EXPECT_FALSE(vars.EftFallbackUsed); // no alternative on this road

    // Approved: nothing is left open, so no closing at zero.
    link.sent.clear();
    terminal.clear();
    roads.payInReceipt(r, 20.0, u"VISA"_s, u"ΤΔΑ-17"_s);
    EXPECT_EQ(link.commands(), (opening + QStringList{"5/3/20.00/VISA///2/1/", kQuery}));

    // A reference the register refuses sends no card command in that attempt.
    link.sent.clear();
    r.retries = 0;
    link.queue = {{0, {}}, {0, {}}, {0x05, u"bad"_s}};
    roads.payInReceipt(r, 20.0, u"VISA"_s, u"ΤΔΑ-17"_s);
    EXPECT_EQ(count("5/3/20.00/VISA///2/1/"), 0);
    EXPECT_EQ(link.commands().last(), "5/1/0.00////");
}

TEST_F(EftCardRoadsTest, ATableIsPaidQuietlyReleasesAnOutOfContactTerminalAndFallsBack)
{
    clsPayment payment;
    payment.nPayment = 4;
    payment.Amount = 0;
    cardStatuses = {201, 201};
    terminal = {"SEND:TIMEOUT WHILE SEND DATA TO POS", "BANK'S HOST UNREACHABLE"};
    link.responder = [first = link.responder](const QString& command, ScriptedLink::Answer& a) {
        if (command.startsWith(QLatin1String("&/3/12//0/1/"))) {
            a.status = 201;
            return true;
        }
        return first(command, a);
    };
    EXPECT_TRUE(roads.payTableByCard(cardRecord(1, 1), payment, 12, 2.5));
    EXPECT_EQ(link.commands(), expectedCommands("table-card-fallback.txt"));
    for (const ScriptedLink::Sent& s : link.sent) {
        if (s.command != kQuery) {
            EXPECT_TRUE(s.quiet) << s.command.toStdString();
        }
    }
    EXPECT_EQ(link.sent.at(1).logMode, SendOptions::kLogModeProbe);
    EXPECT_EQ(link.sent.at(1).timeoutSeconds, 301);
    EXPECT_TRUE(vars.EftFallbackUsed);

    // Refused with no alternative: the table is not paid.
    link.sent.clear();
    terminal = {"MAC ERROR"};
    EXPECT_FALSE(roads.payTableByCard(cardRecord(3, 0), payment, 12, 0));
    EXPECT_EQ(link.commands().first(), "&/1/12//0////////0.00/////");
}

} // namespace
