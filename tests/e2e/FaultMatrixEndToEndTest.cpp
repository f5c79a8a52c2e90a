// Every one-shot fault of the virtual register's script, on the worked
// receipt's first sale and on its payment: the receipt the register issues
// equals the print file, or the result file says truthfully that it does not;
// never a receipt twice, never one left open.

#include "SimWorld.h"
#include "TapeTally.h"

#include <iostream>

namespace {
// Counted by the register: the link's opening takes six commands, then the
// coffee, its discount, the water, the subtotal discount, the comment, the cash.
constexpr int kSaleCommand = 7;
constexpr int kPaymentCommand = 12;
constexpr int kRunMs = 150000;
const QString kAsPrinted = QStringLiteral("6.50");

struct FaultCase {
    const char* name;
    const char* action; // as the fault script writes it
    bool serial;        // a serial line's fault (NACK, ENQ)
    bool onPayment;
};

std::string caseName(const ::testing::TestParamInfo<FaultCase>& info)
{
    return std::string(info.param.name) + (info.param.onPayment ? "OnPayment" : "OnSale");
}

class FaultMatrix : public SimWorld, public ::testing::WithParamInterface<FaultCase> {};

TEST_P(FaultMatrix, TheReceiptEqualsThePrintFileOrTheResultSaysItDoesNot)
{
    const FaultCase fault = GetParam();
    const QString commandLine =
        workedReceiptBehindFault(fault.onPayment ? kPaymentCommand : kSaleCommand, fault.action, fault.serial);
    ASSERT_FALSE(commandLine.isEmpty()) << sim.startError().toStdString();
    const KerbanoRun run = runKerbanoHeadless(dir.path(), commandLine, kRunMs);
    ASSERT_TRUE(run.finished);

    const TapeTally tally = TapeTally::of(sim.tapePath());
    const QStringList result = ::resultLines(path(u"result.txt"_s));
    EXPECT_LE(tally.issued, 1) << "receipts issued";
    EXPECT_EQ(tally.open(), 0) << "receipts left open";
    ASSERT_FALSE(result.isEmpty());
    EXPECT_EQ(result.last(), QStringLiteral("exitcode = 0"));

    const QString issued = tally.issuedTotals.value(0, QStringLiteral("0.00"));
    const bool asPrinted = tally.issued == 1 && issued == kAsPrinted;
    const bool told = !result.filter(QStringLiteral("Err = ")).isEmpty()
                      || !result.filter(QStringLiteral("jobNote = ")).isEmpty();
    EXPECT_TRUE(asPrinted || told) << "a receipt of " << issued.toStdString()
                                   << " passed off as printed:\n" << result.join(u'\n').toStdString();
    // What the result file reports is what the register issued.
    EXPECT_EQ(result.filter(QStringLiteral("recStatus = ")).value(0),
              QStringLiteral("recStatus = %1;%2").arg(tally.issued == 1 ? 1 : 0).arg(issued));
    // A line the register refused keeps its "Err = " line and the exit status
    // of a printed file; a guarantee that stepped in says so by its note and by 3.
    const bool noted = !result.filter(QStringLiteral("jobNote = ")).isEmpty();
    EXPECT_EQ(run.exitCode, noted ? 3 : 0) << run.err.toStdString();
    std::cout << "outcome: " << caseName({fault, 0}) << " -> "
              << (asPrinted ? (told ? "as printed, told" : "as printed") : "told: ")
              << (asPrinted ? "" : (result.filter(QStringLiteral("jobNote = ")).value(0)
                                    + result.filter(QStringLiteral("Err = ")).value(0).section(u']', 0, 0))
                                       .toStdString())
              << " issued " << tally.issued << " of " << issued.toStdString() << " exit " << run.exitCode
              << "\n";
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

INSTANTIATE_TEST_SUITE_P(OneShot, FaultMatrix, ::testing::ValuesIn(kFaults), caseName);
} // namespace
