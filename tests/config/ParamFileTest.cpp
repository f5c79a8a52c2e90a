#include "config/ParamFileReader.h"
#include "config/ParamFileWriter.h"
#include "shell/CodePage.h"

#include "DataFile.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace {
const QDate kToday(2026, 3, 7);

ParamFormValues everyBoxOn()
{
    ParamFormValues f;
    f.comtxt = QStringLiteral("COM3");
    f.baudtxt = QStringLiteral("19200");
    f.filetxt = QStringLiteral("print");
    f.location = QStringLiteral("\\shop\\");
    f.multi_print = f.descreption = f.print_code_ascii = f.comments = true;
    f.keyb_locked = f.dirdep = f.quantity = f.ChkAuto = f.chkspRet = f.chkDOSf = true;
    f.currency = 2;
    f.txtemail = QStringLiteral("z@shop.gr");
    f.chkAutomailsend = true;
    return f;
}

QStringList linesOf(const QByteArray& bytes)
{
    QStringList lines = codepage::fromWin1253(bytes).split(QStringLiteral("\r\n"));
    EXPECT_EQ(lines.takeLast(), QString()); // the last line ends in CR LF too
    return lines;
}
} // namespace

ParamFormValues everyBoxOff()
{
    ParamFormValues f;
    f.typetxt = QStringLiteral("Other"); // no [ecrt] line
    f.currency = -1;                     // no [currency] line
    f.comtxt = WithDefaultTcpPort(QStringLiteral("192.168.1.50"), true);
    return f;
}

TEST(ParamFileWriter, WritesItsLinesInTheirOrderWithEveryBoxOnOrOff)
{
    EXPECT_EQ(linesOf(writeParamText(everyBoxOn(), kToday)), DataFileLines("param-every-box-on.ini"));
    EXPECT_EQ(linesOf(writeParamText(everyBoxOff(), kToday)), DataFileLines("param-every-box-off.ini"));
    EXPECT_EQ(WithDefaultTcpPort(QStringLiteral("10.0.0.2:9200"), true), QStringLiteral("10.0.0.2:9200"));
    EXPECT_EQ(WithDefaultTcpPort(QStringLiteral("com1"), false), QStringLiteral("com1"));
}

TEST(ParamFileReader, AWrittenFileReadsBackToTheSameSettings)
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("param.ini"));
    for (const ParamFormValues& form : {everyBoxOn(), ParamFormValues()}) {
        ASSERT_TRUE(writeParamFile(path, form, kToday));
        ParamSettings read;
        ASSERT_TRUE(readParamFile(path, ParamReader::Start, read));
        const ParamFormValues again = ParamFormValues::fromSettings(
            read, ParamSettings::flagValue(read.spRet), ParamSettings::flagValue(read.cpDOS), read.eMail,
            ParamSettings::wholeNumberValue(read.ZeMail));
        EXPECT_EQ(writeParamText(again, kToday), writeParamText(form, kToday));
    }
    ParamSettings read;
    ASSERT_TRUE(readParamFile(path, ParamReader::Start, read));
    EXPECT_EQ((QStringList{read.job.multiType, read.job.printCode, read.job.location, read.job.time, read.job.code}),
              (QStringList{"fals", "falseN", "\\kerbano\\", "0", "no"}));
}

TEST(ParamFileReader, HandEditedFileReadsAsTheColumnsSay)
{
    QStringList lines = golden(QStringLiteral("config/param-hand-edited.txt"), QStringLiteral("param.ini"));
    const QString text = lines.takeFirst() + u'\n' + lines.join(QStringLiteral("\r\n")) + QStringLiteral("\r\n");
    const ParamSettings start = readParamText(text, ParamReader::Start);
    EXPECT_EQ((QStringList{start.port, start.baud, start.job.file, start.job.multiType, start.job.comments,
                           start.job.currency, start.job.time}),
              (QStringList{" com2", "9600 f", "123456789012345678901234567890", "TRUE", "", "0", ""}));
    EXPECT_TRUE(start.autoStart);
    EXPECT_TRUE(ParamSettings::flagValue(start.spRet));
    EXPECT_EQ(ParamSettings::wholeNumberValue(start.ZeMail), 1);
    EXPECT_EQ(start.eMail, QStringLiteral("a@b.gr"));

    const ParamSettings tick = readParamText(text, ParamReader::Tick);
    EXPECT_EQ(tick.job, start.job);
    EXPECT_FALSE(tick.autoStart);
    EXPECT_TRUE(tick.spRet.isEmpty() && tick.eMail.isEmpty() && tick.ZeMail.isEmpty());
}

TEST(ParamFileReader, MissingFileLeavesEverythingEmpty)
{
    ParamSettings s;
    s.port = QStringLiteral("old");
    EXPECT_FALSE(readParamFile(QStringLiteral("/no/such/param.ini"), ParamReader::Start, s));
    EXPECT_EQ(s, ParamSettings());
    EXPECT_EQ(readParamText(QString::fromLatin1("\x01\x02garbage\x7f", 11), ParamReader::Start), ParamSettings());
}
