#pragma once

#include <QDateTime>
#include <QString>

// Keeps a store file that is no database under a stamped name beside it,
// "<file>.<yyyyMMdd-HHmmss>", with its -wal and -shm companions, so that a new
// store can begin in its place and nothing is deleted. Answers the new name,
// or an empty text when the file could not be renamed (it is then untouched).
QString SetStoreAside(const QString& path, const QDateTime& when);
