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
    play("tables-visits.txt");
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
    play("tables-refusals.txt");
}

TEST_F(Tables, WholeTableVoidedByCancellationsClosesWithoutAReceipt)
{
    play("tables-whole-void.txt");
    EXPECT_EQ(reg->memory().dailyNumber, 0); // no receipt for an empty table
    EXPECT_FALSE(reg->memory().tables[12].open);
    EXPECT_EQ(send("&/1/12//0////////////"), "AF/00/00/");
    EXPECT_TRUE(tape().contains("ΤΡΑΠΕΖΙ 12 ΑΚΥΡΩΘΗΚΕ"));
}

TEST_F(Tables, TableReceiptPaidInPartsAnswersClosureInProgressUntilPaid)
{
    play("tables-paid-in-parts.txt");
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
