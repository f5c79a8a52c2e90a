// Restaurant tables on the virtual register, in the command forms the driver
// sends: visits, cancellations, moves, settling, contents and reports, with
// the register's memory on disk between commands.

#include "DataFile.h"
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
    play("tables-slips.txt");
    EXPECT_EQ(tape().split(u'\n'), DataFileLines("sim/tables-slips-tape.txt") << QString());
}

} // namespace
