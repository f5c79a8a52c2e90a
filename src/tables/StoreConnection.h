#pragma once

#include <QSqlDatabase>
#include <QList>
#include <QSqlError>
#include <QSqlRecord>
#include <QString>
#include <QVariantList>

class QSqlQuery;

// One opening of the order store file for one call: a connection of its own
// name, closed and removed when the object goes, so nothing is held between
// calls. A write transaction not committed by then is rolled back.
class StoreConnection {
public:
    StoreConnection(const QString& path, int busyWaitMs);
    ~StoreConnection();
    StoreConnection(const StoreConnection&) = delete;
    StoreConnection& operator=(const StoreConnection&) = delete;

    // Opens the file, making it when missing, in WAL mode with full syncs.
    bool open();
    // Whether both tables of the store are in the file.
    bool hasTables(bool& present);
    // Makes whichever of the two tables is missing.
    bool createTables();
    // No statement of this connection may change the file.
    bool makeReadOnly();

    // Takes the write lock at once, so a call never fails halfway for a lock.
    bool beginWrite();
    bool commit();

    // One statement, values bound in order.
    bool exec(const QString& sql, const QVariantList& values = {});
    // Rows changed by the last exec.
    int rowsAffected() const { return rowsAffected_; }
    // The first row of a query; an empty record when there is none.
    bool readFirst(const QString& sql, const QVariantList& values, QSqlRecord& row);
    // Every row of a query.
    bool readAll(const QString& sql, const QVariantList& values, QList<QSqlRecord>& rows);

    QSqlError error() const { return error_; }

private:
    // Prepares, binds and runs one statement on query.
    bool run(QSqlQuery& query, const QString& sql, const QVariantList& values);
    // At most most rows of a query.
    bool readRows(const QString& sql, const QVariantList& values, QList<QSqlRecord>& rows, qsizetype most);

    QString name_;
    QSqlDatabase db_;
    QSqlError error_;
    int rowsAffected_ = 0;
    bool inTransaction_ = false;
};
