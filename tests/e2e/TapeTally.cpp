#include "TapeTally.h"

#include "shell/CodePage.h"

#include <QFile>
#include <QRegularExpression>

TapeTally TapeTally::of(const QString& tapePath)
{
    TapeTally tally;
    QFile file(tapePath);
    if (!file.open(QIODevice::ReadOnly))
        return tally;
    const QRegularExpression total(QStringLiteral("^ΣΥΝΟΛΟ ΕΥΡΩ +(\\S+)$"));
    for (const QString& line : QString::fromUtf8(file.readAll()).split(QLatin1Char('\n'))) {
        if (line.contains(QStringLiteral("ΑΠΟΔΕΙΞΗ ΛΙΑΝΙΚΗΣ")))
            ++tally.begun;
        else if (line.contains(QStringLiteral("ΝΟΜΙΜΗ ΑΠΟΔΕΙΞΗ")))
            ++tally.issued;
        else if (line.startsWith(QStringLiteral("ΑΚΥΡΩΣΗ ΑΠΟΔΕΙΞΗΣ")))
            ++tally.voided;
        else if (const QRegularExpressionMatch m = total.match(line); m.hasMatch())
            tally.issuedTotals << m.captured(1);
    }
    return tally;
}

QStringList resultLines(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QStringList lines = codepage::fromWin1253(file.readAll()).split(QStringLiteral("\r\n"));
    while (!lines.isEmpty() && lines.last().isEmpty())
        lines.removeLast();
    return lines;
}
