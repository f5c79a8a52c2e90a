// kerbano --headless killed (SIGKILL) at each command of the worked receipt,
// the register executing the command and its reply never leaving, then run
// again on the same print file, over TCP and a serial line: one receipt
// issued, none left open, and a result file that ends as a printed one.

#include "SimWorld.h"
#include "TapeTally.h"

namespace {
// The link's opening (6 commands) and the job (11), as the worked receipt's
// clean run sends them.
constexpr int kCommandsOfACleanRun = 17;
constexpr int kKillWithinMs = 20000;
constexpr int kSecondRunMs = 60000;

struct KillAt {
    bool serial;
    int command; // from 1, counted by the register
};

std::string caseName(const ::testing::TestParamInfo<KillAt>& info)
{
    return (info.param.serial ? "Serial" : "Tcp") + std::string("AtCommand")
           + std::to_string(info.param.command);
}

class KillMatrix : public SimWorld, public ::testing::WithParamInterface<KillAt> {};

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

    const KerbanoRun second = runKerbanoHeadless(dir.path(), commandLine, kSecondRunMs);
    ASSERT_TRUE(second.finished);
    EXPECT_EQ(second.exitCode, 0) << second.err.toStdString();
    EXPECT_FALSE(QFile::exists(path(QStringLiteral("print.txt")))) << "the print file stays";

    const TapeTally tally = TapeTally::of(sim.tapePath());
    EXPECT_EQ(tally.issued, 1) << "receipts issued";
    EXPECT_EQ(tally.open(), 0) << "receipts left open";
    EXPECT_EQ(tally.issuedTotals, QStringList{QStringLiteral("6.50")});

    const QStringList result = ::resultLines(path(u"result.txt"_s));
    ASSERT_FALSE(result.isEmpty());
    EXPECT_EQ(result.last(), QStringLiteral("exitcode = 0"));
    EXPECT_EQ(result.filter(QStringLiteral("exitcode = ")).size(), 1) << result.join(u'\n').toStdString();
    EXPECT_EQ(result.filter(QStringLiteral("recStatus = ")), QStringList{QStringLiteral("recStatus = 1;6.50")})
        << result.join(u'\n').toStdString();
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

INSTANTIATE_TEST_SUITE_P(EveryCommand, KillMatrix, ::testing::ValuesIn(everyCommand()), caseName);
} // namespace
