#pragma once

#include "payments/PayEftRecord.h"

#include <QString>

class Operator;

// payeft.dat: record n in the 128-byte slot at (n - 1) * 128, its 14 bytes at
// the slot's start. A slot never written reads as zeros, so an unmapped
// payment is an ordinary one. Every call opens and closes the file.
inline constexpr qint64 kPayEftSlotSize = 128;

// What a card record may name: the register's payments 1 to 10 and terminals
// 1 to 12, or 0 where the window's list had no row chosen ("---",
// "Ανενεργό"), which the register refuses. More extra attempts than this are
// no setting anyone made.
inline constexpr qint16 kRegisterPayments = 10;
inline constexpr qint16 kRegisterTerminals = 12;
inline constexpr qint16 kMaxCardRetries = 20;

// Fills the record from the slot of its preset payId; 0 good, -1 on any file fault.
int ReadPayEftRecord(const QString& path, PayEftRecord& record);
// Writes the record into the slot payId; 0 good, -1 on any file fault.
int WritePayEftRecord(const QString& path, const PayEftRecord& record);

// True when an active record of payment can be taken at its word: its own
// number, flags of -1 or 0, and numbers the register can have.
bool CardRecordInRange(const PayEftRecord& record, int payment);

// The record of a payment number. A map that cannot be read, and an active
// record with a field out of range (a damaged or foreign file), are told to
// the operator once, and the payment then counts as not active: it goes out
// as an ordinary payment, never as a card payment by accident.
PayEftRecord PaymentMapLookup(int payment, const QString& path, Operator& op);
