// kerbano started where things are not as they should be, against the real
// executables: no param.ini yet, a working directory it cannot write, a
// signal while a card payment runs, and the window's life told to end.
#include "SimWorld.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QThread>
#include <QtEndian>
#include <gtest/gtest.h>

#ifdef Q_OS_UNIX
#include <grp.h>
#include <unistd.h>

namespace {

// payeft.dat: the application's payment 2 is the register's card payment 2 on terminal 1.
QByteArray payEftFile()
{
    QByteArray file(2 * 128, '\0');
    const qint16 fields[] = {2, 2, 1, -1, 0, 0, 0};
    for (int i = 0; i < 7; ++i)
        qToLittleEndian<qint16>(fields[i], file.data() + 128 + 2 * i);
    return file;
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
    ASSERT_TRUE(writeBytes(path(QStringLiteral("payeft.dat")), payEftFile()));
    ASSERT_TRUE(writeBytes(path(QStringLiteral("print.txt")),
                           itemsPrintFile(1, " tot   2       0.50ΚΑΡΤΑ")));
    KerbanoProcess kerbano(dir.path(), {QStringLiteral("%1,9600,print.txt,0,TECFP,1110111").arg(sim.portField())});
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
    KerbanoProcess kerbano(dir.path(), {QStringLiteral("%1,9600,print.txt,0,TECFP,1110111").arg(sim.portField())},
                        {.windowLife = true, .inChild = {}});
    ASSERT_TRUE(kerbano.started());
    ASSERT_TRUE(heardWithin(u"3/S/"_s, 3, kerbano)) << kerbano.said().toStdString();
    ASSERT_TRUE(kerbano.endsCleanlyOn(SIGTERM)) << kerbano.said().toStdString();

    EXPECT_LT(journalCount(QStringLiteral("3/S/")), 60);
    const QStringList lines = resultLines();
    EXPECT_EQ(lines.mid(lines.size() - 3, 2), (QStringList{u"stopped = signal"_s, u"exitcode = 0"_s}));
}

} // namespace
#endif
