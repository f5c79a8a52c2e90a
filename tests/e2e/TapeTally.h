#pragma once

#include <QFile>
#include <QRegularExpression>
#include <QString>
#include <QStringList>

// What the register's paper tape shows of its receipts: how many were begun,
// issued (closed with their fiscal line) and voided, and the totals of those
// issued. A receipt begun and neither issued nor voided is still open.
struct TapeTally {
    int begun = 0;
    int issued = 0;
    int voided = 0;
    QStringList issuedTotals;

    int open() const { return begun - issued - voided; }

    static TapeTally of(const QString& tapePath)
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
};
