#pragma once

#include <QRegularExpression>
#include <QString>

// Print file lines are fixed-column records, columns counted from 1. A field
// cut out of a line that is too short is empty.
inline QString column(const QString& line, int firstColumn, int length)
{
    return line.mid(firstColumn - 1, length);
}

inline QString fromColumn(const QString& line, int firstColumn)
{
    return line.mid(firstColumn - 1);
}

// A field that holds a number, blanks around it allowed, as the business
// application writes it: digits with an optional sign and decimal mark.
inline bool isNumericField(const QString& text)
{
    static const QRegularExpression number(QStringLiteral("^\\s*[+-]?(\\d+([.,]\\d*)?|[.,]\\d+)\\s*$"));
    return number.match(text).hasMatch();
}

// The index of a line is a 16-bit counter in the print file language.
constexpr int kMaxLines = 32767;
