#include "shell/CodePage.h"

#include <gtest/gtest.h>

namespace {

// Windows-1253, bytes 0xA0 to 0xFE in order; 0 where the code page
// defines nothing (0xAA, 0xD2). Signs that have look-alikes elsewhere in
// Unicode are written by number.
constexpr char16_t kWindows1253A0toFE[] = {
    u'\u00A0', u'\u0385', u'\u0386', u'£', u'¤', u'¥', u'¦', u'§',
    u'¨', u'©', 0, u'«', u'¬', u'\u00AD', u'®', u'\u2015',
    u'°', u'±', u'²', u'³', u'\u0384', u'\u00B5', u'¶', u'\u00B7', u'Έ', u'Ή', u'Ί', u'»', u'Ό', u'½', u'Ύ', u'Ώ',
    u'ΐ', u'Α', u'Β', u'Γ', u'Δ', u'Ε', u'Ζ', u'Η', u'Θ', u'Ι', u'Κ', u'Λ', u'Μ', u'Ν', u'Ξ', u'Ο',
    u'Π', u'Ρ', 0, u'Σ', u'Τ', u'Υ', u'Φ', u'Χ', u'Ψ', u'Ω', u'Ϊ', u'Ϋ', u'ά', u'έ', u'ή', u'ί',
    u'ΰ', u'α', u'β', u'γ', u'δ', u'ε', u'ζ', u'η', u'θ', u'ι', u'κ', u'λ', u'μ', u'ν', u'ξ', u'ο',
    u'π', u'ρ', u'ς', u'σ', u'τ', u'υ', u'φ', u'χ', u'ψ', u'ω', u'ϊ', u'ϋ', u'ό', u'ύ', u'ώ',
};
constexpr int kFirst = 0xA0;
static_assert(sizeof kWindows1253A0toFE / sizeof kWindows1253A0toFE[0] == 0xFF - kFirst);

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
