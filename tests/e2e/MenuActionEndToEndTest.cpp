// Menu actions by name: kerbano --headless --run NAME on the virtual register.

#include "KerbanoRun.h"
#include "PrintQString.h"
#include "SimProcess.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace {
constexpr int kRunTimeoutMs = 20000;

class MenuActionEndToEnd : public ::testing::Test {
protected:
    QTemporaryDir dir;
    SimProcess sim{dir.path()};

    void SetUp() override
    {
        ASSERT_TRUE(sim.startTcp()) << sim.startError().toStdString();
        QFile param(dir.filePath(QStringLiteral("param.ini")));
        ASSERT_TRUE(param.open(QIODevice::WriteOnly));
        // [AutoStar] is passed over: a run of one action never starts polling.
        param.write(QStringLiteral("[port] %1\r\n[baud] 9600\r\n[file] print\r\n[multi type] true\r\n"
                                   "[AutoStar]=yes\r\n")
                        .arg(sim.portField())
                        .toLatin1());
    }

    KerbanoRun run(const QStringList& arguments)
    {
        return runKerbanoHeadless(dir.path(), arguments, kRunTimeoutMs);
    }
};
} // namespace

TEST_F(MenuActionEndToEnd, VersionInfoFindsTheRegisterAsksItsVersionsAndEnds)
{
    const KerbanoRun ver = run({QStringLiteral("--run"), QStringLiteral("Ver")});
    ASSERT_TRUE(ver.finished);
    EXPECT_EQ(ver.exitCode, 0) << ver.err.toStdString();
    const QString out = QString::fromUtf8(ver.out);
    EXPECT_TRUE(out.contains(QStringLiteral("Φορολογικός Εκτυπωτής ON-Line, Έτοιμος Για Εκτυπωσεις\n")))
        << out.toStdString();
    EXPECT_FALSE(out.contains(QStringLiteral("Αναμονη Για Στοιχεια"))) << out.toStdString();
    const QString err = QString::fromUtf8(ver.err);
    EXPECT_TRUE(err.contains(QStringLiteral("Version POS                : "))) << err.toStdString();
    EXPECT_TRUE(err.contains(QStringLiteral("Version Πρωτοκόλλου : "))) << err.toStdString();
    const QStringList heard = sim.journalCommands();
    ASSERT_FALSE(heard.isEmpty());
    EXPECT_EQ(heard.first(), QStringLiteral("a/"));
    EXPECT_EQ(heard.last(), QStringLiteral("v/"));
    EXPECT_EQ(heard.count(QStringLiteral("v/")), 1);
}

TEST_F(MenuActionEndToEnd, TheFinancialXRunsTheReportAndLeavesTheReadyTextOnTheDisplay)
{
    const KerbanoRun x = run({QStringLiteral("--run"), QStringLiteral("xrep0")});
    ASSERT_TRUE(x.finished);
    EXPECT_EQ(x.exitCode, 0) << x.err.toStdString();
    EXPECT_TRUE(QString::fromUtf8(x.out).contains(QStringLiteral("Το Ισοζυγειο ολοκληρωθηκε\n")));
    const QStringList heard = sim.journalCommands();
    ASSERT_GE(heard.size(), 3);
    EXPECT_EQ(heard.mid(heard.size() - 3),
              (QStringList{"x/1/1/99999/", "7/0/1/            0.00/", "7/0/2/ *** Ετοιμη *** /"}));
}

TEST_F(MenuActionEndToEnd, AnActionNotYetBuiltSaysSoEndsNonZeroAndLeavesTheRegisterAlone)
{
    // The answer is the option's own, never the system's command line.
    const KerbanoRun zfile = run({QStringLiteral("--run"), QStringLiteral("help_text"), QStringLiteral("--answer"),
                                  QStringLiteral("2")});
    ASSERT_TRUE(zfile.finished);
    EXPECT_EQ(zfile.exitCode, 3);
    EXPECT_TRUE(QString::fromUtf8(zfile.err).contains(QStringLiteral("Η λειτουργία Ρυθμίσεις δεν είναι ακόμη διαθέσιμη.")))
        << zfile.err.toStdString();
    EXPECT_TRUE(zfile.out.isEmpty()) << zfile.out.toStdString();
    EXPECT_TRUE(sim.journalCommands().isEmpty());
}
