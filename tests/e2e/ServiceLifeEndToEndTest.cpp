// kerbano as a service lives: signals at a wait, in the middle of a job and
// when idle, the wait limit of the command-line life, the communication log
// and one kerbano per port, against the real executables.
#include "LiveKerbano.h"
#include "SimProcess.h"
#include "shell/CodePage.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QProcessEnvironment>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QThread>
#include <gtest/gtest.h>

#ifdef Q_OS_UNIX
#include <csignal>

namespace {
constexpr int kEventMs = LiveKerbano::kEventMs;
const char kFlags[] = "1110111";

QByteArray readBytes(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

bool writeBytes(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

// A print file of count items, each one line.
QByteArray itemsPrintFile(int count)
{
    QByteArray file = "resFile:  result.txt\r\ntag:  SIG\r\n";
    for (int i = 0; i < count; ++i)
        file += codepage::toWin1253(
            QStringLiteral(" PLU 5200000000011 ΝΕΡΟ 500ML                        1       0.50   13.00  2\r\n"));
    file += codepage::toWin1253(QStringLiteral(" tot   1       0.00ΜΕΤΡΗΤΑ\r\n"));
    return file;
}

class ServiceLifeEndToEnd : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(dir.isValid()); }

    QString path(const QString& name) const { return QDir(dir.path()).filePath(name); }
    void startRegister(const QByteArray& faults)
    {
        ASSERT_TRUE(writeBytes(path(QStringLiteral("faults.txt")), faults));
        sim.setExtraArguments({QStringLiteral("--faults"), path(QStringLiteral("faults.txt"))});
        ASSERT_TRUE(sim.startTcp()) << sim.startError().toStdString();
    }
    QString commandLine() const
    {
        return QStringLiteral("%1,9600,print.txt,0,TECFP,%2").arg(sim.portField(), kFlags);
    }
    QStringList resultLines() const
    {
        return codepage::fromWin1253(readBytes(path(QStringLiteral("result.txt"))))
            .split(QStringLiteral("\r\n"));
    }
    // Whether a payment went out once the items had begun (the opening
    // sends one of nothing before them).
    bool paidAfterTheItems() const
    {
        const QStringList commands = sim.journalCommands();
        const qsizetype first = commands.indexOf(QRegularExpression(QStringLiteral("^3/S/")));
        for (qsizetype i = first; first >= 0 && i < commands.size(); ++i) {
            // "5/99/" is the closing's question about card payments.
            if (commands[i].startsWith(QStringLiteral("5/")) && !commands[i].startsWith(QStringLiteral("5/99/")))
                return true;
        }
        return false;
    }
    int journalCount(const QString& prefix) const
    {
        int n = 0;
        for (const QString& command : sim.journalCommands())
            n += command.startsWith(prefix);
        return n;
    }

    QTemporaryDir dir;
    SimProcess sim{dir.path()};
};

// The register answers every item with paper end and clears at the first
// poll: the command-line life would wait, poll and send again for ever.
const QByteArray kEndlessPaperEnd = "/^3\\/S/ : code 2C\n";

TEST_F(ServiceLifeEndToEnd, SigtermAtAWaitEndsItWithoutSendingAgainAndClosesTheResultFile)
{
    startRegister(kEndlessPaperEnd);
    ASSERT_TRUE(writeBytes(path(QStringLiteral("print.txt")), itemsPrintFile(3)));
    LiveKerbano kerbano(dir.path(), {QStringLiteral("--wait-limit"), QStringLiteral("0"), commandLine()});
    ASSERT_TRUE(kerbano.started());
    // The wait is announced with its level, then it goes on until told.
    ASSERT_TRUE(kerbano.waitFor(QStringLiteral("warning: [Μήνυμα Ταμειακής ("))) << kerbano.said().toStdString();
    ASSERT_TRUE(kerbano.waitFor(QStringLiteral("Status [44]")));
    QThread::msleep(2500); // a poll and a resend or two
    kerbano.signal(SIGTERM);

    ASSERT_TRUE(kerbano.waitEnd()) << kerbano.said().toStdString();
    EXPECT_EQ(kerbano.exitCode(), 0) << kerbano.said().toStdString();
    const QStringList lines = resultLines();
    ASSERT_GE(lines.size(), 4) << lines.join('|').toStdString();
    EXPECT_EQ(lines[lines.size() - 3], QStringLiteral("stopped = signal"));
    EXPECT_EQ(lines[lines.size() - 2], QStringLiteral("exitcode = 0"));
    EXPECT_TRUE(lines[2].startsWith(QStringLiteral("Err = 44, [3/S/"))) << lines.join('|').toStdString();
    // Each item sent had its window; none went out after the last one.
    EXPECT_EQ(journalCount(QStringLiteral("3/S/")),
              int(kerbano.err().count(QStringLiteral("[Μήνυμα Ταμειακής ("))));
    EXPECT_FALSE(paidAfterTheItems()) << "the job stopped before its payment";
}

TEST_F(ServiceLifeEndToEnd, TheWaitLimitStopsTheJobAndTheExitStatusSaysSo)
{
    startRegister(kEndlessPaperEnd);
    ASSERT_TRUE(writeBytes(path(QStringLiteral("print.txt")), itemsPrintFile(2)));
    LiveKerbano kerbano(dir.path(), {QStringLiteral("--wait-limit"), QStringLiteral("3"), commandLine()});
    ASSERT_TRUE(kerbano.started());

    ASSERT_TRUE(kerbano.waitEnd()) << kerbano.said().toStdString();
    EXPECT_EQ(kerbano.exitCode(), 3) << kerbano.said().toStdString();
    const QStringList lines = resultLines();
    ASSERT_GE(lines.size(), 4);
    EXPECT_EQ(lines[lines.size() - 3], QStringLiteral("stopped = wait limit"));
    EXPECT_EQ(lines[lines.size() - 2], QStringLiteral("exitcode = 0"));
    EXPECT_GT(journalCount(QStringLiteral("3/S/")), 1) << "sent again while within the limit";
    EXPECT_FALSE(paidAfterTheItems()) << "the job stopped before its payment";
    EXPECT_TRUE(kerbano.err().contains(QStringLiteral("error: Η ταμειακή έμεινε απασχολημένη")));
}

TEST_F(ServiceLifeEndToEnd, AWaitLimitThatIsNoNumberOfSecondsEndsAtOnce)
{
    for (const QString& value : {QStringLiteral("-1"), QStringLiteral("5s")}) {
        LiveKerbano kerbano(dir.path(), {QStringLiteral("--wait-limit"), value, QStringLiteral("com1,9600,p.txt,0,TECFP,1110111")});
        ASSERT_TRUE(kerbano.waitEnd());
        EXPECT_EQ(kerbano.exitCode(), 1);
        EXPECT_TRUE(kerbano.err().contains(QStringLiteral("Λάθος τιμή του --wait-limit : ") + value))
            << kerbano.said().toStdString();
    }
}

TEST_F(ServiceLifeEndToEnd, SigintMidJobStopsAtALineBoundaryWithEveryExchangeWhole)
{
    startRegister("/^3\\/S/ : delay 150\n");
    ASSERT_TRUE(writeBytes(path(QStringLiteral("print.txt")), itemsPrintFile(60)));
    LiveKerbano kerbano(dir.path(), {QStringLiteral("--log"), commandLine()});
    ASSERT_TRUE(kerbano.started());
    ASSERT_TRUE(kerbano.waitFor(QStringLiteral("Εκτύπωση Ενεργή")));
    QThread::msleep(1000);
    kerbano.signal(SIGINT);

    ASSERT_TRUE(kerbano.waitEnd()) << kerbano.said().toStdString();
    EXPECT_EQ(kerbano.exitCode(), 0) << kerbano.said().toStdString();
    const int items = journalCount(QStringLiteral("3/S/"));
    EXPECT_GT(items, 0);
    EXPECT_LT(items, 60);
    EXPECT_FALSE(paidAfterTheItems());
    const QStringList lines = resultLines();
    ASSERT_GE(lines.size(), 3);
    EXPECT_EQ(lines[lines.size() - 3], QStringLiteral("stopped = signal"));
    EXPECT_EQ(lines[lines.size() - 2], QStringLiteral("exitcode = 0"));

    // --log: the exchanges in kerbanoLog.txt, each send with its reply.
    const QString log = codepage::fromWin1253(readBytes(path(QStringLiteral("kerbanoLog.txt"))));
    ASSERT_FALSE(log.isEmpty()) << "no communication log";
    EXPECT_EQ(log.count(QStringLiteral(" send:     3/S/")), items);
    EXPECT_EQ(log.count(QStringLiteral(" send:     ")), log.count(QStringLiteral(" reply     ")));
    EXPECT_EQ(log.count(QStringLiteral(" send:     ")), int(sim.journalCommands().size()));
}

TEST_F(ServiceLifeEndToEnd, IdleSurvivesSighupAndEndsOnSigtermASecondInstanceOnThePortEnds)
{
    startRegister("");
    ASSERT_TRUE(QDir(dir.path()).mkpath(QStringLiteral("in")));
    const QByteArray params = "[port] " + sim.portField().toLatin1()
        + "\r\n[baud] 9600\r\n[file] print\r\n[location] in\\\r\n[ecrt] TECFP\r\n"
          "[multi type] true\r\n[print_desc] true\r\n[print_code] falseN\r\n[comments] true\r\n"
          "[currency]=0\r\n[AutoStar]=yes\r\n";
    ASSERT_TRUE(writeBytes(path(QStringLiteral("param.ini")), params));
    LiveKerbano kerbano(dir.path(), {});
    ASSERT_TRUE(kerbano.started());
    ASSERT_TRUE(kerbano.waitFor(QStringLiteral("Αναμονη Για Στοιχεια"))) << kerbano.said().toStdString();

    {
        LiveKerbano second(dir.path(), {commandLine()});
        ASSERT_TRUE(second.waitEnd());
        EXPECT_EQ(second.exitCode(), 6); // another kerbano holds the port
        EXPECT_TRUE(second.err().contains(QStringLiteral("χρησιμοποιείται ήδη από άλλο kerbano")))
            << second.said().toStdString();
    }

    kerbano.signal(SIGHUP);
    EXPECT_FALSE(kerbano.waitEnd(1500)) << "SIGHUP only reads param.ini again";
    ASSERT_TRUE(writeBytes(path(QStringLiteral("in/print.1")), itemsPrintFile(1)));
    const QDeadlineTimer printed(kEventMs);
    while (QFile::exists(path(QStringLiteral("in/print.1"))) && !printed.hasExpired())
        kerbano.waitEnd(100);
    EXPECT_FALSE(QFile::exists(path(QStringLiteral("in/print.1")))) << "still polling after SIGHUP";

    const int commandsBefore = int(sim.journalCommands().size());
    kerbano.signal(SIGTERM);
    ASSERT_TRUE(kerbano.waitEnd()) << kerbano.said().toStdString();
    EXPECT_EQ(kerbano.exitCode(), 0);
    EXPECT_LE(int(sim.journalCommands().size()), commandsBefore + 1) << "no new job after the signal";
}

// The first signal waits for the exchange in hand, which a silent register
// makes last: the second ends the process there and then.
TEST_F(ServiceLifeEndToEnd, ASecondSignalEndsAtOnceInTheMiddleOfAnExchange)
{
    startRegister("/^3\\/S/ : silent\n");
    ASSERT_TRUE(writeBytes(path(QStringLiteral("print.txt")), itemsPrintFile(1)));
    LiveKerbano kerbano(dir.path(), {commandLine()});
    ASSERT_TRUE(kerbano.started());
    ASSERT_TRUE(kerbano.waitFor(QStringLiteral("Εκτύπωση Ενεργή")));
    QThread::msleep(500);
    kerbano.signal(SIGTERM);
    EXPECT_FALSE(kerbano.waitEnd(1000)) << "the first waits for the register's answer";
    kerbano.signal(SIGINT);
    ASSERT_TRUE(kerbano.waitEnd(2000));
    EXPECT_EQ(kerbano.exitCode(), -1) << "ended by the signal itself";
}

} // namespace
#endif
