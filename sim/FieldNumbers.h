#pragma once

#include <QString>

// Numbers as the register reads them from command fields and writes them in
// replies and on paper: money in cents, quantities in thousandths.
namespace fieldnumbers {

QString money(qint64 cents);      // "-12.50"
QString quantity(qint64 milli);   // "2.000"

// A decimal field times scale, rounded; false for text that is no number.
bool parseScaled(const QString& text, int scale, qint64& out);
bool parseInt(const QString& text, int& out);

// Quantity times price, rounded half away from zero.
qint64 lineAmount(qint64 qtyMilli, qint64 priceCents);

} // namespace fieldnumbers
