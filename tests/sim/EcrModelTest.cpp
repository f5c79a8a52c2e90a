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
    play("receipt-numbers.txt");
}

TEST_F(Register, RefusesAsARegisterDoes)
{
    play("receipt-refusals.txt");
}

} // namespace
