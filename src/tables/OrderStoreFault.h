#pragma once

#include <QString>

class QSqlError;

// Why a call on the order store did not go as asked. The store itself shows
// nothing; the table flows turn this into what the operator reads.
enum class OrderStoreFault {
    None,
    NoStore,      // no file, or a file without the store's tables
    CannotCreate, // the file could not be made (directory missing or read-only)
    Locked,       // another program holds the file
    ReadOnly,     // the file or its directory refuses writing
    SetAside,     // the file was no database: kept under another name
    Unreadable,   // the file is no database and could not be kept aside
    Failed,       // any other failure of the database
};

// The kind of failure an SQLite error stands for.
OrderStoreFault ClassifyStoreError(const QSqlError& error);

// The Greek text for the operator. path is the store file; detail is the
// database's own text, or for SetAside the name the file was kept under.
QString OrderStoreFaultText(OrderStoreFault fault, const QString& path, const QString& detail);
