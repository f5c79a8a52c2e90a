#pragma once

#include <QByteArray>
#include <QString>

// The register's own Windows-1253 table, the code page of both wires. It is
// kept apart from the driver's so that a fault in either shows up in the
// exchanges between them.
namespace win1253 {

// Bytes the code page leaves undefined (0x81, 0x88, 0xAA, 0xD2, 0xFF, ...)
// become U+F000 + byte, so that they go back out as they came in.
QString decode(const QByteArray& bytes);

// A character the code page has no byte for goes out as "?".
QByteArray encode(const QString& text);

} // namespace win1253
