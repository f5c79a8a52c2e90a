#include "Win1253.h"

#include <QHash>
#include <array>

namespace win1253 {
namespace {

constexpr char16_t kNone = 0;
constexpr char16_t kUndefinedBase = 0xF000;
constexpr char kNoByte = '?';

// Bytes 0x80 to 0xFF.
constexpr std::array<char16_t, 128> kHigh = {
    // 0x80: € . ‚ ƒ „ … † ‡ . ‰ . ‹ . . . .
    0x20AC, kNone, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
    kNone, 0x2030, kNone, 0x2039, kNone, kNone, kNone, kNone,
    // 0x90: . ‘ ’ “ ” • – — . ™ . › . . . .
    kNone, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
    kNone, 0x2122, kNone, 0x203A, kNone, kNone, kNone, kNone,
    // 0xA0: NBSP ΅ Ά £ ¤ ¥ ¦ § ¨ © . « ¬ SHY ® ―
    0x00A0, 0x0385, 0x0386, 0x00A3, 0x00A4, 0x00A5, 0x00A6, 0x00A7,
    0x00A8, 0x00A9, kNone, 0x00AB, 0x00AC, 0x00AD, 0x00AE, 0x2015,
    // 0xB0: ° ± ² ³ ΄ µ ¶ · Έ Ή Ί » Ό ½ Ύ Ώ
    0x00B0, 0x00B1, 0x00B2, 0x00B3, 0x0384, 0x00B5, 0x00B6, 0x00B7,
    0x0388, 0x0389, 0x038A, 0x00BB, 0x038C, 0x00BD, 0x038E, 0x038F,
    // 0xC0: ΐ Α Β Γ Δ Ε Ζ Η Θ Ι Κ Λ Μ Ν Ξ Ο
    0x0390, 0x0391, 0x0392, 0x0393, 0x0394, 0x0395, 0x0396, 0x0397,
    0x0398, 0x0399, 0x039A, 0x039B, 0x039C, 0x039D, 0x039E, 0x039F,
    // 0xD0: Π Ρ . Σ Τ Υ Φ Χ Ψ Ω Ϊ Ϋ ά έ ή ί
    0x03A0, 0x03A1, kNone, 0x03A3, 0x03A4, 0x03A5, 0x03A6, 0x03A7,
    0x03A8, 0x03A9, 0x03AA, 0x03AB, 0x03AC, 0x03AD, 0x03AE, 0x03AF,
    // 0xE0: ΰ α β γ δ ε ζ η θ ι κ λ μ ν ξ ο
    0x03B0, 0x03B1, 0x03B2, 0x03B3, 0x03B4, 0x03B5, 0x03B6, 0x03B7,
    0x03B8, 0x03B9, 0x03BA, 0x03BB, 0x03BC, 0x03BD, 0x03BE, 0x03BF,
    // 0xF0: π ρ ς σ τ υ φ χ ψ ω ϊ ϋ ό ύ ώ .
    0x03C0, 0x03C1, 0x03C2, 0x03C3, 0x03C4, 0x03C5, 0x03C6, 0x03C7,
    0x03C8, 0x03C9, 0x03CA, 0x03CB, 0x03CC, 0x03CD, 0x03CE, kNone,
};

char16_t character(unsigned char byte)
{
    if (byte < 0x80)
        return byte;
    const char16_t c = kHigh[byte - 0x80];
    return c == kNone ? char16_t(kUndefinedBase + byte) : c;
}

const QHash<char16_t, char>& bytesByCharacter()
{
    static const QHash<char16_t, char> table = [] {
        QHash<char16_t, char> h;
        for (int b = 0; b < 256; ++b)
            h.insert(character(static_cast<unsigned char>(b)), static_cast<char>(b));
        return h;
    }();
    return table;
}

} // namespace

QString decode(const QByteArray& bytes)
{
    QString out;
    out.reserve(bytes.size());
    for (const char b : bytes)
        out.append(QChar(character(static_cast<unsigned char>(b))));
    return out;
}

QByteArray encode(const QString& text)
{
    QByteArray out;
    out.reserve(text.size());
    const QHash<char16_t, char>& bytes = bytesByCharacter();
    for (const QChar ch : text)
        out.append(bytes.value(ch.unicode(), kNoByte));
    return out;
}

} // namespace win1253
