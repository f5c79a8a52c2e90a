#pragma once

#include <QString>

// Where the order store, the Z files and the communication log live:
// KERBANO_HOME when set, else the executable's directory when it is writable,
// else the working directory.
QString ProgramDirectory();

// Paths in param.ini and in print files are written the Windows way; off
// Windows every "\" becomes "/".
QString ConfiguredPath(const QString& path);

// A configured path made absolute against base (the working directory) when
// it is relative.
QString ResolveAgainst(const QString& base, const QString& path);
