// kerbano --headless killed (SIGKILL) at each command of a table job, the
// register executing the command and its reply never leaving, then run again
// on the same print file: no item sold twice onto the table, and the order
// store saying what the register holds on it.

#include "PrintFileLines.h"
#include "SimWorld.h"
#include "TableSides.h"

namespace {
// The link's opening takes the first 6 commands; the job's own run from the
// table's title (7) to the end of the visit and the question behind it (15).
constexpr int kFirstJobCommand = 7;
constexpr int kLastJobCommand = 15;
constexpr int kTable = 5;
constexpr int kKillWithinMs = 20000;
constexpr int kSecondRunMs = 60000;

class TableKillMatrix : public SimWorld, public ::testing::WithParamInterface<int> {};

TEST_P(TableKillMatrix, KilledThenRunAgainSellsNothingTwiceAndTheStoreMatchesTheTable)
{
    const int command = GetParam();
    sim.keepMemory();
    ASSERT_TRUE(writeBytes(path(u"faults.txt"_s), QByteArray::number(command) + ": lost\n"));
    sim.setExtraArguments({u"--faults"_s, path(u"faults.txt"_s)});
    ASSERT_TRUE(sim.startTcp()) << sim.startError().toStdString();
    const QStringList lines{u"resFile:  result.txt"_s, u"tag:  T1"_s, u" TBO  005 ΚΗΠΟΣ"_s,
                            pluLine(u"ΣΟΥΒΛΑΚΙ"_s, u"2"_s, u"3.50"_s), pluLine(u"ΝΕΡΟ"_s, u"1"_s, u"0.50"_s),
                            pluLine(u"ΜΠΥΡΑ"_s, u"2"_s, u"4.35"_s), u" TBC 5"_s};
    ASSERT_TRUE(writeBytes(path(u"print.txt"_s), codepage::toWin1253(lines.join(u"\r\n"_s) + u"\r\n"_s)));

    {
        const KerbanoProcess first(dir.path(), {commandLine()}); // killed as it goes
        ASSERT_TRUE(first.started());
        ASSERT_TRUE(sim.waitForCommands(command, kKillWithinMs)) << "the register never got command " << command;
    }
    const KerbanoRun second = runKerbanoHeadless(dir.path(), commandLine(), kSecondRunMs);
    ASSERT_TRUE(second.finished);
    EXPECT_EQ(second.exitCode, 0) << second.err.toStdString();
    EXPECT_FALSE(QFile::exists(path(u"print.txt"_s))) << "the print file stays";

    const std::set<TableItemKey> onRegister = registerTableItems(sim.portField(), kTable);
    EXPECT_LE(onRegister.size(), 3u) << "an item sold twice";
    EXPECT_EQ(journalCount(u"3/S/ΣΟΥΒΛΑΚΙ"_s), 1) << "the first sale sent again";
    EXPECT_EQ(storeTableItems(dir.path(), kTable), onRegister);
    const QStringList result = resultLines();
    EXPECT_EQ(result.filter(u"exitcode = "_s), QStringList{u"exitcode = 0"_s}) << result.join(u'\n').toStdString();
}

INSTANTIATE_TEST_SUITE_P(EveryCommand, TableKillMatrix, ::testing::Range(kFirstJobCommand, kLastJobCommand + 1));
} // namespace
