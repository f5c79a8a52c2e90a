#pragma once

#include "pipeline/DocumentFigures.h"

#include <QString>
#include <QStringList>

class DeviceLink;
struct ReceiptState;

// The card transactions of the receipt, read from the register behind the
// last line, as "ccPay<j> = f;f;f;f;f;f;f;f" lines. A refused query gives no
// line. The query's status and text are left in the receipt state.
QStringList CardPaymentLines(DeviceLink& link, ReceiptState& receipt);

// What the job amounted to, for recStatus and receipt: the receipt's amount,
// or the table's when the job worked on a table.
DocumentFigures ReadDocumentFigures(DeviceLink& link, const ReceiptState& receipt);
