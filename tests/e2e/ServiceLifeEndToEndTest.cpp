// kerbano as a service lives, against the real executables: a wrong start,
// signals at a wait, in the middle of a job, during a card payment and when
// idle, in both lives; the wait limit of the command-line life, the
// communication log and one kerbano per port; no param.ini yet and a working
// directory it cannot write.
#include "SimWorld.h"

#include <QDeadlineTimer>
#include <QRegularExpression>
#include <QThread>

#ifdef Q_OS_UNIX
#include <csignal>
#include <grp.h>
#include <unistd.h>
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

// Lives that end before any register is found: the status, what stderr says
// (nullptr: nothing at all; "": something), and whether stdout stays empty.
TEST_F(ServiceLifeEndToEnd, WrongArgumentsOrNoParamFileEndAtOnceWithTheirStatus)
{
    constexpr int kNotZero = -2;
    const QString line = u"com1,9600,p.txt,0,TECFP,1110111"_s;
    const struct {
        QStringList arguments;
        int exitCode;
        const char* err;
        bool silentOut;
    } cases[] = {
        {{u"com1,9600,p.txt,0,TECFP,111111"_s}, kNotZero, nullptr, true},
        // The resident life waits for param.ini instead (see below).
        {{u"--run"_s, u"Ver"_s}, 1, "param.ini", false},
        {{u"--run"_s, u"nosuch"_s}, 1, "Άγνωστη λειτουργία : nosuch", true},
        {{u"--run"_s, u"Ver"_s, line}, 1, "", false},
        {{u"--run"_s}, 1, "", false},
        {{u"--wait-limit"_s, u"-1"_s, line}, 1, "Λάθος τιμή του --wait-limit : -1", false},
        {{u"--wait-limit"_s, u"5s"_s, line}, 1, "Λάθος τιμή του --wait-limit : 5s", false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.arguments.join(u' ').toStdString());
        const KerbanoRun run = runKerbanoHeadless(dir.path(), c.arguments, kEventMs);
        if (c.exitCode == kNotZero)
            EXPECT_NE(run.exitCode, 0);
        else
            EXPECT_EQ(run.exitCode, c.exitCode);
        if (c.silentOut) {
            EXPECT_TRUE(run.out.isEmpty()) << run.out.toStdString();
        }
        const QString err = QString::fromUtf8(run.err);
        if (c.err)
            EXPECT_TRUE(!err.isEmpty() && err.contains(QString::fromUtf8(c.err))) << err.toStdString();
        else
            EXPECT_TRUE(err.isEmpty()) << err.toStdString();
    }
}

TEST_F(ServiceLifeEndToEnd, AFailedLinkKeepsTheResidentLifeUpForTheOperator)
{
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
    const KerbanoRun run = runKerbanoHeadless(dir.path(), {u"com99,9600,jobs\\print.txt,0,TECFP,1111111"_s}, kEventMs);
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_TRUE(QFile::exists(path(u"jobs/print.txt"_s)));
    EXPECT_FALSE(QFile::exists(path(u"jobs/res.txt"_s)));
    EXPECT_FALSE(QFile::exists(path(u"Result"_s)));
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

// Root writes through any permission: the read-only case runs as nobody.
void becomeNobody()
{
    constexpr gid_t kNobody = 65534;
    if (::geteuid() == 0 && (::setgroups(0, nullptr) != 0 || ::setgid(kNobody) != 0 || ::setuid(kNobody) != 0))
        ::_exit(126);
}

using ServiceStartEndToEnd = SimWorld;

TEST_F(ServiceStartEndToEnd, WithoutParamIniTheServiceSaysSoStaysUpAndStartsOnceItIsWritten)
{
    startRegister();
    KerbanoProcess kerbano(dir.path(), {});
    ASSERT_TRUE(kerbano.started());
    ASSERT_TRUE(kerbano.waitFor(QStringLiteral("error: [Μύνημα Kerbano] Δεν βρέθηκε το αρχείο παραμέτρων param.ini")))
        << kerbano.said().toStdString();
    ASSERT_TRUE(kerbano.waitFor(QStringLiteral("notice: Αναμονή για το αρχείο παραμέτρων ")));
    EXPECT_FALSE(kerbano.waitEnd(1500)) << kerbano.said().toStdString();

    ASSERT_TRUE(QDir(dir.path()).mkpath(QStringLiteral("in")));
    ASSERT_TRUE(writeBytes(path(QStringLiteral("param.ini")), residentParams()));
    ASSERT_TRUE(kerbano.waitFor(QStringLiteral("Αναμονη Για Στοιχεια"))) << kerbano.said().toStdString();
    ASSERT_TRUE(writeBytes(path(QStringLiteral("in/print.1")), itemsPrintFile(1)));
    EXPECT_TRUE(printedWithin(path(QStringLiteral("in/print.1")), kerbano)) << kerbano.said().toStdString();
    EXPECT_TRUE(resultLines().contains(QStringLiteral("exitcode = 0")));

    ASSERT_TRUE(kerbano.endsCleanlyOn(SIGTERM)) << kerbano.said().toStdString();
}

TEST_F(ServiceStartEndToEnd, AReadOnlyWorkingDirectoryIsToldAndEachUnwrittenResultSaidWhileTheLifeGoesOn)
{
    startRegister();
    // The working directory and the program's files are read-only; the print
    // files land in a folder of their own that can be written.
    const QString shop = path(QStringLiteral("shop"));
    ASSERT_TRUE(QDir(shop).mkpath(QStringLiteral("in")));
    ASSERT_TRUE(writeBytes(QDir(shop).filePath(QStringLiteral("param.ini")), residentParams()));
    const auto readOnly = QFile::ReadOwner | QFile::ExeOwner | QFile::ReadGroup | QFile::ExeGroup
        | QFile::ReadOther | QFile::ExeOther;
    const auto everyone = readOnly | QFile::WriteOwner | QFile::WriteGroup | QFile::WriteOther;
    ASSERT_TRUE(QFile::setPermissions(dir.path(), readOnly | QFile::WriteOwner));
    ASSERT_TRUE(QFile::setPermissions(QDir(shop).filePath(QStringLiteral("in")), everyone));
    ASSERT_TRUE(QFile::setPermissions(shop, readOnly));

    KerbanoProcess kerbano(shop, {}, {.windowLife = false, .inChild = becomeNobody});
    ASSERT_TRUE(kerbano.started());
    ASSERT_TRUE(kerbano.waitFor(QStringLiteral("warning: Ο κατάλογος εργασίας ")))
        << kerbano.said().toStdString();
    EXPECT_TRUE(kerbano.said().contains(QStringLiteral(" δεν δέχεται εγγραφή")));
    ASSERT_TRUE(kerbano.waitFor(QStringLiteral("Αναμονη Για Στοιχεια"))) << kerbano.said().toStdString();

    const QString printFile = QDir(shop).filePath(QStringLiteral("in/print.1"));
    ASSERT_TRUE(writeBytes(printFile, itemsPrintFile(1)));
    ASSERT_TRUE(QFile::setPermissions(printFile, everyone));
    EXPECT_TRUE(printedWithin(printFile, kerbano)) << kerbano.said().toStdString();
    EXPECT_TRUE(kerbano.waitFor(QStringLiteral("Δεν ήταν δυνατή η εγγραφή στο αρχείο αποτελεσμάτων : ")))
        << kerbano.said().toStdString();
    EXPECT_FALSE(QFile::exists(QDir(shop).filePath(QStringLiteral("result.txt"))));
    EXPECT_EQ(journalCount(QStringLiteral("3/S/")), 1) << "printed once, whatever its result file";

    ASSERT_TRUE(kerbano.endsCleanlyOn(SIGTERM)) << kerbano.said().toStdString();
    QFile::setPermissions(shop, everyone);
    QFile::setPermissions(dir.path(), everyone);
}

// The terminal takes its time over the card; the signal comes meanwhile.
TEST_F(ServiceStartEndToEnd, ASignalDuringACardPaymentWaitsForItsOutcomeAndAsksForIt)
{
    startRegister("terminal 1 x1: wait 4 approve\n");
    writePayEft({2, 2, 1, -1, 0, 0, 0}); // the application's payment 2 is the card on terminal 1
    ASSERT_TRUE(writeBytes(path(QStringLiteral("print.txt")),
                           itemsPrintFile(1, " tot   2       0.50ΚΑΡΤΑ")));
    KerbanoProcess kerbano(dir.path(), {commandLine()});
    ASSERT_TRUE(kerbano.started());
    const QString card = QStringLiteral("5/2/0.50/ΚΑΡΤΑ///1/1/");
    ASSERT_TRUE(heardWithin(card, 1, kerbano)) << kerbano.said().toStdString();
    ASSERT_EQ(journalCount(card), 1);
    ASSERT_TRUE(kerbano.endsCleanlyOn(SIGTERM)) << kerbano.said().toStdString();

    const QStringList commands = sim.journalCommands();
    EXPECT_EQ(commands.count(card), 1);
    EXPECT_GT(commands.lastIndexOf(QStringLiteral("5/99/0/ ///1/1/")), commands.indexOf(card))
        << "the outcome asked after the card: " << commands.join('|').toStdString();
    const QStringList lines = resultLines();
    EXPECT_TRUE(lines.contains(QStringLiteral("recStatus = 1;0.50"))) << lines.join('|').toStdString();
    EXPECT_TRUE(lines.contains(QStringLiteral("stopped = signal")));
    EXPECT_EQ(lines.filter(QStringLiteral("ccPay0 = ")).size(), 1);
}

// The window's life ends on SIGTERM as the headless one does: the job stops
// at a line, its result file closes with the reason, and the status is 0.
TEST_F(ServiceStartEndToEnd, TheWindowsLifeStopsAJobAtALineOnSigterm)
{
    startRegister("/^3\\/S/ : delay 150\n");
    ASSERT_TRUE(writeBytes(path(QStringLiteral("print.txt")), itemsPrintFile(60)));
    KerbanoProcess kerbano(dir.path(), {commandLine()}, {.windowLife = true, .inChild = {}});
    ASSERT_TRUE(kerbano.started());
    ASSERT_TRUE(heardWithin(u"3/S/"_s, 3, kerbano)) << kerbano.said().toStdString();
    ASSERT_TRUE(kerbano.endsCleanlyOn(SIGTERM)) << kerbano.said().toStdString();

    EXPECT_LT(journalCount(QStringLiteral("3/S/")), 60);
    const QStringList lines = resultLines();
    EXPECT_EQ(lines.mid(lines.size() - 3, 2), (QStringList{u"stopped = signal"_s, u"exitcode = 0"_s}));
}

} // namespace
#endif
