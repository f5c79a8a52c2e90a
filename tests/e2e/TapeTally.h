#pragma once

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

    static TapeTally of(const QString& tapePath);
};

// The result file's lines (Windows-1253, CR LF), the empty tail left out.
QStringList resultLines(const QString& path);
