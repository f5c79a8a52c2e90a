// A print file that no application should write still ends its job: the
// driver runs, deletes the file and closes the result file as always.

#include "DataFile.h"
#include "SimWorld.h"

#include <QRegularExpression>

namespace {

using BadPrintFileEndToEnd = SimWorld;
} // namespace

TEST_F(BadPrintFileEndToEnd, ShortLinesLettersInNumbersLongLinesAndNulsEndTheJobAsUsual)
{
    startRegister();
    // Lines too short for any field, letters where the columns want numbers, a
    // line of 10,000 bytes, NULs in a tag, in a description and as a line of
    // their own, and no CR LF behind the last line.
    print(DataBytes(u"e2e/bad-print-file.txt"_s));
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
