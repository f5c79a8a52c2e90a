#include "reports/ZFileLayout.h"

#include "config/RegionalNumber.h"

#include <QRegularExpression>

namespace {

constexpr int kPosWidth = 3;
constexpr int kZNumberWidth = 4;
constexpr int kRateWidth = 7;
constexpr int kAmountWidth = 14;
constexpr int kCountWidth = 11;
constexpr int kCounterWidth = 11;
constexpr int kOrdinalWidth = 3;
constexpr int kTimeChars = 4;
constexpr int kRateDecimals = 3;
constexpr int kAmountDecimals = 2;
constexpr int kCountDecimals = 3;
constexpr double kPercent = 100.0;

QString right(const QString& text, int width)
{
    return text.rightJustified(width, QLatin1Char(' '));
}

QString ordinal(int number)
{
    return QStringLiteral("%1").arg(number, kOrdinalWidth, 10, QLatin1Char('0'));
}

QString amount(double value, const QLocale& locale)
{
    return right(ZFileNumberText(value, kAmountDecimals, locale), kAmountWidth);
}

QString vatLine(int category, double rate, double gross, const QLocale& locale)
{
    const double net = ZFileNet(gross, rate);
    return QStringLiteral(" VAT ,") + ordinal(category + 1) + QStringLiteral(",   ")
        + QChar(u'A' + category) + u',' + right(ZFileNumberText(rate, kRateDecimals, locale), kRateWidth)
        + u',' + amount(gross, locale) + u',' + amount(net, locale) + u',' + amount(gross - net, locale);
}

QString departmentLine(int number, const ZFigures::Department& d, const QLocale& locale)
{
    return QStringLiteral(" DEP ,") + ordinal(number) + QStringLiteral(", ")
        + d.name.leftJustified(ZFigures::kDepartments, QLatin1Char(' ')) + QStringLiteral(", ")
        + right(ZFileNumberText(d.count, kCountDecimals, locale), kCountWidth) + QStringLiteral(", ")
        + amount(d.amount, locale) + u',' + QString::number(d.vatIndex);
}

} // namespace

QString ZFileName(qint64 zNumber)
{
    return QStringLiteral("Z%1.out").arg(zNumber, kZNumberWidth, 10, QLatin1Char('0'));
}

QString ZFileNumberText(double value, int decimals, const QLocale& locale)
{
    QString text = FormatDeviceNumber(value, decimals, QLocale::c());
    // A negative amount that rounds to nothing, or a negative zero, is zero.
    if (text.startsWith(u'-') && !text.contains(QRegularExpression(QStringLiteral("[1-9]"))))
        text.remove(0, 1);
    const QString mark = locale.decimalPoint().isEmpty() ? QStringLiteral(".") : locale.decimalPoint().left(1);
    text.replace(QLatin1Char('.'), mark);
    return text;
}

double ZFileNet(double gross, double rate)
{
    return gross / (kPercent + rate) * kPercent;
}

QStringList ZFileLines(const ZFigures& f, const QLocale& locale)
{
    QStringList lines;
    lines << QStringLiteral(" POS ,") + right(f.posNumber.trimmed(), kPosWidth) + u',' + f.serial + u','
            + f.closingText;
    lines << QStringLiteral(" REP ,") + right(QString::number(f.zNumber), kZNumberWidth) + u',' + f.date + u','
            + f.time.left(kTimeChars);
    for (int i = 0; i < zfile::kVatCategories; ++i)
        lines << vatLine(i, f.rates[i], f.gross[i], locale);
    for (int n = 1; n <= ZFigures::kDepartments; ++n) {
        if (!f.departments[n].name.left(ZFigures::kDepartments).trimmed().isEmpty())
            lines << departmentLine(n, f.departments[n], locale);
    }
    lines << QStringLiteral(" REC ,") + right(QString::number(f.firstCounter), kCounterWidth) + u','
            + right(QString::number(f.secondCounter), kCounterWidth);
    lines << QStringLiteral(" TOT ,") + amount(f.total, locale);
    lines << QStringLiteral(" VOI ,") + amount(f.voids, locale);
    lines << QStringLiteral(" RET ,") + amount(f.returns, locale);
    lines << QStringLiteral(" COR ,") + amount(f.corrections, locale);
    // No query gives these two.
    lines << QStringLiteral(" ROA ,") + amount(0.0, locale);
    lines << QStringLiteral(" PO  ,") + amount(0.0, locale);
    return lines;
}
