#pragma once

#include "pipeline/DocumentFigures.h"

#include <QString>
#include <QStringList>

class DeviceLink;
struct ReceiptState;

// The card transactions of the receipt, read from the register behind the
// last line, as "ccPay<j> = f;f;f;f;f;f;f;f" lines. A refused query reads as
// "////", which gives no line.
QStringList CardPaymentLines(DeviceLink& link, ReceiptState& receipt);

// The same lines from a reply already in hand.
QStringList CardPaymentLinesOfReply(const QString& reply);

// What the job amounted to, for recStatus and receipt: the receipt's amount,
// or the table's when the job worked on a table.
DocumentFigures ReadDocumentFigures(DeviceLink& link, const ReceiptState& receipt);
