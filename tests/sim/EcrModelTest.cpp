#include "PrintQString.h"
#include "SimTestSupport.h"

namespace {

using Register = ModelTest;

TEST_F(Register, WorkedReceiptAddsUpDiscountsAndClosesOnFullPayment)
{
    EXPECT_EQ(send("3/S/ΚΑΦΕΣ ΦΙΛΤΡΟΥ/250Γ/2.000/3.50/1/24.00/"), "00/00/10/");
    EXPECT_EQ(send("4/10.00//ΕΚΠΤΩΣΗ ΠΕΛΑΤΗ/0/0/0/"), "00/00/10/");
    EXPECT_EQ(send("3/S/ΝΕΡΟ 500ML//1.000/0.50/2/13.00/"), "00/00/10/");
    EXPECT_EQ(send("4/0.30//ΕΚΠΤΩΣΗ ΜΕΡ.ΣΥΝ/0/1/1/"), "00/00/10/");
    EXPECT_EQ(fields("9/").value(9), "6.50");
    EXPECT_EQ(send("5/1/6.50/ΜΕΤΡΗΤΑ//////"), "00/00/00/");
    const QStringList nine = fields("9/");
    EXPECT_EQ(nine.value(8), "1");
    EXPECT_EQ(nine.value(9), "6.50");
    EXPECT_TRUE(tape.contains("ΣΥΝΟΛΟ ΕΥΡΩ                         6.50"));

    // the day's figures by category after the Z: 7.00 - 0.70 - 0.31 + 0.03 = 6.02 and 0.50 - 0.02
    EXPECT_EQ(send("x/7///"), "00/00/00/");
    const QStringList z = fields("0/");
    EXPECT_EQ(z.mid(3, 6), QStringList({"6.02", "0.48", "0.00", "0.00", "0.00", "6.50"}));
    EXPECT_EQ(fields("i/").value(5), "1");
    EXPECT_EQ(fields("d/1/").value(8), "2");
    EXPECT_EQ(fields("d/1/").value(9), "6.02");
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
    EXPECT_EQ(send("3/S/ΨΩΜΙ//1.000/1.00/1/"), "01/00/00/");          // a field short
    EXPECT_EQ(send("Q/"), "06/00/00/");
    EXPECT_EQ(send("3/S/ΨΩΜΙ//1.000/1.00/7/24.00/"), "41/00/00/");    // inactive department
    EXPECT_EQ(send("3/S/ΨΩΜΙ//1.000/1.00/1/23.00/"), "09/00/00/");    // no such VAT rate
    EXPECT_EQ(send("3/C/ΨΩΜΙ//1.000/1.00/1/24.00/"), "70/00/00/");    // nothing to void
    EXPECT_EQ(send("+/"), "46/00/00/");
    send("3/S/ΨΩΜΙ//2.000/1.00/1/24.00/");
    EXPECT_EQ(send("5/7/1.00///////"), "40/00/10/");                  // inactive payment
    EXPECT_EQ(send("5/2/5.00///////"), "5A/00/10/");                  // no change on a card
    EXPECT_EQ(send("5/1/1.00///////"), "00/00/10/");
    EXPECT_EQ(send("3/S/ΓΑΛΑ//1.000/1.00/1/24.00/"), "15/00/10/");    // sale in payment
    EXPECT_EQ(send("&/1/9//0////////////"), "AF/00/10/");             // table not open
}

} // namespace
