#include "shell/CodePage.h"

#include <array>

namespace codepage {
namespace {

constexpr char16_t kUndefined = 0;

// 0x80..0xFF of Windows-1253; 0 where the code page defines nothing.
constexpr std::array<char16_t, 128> kWin1253High = {
    0x20AC, kUndefined, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, // 80
    kUndefined, 0x2030, kUndefined, 0x2039, kUndefined, kUndefined, kUndefined, kUndefined, // 88
    kUndefined, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014, // 90
    kUndefined, 0x2122, kUndefined, 0x203A, kUndefined, kUndefined, kUndefined, kUndefined, // 98
    0x00A0, 0x0385, 0x0386, 0x00A3, 0x00A4, 0x00A5, 0x00A6, 0x00A7, // A0
    0x00A8, 0x00A9, kUndefined, 0x00AB, 0x00AC, 0x00AD, 0x00AE, 0x2015, // A8
    0x00B0, 0x00B1, 0x00B2, 0x00B3, 0x0384, 0x00B5, 0x00B6, 0x00B7, // B0
    0x0388, 0x0389, 0x038A, 0x00BB, 0x038C, 0x00BD, 0x038E, 0x038F, // B8
    0x0390, 0x0391, 0x0392, 0x0393, 0x0394, 0x0395, 0x0396, 0x0397, // C0
    0x0398, 0x0399, 0x039A, 0x039B, 0x039C, 0x039D, 0x039E, 0x039F, // C8
    0x03A0, 0x03A1, kUndefined, 0x03A3, 0x03A4, 0x03A5, 0x03A6, 0x03A7, // D0
    0x03A8, 0x03A9, 0x03AA, 0x03AB, 0x03AC, 0x03AD, 0x03AE, 0x03AF, // D8
    0x03B0, 0x03B1, 0x03B2, 0x03B3, 0x03B4, 0x03B5, 0x03B6, 0x03B7, // E0
    0x03B8, 0x03B9, 0x03BA, 0x03BB, 0x03BC, 0x03BD, 0x03BE, 0x03BF, // E8
    0x03C0, 0x03C1, 0x03C2, 0x03C3, 0x03C4, 0x03C5, 0x03C6, 0x03C7, // F0
    0x03C8, 0x03C9, 0x03CA, 0x03CB, 0x03CC, 0x03CD, 0x03CE, kUndefined, // F8
};

constexpr char16_t kEscapeBase = 0xF000;

// 0x80..0xFF of code page 737. The box-drawing block has no Windows-1253
// counterpart and is folded to the nearest plain sign, as the DOS-to-Windows
// conversion of the system does.
constexpr std::array<char16_t, 128> kCp737High = {
    0x0391, 0x0392, 0x0393, 0x0394, 0x0395, 0x0396, 0x0397, 0x0398, // 80
    0x0399, 0x039A, 0x039B, 0x039C, 0x039D, 0x039E, 0x039F, 0x03A0, // 88
    0x03A1, 0x03A3, 0x03A4, 0x03A5, 0x03A6, 0x03A7, 0x03A8, 0x03A9, // 90
    0x03B1, 0x03B2, 0x03B3, 0x03B4, 0x03B5, 0x03B6, 0x03B7, 0x03B8, // 98
    0x03B9, 0x03BA, 0x03BB, 0x03BC, 0x03BD, 0x03BE, 0x03BF, 0x03C0, // A0
    0x03C1, 0x03C3, 0x03C2, 0x03C4, 0x03C5, 0x03C6, 0x03C7, 0x03C8, // A8
    '?', '?', '?', '|', '|', '|', '|', '+', // B0
    '+', '|', '|', '+', '+', '+', '+', '+', // B8
    '+', '+', '+', '+', '-', '+', '|', '|', // C0
    '+', '+', '+', '+', '|', '-', '+', '+', // C8
    '+', '+', '+', '+', '+', '+', '+', '+', // D0
    '+', '+', '+', '?', '?', '?', '?', '?', // D8
    0x03C9, 0x03AC, 0x03AD, 0x03AE, 0x03CA, 0x03AF, 0x03CC, 0x03CD, // E0
    0x03CB, 0x03CE, 0x0386, 0x0388, 0x0389, 0x038A, 0x038C, 0x038E, // E8
    0x038F, 0x00B1, '>', '<', 0x03AA, 0x03AB, '/', '~', // F0
    0x00B0, 0x00B7, 0x00B7, '?', 'n', 0x00B2, '?', 0x00A0, // F8
};

} // namespace

QString fromWin1253(const QByteArray& bytes)
{
    QString out;
    out.reserve(bytes.size());
    for (const char c : bytes) {
        const auto b = static_cast<unsigned char>(c);
        if (b < 0x80) {
            out.append(QChar(b));
            continue;
        }
        const char16_t u = kWin1253High[b - 0x80];
        out.append(QChar(u == kUndefined ? char16_t(kEscapeBase + b) : u));
    }
    return out;
}

int win1253Byte(QChar ch)
{
    const char16_t u = ch.unicode();
    if (u < 0x80)
        return u;
    if (u >= kEscapeBase + 0x80 && u <= kEscapeBase + 0xFF)
        return u - kEscapeBase;
    for (int i = 0; i < 128; ++i) {
        if (kWin1253High[i] == u && u != kUndefined)
            return 0x80 + i;
    }
    return -1;
}

QByteArray toWin1253(const QString& text, int* unmappable)
{
    QByteArray out;
    out.reserve(text.size());
    int missing = 0;
    for (const QChar ch : text) {
        const int b = win1253Byte(ch);
        if (b < 0) {
            ++missing;
            out.append('?');
        } else {
            out.append(static_cast<char>(b));
        }
    }
    if (unmappable)
        *unmappable = missing;
    return out;
}

QString fromCp737(const QByteArray& bytes)
{
    QString out;
    out.reserve(bytes.size());
    for (const char c : bytes) {
        const auto b = static_cast<unsigned char>(c);
        out.append(QChar(b < 0x80 ? char16_t(b) : kCp737High[b - 0x80]));
    }
    return out;
}

} // namespace codepage
