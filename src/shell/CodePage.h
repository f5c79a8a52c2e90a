#pragma once

#include <QByteArray>
#include <QString>

// Every file and the wire carry Windows-1253, one byte a character, whatever
// the locale of the machine.
namespace codepage {

// Bytes the code page leaves undefined (0x81, 0xAA, 0xD2, 0xFF, ...) decode to
// U+F000 + byte, so that a file read and written again keeps every byte.
QString fromWin1253(const QByteArray& bytes);

// A character the code page cannot carry becomes "?" and is counted in
// *unmappable, so the caller can tell the operator instead of losing it quietly.
QByteArray toWin1253(const QString& text, int* unmappable = nullptr);

// One character; -1 when the code page has no byte for it.
int win1253Byte(QChar ch);

// DOS Greek (code page 737) bytes to text, for print files written by DOS programs.
QString fromCp737(const QByteArray& bytes);

} // namespace codepage
