#include "shell/CodePage.h"

#include "Win1253Golden.h"

#include <gtest/gtest.h>

namespace {

using golden::kFirst;
using golden::kWindows1253A0toFE;

} // namespace

TEST(CodePage, GreekBytesDecodeAndEncodeAsWindows1253Defines)
{
    for (int i = 0; i < 0xFF - kFirst; ++i) {
        const int byte = kFirst + i;
        const char16_t expected = kWindows1253A0toFE[i];
        if (expected == 0)
            continue; // undefined bytes: see EveryByteSurvivesDecodeAndEncode
        EXPECT_EQ(codepage::fromWin1253(QByteArray(1, static_cast<char>(byte))), QString(QChar(expected)))
            << "byte 0x" << std::hex << byte;
        EXPECT_EQ(codepage::win1253Byte(QChar(expected)), byte) << "byte 0x" << std::hex << byte;
    }
}

TEST(CodePage, GreekTextRoundTripsThroughWindows1253)
{
    const QString text = QStringLiteral("Έναρξη Εκτύπωσης ΐΰ άέήίόύώ €£");
    const QByteArray bytes = codepage::toWin1253(text);
    EXPECT_EQ(bytes.size(), text.size());
    EXPECT_EQ(static_cast<unsigned char>(bytes.at(0)), 0xB8); // Έ
    EXPECT_EQ(codepage::fromWin1253(bytes), text);
}

TEST(CodePage, EveryByteSurvivesDecodeAndEncode)
{
    QByteArray all;
    for (int b = 0; b < 256; ++b)
        all.append(static_cast<char>(b));
    int missing = -1;
    EXPECT_EQ(codepage::toWin1253(codepage::fromWin1253(all), &missing), all);
    EXPECT_EQ(missing, 0);
}

TEST(CodePage, CharacterOutsideTheCodePageBecomesQuestionMarkAndIsCounted)
{
    int missing = 0;
    EXPECT_EQ(codepage::toWin1253(QStringLiteral("a\u4E2Db\u0416"), &missing), QByteArray("a?b?"));
    EXPECT_EQ(missing, 2);
    EXPECT_EQ(codepage::win1253Byte(QChar(0x4E2D)), -1);
}

TEST(CodePage, DosGreekLettersBecomeTheirWindowsLetters)
{
    // ΑΒΓ αβ ω ά Ώ in code page 737
    static const char raw[] = "\x80\x81\x82 \x98\x99 \xE0\xE1\xF0";
    const QByteArray dos(raw, sizeof raw - 1);
    EXPECT_EQ(codepage::fromCp737(dos), QStringLiteral("ΑΒΓ αβ ωάΏ"));
}
