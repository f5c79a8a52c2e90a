#include "Win1253Reference.h"
#include "shell/CodePage.h"
#include "shell/FileProcedures.h"
#include "shell/Paths.h"
#include "shell/TextConversions.h"

#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

TEST(CodePage, GreekBytesDecodeAndEncodeAsWindows1253Defines)
{
    for (int i = 0; i < 0xFF - kFirst; ++i) {
        const int byte = kFirst + i;
        const char16_t expected = kWindows1253A0toFE[i];
        if (expected == 0)
            continue; // undefined bytes: the round trip below covers them
        EXPECT_EQ(codepage::fromWin1253(QByteArray(1, static_cast<char>(byte))), QString(QChar(expected)))
            << "byte 0x" << std::hex << byte;
        EXPECT_EQ(codepage::win1253Byte(QChar(expected)), byte) << "byte 0x" << std::hex << byte;
    }
}

TEST(CodePage, EveryByteSurvivesOutsideCharactersAreCountedAndDosGreekIsRead)
{
    QByteArray all;
    for (int b = 0; b < 256; ++b)
        all.append(static_cast<char>(b));
    int missing = -1;
    EXPECT_EQ(codepage::toWin1253(codepage::fromWin1253(all), &missing), all);
    EXPECT_EQ(missing, 0);
    // A character outside the code page becomes a question mark and is counted.
    EXPECT_EQ(codepage::toWin1253(QStringLiteral("a\u4E2Db\u0416"), &missing), QByteArray("a?b?"));
    EXPECT_EQ(missing, 2);
    EXPECT_EQ(codepage::win1253Byte(QChar(0x4E2D)), -1);
    EXPECT_EQ(codepage::win1253Byte(QChar(0x20AC)), 0x80); // the euro sign lies below the table
    // ΑΒΓ αβ ω ά Ώ in code page 737 become their Windows letters
    static const char raw[] = "\x80\x81\x82 \x98\x99 \xE0\xE1\xF0";
    const QByteArray dos(raw, sizeof raw - 1);
    EXPECT_EQ(codepage::fromCp737(dos), QStringLiteral("ΑΒΓ αβ ωάΏ"));
}

TEST(TextConversions, AccentedGreekLettersLoseTheirAccentsOthersStay)
{
    EXPECT_EQ(StripGreekAccents(QStringLiteral("άΆέΈήΉίΊόΌύΎώΏ")), QStringLiteral("αΑεΕηΗιΙοΟυΥωΩ"));
    EXPECT_EQ(StripGreekAccents(QStringLiteral("ϊϋΐ abc")), QStringLiteral("ϊϋΐ abc"));
    EXPECT_EQ(CleanDeviceText(QStringLiteral("Καφές/Τσάι 1/2")), QStringLiteral("Καφες-Τσαι 1-2"));
}

TEST(TextConversions, TableNumberIsCutToAWholeNumberOrMinusOne)
{
    for (const auto& [text, number] : std::initializer_list<std::pair<const char*, int>>{
             {" 12 ", 12}, {"7.9", 7}, {"-3", -3}, {"", -1}, {"1a", -1}, {"40000", -1}})
        EXPECT_EQ(TableNumberOfText(QString::fromLatin1(text)), number) << text;
}

TEST(TextConversions, DosTextIsDecodedWhenSwitchedOnOrMarkedWithD)
{
    // Bytes 0x80 0x81 are "€" and an undefined byte in Windows-1253, "ΑΒ" in DOS Greek.
    const QString asRead = codepage::fromWin1253(QByteArray("\x80\x81 x", 4));
    EXPECT_EQ(DecodeFileText(asRead, false), asRead);
    EXPECT_EQ(DecodeFileText(asRead, true), QStringLiteral("ΑΒ x"));
    const QString marked = codepage::fromWin1253(QByteArray("D\x80\x00z", 4));
    EXPECT_EQ(DecodeFileText(marked, false), QStringLiteral("DΑz"));
    EXPECT_EQ(DecodeFileText(QStringLiteral("d") + QString(300, QLatin1Char('x')), false).size(), 255);
}

TEST(FileProcedures, ResultPathAndTagAreReadBehindTwoSkippedCharacters)
{
    const QString text = QStringLiteral(" PLU x\r\nresFile:  C:\\out\\res.txt\r\ntag:  00417\r\n");
    EXPECT_EQ(mFile::ReadResultPathLine(text), QStringLiteral("C:\\out\\res.txt"));
    EXPECT_EQ(mFile::ReadTagLine(text), QStringLiteral("00417"));
    EXPECT_EQ(mFile::ReadResultPathLine(QStringLiteral("x\r\nresFile:  a")), QStringLiteral("Result"));
    EXPECT_EQ(mFile::ReadTagLine(QStringLiteral("nothing\r\n")), QStringLiteral("Unknown"));
    EXPECT_EQ(mFile::ReadTagLine(QStringLiteral("tag:\r\n")), QString());
}

TEST(FileProcedures, AppendLineWritesWindows1253WithCrLfAndAFileIsReadyOnceClosedAndNotEmpty)
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("Result"));
    EXPECT_TRUE(mFile::AppendLine(path, QStringLiteral("tag = Ένα")));
    EXPECT_TRUE(mFile::AppendLine(path, QStringLiteral("exitcode = 0")));
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), QByteArray("tag = \xB8\xED\xE1\r\nexitcode = 0\r\n"));
    EXPECT_EQ(mFile::ReadWholeFile(path), QStringLiteral("tag = Ένα\r\nexitcode = 0\r\n"));

    EXPECT_FALSE(mFile::AppendLine(dir.filePath(QStringLiteral("no/such/dir/Result")), QStringLiteral("x")));
    EXPECT_EQ(mFile::ReadWholeFile(dir.filePath(QStringLiteral("gone"))), QString());
    mFile::DeleteFile(dir.filePath(QStringLiteral("gone")));

    const QString print = dir.filePath(QStringLiteral("print.1"));
    EXPECT_FALSE(mFile::IsFileReady(print));
    QFile writer(print);
    ASSERT_TRUE(writer.open(QIODevice::WriteOnly));
    EXPECT_FALSE(mFile::IsFileReady(print)); // empty
    writer.write("tag: 1\r\n");
    writer.flush();
    EXPECT_FALSE(mFile::IsFileReady(print)); // still held by its writer
    writer.close();
    EXPECT_TRUE(mFile::IsFileReady(print));
}

TEST(FileProcedures, WithoutLeasesAFileIsFinishedOnceItStoodStillBetweenLooks)
{
    FileLookMemory memory;
    const QDateTime t(QDate(2026, 1, 2), QTime(10, 0));
    EXPECT_FALSE(memory.unchangedSinceLastLook(QStringLiteral("p"), 10, t));
    EXPECT_FALSE(memory.unchangedSinceLastLook(QStringLiteral("p"), 10, t)); // same look
    memory.beginLook();
    EXPECT_TRUE(memory.unchangedSinceLastLook(QStringLiteral("p"), 10, t));
    EXPECT_FALSE(memory.unchangedSinceLastLook(QStringLiteral("p"), 12, t)); // grew
    memory.beginLook();
    EXPECT_TRUE(memory.unchangedSinceLastLook(QStringLiteral("p"), 12, t));
}

TEST(Paths, BackslashesBecomeSlashesAndRelativePathsStartAtTheBase)
{
#ifndef Q_OS_WIN
    EXPECT_EQ(ConfiguredPath(QStringLiteral("\\kerbano\\print")), QStringLiteral("/kerbano/print"));
    EXPECT_EQ(ResolveAgainst(QStringLiteral("/w"), QStringLiteral("out\\res.txt")), QStringLiteral("/w/out/res.txt"));
    EXPECT_EQ(ResolveAgainst(QStringLiteral("/w"), QStringLiteral("\\kerbano\\x")), QStringLiteral("/kerbano/x"));
#endif
    qputenv("KERBANO_HOME", "/somewhere/kerbano");
    EXPECT_EQ(ProgramDirectory(), QStringLiteral("/somewhere/kerbano"));
    qunsetenv("KERBANO_HOME");
    EXPECT_FALSE(ProgramDirectory().isEmpty());
}
