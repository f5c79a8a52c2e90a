#include "EngineFixture.h"
#include "PrintQString.h"
#include "ScriptedLink.h"
#include "pipeline/JobClosing.h"
#include "records/ReceiptState.h"
#include "shell/ModuleVariables.h"

#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace {

// A register whose last document is a return of 6.50.
bool answerReturnReceipt(const QString& command, ScriptedLink::Answer& answer)
{
    if (command == QLatin1String("9/"))
        answer = {0, QStringLiteral("00/00/00/x/x/x/x/x/43/-6.50/x/")};
    else if (command == QLatin1String("i/"))
        answer = {0, QStringLiteral("00/00/00/x/x/12/1257/")};
    else
        return false;
    return true;
}

} // namespace

TEST(JobClosing, CardTransactionsBecomeOneLineEachAndARefusedQueryNone)
{
    ScriptedLink link;
    ReceiptState receipt;
    const auto linesFor = [&](qint16 status, const QString& reply) {
        link.queue.push_back({status, reply});
        return CardPaymentLines(link, receipt);
    };
    EXPECT_TRUE(linesFor(0, QStringLiteral("////")).isEmpty());
    EXPECT_TRUE(linesFor(0, QStringLiteral("00/00/00/0/")).isEmpty());
    const QString one = QStringLiteral("00/00/00/1/T2/A3/B4/C5/D6/E7/F8/G9/H10/I11/J12/K13/L14/");
    EXPECT_EQ(linesFor(0, one), QStringList{"ccPay0 = B4;C5;D6;E7;F8;G9;I11;A3"});
    const QString two = one + QStringLiteral("M1/N2/O3/P4/Q5/R6/S7/T8/U9/V10/W11/X12/Y13/Z14/");
    EXPECT_EQ(linesFor(0, two).value(1), QStringLiteral("ccPay1 = P4;Q5;R6;S7;T8;U9;W11;O3"));
    EXPECT_EQ(link.commands().last(), QStringLiteral("5/99/0/ ///1/1/"));

    // A refused query leaves its status for the job and writes no line.
    EXPECT_TRUE(linesFor(44, QStringLiteral("paper")).isEmpty());
    EXPECT_EQ(receipt.LastStatus, 44);
}

TEST(JobClosing, AReturnReceiptKeepsItsMinusSign)
{
    ScriptedLink link;
    link.responder = answerReturnReceipt;
    ReceiptState receipt;
    const DocumentFigures figures = ReadDocumentFigures(link, receipt);
    EXPECT_DOUBLE_EQ(figures.amount, -6.5);
    EXPECT_EQ(figures.recNumberDaily, 43);
    EXPECT_EQ(figures.recNumberProgr, 1245 + 43);
    EXPECT_EQ(figures.ordNumber, -1);
}

TEST_F(EngineTest, AReturnReceiptClosesWithRecStatusOneAndItsNegativeAmount)
{
    link.responder = answerReturnReceipt;
    parts.documentFigures_ = [this] { return ReadDocumentFigures(link, engine->receiptState()); };
    startPolling(pollingParams());
    put(QStringLiteral("print.1"), " PLU x\r\n");
    engine->timer1Tick();
    const QStringList lines = resultLines();
    EXPECT_TRUE(lines.contains(QStringLiteral("recStatus = 1;-6.50")));
    EXPECT_TRUE(lines.contains(QStringLiteral("receipt = 1288, 43, -1")));
}

TEST_F(EngineTest, ResultLinesGoToTheJobsFileInWindows1253WithCrLf)
{
    parts.interpretLines_ = walkEach([&](const QString&, const JobSettings&) {
        engine->resultSink().appendResultLine(QStringLiteral("Err = 6, [Ψ/] DateTime = 02/01/2026 10:20:31"));
        return true;
    });
    startPolling(pollingParams());
    put(QStringLiteral("print.1"), "resFile:  res.txt\r\ntag:  t\r\n");
    engine->timer1Tick();
    QFile file(dir.filePath(QStringLiteral("res.txt")));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_TRUE(file.readAll().startsWith("tag = t\r\nDateTime start = 02/01/2026 10:20:30\r\n"
                                          "Err = 6, [\xD8/] DateTime = 02/01/2026 10:20:31\r\n"));
}
