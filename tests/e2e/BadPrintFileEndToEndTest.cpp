// A print file that no application should write still ends its job: the
// driver runs, deletes the file and closes the result file as always.

#include "SimWorld.h"

#include <QRegularExpression>

namespace {

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

class BadPrintFileEndToEnd : public SimWorld {};
} // namespace

TEST_F(BadPrintFileEndToEnd, ShortLinesLettersInNumbersLongLinesAndNulsEndTheJobAsUsual)
{
    startRegister();
    print(badPrintFile());
    QStringList lines = resultLines(u"bad-result.txt"_s);
    EXPECT_EQ(lines.takeLast(), QString()) << "the last line ends in CR LF";
    EXPECT_EQ(lines.value(lines.size() - 1), u"exitcode = 0"_s) << lines.join(u'|').toStdString();

    // Between its first two lines and its closing four the result file holds
    // nothing but the refusals of the register.
    ASSERT_GE(lines.size(), 6);
    EXPECT_EQ(lines.takeFirst(), u"tag = BAD"_s);
    EXPECT_TRUE(lines.takeFirst().startsWith(u"DateTime start = "_s));
    const QStringList closing = lines.mid(lines.size() - 4);
    EXPECT_TRUE(closing[0].startsWith(u"DateTime end = "_s)) << closing[0].toStdString();
    EXPECT_EQ(closing[1], u"recStatus = 1;0.50"_s) << "the last sale and its payment went through";
    EXPECT_TRUE(closing[2].startsWith(u"receipt = "_s)) << closing[2].toStdString();
    const QRegularExpression refusal(u"^Err = -?\\d+, \\[.*\\] DateTime = \\d\\d/\\d\\d/\\d{4} \\d\\d:\\d\\d:\\d\\d$"_s);
    for (const QString& line : lines.mid(0, lines.size() - 4))
        EXPECT_TRUE(refusal.match(line).hasMatch()) << line.toStdString();

    // The lines behind the long ones and the NULs were run: the comment cut
    // to its 30 characters, and the payment of the file's last sale.
    const QStringList commands = sim.journalCommands();
    EXPECT_TRUE(commands.contains(u"7/1/1/%1/"_s.arg(QString(30, u'K')))) << commands.join(u'\n').toStdString();
    EXPECT_TRUE(commands.contains(u"5/1/0.50/ΜΕΤΡΗΤΑ//////"_s)) << commands.join(u'\n').toStdString();
}
