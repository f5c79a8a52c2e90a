#pragma once

#include "protocol/ZFileQueries.h"

#include <QLocale>
#include <QString>
#include <QStringList>
#include <array>

// The day's figures of one Z, as the Z file is written from them.
struct ZFigures {
    static constexpr int kDepartments = 20;

    struct Department {
        QString name; // at most 20 characters; a blank one gets no line
        qint32 count = 0;
        double amount = 0.0;
        qint32 vatIndex = 0;
    };

    QString posNumber;
    QString serial;
    QString closingText; // the last field of the first line
    qint64 zNumber = 0;
    QString date;
    QString time;
    zfile::CategoryValues rates{};
    zfile::CategoryValues gross{};
    std::array<Department, kDepartments + 1> departments{}; // 1 to 20; 0 unused
    qint64 firstCounter = 0;
    qint64 secondCounter = 0;
    double total = 0.0;
    double voids = 0.0;
    double returns = 0.0;
    double corrections = 0.0;
};

// Z<number as 0000>.out; a number above 9999 is written whole.
QString ZFileName(qint64 zNumber);

// A number as the Z file writes it: halves away from zero, the decimal mark
// of the regional settings, no grouping, and never a "-" before a zero.
QString ZFileNumberText(double value, int decimals, const QLocale& locale);

// The net of a category's gross at its rate; the VAT is gross less net.
double ZFileNet(double gross, double rate);

// The lines of the file, without line ends. A value wider than its column is
// written whole.
QStringList ZFileLines(const ZFigures& figures, const QLocale& locale = QLocale::system());
