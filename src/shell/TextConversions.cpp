#include "shell/TextConversions.h"

#include "shell/CodePage.h"

#include <QLocale>
#include <cmath>

namespace {
// The DOS conversion works through a buffer of this size; the rest is cut.
constexpr int kDecodeBufferLength = 255;

const QString kAccented = QStringLiteral("άΆέΈήΉίΊόΌύΎώΏ");
const QString kPlain = QStringLiteral("αΑεΕηΗιΙοΟυΥωΩ");
} // namespace

QString StripGreekAccents(const QString& text)
{
    QString out = text;
    for (QChar& ch : out) {
        const qsizetype at = kAccented.indexOf(ch);
        if (at >= 0)
            ch = kPlain.at(at);
    }
    return out;
}

QString CleanDeviceText(const QString& text)
{
    QString out = StripGreekAccents(text);
    out.replace(QLatin1Char('/'), QLatin1Char('-'));
    return out;
}

qint16 TableNumberOfText(const QString& text)
{
    bool ok = false;
    const double value = QLocale::c().toDouble(text.trimmed(), &ok);
    if (!ok || !std::isfinite(value))
        return -1;
    const double whole = std::trunc(value);
    if (whole < -32768.0 || whole > 32767.0)
        return -1;
    return static_cast<qint16>(whole);
}

QString DecodeFileText(const QString& text, bool cpDOS)
{
    const bool dosMarked = !text.isEmpty()
        && (text.at(0) == QLatin1Char('d') || text.at(0) == QLatin1Char('D'));
    if (!cpDOS && !dosMarked)
        return text;
    // The text came from the file as Windows-1253; its bytes are the DOS bytes.
    QByteArray bytes = codepage::toWin1253(text.left(kDecodeBufferLength));
    bytes.replace('\0', QByteArray());
    return codepage::fromCp737(bytes);
}
