#pragma once

#include <QString>
#include <QtGlobal>

// The reply of the register: "CC/S1/S2/" and the data fields. The device code
// and the two status bytes decide the status; the text becomes the message.

// Status of a reply whose opening fields cannot be read: treated as a fault of
// the register, so nothing goes on as if the command had succeeded.
inline constexpr qint16 kStatusUnreadableReply = 255;

// Turns the reply into a status (0 success, else the working code) and leaves
// in reply the text the operator should see. Never fails.
qint16 DecodeReply(QString& reply, bool ignoreOperatorBusy);

// Eight characters "0"/"1", most significant bit first.
QString ByteToBits(quint32 value);

// The register's message for a device code, or a null string when it has none.
QString DeviceCodeText(int code);

// Removes STX, ETX, NACK and ACK wherever they stand.
QString StripControlBytes(const QString& text);
