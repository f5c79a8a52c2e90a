// The day's reports on the virtual register: receipts printed by the real
// kerbano, then kerbano --headless --run zrep021, whose Z is followed by the
// Z file when param.ini asks for it.

#include "KerbanoRun.h"
#include "PrintQString.h"
#include "SimProcess.h"
#include "shell/CodePage.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace {
constexpr int kRunTimeoutMs = 30000;
constexpr int kReceipts = 3;
constexpr int kZFileQueries = 26;

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

// The amount at the end of a Z file line, in cents.
qint64 cents(const QString& field)
{
    return qRound64(field.trimmed().toDouble() * 100.0);
}

class ReportsEndToEnd : public ::testing::Test {
protected:
    QTemporaryDir dir;
    SimProcess sim{dir.path()};

    void SetUp() override { ASSERT_TRUE(sim.startTcp()) << sim.startError().toStdString(); }

    void writeParams(const QString& zeMail)
    {
        ASSERT_TRUE(writeBytes(dir.filePath("param.ini"),
                               QStringLiteral("[port] %1\r\n[baud] 9600\r\n[file] print\r\n[multi type] true\r\n"
                                              "[ZeMail  ]=%2\r\n")
                                   .arg(sim.portField(), zeMail)
                                   .toLatin1()));
    }

    void printReceipts()
    {
        const QByteArray receipt = readBytes(QStringLiteral(KERBANO_SOURCE_DIR "/samples/receipt.txt"));
        ASSERT_FALSE(receipt.isEmpty());
        for (int i = 0; i < kReceipts; ++i) {
            ASSERT_TRUE(writeBytes(dir.filePath("print.txt"), receipt));
            const KerbanoRun job = runKerbanoHeadless(
                dir.path(), QStringLiteral("%1,9600,print.txt,0,TECFP,1110111").arg(sim.portField()), kRunTimeoutMs);
            ASSERT_TRUE(job.finished);
            ASSERT_EQ(job.exitCode, 0) << job.err.toStdString();
        }
    }
};

} // namespace

TEST_F(ReportsEndToEnd, TheZOfADayOfThreeReceiptsLeavesAZFileWithTheDaysFigures)
{
    printReceipts();
    writeParams(QStringLiteral("1"));
    const int before = sim.journalCommands().size();

    const KerbanoRun z = runKerbanoHeadless(dir.path(), QStringList{QStringLiteral("--run"), QStringLiteral("zrep021")}, kRunTimeoutMs);
    ASSERT_TRUE(z.finished);
    EXPECT_EQ(z.exitCode, 0) << z.err.toStdString();
    const QString out = QString::fromUtf8(z.out);
    EXPECT_TRUE(out.contains(QStringLiteral("Το Ισοζύγιο ολοκληρώθηκε\n"))) << out.toStdString();
    EXPECT_TRUE(out.contains(QStringLiteral("Επιτυχής δημιουργία του αρχείου 'Ζ'\n"))) << out.toStdString();

    // One Z, then the Z file's queries; the Z is never sent twice.
    const QStringList heard = sim.journalCommands(before);
    EXPECT_EQ(heard.count(QStringLiteral("x/7///")), 1);
    ASSERT_GE(heard.size(), kZFileQueries);
    EXPECT_EQ(heard.mid(heard.size() - kZFileQueries, 4), (QStringList{"e/", "0/", "i/", "t/"}));
    EXPECT_EQ(heard.last(), QStringLiteral("s/"));

    const QByteArray bytes = readBytes(dir.filePath("Zfiles/Z0001.out"));
    ASSERT_FALSE(bytes.isEmpty());
    ASSERT_TRUE(bytes.endsWith("\r\n"));
    const QStringList lines = codepage::fromWin1253(bytes.chopped(2)).split(QStringLiteral("\r\n"));
    ASSERT_GE(lines.size(), 14);
    EXPECT_TRUE(lines[0].startsWith(QStringLiteral(" POS ,  1,"))) << lines[0].toStdString();
    EXPECT_TRUE(lines[1].startsWith(QStringLiteral(" REP ,   1,"))) << lines[1].toStdString();

    // The figures agree with each other: categories and departments add up to the total.
    qint64 byCategory = 0;
    qint64 byDepartment = 0;
    qint64 total = -1;
    QString receipts;
    for (const QString& line : lines) {
        const QStringList f = line.split(u',');
        if (line.startsWith(QStringLiteral(" VAT ,")))
            byCategory += cents(f[4]);
        else if (line.startsWith(QStringLiteral(" DEP ,")))
            byDepartment += cents(f[4]);
        else if (line.startsWith(QStringLiteral(" TOT ,")))
            total = cents(f[1]);
        else if (line.startsWith(QStringLiteral(" REC ,")))
            receipts = f[1].trimmed();
    }
    EXPECT_GT(total, 0);
    EXPECT_EQ(total % kReceipts, 0);
    EXPECT_EQ(byCategory, total);
    EXPECT_EQ(byDepartment, total);
    EXPECT_EQ(receipts, QString::number(kReceipts));
    EXPECT_EQ(lines.last(), QStringLiteral(" PO  ,          0.00"));
}

TEST_F(ReportsEndToEnd, WithZeMailAtZeroTheZLeavesNoZFile)
{
    writeParams(QStringLiteral("0"));
    const KerbanoRun z = runKerbanoHeadless(dir.path(), QStringList{QStringLiteral("--run"), QStringLiteral("zrep021")}, kRunTimeoutMs);
    ASSERT_TRUE(z.finished);
    EXPECT_EQ(z.exitCode, 0) << z.err.toStdString();
    EXPECT_EQ(sim.journalCommands().count(QStringLiteral("x/7///")), 1);
    EXPECT_FALSE(QDir(dir.filePath("Zfiles")).exists());
}

TEST_F(ReportsEndToEnd, TheTaxServerSetupProgramsTheRegisterFromTheAnswersGiven)
{
    writeParams(QStringLiteral("0"));
    const QString key(64, QLatin1Char('A'));
    const KerbanoRun setup = runKerbanoHeadless(dir.path(), QStringList{QStringLiteral("--run"), QStringLiteral("basic_programming"),
                                  QStringLiteral("--answer"), key, QStringLiteral("--answer"), QStringLiteral("1"),
                                  QStringLiteral("--answer"), QStringLiteral("http://srv.example/eafdss/myweb/websend.php"),
                                  QStringLiteral("--answer"), QStringLiteral("https://q.example/q1.php")}, kRunTimeoutMs);
    ASSERT_TRUE(setup.finished);
    EXPECT_EQ(setup.exitCode, 0) << setup.err.toStdString();
    EXPECT_TRUE(sim.journalCommands().contains(QStringLiteral("]/1/0//http:~~srv.example~eafdss~myweb~websend.php/80/")
                                               + key + QStringLiteral("/https:~~q.example~q1.php/")))
        << sim.journalCommands().join(u'\n').toStdString();
}
