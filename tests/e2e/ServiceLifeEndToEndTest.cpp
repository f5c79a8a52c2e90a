// kerbano as a service lives: a wrong start, signals at a wait, in the middle
// of a job and when idle, the wait limit of the command-line life, the
// communication log and one kerbano per port, against the real executables.
#include "SimWorld.h"

#include <QDeadlineTimer>
#include <QRegularExpression>
#include <QThread>

#ifdef Q_OS_UNIX
#include <csignal>
#endif

namespace {
constexpr int kEventMs = KerbanoProcess::kEventMs;

class ServiceLifeEndToEnd : public SimWorld {
protected:
    // Whether a payment went out once the items had begun (the opening
    // sends one of nothing before them).
    bool paidAfterTheItems() const
    {
        const QStringList commands = sim.journalCommands();
        const qsizetype first = commands.indexOf(QRegularExpression(u"^3/S/"_s));
        for (qsizetype i = first; first >= 0 && i < commands.size(); ++i) {
            // "5/99/" is the closing's question about card payments.
            if (commands[i].startsWith(u"5/"_s) && !commands[i].startsWith(u"5/99/"_s))
                return true;
        }
        return false;
    }
};

} // namespace

// The lives that end before any register is found.
TEST_F(ServiceLifeEndToEnd, AWrongCommandLineOrNoParamFileEndsAtOnceAndAFailedLinkStaysUp)
{
    const KerbanoRun wrong = runKerbanoHeadless(dir.path(), u"com1,9600,p.txt,0,TECFP,111111"_s, kEventMs);
    EXPECT_NE(wrong.exitCode, 0);
    EXPECT_TRUE(wrong.out.isEmpty()) << wrong.out.toStdString();
    EXPECT_TRUE(wrong.err.isEmpty()) << wrong.err.toStdString();

    // The resident life waits for param.ini instead (ServiceStartEndToEndTest).
    const KerbanoRun noParams = runKerbanoHeadless(dir.path(), QStringList{u"--run"_s, u"Ver"_s}, kEventMs);
    EXPECT_EQ(noParams.exitCode, 1);
    EXPECT_TRUE(noParams.err.contains("param.ini")) << noParams.err.toStdString();

    ASSERT_TRUE(writeBytes(path(u"param.ini"_s),
                           "[port] /dev/nosuchport\r\n[baud] 9600\r\n[file] print\r\n[multi type] true\r\n"));
    KerbanoProcess kerbano(dir.path(), {});
    ASSERT_TRUE(kerbano.waitFor(u"Λάθος : -1 - Πρόβλημα στην Θύρα :/dev/nosuchport"_s)) << kerbano.said().toStdString();
    EXPECT_TRUE(kerbano.said().contains(u"Εύρεση Φορολογικής Ταμειακής !!! \n"_s)) << kerbano.said().toStdString();
    EXPECT_FALSE(kerbano.waitEnd(300)); // the link-failed state waits for the operator
}

TEST_F(ServiceLifeEndToEnd, ACommandLineWithNoRegisterEndsWithTwoAndKeepsTheFile)
{
    QDir(dir.path()).mkpath(u"jobs"_s);
    ASSERT_TRUE(writeBytes(path(u"jobs/print.txt"_s), "resFile:  jobs\\res.txt\r\ntag:  00417\r\n PLU x\r\n"));
    const KerbanoRun run = runKerbanoHeadless(dir.path(), u"com99,9600,jobs\\print.txt,0,TECFP,1111111"_s, kEventMs);
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_TRUE(QFile::exists(path(u"jobs/print.txt"_s)));
    EXPECT_FALSE(QFile::exists(path(u"jobs/res.txt"_s)));
    EXPECT_FALSE(QFile::exists(path(u"Result"_s)));
}

TEST_F(ServiceLifeEndToEnd, RunArgumentsThatNameNoActionEndAtOnceWithStatusOne)
{
    const KerbanoRun unknown = runKerbanoHeadless(dir.path(), {u"--run"_s, u"nosuch"_s}, kEventMs);
    EXPECT_EQ(unknown.exitCode, 1);
    EXPECT_TRUE(QString::fromUtf8(unknown.err).contains(u"Άγνωστη λειτουργία : nosuch"_s)) << unknown.err.toStdString();
    EXPECT_TRUE(unknown.out.isEmpty()) << unknown.out.toStdString();
    for (const QStringList& arguments : {QStringList{u"--run"_s, u"Ver"_s, u"com1,9600,p.txt,0,TECFP,1111111"_s},
                                         QStringList{u"--run"_s}}) {
        const KerbanoRun run = runKerbanoHeadless(dir.path(), arguments, kEventMs);
        EXPECT_EQ(run.exitCode, 1);
        EXPECT_FALSE(run.err.isEmpty());
    }
}

#ifdef Q_OS_UNIX
namespace {
// The register answers every item with paper end and clears at the first
// poll: the command-line life would wait, poll and send again for ever.
const QByteArray kEndlessPaperEnd = "/^3\\/S/ : code 2C\n";

TEST_F(ServiceLifeEndToEnd, SigtermAtAWaitEndsItWithoutSendingAgainAndClosesTheResultFile)
{
    startRegister(kEndlessPaperEnd);
    ASSERT_TRUE(writeBytes(path(u"print.txt"_s), itemsPrintFile(3)));
    KerbanoProcess kerbano(dir.path(), {u"--wait-limit"_s, u"0"_s, commandLine()});
    ASSERT_TRUE(kerbano.started());
    // The wait is announced with its level, then it goes on until told.
    ASSERT_TRUE(kerbano.waitFor(u"warning: [Μήνυμα Ταμειακής ("_s)) << kerbano.said().toStdString();
    ASSERT_TRUE(kerbano.waitFor(u"Status [44]"_s));
    QThread::msleep(2500); // a poll and a resend or two
    ASSERT_TRUE(kerbano.endsCleanlyOn(SIGTERM)) << kerbano.said().toStdString();

    const QStringList lines = resultLines();
    ASSERT_GE(lines.size(), 4) << lines.join('|').toStdString();
    EXPECT_EQ(lines.mid(lines.size() - 3, 2), (QStringList{u"stopped = signal"_s, u"exitcode = 0"_s}));
    EXPECT_TRUE(lines[2].startsWith(u"Err = 44, [3/S/"_s)) << lines.join('|').toStdString();
    // Each item sent had its window; none went out after the last one.
    EXPECT_EQ(journalCount(u"3/S/"_s), int(kerbano.err().count(u"[Μήνυμα Ταμειακής ("_s)));
    EXPECT_FALSE(paidAfterTheItems()) << "the job stopped before its payment";
}

TEST_F(ServiceLifeEndToEnd, TheWaitLimitStopsTheJobAndTheExitStatusSaysSo)
{
    startRegister(kEndlessPaperEnd);
    ASSERT_TRUE(writeBytes(path(u"print.txt"_s), itemsPrintFile(2)));
    KerbanoProcess kerbano(dir.path(), {u"--wait-limit"_s, u"3"_s, commandLine()});
    ASSERT_TRUE(kerbano.started());

    ASSERT_TRUE(kerbano.waitEnd()) << kerbano.said().toStdString();
    EXPECT_EQ(kerbano.exitCode(), 3) << kerbano.said().toStdString();
    const QStringList lines = resultLines();
    ASSERT_GE(lines.size(), 4);
    EXPECT_EQ(lines.mid(lines.size() - 3, 2), (QStringList{u"stopped = wait limit"_s, u"exitcode = 0"_s}));
    EXPECT_GT(journalCount(u"3/S/"_s), 1) << "sent again while within the limit";
    EXPECT_FALSE(paidAfterTheItems()) << "the job stopped before its payment";
    EXPECT_TRUE(kerbano.err().contains(u"error: Η ταμειακή έμεινε απασχολημένη"_s));
}

TEST_F(ServiceLifeEndToEnd, AWaitLimitThatIsNoNumberOfSecondsEndsAtOnce)
{
    for (const QString& value : {u"-1"_s, u"5s"_s}) {
        KerbanoProcess kerbano(dir.path(), {u"--wait-limit"_s, value, u"com1,9600,p.txt,0,TECFP,1110111"_s});
        ASSERT_TRUE(kerbano.waitEnd());
        EXPECT_EQ(kerbano.exitCode(), 1);
        EXPECT_TRUE(kerbano.err().contains(u"Λάθος τιμή του --wait-limit : "_s + value))
            << kerbano.said().toStdString();
    }
}

TEST_F(ServiceLifeEndToEnd, SigintMidJobStopsAtALineBoundaryWithEveryExchangeWhole)
{
    startRegister("/^3\\/S/ : delay 150\n");
    ASSERT_TRUE(writeBytes(path(u"print.txt"_s), itemsPrintFile(60)));
    KerbanoProcess kerbano(dir.path(), {u"--log"_s, commandLine()});
    ASSERT_TRUE(kerbano.started());
    ASSERT_TRUE(kerbano.waitFor(u"Εκτύπωση Ενεργή"_s));
    QThread::msleep(1000);
    ASSERT_TRUE(kerbano.endsCleanlyOn(SIGINT)) << kerbano.said().toStdString();

    const int items = journalCount(u"3/S/"_s);
    EXPECT_GT(items, 0);
    EXPECT_LT(items, 60);
    EXPECT_FALSE(paidAfterTheItems());
    const QStringList lines = resultLines();
    ASSERT_GE(lines.size(), 3);
    EXPECT_EQ(lines.mid(lines.size() - 3, 2), (QStringList{u"stopped = signal"_s, u"exitcode = 0"_s}));

    // --log: the exchanges in kerbanoLog.txt, each send with its reply.
    const QString log = codepage::fromWin1253(readBytes(path(u"kerbanoLog.txt"_s)));
    ASSERT_FALSE(log.isEmpty()) << "no communication log";
    EXPECT_EQ(log.count(u" send:     3/S/"_s), items);
    EXPECT_EQ(log.count(u" send:     "_s), log.count(u" reply     "_s));
    EXPECT_EQ(log.count(u" send:     "_s), int(sim.journalCommands().size()));
}

TEST_F(ServiceLifeEndToEnd, IdleSurvivesSighupAndEndsOnSigtermASecondInstanceOnThePortEnds)
{
    startRegister("");
    ASSERT_TRUE(QDir(dir.path()).mkpath(u"in"_s));
    ASSERT_TRUE(writeBytes(path(u"param.ini"_s), residentParams()));
    KerbanoProcess kerbano(dir.path(), {});
    ASSERT_TRUE(kerbano.started());
    ASSERT_TRUE(kerbano.waitFor(u"Αναμονη Για Στοιχεια"_s)) << kerbano.said().toStdString();

    {
        KerbanoProcess second(dir.path(), {commandLine()});
        ASSERT_TRUE(second.waitEnd());
        EXPECT_EQ(second.exitCode(), 6); // another kerbano holds the port
        EXPECT_TRUE(second.err().contains(u"χρησιμοποιείται ήδη από άλλο kerbano"_s)) << second.said().toStdString();
    }

    kerbano.signal(SIGHUP);
    EXPECT_FALSE(kerbano.waitEnd(1500)) << "SIGHUP only reads param.ini again";
    ASSERT_TRUE(writeBytes(path(u"in/print.1"_s), itemsPrintFile(1)));
    EXPECT_TRUE(printedWithin(path(u"in/print.1"_s), kerbano)) << "still polling after SIGHUP";

    const int commandsBefore = int(sim.journalCommands().size());
    ASSERT_TRUE(kerbano.endsCleanlyOn(SIGTERM)) << kerbano.said().toStdString();
    EXPECT_LE(int(sim.journalCommands().size()), commandsBefore + 1) << "no new job after the signal";
}

// The first signal waits for the exchange in hand, which a silent register
// makes last: the second ends the process there and then.
TEST_F(ServiceLifeEndToEnd, ASecondSignalEndsAtOnceInTheMiddleOfAnExchange)
{
    startRegister("/^3\\/S/ : silent\n");
    ASSERT_TRUE(writeBytes(path(u"print.txt"_s), itemsPrintFile(1)));
    KerbanoProcess kerbano(dir.path(), {commandLine()});
    ASSERT_TRUE(kerbano.started());
    ASSERT_TRUE(kerbano.waitFor(u"Εκτύπωση Ενεργή"_s));
    QThread::msleep(500);
    kerbano.signal(SIGTERM);
    EXPECT_FALSE(kerbano.waitEnd(1000)) << "the first waits for the register's answer";
    kerbano.signal(SIGINT);
    ASSERT_TRUE(kerbano.waitEnd(2000));
    EXPECT_EQ(kerbano.exitCode(), -1) << "ended by the signal itself";
}

} // namespace
#endif
