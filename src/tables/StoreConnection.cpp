#include "tables/StoreConnection.h"

#include <QFile>
#include <QSqlQuery>
#include <QUuid>
#include <limits>

namespace {
const QString kDriver = QStringLiteral("QSQLITE");
const QByteArray kFileHeader("SQLite format 3\0", 16);
const QString kNotADatabaseCode = QStringLiteral("26");

const char* const kCreateOrders =
    "CREATE TABLE IF NOT EXISTS ecrOrders (zNumber integer, tableNUM integer, tableORDER integer, "
    "itemUID integer, itemDesc varchar(24), itemQuantity long, itemPrice long, itemDep integer, "
    "itemVatRate float, eNum integer, bTransfered integer)";
const char* const kCreateCounter = "CREATE TABLE IF NOT EXISTS cntLine_ecrOrders (eNum integer)";
// A file that is not even headed as a database is told before the engine opens
// it: the engine would throw away the -wal beside it, and it may hold rows.
bool headedAsDatabase(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly) || file.size() == 0)
        return true; // missing, empty or not ours to read: the engine decides
    return file.read(kFileHeader.size()) == kFileHeader;
}
} // namespace

StoreConnection::StoreConnection(const QString& path, int busyWaitMs)
    : name_(QStringLiteral("orders-") + QUuid::createUuid().toString(QUuid::WithoutBraces))
{
    db_ = QSqlDatabase::addDatabase(kDriver, name_);
    db_.setDatabaseName(path);
    db_.setConnectOptions(QStringLiteral("QSQLITE_BUSY_TIMEOUT=%1").arg(busyWaitMs));
}

StoreConnection::~StoreConnection()
{
    if (inTransaction_)
        exec(QStringLiteral("ROLLBACK"));
    db_.close();
    db_ = QSqlDatabase();
    QSqlDatabase::removeDatabase(name_);
}

bool StoreConnection::open()
{
    if (!headedAsDatabase(db_.databaseName())) {
        error_ = QSqlError(QStringLiteral("file is not a database"), QString(),
                           QSqlError::ConnectionError, kNotADatabaseCode);
        return false;
    }
    if (!db_.open()) {
        error_ = db_.lastError();
        return false;
    }
    // WAL with full syncs: a crash at any moment leaves the last committed
    // call whole, never a torn file.
    return exec(QStringLiteral("PRAGMA journal_mode=WAL"))
        && exec(QStringLiteral("PRAGMA synchronous=FULL"));
}

bool StoreConnection::hasTables(bool& present)
{
    QSqlRecord row;
    if (!readFirst(QStringLiteral("SELECT count(*) FROM sqlite_master WHERE type = 'table' AND "
                                  "name IN ('ecrOrders', 'cntLine_ecrOrders')"),
                   {}, row))
        return false;
    present = row.value(0).toInt() == 2;
    return true;
}

bool StoreConnection::createTables()
{
    return exec(QLatin1String(kCreateOrders)) && exec(QLatin1String(kCreateCounter));
}

bool StoreConnection::makeReadOnly()
{
    return exec(QStringLiteral("PRAGMA query_only = ON"));
}

bool StoreConnection::beginWrite()
{
    inTransaction_ = exec(QStringLiteral("BEGIN IMMEDIATE"));
    return inTransaction_;
}

bool StoreConnection::commit()
{
    if (!exec(QStringLiteral("COMMIT")))
        return false;
    inTransaction_ = false;
    return true;
}

bool StoreConnection::run(QSqlQuery& query, const QString& sql, const QVariantList& values)
{
    if (!query.prepare(sql)) {
        error_ = query.lastError();
        return false;
    }
    for (const QVariant& value : values)
        query.addBindValue(value);
    if (!query.exec()) {
        error_ = query.lastError();
        return false;
    }
    return true;
}

bool StoreConnection::exec(const QString& sql, const QVariantList& values)
{
    QSqlQuery query(db_);
    if (!run(query, sql, values))
        return false;
    rowsAffected_ = query.numRowsAffected();
    return true;
}

bool StoreConnection::readFirst(const QString& sql, const QVariantList& values, QSqlRecord& row)
{
    QList<QSqlRecord> rows;
    if (!readRows(sql, values, rows, 1))
        return false;
    row = rows.isEmpty() ? QSqlRecord() : rows.first();
    return true;
}

bool StoreConnection::readAll(const QString& sql, const QVariantList& values, QList<QSqlRecord>& rows)
{
    return readRows(sql, values, rows, std::numeric_limits<qsizetype>::max());
}

bool StoreConnection::readRows(const QString& sql, const QVariantList& values, QList<QSqlRecord>& rows,
                               qsizetype most)
{
    QSqlQuery query(db_);
    query.setForwardOnly(true);
    if (!run(query, sql, values))
        return false;
    rows.clear();
    while (rows.size() < most && query.next())
        rows << query.record();
    // A row that the engine could not read comes as no row with an error.
    if (query.lastError().isValid()) {
        error_ = query.lastError();
        return false;
    }
    return true;
}
