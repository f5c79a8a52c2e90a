#include "EngineFixture.h"
#include "PrintQString.h"
#include "pipeline/JobClosing.h"

namespace {

// A register whose last document is a return of 6.50.
bool answerReturnReceipt(const QString& command, ScriptedLink::Answer& answer)
{
    if (command == QLatin1String("9/"))
        answer = {0, u"00/00/00/x/x/x/x/x/43/-6.50/x/"_s};
    else if (command == QLatin1String("i/"))
        answer = {0, u"00/00/00/x/x/12/1257/"_s};
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
    EXPECT_TRUE(linesFor(0, u"////"_s).isEmpty());
    EXPECT_TRUE(linesFor(0, u"00/00/00/0/"_s).isEmpty());
    const QString one = u"00/00/00/1/T2/A3/B4/C5/D6/E7/F8/G9/H10/I11/J12/K13/L14/"_s;
    EXPECT_EQ(linesFor(0, one), QStringList{"ccPay0 = B4;C5;D6;E7;F8;G9;I11;A3"});
    const QString two = one + u"M1/N2/O3/P4/Q5/R6/S7/T8/U9/V10/W11/X12/Y13/Z14/"_s;
    EXPECT_EQ(linesFor(0, two).value(1), u"ccPay1 = P4;Q5;R6;S7;T8;U9;W11;O3"_s);
    EXPECT_EQ(link.commands().last(), u"5/99/0/ ///1/1/"_s);

    // A refused query leaves its status for the job and writes no line.
    EXPECT_TRUE(linesFor(44, u"paper"_s).isEmpty());
    EXPECT_EQ(receipt.LastStatus, 44);
}

TEST_F(EngineTest, AReturnReceiptClosesWithRecStatusOneAndItsNegativeAmount)
{
    link.responder = answerReturnReceipt;
    parts.documentFigures_ = [this] { return ReadDocumentFigures(link, engine->receiptState()); };
    startPolling(pollingParams());
    put(u"print.1"_s, " PLU x\r\n");
    engine->timer1Tick();
    // The progressive number is the day's base (1257 - 12) and the daily number.
    const QStringList lines = resultLines();
    EXPECT_TRUE(lines.contains(u"recStatus = 1;-6.50"_s));
    EXPECT_TRUE(lines.contains(u"receipt = 1288, 43, -1"_s));
}
