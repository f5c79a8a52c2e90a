#pragma once

#include "RegisterMemory.h"

#include <QString>

// The register's memory on disk. A save writes a temporary file, flushes it to
// the disk and renames it over the old one, so a kill at any moment leaves
// either the old memory or the new, never half of one.
namespace statestore {

QString filePath(const QString& dir);
bool load(const QString& dir, RegisterMemory& memory, QString* error = nullptr);
bool save(const QString& dir, const RegisterMemory& memory, QString* error = nullptr);

// The memory as the file holds it, and a save of such an image.
QByteArray image(const RegisterMemory& memory);
bool saveImage(const QString& dir, const QByteArray& bytes, QString* error = nullptr);

} // namespace statestore
