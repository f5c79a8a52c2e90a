#include "FieldNumbers.h"

#include <cmath>

namespace fieldnumbers {
namespace {
// Beyond this a double no longer holds the cents of a field exactly.
constexpr double kLargestField = 1e12;
} // namespace

QString money(qint64 cents)
{
    const qint64 a = std::llabs(cents);
    return QStringLiteral("%1%2.%3")
        .arg(cents < 0 ? QStringLiteral("-") : QString())
        .arg(a / 100)
        .arg(a % 100, 2, 10, QLatin1Char('0'));
}

QString quantity(qint64 milli)
{
    const qint64 a = std::llabs(milli);
    return QStringLiteral("%1%2.%3")
        .arg(milli < 0 ? QStringLiteral("-") : QString())
        .arg(a / 1000)
        .arg(a % 1000, 3, 10, QLatin1Char('0'));
}

bool parseScaled(const QString& text, int scale, qint64& out)
{
    bool ok = false;
    const double v = text.trimmed().toDouble(&ok);
    if (!ok || !std::isfinite(v) || std::fabs(v) > kLargestField)
        return false;
    out = std::llround(v * scale);
    return true;
}

bool parseInt(const QString& text, int& out)
{
    bool ok = false;
    out = text.trimmed().toInt(&ok);
    return ok;
}

qint64 lineAmount(qint64 qtyMilli, qint64 priceCents)
{
    const long double v = static_cast<long double>(qtyMilli) * priceCents / 1000.0L;
    return std::llround(v);
}

} // namespace fieldnumbers
