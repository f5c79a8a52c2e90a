#pragma once

#include <QString>

// The check digits of a serial frame: the byte sum of the trimmed command in
// Windows-1253, then modulo 100. *invalid is set when a character has no byte
// in the code page; it counts as the "?" that goes on the wire.
int CheckDigits(const QString& text, bool* invalid = nullptr);

// STX, the command as it stands, the two check digits, ETX.
QString FrameCommand(const QString& command, bool* invalid = nullptr);
