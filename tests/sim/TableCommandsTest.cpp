// Restaurant tables on the virtual register, in the command forms the driver
// sends: visits, cancellations, moves, settling, contents and reports, with
// the register's memory on disk between commands.

#include "PrintQString.h"
#include "SimTestSupport.h"

#include <QRegularExpression>

namespace {

using Tables = DiskRegisterTest;

TEST_F(Tables, VisitsMovesAndSettlingKeepIdentifiersAndOrdersAcrossRestarts)
{
    EXPECT_EQ(send("\"/0/7/1/              ΚΗΠΟΣ/ /"), "00/00/00/");
    EXPECT_EQ(send("&/0/7//////////////"), "00/00/10/");
    // each sale answers its item identifier and its line order on the table
    EXPECT_EQ(send("3/S/ΚΑΦΕΣ//1.000/2.00/1/24.00/"), "00/00/10/1/1/");
    EXPECT_EQ(send("3/S/ΤΟΣΤ//2.000/3.00/1/24.00/"), "00/00/10/2/2/");
    EXPECT_EQ(send("3/S/ΝΕΡΟ//1.000/0.50/2/13.00/"), "00/00/10/3/3/");
    EXPECT_EQ(send("5/1/0.00////"), "00/00/00/");

    restart();
    // a later visit selects line 2 and cancels it, as the order store asks
    EXPECT_EQ(send("&/0/7//////////////"), "00/00/10/");
    EXPECT_EQ(send("&/5/7/2/////////////"), "00/00/10/");
    EXPECT_EQ(send("3/C/ΤΟΣΤ/         /2.000/3.00/1/24.00/"), "00/00/10/");
    EXPECT_EQ(send("3/S/ΜΠΥΡΑ//1.000/4.00/1/24.00/"), "00/00/10/4/4/");
    EXPECT_EQ(send("5/1/0.00////"), "00/00/00/");

    restart();
    // one item to table 290, the move standing over a restart
    EXPECT_EQ(send("\"/0/290/1/ΜΕΡ.ΕΞΟΦΛ #7/ /"), "00/00/00/");
    EXPECT_EQ(send("&/4/7/290/1/1///////////"), "00/00/00/");
    EXPECT_EQ(send("&/9/7/290/3////////////"), "00/00/00/");
    restart();
    EXPECT_EQ(send("&/9/7/290/0////////////"), "00/00/00/1/3-3|5-1/");

    // the rest of table 7 to table 8: one moved item a field from field 4
    EXPECT_EQ(fields("&/4/7/8/0/1///////////").mid(3), QStringList({"2", "1-1|6-1", "4-4|7-2", ""}));
    EXPECT_EQ(send("&/11/7//0/0///////////"), "00/00/00/0/");
    EXPECT_EQ(fields("&/11/8//0/0///////////").mid(3),
              QStringList({"2", "1|6|ΚΑΦΕΣ|1.000|2.00|1|24.00", "2|7|ΜΠΥΡΑ|1.000|4.00|1|24.00", ""}));
    EXPECT_EQ(fields("&/11/290//0/0///////////").value(4), "1|5|ΝΕΡΟ|1.000|0.50|2|13.00");

    restart();
    // settled with a discount: the receipt opens at &/1/ and the payment closes it
    EXPECT_EQ(send("&/1/8//0///1/////0.50/////"), "00/00/10/");
    EXPECT_EQ(send("&/3/8//0/1///////0.00/////"), "00/00/00/");
    EXPECT_EQ(fields("9/").value(9), "5.50");
    EXPECT_EQ(send("&/11/8//0/0///////////"), "00/00/00/0/");
    EXPECT_EQ(send("&/1/8//0////////////"), "AF/00/00/");
    // table 290 pays without a &/1/ of its own
    EXPECT_EQ(send("&/3/290//0/1///////0.00/////"), "00/00/00/");
    EXPECT_EQ(fields("9/").value(9), "0.50");

    restart();
    EXPECT_EQ(reg->memory().dailyNumber, 2);
    EXPECT_EQ(reg->memory().nextUid, 8);
    EXPECT_EQ(reg->memory().tables[7].title1, "ΚΗΠΟΣ");
    const QString paper = tape();
    EXPECT_TRUE(paper.contains("ΑΠΟΔΕΙΞΗ ΤΡΑΠΕΖΙΟΥ 8")) << qPrintable(paper);
    EXPECT_TRUE(paper.contains("ΜΕΤΑΦΟΡΑ ΤΡΑΠΕΖΙΟΥ 7 -> 8")) << qPrintable(paper);
    EXPECT_TRUE(paper.contains("ΜΕΤΑΦΟΡΑ 1 ΕΙΔΩΝ 7 -> 290")) << qPrintable(paper);
}

TEST_F(Tables, RefusesWhatARegisterRefuses)
{
    // numbers that are no table, and titles wider than the register prints
    EXPECT_EQ(send("&/0/0//////////////"), "05/00/00/");
    EXPECT_EQ(send("&/0/291//////////////"), "05/00/00/");
    EXPECT_EQ(send("&/11/X//0/0///////////"), "05/00/00/");
    EXPECT_EQ(send("\"/0/291/1/ΤΡΑΠΕΖΙ/ /"), "05/00/00/");
    EXPECT_EQ(send("\"/0/5/1/ΠΟΛΥ ΜΑΚΡΥΣ ΤΙΤΛΟΣ 21/ /"), "02/00/00/");
    // nothing open to work on
    EXPECT_EQ(send("&/5/5/1/////////////"), "AF/00/00/");
    EXPECT_EQ(send("&/1/5//0////////////"), "AF/00/00/");
    EXPECT_EQ(send("&/3/5//0/1///////0.00/////"), "AF/00/00/");
    EXPECT_EQ(send("&/4/5/6/0/1///////////"), "AF/00/00/");
    EXPECT_EQ(send("&/9/5/6/0////////////"), "CE/00/00/"); // no move begun

    send("&/0/5//////////////");
    send("3/S/ΚΑΦΕΣ//2.000/2.00/1/24.00/");
    EXPECT_EQ(send("&/0/6//////////////"), "CE/00/10/");            // another visit is open
    EXPECT_EQ(send("3/C/ΚΑΦΕΣ//1.000/2.00/1/24.00/"), "70/00/10/"); // nothing selected
    EXPECT_EQ(send("&/5/5/9/////////////"), "70/00/10/");           // no line 9 on the table
    EXPECT_EQ(send("&/5/5/1/////////////"), "00/00/10/");
    EXPECT_EQ(send("3/C/ΤΟΣΤ//1.000/2.00/1/24.00/"), "70/00/10/");  // not the selected item
    EXPECT_EQ(send("3/C/ΚΑΦΕΣ//1.000/2.50/1/24.00/"), "70/00/10/"); // not at its price
    EXPECT_EQ(send("3/C/ΚΑΦΕΣ//3.000/2.00/1/24.00/"), "70/00/10/"); // more than stands
    EXPECT_EQ(send("3/R/ΚΑΦΕΣ//1.000/2.00/1/24.00/"), "6F/00/10/"); // no returns on a table
    EXPECT_EQ(send("&/10/1/290/0////////////"), "14/00/10/");
    send("5/1/0.00////");

    EXPECT_EQ(send("&/4/5/6/1/1///////////"), "00/00/00/");
    EXPECT_EQ(send("&/9/5/6/77////////////"), "CA/00/00/");         // no such item to move
    EXPECT_EQ(send("&/0/5//////////////"), "CE/00/00/");            // the move is not ended
    EXPECT_EQ(send("&/1/6//0////////////"), "AF/00/00/");
    EXPECT_EQ(send("&/9/5/6/0////////////"), "00/00/00/0/");

    // the discount flag and the discount go together
    EXPECT_EQ(send("&/1/5//0///1/////0.00/////"), "4B/00/00/");
    EXPECT_EQ(send("&/1/5//0////////1.00/////"), "05/00/00/");
    // a card payment names a terminal of 1 to 12 and ends in the literal 1
    EXPECT_EQ(send("&/3/5//0/2///////0.00///13/1/"), "05/00/00/");
    EXPECT_EQ(send("&/3/5//0/2///////0.00///1//"), "05/00/00/");

    // a plain receipt in hand keeps the tables shut
    send("3/S/ΨΩΜΙ//1.000/1.00/1/24.00/");
    EXPECT_EQ(send("&/0/5//////////////"), "14/00/10/");
    EXPECT_EQ(send("&/4/5/6/0/1///////////"), "14/00/10/");
    EXPECT_EQ(send("&/1/5//0////////////"), "14/00/10/");
}

TEST_F(Tables, WholeTableVoidedByCancellationsClosesWithoutAReceipt)
{
    send("&/0/12//////////////");
    EXPECT_EQ(send("3/S/ΣΑΛΑΤΑ ΧΩΡΙΑΤΙΚ/Η ΜΕΓΑΛΗ/1.000/6.00/1/13.00/"), "00/00/10/1/1/");
    EXPECT_EQ(send("3/S/ΚΡΑΣΙ//2.000/5.00/1/24.00/"), "00/00/10/2/2/");
    send("5/1/0.00////");

    // the driver's whole-table void: the full description in field 2
    EXPECT_EQ(send("&/0/12//////////////"), "00/00/10/");
    EXPECT_EQ(send("&/5/12/1/////////////"), "00/00/10/");
    EXPECT_EQ(send("3/C/ΣΑΛΑΤΑ ΧΩΡΙΑΤΙΚΗ ΜΕΓΑΛΗ//1.000/6.00/1/13.00/"), "00/00/10/");
    EXPECT_EQ(send("&/5/12/2/////////////"), "00/00/10/");
    EXPECT_EQ(send("3/C/ΚΡΑΣΙ//2.000/5.00/1/24.00/"), "00/00/10/");
    EXPECT_EQ(send("5/1/0.00////"), "00/00/00/");
    EXPECT_EQ(send("&/1/12//0////////////"), "00/00/00/");
    EXPECT_EQ(send("&/3/12//0/1///////0.01/////"), "00/00/00/");

    EXPECT_EQ(reg->memory().dailyNumber, 0); // no receipt for an empty table
    EXPECT_FALSE(reg->memory().tables[12].open);
    EXPECT_EQ(send("&/1/12//0////////////"), "AF/00/00/");
    EXPECT_TRUE(tape().contains("ΤΡΑΠΕΖΙ 12 ΑΚΥΡΩΘΗΚΕ"));
}

TEST_F(Tables, TableReceiptPaidInPartsAnswersClosureInProgressUntilPaid)
{
    send("&/0/3//////////////");
    send("3/S/ΜΟΥΣΑΚΑΣ//2.000/8.00/1/13.00/");
    send("5/1/0.00////");

    EXPECT_EQ(send("&/1/3//0///1/////2.00/////"), "00/00/10/");
    // a second &/1/ takes the place of the first discount, it does not add to it
    EXPECT_EQ(send("&/1/3//0///1/////1.00/////"), "00/00/10/");
    EXPECT_EQ(fields("9/").value(9), "15.00");
    EXPECT_EQ(send("&/3/3//0/1///////5.00/////"), "C9/00/10/");
    EXPECT_EQ(send("&/1/3//0////////////"), "15/00/10/"); // in payment: no more discounts
    EXPECT_EQ(send("&/3/3//0/2///////0.00/////"), "00/00/00/");
    EXPECT_EQ(fields("9/").value(9), "15.00");
    EXPECT_EQ(send("&/11/3//0/0///////////"), "00/00/00/0/");
}

TEST_F(Tables, OrderSlipsAndTableReportsGoOnTheTape)
{
    // the driver's probe opens table 290 and frees the register: no slip for that
    send("\"/0/290/1/Kerbano V11.12//");
    send("&/0/290//////////////");
    send("5/1/0.00////");
    EXPECT_EQ(tape(), QString());

    send("\"/0/4/1/            ΒΕΡΑΝΤΑ/            ΓΩΝΙΑ/");
    send("&/0/4//////////////");
    send("3/S/ΚΑΦΕΣ//2.000/2.00/1/24.00/");
    send("5/1/0.00////");
    send("&/0/9//////////////");
    send("3/S/ΠΙΤΑ//1.000/3.50/1/13.00/");
    send("5/1/0.00////");
    const QString slips = tape();
    const QStringList slipLines = slips.split(QLatin1Char('\n'));
    EXPECT_EQ(slipLines.filter(QRegularExpression("^ +ΔΕΛΤΙΟ ΠΑΡΑΓΓΕΛΙΑΣ$")).size(), 2) << qPrintable(slips);
    for (const char* line : {"^ +ΤΡΑΠΕΖΙ 4$", "^ +ΒΕΡΑΝΤΑ$", "^ +ΓΩΝΙΑ$", "^ +ΤΡΑΠΕΖΙ 9$", "^ΣΥΝΟΛΟ ΤΡΑΠΕΖΙΟΥ +4\\.00$",
                             "^ΣΥΝΟΛΟ ΤΡΑΠΕΖΙΟΥ +3\\.50$"})
        EXPECT_EQ(slipLines.filter(QRegularExpression(QString::fromUtf8(line))).size(), 1) << line;

    EXPECT_EQ(send("&/10/1/290/0////////////"), "00/00/00/");
    EXPECT_EQ(send("&/10/1/290/1////////////"), "00/00/00/");
    EXPECT_EQ(send("&/10/1/290/2////////////"), "05/00/00/");
    const QStringList reports = tape().mid(slips.size()).split(QLatin1Char('\n'));
    EXPECT_EQ(reports.filter("ΑΝΑΦΟΡΑ ΤΡΑΠΕΖΙΩΝ").size(), 2);
    EXPECT_EQ(reports.filter("ΣΥΝΟΠΤΙΚΗ").size(), 1);
    EXPECT_EQ(reports.filter("ΑΝΑΛΥΤΙΚΗ").size(), 1);
    EXPECT_EQ(reports.filter(QRegularExpression("^ΤΡΑΠΕΖΙ 4 ΒΕΡΑΝΤΑ +4\\.00$")).size(), 2);
    EXPECT_EQ(reports.filter(QRegularExpression("^ΤΡΑΠΕΖΙ 9 ΤΡΑΠΕΖΙ-9 +3\\.50$")).size(), 2);
    EXPECT_EQ(reports.filter(QRegularExpression("^  1 ΚΑΦΕΣ x2\\.000 +4\\.00$")).size(), 1); // detail only
    EXPECT_EQ(reports.filter(QRegularExpression("^ΣΥΝΟΛΟ +7\\.50$")).size(), 2);
    EXPECT_EQ(reports.filter(QRegularExpression("^ΑΝΟΙΚΤΑ ΤΡΑΠΕΖΙΑ +2$")).size(), 2);
}

} // namespace
