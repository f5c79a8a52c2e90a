#pragma once

#include "payments/PayEftRecord.h"

#include <QString>

class Operator;

// payeft.dat: record n in the 128-byte slot at (n - 1) * 128, its 14 bytes at
// the slot's start. A slot never written reads as zeros, so an unmapped
// payment is an ordinary one. Every call opens and closes the file.
inline constexpr qint64 kPayEftSlotSize = 128;

// Fills the record from the slot of its preset payId; 0 good, -1 on any file fault.
int ReadPayEftRecord(const QString& path, PayEftRecord& record);
// Writes the record into the slot payId; 0 good, -1 on any file fault.
int WritePayEftRecord(const QString& path, const PayEftRecord& record);

// The record of a payment number. A map that cannot be read is told to the
// operator, and the payment then counts as not active.
PayEftRecord PaymentMapLookup(int payment, const QString& path, Operator& op);
