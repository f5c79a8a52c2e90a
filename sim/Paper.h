#pragma once

#include "RegisterMemory.h"

#include <QDateTime>
#include <QStringList>

// The paper tape's layout: 40 columns, amounts flush right.
namespace paper {

constexpr int kWidth = 40;

// Left text and right text on one line, the left cut when both do not fit.
QString row(const QString& left, const QString& right);
QString centred(const QString& text);
QString rule(QChar c); // a full line of one sign
QString stamp(const QDateTime& when); // "dd/MM/yyyy hh:mm"

// VAT categories print as Greek capitals from Α.
QChar vatLetter(int index);

// The lines of one sale, return, cancellation, discount or surcharge.
QStringList saleLine(const SaleLine& line);

} // namespace paper
