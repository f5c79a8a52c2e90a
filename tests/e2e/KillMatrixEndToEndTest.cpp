// kerbano --headless killed (SIGKILL) at each command of the worked receipt,
// the register executing the command and its reply never leaving, then run
// again on the same print file, over TCP and a serial line: one receipt
// issued, none left open, and a result file that ends as a printed one.

#include "KerbanoRun.h"
#include "PrintQString.h"
#include "SimProcess.h"
#include "TapeTally.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QProcessEnvironment>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace {
// The link's opening (6 commands) and the job (11), as the worked receipt's
// clean run sends them.
constexpr int kCommandsOfACleanRun = 17;
constexpr int kKillWithinMs = 20000;
constexpr int kSecondRunMs = 60000;
constexpr int kSerialBaud = 115200;
const QString kFlags = QStringLiteral("0,TECFP,1110111");

struct KillAt {
    bool serial;
    int command; // from 1, counted by the register
};

std::string caseName(const ::testing::TestParamInfo<KillAt>& info)
{
    return (info.param.serial ? "Serial" : "Tcp") + std::string("AtCommand")
           + std::to_string(info.param.command);
}

class KillMatrix : public ::testing::TestWithParam<KillAt> {
protected:
    QString path(const QString& name) const { return QDir(dir.path()).filePath(name); }
    QTemporaryDir dir;
};

TEST_P(KillMatrix, KilledThenRunAgainIssuesOneReceiptAndLeavesNoneOpen)
{
    ASSERT_TRUE(dir.isValid());
    const KillAt at = GetParam();
    QFile faults(path(QStringLiteral("faults.txt")));
    ASSERT_TRUE(faults.open(QIODevice::WriteOnly));
    faults.write(QByteArray::number(at.command) + ": lost\n");
    faults.close();

    SimProcess sim(dir.path());
    sim.keepMemory();
    sim.setExtraArguments({QStringLiteral("--faults"), faults.fileName()});
    ASSERT_TRUE(at.serial ? sim.startPty(kSerialBaud) : sim.startTcp()) << sim.startError().toStdString();
    ASSERT_TRUE(QFile::copy(QStringLiteral(KERBANO_SOURCE_DIR "/samples/receipt.txt"),
                            path(QStringLiteral("print.txt"))));
    const QString commandLine =
        QStringLiteral("%1,%2,print.txt,%3").arg(sim.portField()).arg(at.serial ? kSerialBaud : 9600).arg(kFlags);

    {
        QProcess first;
        first.setWorkingDirectory(dir.path());
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("KERBANO_HOME"), dir.path());
        first.setProcessEnvironment(environment);
        first.start(QStringLiteral(KERBANO_BIN_DIR "/kerbano"), {QStringLiteral("--headless"), commandLine});
        ASSERT_TRUE(first.waitForStarted());
        const bool reached = sim.waitForCommands(at.command, kKillWithinMs);
        first.kill();
        first.waitForFinished();
        ASSERT_TRUE(reached) << "the register never got command " << at.command;
    }

    const KerbanoRun second = runKerbanoHeadless(dir.path(), commandLine, kSecondRunMs);
    ASSERT_TRUE(second.finished);
    EXPECT_EQ(second.exitCode, 0) << second.err.toStdString();
    EXPECT_FALSE(QFile::exists(path(QStringLiteral("print.txt")))) << "the print file stays";

    const TapeTally tally = TapeTally::of(sim.tapePath());
    EXPECT_EQ(tally.issued, 1) << "receipts issued";
    EXPECT_EQ(tally.open(), 0) << "receipts left open";
    EXPECT_EQ(tally.issuedTotals, QStringList{QStringLiteral("6.50")});

    const QStringList result = resultLines(path(QStringLiteral("result.txt")));
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
