#include "Win1253.h"
#include "Win1253Reference.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

TEST(SimCodePage, GreekBytesDecodeAndEncodeAsWindows1253Defines)
{
    for (int i = 0; i < 0xFF - kFirst; ++i) {
        const int byte = kFirst + i;
        const char16_t expected = kWindows1253A0toFE[i];
        if (expected == 0)
            continue;
        const QByteArray one(1, static_cast<char>(byte));
        EXPECT_EQ(win1253::decode(one), QString(QChar(expected))) << "byte 0x" << std::hex << byte;
        EXPECT_EQ(win1253::encode(QString(QChar(expected))), one) << "byte 0x" << std::hex << byte;
    }
}

TEST(SimCodePage, UndefinedBytesAndAsciiComeBackAsTheyWent)
{
    QByteArray all;
    for (int b = 0; b < 256; ++b)
        all.append(static_cast<char>(b));
    EXPECT_EQ(win1253::encode(win1253::decode(all)), all);

    const QString undefined = win1253::decode(QByteArray("\xAA\xD2\xFF\x81"));
    for (const QChar ch : undefined)
        EXPECT_EQ(std::find(std::begin(kWindows1253A0toFE), std::end(kWindows1253A0toFE), ch.unicode()),
                  std::end(kWindows1253A0toFE));
    EXPECT_EQ(win1253::decode("3/S/a b/"), QStringLiteral("3/S/a b/"));
}

TEST(SimCodePage, CharacterWithoutAByteGoesOutAsQuestionMark)
{
    EXPECT_EQ(win1253::encode(QStringLiteral("a\u4E2Db\u0416€")), QByteArray("a?b?\x80"));
}

} // namespace
