#include "Win1253Reference.h"
#include "shell/CodePage.h"

#include <gtest/gtest.h>

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
    EXPECT_EQ(codepage::win1253Byte(QChar(0x20AC)), 0x80); // the euro sign lies below the table
}

TEST(CodePage, DosGreekLettersBecomeTheirWindowsLetters)
{
    // ΑΒΓ αβ ω ά Ώ in code page 737
    static const char raw[] = "\x80\x81\x82 \x98\x99 \xE0\xE1\xF0";
    const QByteArray dos(raw, sizeof raw - 1);
    EXPECT_EQ(codepage::fromCp737(dos), QStringLiteral("ΑΒΓ αβ ωάΏ"));
}
