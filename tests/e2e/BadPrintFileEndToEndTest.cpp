// A print file that no application should write still ends its job: the
// driver runs, deletes the file and closes the result file as always.

#include "KerbanoRun.h"
#include "SimProcess.h"
#include "shell/CodePage.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace {
constexpr int kJobTimeoutMs = 20000;

QByteArray win1253(const char* utf8)
{
    return codepage::toWin1253(QString::fromUtf8(utf8));
}

QByteArray badPrintFile()
{
    QByteArray file;
    file += "resFile:  bad-result.txt\r\ntag:  BAD\r\n";
    file += "\r\n P\r\n PLU\r\n mo\r\n to\r\n"; // lines too short for any field
    // Letters where the columns want numbers: quantity, price, VAT, department.
    file += " PLU ABCDEFGHIJKLM " + win1253("ΨΩΜΙ                    ") + "    x2y     τρία    ΦΠΑ   ab\r\n";
    file += " mod  -1Ο%  " + win1253("ΛΑΘΟΣ") + "\r\n";
    file += " dis  eight\r\n";
    file += " tot   Z     ΑΒΓΔ" + win1253("ΜΕΤΡΗΤΑ") + "\r\n";
    file += " pay xy\r\n";
    file += " can  12ab56\r\n";
    QByteArray longLine(" PLU ");
    for (int i = 0; longLine.size() < 10000; ++i)
        longLine += char(i % 3 == 0 ? '9' : (i % 3 == 1 ? 'Z' : '\xD8'));
    file += longLine.left(10000) + "\r\n";
    file += " com  " + QByteArray(10000, 'K') + "\r\n";
    // NUL bytes inside a tag, inside a description and as a line of their own.
    file += QByteArray(" PL\0U 1 ", 8) + QByteArray(40, '\0') + "\r\n";
    QByteArray water = win1253(" PLU 5200000000011 ΝΕΡΟ 500ML                        1       0.50   13.00  2\r\n");
    water.replace(win1253("ΡΟ 5"), QByteArray("\0\0\0\0", 4)); // the columns stay where they were
    file += water;
    file += QByteArray(16, '\0') + "\r\n";
    file += " tot   1       0.50" + win1253("ΜΕΤΡΗΤΑ") + "\r\n";
    file += " foo  " + QByteArray("\0\xC1\0", 3); // no CR LF behind the last line
    return file;
}
} // namespace

TEST(BadPrintFileEndToEnd, ShortLinesLettersInNumbersLongLinesAndNulsEndTheJobAsUsual)
{
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    SimProcess sim(dir.path());
    ASSERT_TRUE(sim.startTcp()) << sim.startError().toStdString();

    const QString printPath = QDir(dir.path()).filePath(QStringLiteral("print.txt"));
    {
        QFile print(printPath);
        ASSERT_TRUE(print.open(QIODevice::WriteOnly));
        const QByteArray bytes = badPrintFile();
        ASSERT_EQ(print.write(bytes), bytes.size());
    }
    const KerbanoRun run = runKerbanoHeadless(
        dir.path(), sim.portField() + QStringLiteral(",9600,print.txt,0,TECFP,1110111"), kJobTimeoutMs);

    ASSERT_TRUE(run.finished) << "kerbano did not end";
    EXPECT_EQ(run.exitCode, 0) << run.err.toStdString();
    EXPECT_FALSE(QFile::exists(printPath)) << "the print file stays";

    QFile result(QDir(dir.path()).filePath(QStringLiteral("bad-result.txt")));
    ASSERT_TRUE(result.open(QIODevice::ReadOnly));
    const QByteArray bytes = result.readAll();
    EXPECT_TRUE(bytes.endsWith("exitcode = 0\r\n")) << bytes.toStdString();

    // Between its first two lines and its closing four the result file holds
    // nothing but the refusals of the register.
    QStringList lines = codepage::fromWin1253(bytes).split(QStringLiteral("\r\n"));
    ASSERT_GE(lines.size(), 7);
    EXPECT_EQ(lines.takeFirst(), QStringLiteral("tag = BAD"));
    EXPECT_TRUE(lines.takeFirst().startsWith(QStringLiteral("DateTime start = ")));
    lines.removeLast(); // behind the last CR LF
    const QStringList closing = lines.mid(lines.size() - 4);
    EXPECT_TRUE(closing[0].startsWith(QStringLiteral("DateTime end = "))) << closing[0].toStdString();
    EXPECT_EQ(closing[1], QStringLiteral("recStatus = 1;0.50")) << "the last sale and its payment went through";
    EXPECT_TRUE(closing[2].startsWith(QStringLiteral("receipt = "))) << closing[2].toStdString();
    const QRegularExpression refusal(QStringLiteral(R"(^Err = -?\d+, \[.*\] DateTime = \d\d/\d\d/\d{4} \d\d:\d\d:\d\d$)"));
    for (const QString& line : lines.mid(0, lines.size() - 4))
        EXPECT_TRUE(refusal.match(line).hasMatch()) << line.toStdString();

    // The lines behind the long ones and the NULs were run: the comment cut
    // to its 30 characters, and the payment of the file's last sale.
    const QStringList commands = sim.journalCommands();
    const QString journal = commands.join(QLatin1Char('\n'));
    EXPECT_TRUE(commands.contains(QStringLiteral("7/1/1/%1/").arg(QString(30, QLatin1Char('K'))))) << journal.toStdString();
    EXPECT_TRUE(commands.contains(QStringLiteral("5/1/0.50/ΜΕΤΡΗΤΑ//////"))) << journal.toStdString();
}
