#pragma once

#include <QLocale>
#include <QString>

class Operator;

// Numbers cross the driver's edge under regional settings it does not control:
// the register always wants "." while the business application writes either
// mark. Every conversion takes the locale whose separators it uses; the
// default is the user's, read afresh on each call.

// clsRegional: the separators of one locale and the plain conversion under it.
class clsRegional {
public:
    explicit clsRegional(const QLocale& locale = QLocale::system());

    QString getOSCurrenrcy_Decimal_Sep() const;
    QString getOSCurrenrcy_Thousand_Sep() const;

    // Trims, normalises and converts; false in ok when the text is no number.
    double getDbl_regional(const QString& text, const QString& decimalSep,
                           const QString& thousandSep, bool* ok) const;

    // The plain conversion of a text already written with this locale's marks.
    double plainToDouble(const QString& text, bool* ok) const;
    // The plain text of a double under this locale ("13", "6,5").
    QString plainText(double value) const;

private:
    QLocale locale_;
};

// Walks the text from its end: the first mark that is not a digit or "-" is
// the decimal mark, every further one a thousand mark; then blanks and
// no-break blanks go.
QString NormaliseNumberText(const QString& text, const QString& decimalSep,
                            const QString& thousandSep);

// Text to double, whichever mark the writer used: the rightmost non-digit is
// decimal. "#" is dropped; nothing left is 0. A text that still is no number
// tells the operator (when one is given) and reads as 0.
double ParseRegionalNumber(const QString& text, Operator* op = nullptr,
                           const QLocale& locale = QLocale::system());

// The text of a number as the register wants it: "." always, no grouping,
// at least one digit before the point, halves away from zero as the double
// holds them. decimals below 1: the shortest general form.
QString FormatDeviceNumber(double value, int decimals, const QLocale& locale = QLocale::system());

// Every "." becomes ",". Used on the VAT rates only.
QString DotToComma(const QString& text);
