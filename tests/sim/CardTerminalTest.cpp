// The card terminals behind the virtual register: what the fault script
// makes them answer, the outcome query, the batch and the tape.

#include "DataFile.h"
#include "FaultScript.h"
#include "PrintQString.h"
#include "SimTestSupport.h"
#include "SimTransport.h"

#include <QRegularExpression>

namespace {

// Every text a terminal reports when it took no money.
const QStringList kRefusalTexts = [] {
    QStringList texts;
    for (const QString& row : DataLines("terminal-texts.txt"))
        texts << row.section(u'\t', 0, 0);
    return texts;
}();

TEST(TerminalScriptTest, TerminalLinesBecomeRulesInTheirOrderAndBadOnesAreRefusedByLine)
{
    QStringList script, rules, expected;
    QString error;
    for (const QString& row : DataLines("sim/terminal-script.txt")) {
        const QString line = row.section(u'\t', 0, 0), rule = row.section(u'\t', 1);
        if (line != QLatin1String("refused")) {
            script << line;
            expected << rule;
            continue;
        }
        FaultScript refused;
        EXPECT_FALSE(refused.parse(QStringLiteral("# a comment first\n%1\n").arg(rule), &error)) << qPrintable(rule);
        EXPECT_TRUE(error.startsWith("line 2: ")) << qPrintable(rule) << ": " << qPrintable(error);
    }
    FaultScript f;
    ASSERT_TRUE(f.parse(script.join(u'\n') + u'\n', &error)) << qPrintable(error);
    for (const TerminalRule& r : f.terminalRules())
        rules << QStringLiteral("%1 %2 x%3 %4 %5s %6")
                     .arg(QStringList{"answer", "online", "offline"}.value(r.kind))
                     .arg(r.terminal)
                     .arg(r.remaining)
                     .arg(r.outcome.approved ? "approve" : "decline")
                     .arg(r.outcome.waitSeconds)
                     .arg(r.outcome.text);
    EXPECT_EQ(rules, expected);
}

TEST(TerminalScriptTest, TheTerminalsVocabularyKnowsEveryRefusalExactly)
{
    ASSERT_EQ(kRefusalTexts.size(), 22);
    for (const QString& text : kRefusalTexts)
        EXPECT_FALSE(TerminalOutcome::ofText(text).approved) << qPrintable(text);
    EXPECT_FALSE(TerminalOutcome::ofText("SEND:TIMEOUT WHILE SEND DATA TO POS (30s)").approved);
    for (const char* text : {"APPROVED", "", "pos is busy", "POS IS BUSY NOW", " DECLINED BY THE HOST"})
        EXPECT_TRUE(TerminalOutcome::ofText(QString::fromUtf8(text)).approved) << text;
}

class Terminals : public ModelTest {
protected:
    // What the driver classifies: the last field but one of the outcome query.
    QString lastTerminalText()
    {
        const QStringList q = fields("5/99/0/ ///1/1/");
        return q.value(q.size() - 2);
    }
};

TEST_F(Terminals, EveryRefusalTextIsTheQuerysLastTextAndTakesNoMoney)
{
    send("3/S/ΨΩΜΙ//1.000/4.00/1/24.00/");
    for (const QString& text : kRefusalTexts) {
        script(QStringLiteral("terminal 1: decline %1\n").arg(text));
        tape.clear();
        EXPECT_EQ(send("5/2/4.00/ΚΑΡΤΑ///1/1/"), "00/00/10/") << qPrintable(text);
        EXPECT_EQ(lastTerminalText(), text);
        EXPECT_EQ(fields("9/").value(9), "4.00") << "the balance stays after " << qPrintable(text);
        EXPECT_EQ(tape, QStringList({"EFT #1 ΑΠΟΡΡΙΦΘΗΚΕ                  4.00", "  " + text}));
    }
    tape.clear();
    EXPECT_EQ(send("5/2/4.00/ΚΑΡΤΑ///1/1/"), "00/00/00/");
    EXPECT_EQ(lastTerminalText(), "APPROVED");
    const QStringList q = fields("5/99/0/ ///1/1/");
    EXPECT_EQ(q.value(3), QString::number(kRefusalTexts.size() + 1));
    EXPECT_EQ(q.size(), 14 * (kRefusalTexts.size() + 1) + 5);
    EXPECT_EQ(q.value(q.size() - 7), "00"); // the terminal's response of the approval
    EXPECT_EQ(q.value(q.size() - 21), "05"); // and of the refusal before it
    EXPECT_TRUE(tape.contains("  EFT #1 APPROVED"));
    EXPECT_EQ(tape.filter(QRegularExpression("^  VISA \\*{12}\\d{4}$")).size(), 1);
    EXPECT_EQ(tape.filter(QRegularExpression("^  ΕΓΚΡΙΣΗ \\d+$")).size(), 1);
}

TEST(SlowTerminalTest, TheCardPaymentIsAnsweredAfterTheTerminalsSecondsOnTheSimClock)
{
    VirtualClock clock;
    SimRegister reg({}, clock);
    ASSERT_TRUE(reg.loadFaults("terminal 1: wait 40 approve\n"));
    SimTransport t(reg, SimTransport::Wire::Tcp, clock);
    t.write(codepage::toWin1253("3/S/ΨΩΜΙ//1.000/4.00/1/24.00/"));
    t.read(2048);
    const qint64 sent = clock.monotonicMs();
    t.write(codepage::toWin1253("5/2/4.00/ΚΑΡΤΑ///1/1/"));
    EXPECT_FALSE(t.waitForData(39000));
    EXPECT_TRUE(t.waitForData(2000));
    EXPECT_EQ(t.read(2048), QByteArray("00/00/00/"));
    EXPECT_EQ(clock.monotonicMs() - sent, 40000);
    // the next card payment has no rule left: at once
    t.write(codepage::toWin1253("3/S/ΨΩΜΙ//1.000/4.00/1/24.00/"));
    t.read(2048);
    t.write(codepage::toWin1253("5/2/4.00/ΚΑΡΤΑ///1/1/"));
    EXPECT_TRUE(t.waitForData(0));
}

using TerminalBatch = DiskRegisterTest;

TEST_F(TerminalBatch, BatchReportsThePackageSinceTheLastOneAndSurvivesARestart)
{
    play("terminal-batch.txt");
    const QStringList paper = tape().split('\n');
    EXPECT_EQ(paper.filter(QRegularExpression("^ +ΠΑΚΕΤΟ ΣΥΝΑΛΛΑΓΩΝ EFT #1$")).size(), 2);
    EXPECT_EQ(paper.filter(QRegularExpression("^ΣΥΝΑΛΛΑΓΕΣ +2$")).size(), 1);
    EXPECT_EQ(paper.filter(QRegularExpression("^ΣΥΝΟΛΟ +6\\.50$")).size(), 1);
}

} // namespace
