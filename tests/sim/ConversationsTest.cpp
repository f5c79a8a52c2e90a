// Conversations of tests/data/sim/ played on the register's model and on the
// whole register with its memory on disk: receipts and their numbers,
// refusals, restaurant tables in the command forms the driver sends, and the
// queries of the Z file answered from the day the register recorded.

#include "DataFile.h"
#include "PrintQString.h"
#include "SimTestSupport.h"

namespace {

using Register = ModelTest;
using Tables = DiskRegisterTest;

TEST_F(Register, WorkedReceiptAddsUpDiscountsAndClosesOnFullPayment)
{
    play("worked-receipt.txt");
    EXPECT_TRUE(tape.contains("ΣΥΝΟΛΟ ΕΥΡΩ                         6.50"));
}

TEST(Conversations, EachIsAnsweredWordForWordAsARegisterAnswers)
{
    for (const char* name : {"receipt-numbers.txt", "receipt-refusals.txt", "terminal-rules.txt",
                             "terminal-table-payment.txt"}) {
        SCOPED_TRACE(name);
        ModelWorld model;
        model.play(name);
    }
    for (const char* name : {"tables-refusals.txt", "tables-paid-in-parts.txt"}) {
        SCOPED_TRACE(name);
        DiskWorld disk;
        disk.play(name);
    }
}

TEST_F(Tables, VisitsMovesAndSettlingKeepIdentifiersAndOrdersAcrossRestarts)
{
    play("tables-visits.txt");
    EXPECT_EQ(reg->memory().dailyNumber, 2);
    EXPECT_EQ(reg->memory().nextUid, 8);
    EXPECT_EQ(reg->memory().tables[7].title1, "ΚΗΠΟΣ");
    const QString paper = tape();
    for (const char* line : {"ΑΠΟΔΕΙΞΗ ΤΡΑΠΕΖΙΟΥ 8", "ΜΕΤΑΦΟΡΑ ΤΡΑΠΕΖΙΟΥ 7 -> 8", "ΜΕΤΑΦΟΡΑ 1 ΕΙΔΩΝ 7 -> 290"})
        EXPECT_TRUE(paper.contains(QString::fromUtf8(line))) << line << "\n" << qPrintable(paper);
}

TEST_F(Tables, WholeTableVoidedByCancellationsClosesWithoutAReceipt)
{
    play("tables-whole-void.txt");
    EXPECT_EQ(reg->memory().dailyNumber, 0); // no receipt for an empty table
    EXPECT_FALSE(reg->memory().tables[12].open);
    EXPECT_EQ(send("&/1/12//0////////////"), "AF/00/00/");
    EXPECT_TRUE(tape().contains("ΤΡΑΠΕΖΙ 12 ΑΚΥΡΩΘΗΚΕ"));
}

TEST_F(Tables, OrderSlipsAndTableReportsGoOnTheTape)
{
    play("tables-slips.txt");
    EXPECT_EQ(tape().split(u'\n'), DataFileLines("sim/tables-slips-tape.txt") << QString());
}

// The Z file's queries after tests/data/sim/day-of-three-receipts.txt; the
// replies are in the z-*.txt conversations.
class ZFileQueries : public ModelTest {
protected:
    void SetUp() override
    {
        now = QDateTime(QDate(2026, 11, 19), QTime(23, 45, 10));
        play("day-of-three-receipts.txt");
    }
};

TEST_F(ZFileQueries, TheZKeepsTheDaysFiguresByCategoryDepartmentAndPayment)
{
    play("z-of-the-day.txt");
}

TEST_F(ZFileQueries, TheNextZCarriesOnlyItsOwnDay)
{
    play("z-of-the-next-day.txt");
}

TEST_F(Tables, TheZsFiguresSurviveARestart)
{
    play("day-of-three-receipts.txt");
    play("z-after-a-restart.txt");
}

} // namespace
