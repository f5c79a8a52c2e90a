// The worked receipt against what can go wrong between driver and register,
// over TCP and a serial line:
// - every one-shot fault of the virtual register's script, on the first sale
//   and on the payment: the receipt the register issues equals the print
//   file, or the result file says truthfully that it does not;
// - kerbano --headless killed (SIGKILL) at each command, the register
//   executing it and its reply never leaving, then run again on the same
//   print file: one receipt issued, ending as a printed one.
// Never a receipt twice, never one left open.

#include "PrintFileLines.h"
#include "SimWorld.h"
#include "TableSides.h"
#include "TapeTally.h"

#include <QRegularExpression>

#include <iostream>

namespace {
// Counted by the register: the link's opening takes six commands, then the
// coffee, its discount, the water, the subtotal discount, the comment, the
// cash; the clean run sends 17 in all.
constexpr int kSaleCommand = 7;
constexpr int kPaymentCommand = 12;
constexpr int kCommandsOfACleanRun = 17;
constexpr int kRunMs = 150000;
constexpr int kKillWithinMs = 20000;
constexpr int kSecondRunMs = 60000;
const QString kAsPrinted = u"6.50"_s;

class Matrix : public SimWorld {
protected:
    // The closed result file's lines, the empty tail left out.
    QStringList result() const { return resultLines().filter(QRegularExpression(u"."_s)); }

    // What holds after any run: at most one receipt, none open, a result file
    // that closes as printed and reports what the register issued.
    TapeTally expectNoneTwiceNoneOpen(const QStringList& result) const
    {
        const TapeTally tally = TapeTally::of(sim.tapePath());
        EXPECT_LE(tally.issued, 1) << "receipts issued";
        EXPECT_EQ(tally.open(), 0) << "receipts left open";
        EXPECT_EQ(result.value(result.size() - 1), u"exitcode = 0"_s) << result.join(u'\n').toStdString();
        EXPECT_EQ(result.filter(u"recStatus = "_s),
                  QStringList{u"recStatus = %1;%2"_s.arg(tally.issued == 1 ? 1 : 0)
                                  .arg(tally.issuedTotals.value(0, u"0.00"_s))})
            << result.join(u'\n').toStdString();
        return tally;
    }
};

struct FaultCase {
    const char* name;
    const char* action; // as the fault script writes it
    bool serial;        // a serial line's fault (NACK, ENQ)
    bool onPayment;
};

std::string faultName(const ::testing::TestParamInfo<FaultCase>& info)
{
    return std::string(info.param.name) + (info.param.onPayment ? "OnPayment" : "OnSale");
}

class FaultMatrix : public Matrix, public ::testing::WithParamInterface<FaultCase> {};

TEST_P(FaultMatrix, TheReceiptEqualsThePrintFileOrTheResultSaysItDoesNot)
{
    const FaultCase fault = GetParam();
    const QString commandLine =
        workedReceiptBehindFault(fault.onPayment ? kPaymentCommand : kSaleCommand, fault.action, fault.serial);
    ASSERT_FALSE(commandLine.isEmpty()) << sim.startError().toStdString();
    const KerbanoRun run = runKerbanoHeadless(dir.path(), {commandLine}, kRunMs);
    ASSERT_TRUE(run.finished);

    const QStringList lines = result();
    const TapeTally tally = expectNoneTwiceNoneOpen(lines);
    const QString issued = tally.issuedTotals.value(0, u"0.00"_s);
    const bool asPrinted = tally.issued == 1 && issued == kAsPrinted;
    const QString note = lines.filter(u"jobNote = "_s).value(0);
    const QString refusal = lines.filter(u"Err = "_s).value(0);
    EXPECT_TRUE(asPrinted || !note.isEmpty() || !refusal.isEmpty())
        << "a receipt of " << issued.toStdString() << " passed off as printed:\n" << lines.join(u'\n').toStdString();
    // A line the register refused keeps its "Err = " line and the exit status
    // of a printed file; a guarantee that stepped in says so by its note and by 3.
    EXPECT_EQ(run.exitCode, note.isEmpty() ? 0 : 3) << run.err.toStdString();
    std::cout << "outcome: " << faultName({fault, 0}) << " -> "
              << (asPrinted ? "as printed" : "told: " + (note + refusal.section(u']', 0, 0)).toStdString())
              << ((asPrinted && (!note.isEmpty() || !refusal.isEmpty())) ? ", told" : "") << " issued "
              << tally.issued << " of " << issued.toStdString() << " exit " << run.exitCode << "\n";
}

const FaultCase kFaults[] = {
    {"Busy", "busy", false, false},          {"Busy", "busy", false, true},
    {"PaperEnd", "paperend", false, false},  {"PaperEnd", "paperend", false, true},
    {"Operator", "operator", false, false},  {"Operator", "operator", false, true},
    {"Refusal", "code 13", false, false},    {"Refusal", "code 0C", false, true},
    {"Silent", "silent", false, false},      {"Silent", "silent", false, true},
    {"LostReply", "lost", false, false},     {"LostReply", "lost", false, true},
    {"Nack", "nack", true, false},           {"Nack", "nack", true, true},
    {"SplitReply", "split 300", false, false}, {"SplitReply", "split 300", false, true},
    {"LateReply", "delay 12000", false, false}, {"LateReply", "delay 12000", false, true},
    {"DroppedLink", "drop", false, false},   {"DroppedLink", "drop", false, true},
    {"UnansweredEnq", "noenq", true, false}, {"UnansweredEnq", "noenq", true, true},
};

INSTANTIATE_TEST_SUITE_P(OneShot, FaultMatrix, ::testing::ValuesIn(kFaults), faultName);

struct KillAt {
    bool serial;
    int command; // from 1, counted by the register
};

std::string killName(const ::testing::TestParamInfo<KillAt>& info)
{
    return (info.param.serial ? "Serial" : "Tcp") + std::string("AtCommand") + std::to_string(info.param.command);
}

class KillMatrix : public Matrix, public ::testing::WithParamInterface<KillAt> {};

TEST_P(KillMatrix, KilledThenRunAgainIssuesOneReceiptAndLeavesNoneOpen)
{
    const KillAt at = GetParam();
    sim.keepMemory();
    const QString commandLine = workedReceiptBehindFault(at.command, "lost", at.serial);
    ASSERT_FALSE(commandLine.isEmpty()) << sim.startError().toStdString();
    {
        const KerbanoProcess first(dir.path(), {commandLine}); // killed as it goes
        ASSERT_TRUE(first.started());
        ASSERT_TRUE(sim.waitForCommands(at.command, kKillWithinMs)) << "the register never got command " << at.command;
    }

    const KerbanoRun second = runKerbanoHeadless(dir.path(), {commandLine}, kSecondRunMs);
    ASSERT_TRUE(second.finished);
    EXPECT_EQ(second.exitCode, 0) << second.err.toStdString();
    EXPECT_FALSE(QFile::exists(path(u"print.txt"_s))) << "the print file stays";
    const QStringList lines = result();
    const TapeTally tally = expectNoneTwiceNoneOpen(lines);
    EXPECT_EQ(tally.issued, 1) << "receipts issued";
    EXPECT_EQ(tally.issuedTotals, QStringList{kAsPrinted});
    EXPECT_EQ(lines.filter(u"exitcode = "_s).size(), 1) << lines.join(u'\n').toStdString();
}

std::vector<KillAt> everyCommand()
{
    std::vector<KillAt> cases;
    for (const bool serial : {false, true}) {
#ifndef Q_OS_UNIX
        if (serial)
            continue;
#endif
        for (int command = 1; command <= kCommandsOfACleanRun; ++command)
            cases.push_back({serial, command});
    }
    return cases;
}

INSTANTIATE_TEST_SUITE_P(EveryCommand, KillMatrix, ::testing::ValuesIn(everyCommand()), killName);

// kerbano --headless killed at each command of a table job, then run again:
// no item sold twice onto the table, and the order store saying what the
// register holds on it.
// A table job: the visit's title (7) to the end of the visit and the question
// behind it (15).
constexpr int kFirstTableJobCommand = 7;
constexpr int kLastTableJobCommand = 15;
constexpr int kTable = 5;

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

INSTANTIATE_TEST_SUITE_P(EveryCommand, TableKillMatrix, ::testing::Range(kFirstTableJobCommand, kLastTableJobCommand + 1));
} // namespace
