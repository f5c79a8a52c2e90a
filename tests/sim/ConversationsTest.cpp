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

// Each row's conversations are played in turn on one register: its model
// alone, or the whole register with its memory on disk. The Z file's queries
// follow a day of three receipts; the z-*.txt conversations hold the replies.
TEST(Conversations, EachIsAnsweredWordForWordAsARegisterAnswers)
{
    const struct {
        std::vector<const char*> names;
        bool onDisk;
    } rows[] = {{{"receipt-numbers.txt"}, false},
                {{"receipt-refusals.txt"}, false},
                {{"terminal-rules.txt"}, false},
                {{"terminal-table-payment.txt"}, false},
                {{"day-of-three-receipts.txt", "z-of-the-day.txt"}, false},
                {{"day-of-three-receipts.txt", "z-of-the-next-day.txt"}, false},
                {{"tables-refusals.txt"}, true},
                {{"tables-paid-in-parts.txt"}, true},
                {{"day-of-three-receipts.txt", "z-after-a-restart.txt"}, true}};
    for (const auto& row : rows) {
        ModelWorld model;
        DiskWorld disk;
        for (const char* name : row.names) {
            SCOPED_TRACE(name);
            row.onDisk ? disk.play(name) : model.play(name);
        }
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

} // namespace
