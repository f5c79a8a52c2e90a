// The worked receipt printed by the real kerbano --headless on the real
// virtual register, over TCP and over a serial line (a pseudo-terminal).

#include "KerbanoRun.h"
#include "PrintQString.h"
#include "SimProcess.h"
#include "shell/CodePage.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace {
constexpr int kJobTimeoutMs = 20000;
const QString kFlags = QStringLiteral("0,TECFP,1110111");
const QString kStampPattern = QStringLiteral("dd/MM/yyyy hh:mm:ss");

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

QByteArray workedPrintFile()
{
    return readBytes(QStringLiteral(KERBANO_SOURCE_DIR "/samples/receipt.txt"));
}

// What the register hears when a link opens: who it is, the probe of the
// table edition (title and opening of table 290, then the zero payment that
// frees the register), the VAT table, and the status probe of the first job.
const QStringList kLinkOpening = {
    QStringLiteral("a/"),
    QStringLiteral("\"/0/290/1/Kerbano V11.12//"),
    QStringLiteral("&/0/290//////////////"),
    QStringLiteral("5/1/0.00////"),
    QStringLiteral("e/"),
    QStringLiteral("?/"),
};

// One command a line of the worked print file, then the closing queries.
const QStringList kWorkedReceipt = {
    // PLU: 18 characters fit the first description's 15, the second stays empty.
    QStringLiteral("3/S/ΚΑΦΕΣ ΦΙΛΤΡΟΥ 2//2.000/3.50/1/24.00/"),
    // mod -10%: a discount (type 0) on the last item (scope 0) as a percentage (kind 0).
    QStringLiteral("4/10.00//ΕΚΠΤΩΣΗ ΠΕΛΑΤΗ/0/0/0/"),
    QStringLiteral("3/S/ΝΕΡΟ 500ML//1.000/0.50/2/13.00/"),
    // dis 0.30: a discount on the subtotal (scope 1) as an amount (kind 1).
    QStringLiteral("4/0.30//ΕΚΠΤΩΣΗ ΜΕΡ.ΣΥΝ/0/1/1/"),
    QStringLiteral("7/1/1/ΠΕΛΑΤΗΣ 1044/"),
    QStringLiteral("5/1/6.50/ΜΕΤΡΗΤΑ//////"),
    // foo: four footer lines of 32, the empty ones as ".".
    QStringLiteral("j/ΣΑΣ ΕΥΧΑΡΙΣΤΟΥΜΕ/./././////"),
    QStringLiteral("5/99/0/ ///1/1/"),
    QStringLiteral("9/"),
    QStringLiteral("i/"),
    QStringLiteral("?/"),
};

QStringList replyFieldsOf(const QStringList& journalLines, const QString& command)
{
    for (const QString& line : journalLines) {
        if (line.section(QStringLiteral(" -> "), 0, 0) == command)
            return line.section(QStringLiteral(" -> "), 1).split(QLatin1Char('/'));
    }
    return {};
}

// "receipt = " progressive, daily and order, worked out from the register's
// own answers: daily is field 8 of 9/, the progressive base of the day is
// field 6 minus field 5 of i/, and no table gives order -1.
QString expectedReceiptLine(const QStringList& jobJournal)
{
    const QStringList totals = replyFieldsOf(jobJournal, QStringLiteral("9/"));
    const QStringList counters = replyFieldsOf(jobJournal, QStringLiteral("i/"));
    if (totals.size() < 10 || counters.size() < 7)
        return QStringLiteral("(no 9/ or i/ answer in the journal)");
    const int daily = totals[8].toInt();
    const int progressive = counters[6].toInt() - counters[5].toInt() + daily;
    return QStringLiteral("receipt = %1, %2, -1").arg(progressive).arg(daily);
}

QDateTime stampAfter(const QString& line, const QString& prefix)
{
    if (!line.startsWith(prefix))
        return {};
    return QDateTime::fromString(line.mid(prefix.size()), kStampPattern);
}

void expectResultFileOfWorkedJob(const QString& path, const QStringList& jobJournal,
                                 const QDateTime& before, const QDateTime& after)
{
    const QByteArray bytes = readBytes(path);
    ASSERT_FALSE(bytes.isEmpty()) << "no result file " << path.toStdString();
    const QStringList lines = codepage::fromWin1253(bytes).split(QStringLiteral("\r\n"));
    ASSERT_EQ(lines.size(), 7) << codepage::fromWin1253(bytes).toStdString();

    EXPECT_EQ(lines[0], QStringLiteral("tag = 00417"));
    const QDateTime start = stampAfter(lines[1], QStringLiteral("DateTime start = "));
    const QDateTime end = stampAfter(lines[2], QStringLiteral("DateTime end = "));
    ASSERT_TRUE(start.isValid()) << lines[1].toStdString();
    ASSERT_TRUE(end.isValid()) << lines[2].toStdString();
    // The stamps are whole seconds of the local clock, inside the run.
    EXPECT_LE(before.addSecs(-1), start);
    EXPECT_LE(start, end);
    EXPECT_LE(end, after.addSecs(1));
    EXPECT_EQ(lines[3], QStringLiteral("recStatus = 1;6.50"));
    EXPECT_EQ(lines[4], expectedReceiptLine(jobJournal));
    EXPECT_EQ(lines[5], QStringLiteral("exitcode = 0"));
    EXPECT_EQ(lines[6], QString()) << "the last line ends in CR LF";
}

// The paper shows the register's arithmetic: 2 x 3.50, 10 % of it off, the
// water, 0.30 off the subtotal, the comment, a total and cash of 6.50.
void expectTapeShowsWorkedReceipt(const QString& tapePath)
{
    const QStringList tape = QString::fromUtf8(readBytes(tapePath)).split(QLatin1Char('\n'));
    const QStringList expected = {
        QStringLiteral("^ΚΑΦΕΣ ΦΙΛΤΡΟΥ 2 +7\\.00 "),
        QStringLiteral("^ΕΚΠΤΩΣΗ ΠΕΛΑΤΗ +-0\\.70 "),
        QStringLiteral("^ΝΕΡΟ 500ML +0\\.50 "),
        QStringLiteral("^ΕΚΠΤΩΣΗ ΜΕΡ\\.ΣΥΝ +-0\\.30$"),
        QStringLiteral("^ΠΕΛΑΤΗΣ 1044$"),
        QStringLiteral("^ΣΥΝΟΛΟ +6\\.50$"),
        QStringLiteral("^ΜΕΤΡΗΤΑ +6\\.50$"),
    };
    qsizetype at = 0;
    for (const QString& pattern : expected) {
        const QRegularExpression re(pattern);
        while (at < tape.size() && !re.match(tape[at]).hasMatch())
            ++at;
        ASSERT_LT(at, tape.size()) << "tape lacks, in order: " << pattern.toStdString() << "\n"
                                   << tape.join(QLatin1Char('\n')).toStdString();
        ++at;
    }
}

class WorkedReceiptEndToEnd : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(dir.isValid()); }

    QString path(const QString& name) const { return QDir(dir.path()).filePath(name); }

    // Runs one print file through kerbano on the register and returns the
    // journal index at which the job's exchanges begin.
    int printThrough(SimProcess& sim, const QByteArray& printFile)
    {
        const int journalFrom = int(sim.journalLines().size());
        EXPECT_TRUE(writeBytes(path(QStringLiteral("print.txt")), printFile));
        const KerbanoRun run = runKerbanoHeadless(
            dir.path(), QStringLiteral("%1,9600,print.txt,%2").arg(sim.portField(), kFlags), kJobTimeoutMs);
        EXPECT_TRUE(run.finished) << "kerbano did not end";
        EXPECT_EQ(run.exitCode, 0) << run.err.toStdString();
        EXPECT_FALSE(QFile::exists(path(QStringLiteral("print.txt")))) << "the print file stays";
        return journalFrom;
    }

    void printAndCheckWorkedReceipt(SimProcess& sim)
    {
        const QDateTime before = QDateTime::currentDateTime();
        const int from = printThrough(sim, workedPrintFile());
        const QDateTime after = QDateTime::currentDateTime();

        // Every command-line life opens the link anew, so the opening comes first.
        const QStringList commands = sim.journalCommands(from);
        ASSERT_GE(commands.size(), kLinkOpening.size());
        EXPECT_EQ(commands.mid(0, kLinkOpening.size()), kLinkOpening);
        EXPECT_EQ(commands.mid(kLinkOpening.size()), kWorkedReceipt);

        const QStringList jobJournal = sim.journalLines().mid(from);
        expectResultFileOfWorkedJob(path(QStringLiteral("result.txt")), jobJournal, before, after);
        expectTapeShowsWorkedReceipt(sim.tapePath());
    }

    QTemporaryDir dir;
};
} // namespace

TEST_F(WorkedReceiptEndToEnd, OverTcpAfterAnEarlierDayTheReceiptCarriesTheProgressiveNumber)
{
    SimProcess sim(dir.path());
    ASSERT_TRUE(sim.startTcp()) << sim.startError().toStdString();

    // An earlier receipt and a Z make the day's progressive base differ from
    // the daily number, so the receipt line can't pass with the two mixed up.
    QByteArray earlier = workedPrintFile();
    earlier.replace("resFile:  result.txt", "resFile:  earlier.txt");
    earlier.append(" SND  x/7///\r\n");
    printThrough(sim, earlier);
    const QByteArray earlierResult = readBytes(path(QStringLiteral("earlier.txt")));
    ASSERT_TRUE(earlierResult.contains("sndReply = 0;")) << earlierResult.toStdString();
    ASSERT_TRUE(earlierResult.endsWith("exitcode = 0\r\n"));

    printAndCheckWorkedReceipt(sim);
    EXPECT_EQ(readBytes(path(QStringLiteral("result.txt"))).count("receipt = 2, 1, -1"), 1)
        << "one receipt and one Z before it";
}

TEST_F(WorkedReceiptEndToEnd, OverASerialLineAt9600TheSameCommandsAndResult)
{
#ifndef Q_OS_UNIX
    GTEST_SKIP() << "the virtual register has no serial wire here";
#endif
    SimProcess sim(dir.path());
    ASSERT_TRUE(sim.startPty(9600)) << sim.startError().toStdString();
    printAndCheckWorkedReceipt(sim);
}
