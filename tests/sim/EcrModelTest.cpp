#include "PrintQString.h"
#include "SimTestSupport.h"

namespace {

using Register = ModelTest;

TEST_F(Register, WorkedReceiptAddsUpDiscountsAndClosesOnFullPayment)
{
    play("worked-receipt.txt");
    EXPECT_TRUE(tape.contains("ΣΥΝΟΛΟ ΕΥΡΩ                         6.50"));
}

TEST_F(Register, NumbersReceiptsDailyAndProgressivelyAcrossTheZ)
{
    for (int i = 0; i < 2; ++i) {
        send("3/S/ΨΩΜΙ//1.000/1.00/1/24.00/");
        send("5/1/5.00///////");
    }
    EXPECT_EQ(fields("9/").value(8), "2");
    EXPECT_EQ(fields("9/").value(7), "4.00"); // change of the cash payment
    send("x/7///");
    send("3/S/ΨΩΜΙ//1.000/1.00/1/24.00/");
    send("5/1/1.00///////");
    const QStringList i = fields("i/");
    const QStringList nine = fields("9/");
    // what the driver computes: base (field 6 - field 5) plus the daily number
    EXPECT_EQ(nine.value(8), "1");
    EXPECT_EQ(i.value(6).toInt() - i.value(5).toInt() + nine.value(8).toInt(), 3);
}

TEST_F(Register, RefusesAsARegisterDoes)
{
    play("receipt-refusals.txt");
}

} // namespace
