#include "config/RegionalNumber.h"

#include "shell/Operator.h"

#include <cmath>
#include <cstdio>
#include <vector>

namespace {

const QString kRegionalFaultTitle = QStringLiteral("Fiscal Device");
const QString kRegionalFaultText = QStringLiteral(
    "Unsupported Decimal/Thousand seperator in Regional Settings\rvalues read are set to  '0'");

// Enough places to write any double's decimal expansion in full, so that
// rounding looks at the value as it is held and not at a pre-rounded text.
constexpr int kExactPlaces = 1100;

QString firstCharOf(const QString& sep, QChar fallback)
{
    return sep.isEmpty() ? QString(fallback) : sep.left(1);
}

} // namespace

clsRegional::clsRegional(const QLocale& locale)
    : locale_(locale)
{
}

QString clsRegional::getOSCurrenrcy_Decimal_Sep() const
{
    return firstCharOf(locale_.decimalPoint(), QLatin1Char('.'));
}

QString clsRegional::getOSCurrenrcy_Thousand_Sep() const
{
    return firstCharOf(locale_.groupSeparator(), QLatin1Char(','));
}

double clsRegional::plainToDouble(const QString& text, bool* ok) const
{
    const QString dec = getOSCurrenrcy_Decimal_Sep();
    const QString group = getOSCurrenrcy_Thousand_Sep();
    bool good = false;
    double value = 0.0;
    if (dec != group) {
        // Thousand marks carry no value; the platform's own placement rules
        // for them are stricter than what the application writes.
        QString plain = text;
        plain.remove(group);
        plain.replace(dec, QStringLiteral("."));
        value = QLocale::c().toDouble(plain, &good);
    }
    if (ok)
        *ok = good;
    return good ? value : 0.0;
}

QString clsRegional::plainText(double value) const
{
    QString text = QString::number(value, 'g', 15);
    text.replace(QLatin1Char('.'), getOSCurrenrcy_Decimal_Sep());
    return text;
}

double clsRegional::getDbl_regional(const QString& text, const QString& decimalSep,
                                    const QString& thousandSep, bool* ok) const
{
    const QString normal = NormaliseNumberText(text.trimmed(), decimalSep, thousandSep);
    return plainToDouble(normal, ok);
}

QString NormaliseNumberText(const QString& text, const QString& decimalSep,
                            const QString& thousandSep)
{
    QString out;
    bool decimalSeen = false;
    for (qsizetype i = text.size() - 1; i >= 0; --i) {
        const QChar ch = text.at(i);
        if (ch.isDigit() && ch.unicode() < 128) {
            out.prepend(ch);
        } else if (ch == QLatin1Char('-')) {
            out.prepend(ch);
        } else if (!decimalSeen) {
            out.prepend(decimalSep);
            decimalSeen = true;
        } else {
            out.prepend(thousandSep);
        }
    }
    out.remove(QChar(0x00A0));
    out.remove(QLatin1Char(' '));
    return out;
}

double ParseRegionalNumber(const QString& text, Operator* op, const QLocale& locale)
{
    QString hashless = text;
    hashless.remove(QLatin1Char('#'));
    if (hashless.isEmpty())
        return 0.0;

    const clsRegional regional(locale);
    bool ok = false;
    const double value = regional.getDbl_regional(hashless, regional.getOSCurrenrcy_Decimal_Sep(),
                                                  regional.getOSCurrenrcy_Thousand_Sep(), &ok);
    if (ok)
        return value;
    if (op)
        op->message(kRegionalFaultTitle, kRegionalFaultText, Operator::Icon::Warning);
    return 0.0;
}

QString FormatDeviceNumber(double value, int decimals, const QLocale& locale)
{
    if (decimals < 1) {
        // The plain text of the double, its regional mark turned into ".".
        const clsRegional regional(locale);
        QString text = regional.plainText(value);
        text.replace(regional.getOSCurrenrcy_Decimal_Sep(), QStringLiteral("."));
        return text;
    }
    if (!std::isfinite(value))
        return QString::number(value);

    // The exact digits of |value|, then rounding by hand at the last kept
    // place: a dropped digit of 5 or more goes away from zero.
    std::vector<char> buffer(kExactPlaces + 400);
    std::snprintf(buffer.data(), buffer.size(), "%.*f", kExactPlaces, std::fabs(value));
    QByteArray digits(buffer.data());
    const qsizetype point = digits.indexOf('.');
    QByteArray whole = digits.left(point);
    QByteArray fraction = digits.mid(point + 1, decimals);
    const bool roundUp = digits.at(point + 1 + decimals) >= '5';

    QByteArray kept = whole + fraction;
    if (roundUp) {
        qsizetype i = kept.size() - 1;
        while (i >= 0 && kept[i] == '9') {
            kept[i] = '0';
            --i;
        }
        if (i >= 0)
            kept[i] = char(kept[i] + 1);
        else
            kept.prepend('1');
    }
    QByteArray out = kept.left(kept.size() - decimals) + '.' + kept.right(decimals);
    if (value < 0)
        out.prepend('-');
    return QString::fromLatin1(out);
}

QString DotToComma(const QString& text)
{
    QString out = text;
    out.replace(QLatin1Char('.'), QLatin1Char(','));
    return out;
}
