#pragma once

#include <QString>
#include <QtGlobal>

// The conversions every text of a print file passes through on its way to the
// register.

// ά Ά έ Έ ή Ή ί Ί ό Ό ύ Ύ ώ Ώ to their plain letters; ϊ ϋ ΐ ΰ stay as they are.
QString StripGreekAccents(const QString& text);

// StripGreekAccents, then "/" becomes "-": a "/" would close a field of a command.
QString CleanDeviceText(const QString& text);

// The text as a number, cut to a 16-bit whole number; -1 when it is none.
qint16 TableNumberOfText(const QString& text);

// Print files written by DOS programs carry code page 737. The conversion runs
// when [cpDOS   ] is on or the text begins with "d"/"D" (a DOS-marked line),
// works through a buffer of 255 characters and removes NULs.
QString DecodeFileText(const QString& text, bool cpDOS);
