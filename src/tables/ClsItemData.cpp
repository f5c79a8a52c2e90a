#include "tables/ClsItemData.h"

#include "tables/StoreAside.h"
#include "tables/StoreConnection.h"

#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QSqlRecord>
#include <cmath>
#include <set>
#include <utility>
#include <limits>

namespace {
constexpr qint32 kGood = 0;
constexpr qint32 kFailed = -1;
constexpr qint32 kOpenFailed = -2; // orders_AddRecord and orders_MatchTable only
constexpr qint32 kNoSuchRow = -2;
constexpr qint32 kNoStore = -3;

constexpr double kHundredths = 100.0;
constexpr double kThousandths = 1000.0;
constexpr int kItemColumns = 9;

const QString kFileSuffix = QStringLiteral("_Orders.sqlite");

const QString kInsertItem = QStringLiteral(
    "INSERT INTO ecrOrders (zNumber, tableNUM, tableORDER, itemUID, itemDesc, itemQuantity, "
    "itemPrice, itemDep, itemVatRate, eNum, bTransfered) VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, 0)");
const QString kLastLine = QStringLiteral("SELECT max(eNum) FROM cntLine_ecrOrders");
const QString kFirstLine = QStringLiteral("INSERT INTO cntLine_ecrOrders (eNum) VALUES (1)");
const QString kNextLine = QStringLiteral("UPDATE cntLine_ecrOrders SET eNum = ? WHERE eNum = ?");
const QString kDeleteItem =
    QStringLiteral("DELETE FROM ecrOrders WHERE zNumber = ? AND tableNUM = ? AND itemUID = ?");
const QString kDeleteTable = QStringLiteral("DELETE FROM ecrOrders WHERE zNumber = ? AND tableNUM = ?");
const QString kDeleteAll = QStringLiteral("DELETE FROM ecrOrders");
const QString kClearCounter = QStringLiteral("DELETE FROM cntLine_ecrOrders");
// Columns in the order of the table, as a custom "select *" gives them too.
const QString kFindItem = QStringLiteral(
    "SELECT zNumber, tableNUM, tableORDER, itemUID, itemDesc, itemQuantity, itemPrice, itemDep, "
    "itemVatRate FROM ecrOrders WHERE zNumber = ? AND itemDesc = ? AND itemPrice = ? AND "
    "itemQuantity = ? AND tableNUM = ? AND bTransfered = 0 ORDER BY eNum ASC LIMIT 1");
// The Z period is left out on purpose: a move may reach a row of an earlier period.
const QString kUpdateMoved = QStringLiteral(
    "UPDATE ecrOrders SET itemUID = ?, tableNUM = ?, tableORDER = ?, bTransfered = 0 WHERE rowid = "
    "(SELECT rowid FROM ecrOrders WHERE itemUID = ? AND tableNUM = ? AND tableORDER = ? "
    "ORDER BY rowid LIMIT 1)");
// Every row of a table, of any period: the register's table knows no periods.
const QString kTableRows =
    QStringLiteral("SELECT rowid, itemUID, tableORDER, bTransfered FROM ecrOrders WHERE tableNUM = ? ORDER BY eNum");
const QString kDeleteRow = QStringLiteral("DELETE FROM ecrOrders WHERE rowid = ?");
const QString kReleaseRow = QStringLiteral("UPDATE ecrOrders SET bTransfered = 0 WHERE rowid = ?");
const QString kMarkMoved = QStringLiteral(
    "UPDATE ecrOrders SET bTransfered = 1 WHERE rowid = (SELECT rowid FROM ecrOrders WHERE "
    "zNumber = ? AND tableNUM = ? AND itemUID = ? AND bTransfered = 0 ORDER BY eNum ASC LIMIT 1)");

// Rounded, never cut: 4.35 * 100 is 434.99999999999994 in a double.
qint64 inUnits(double value, double unitsPerOne)
{
    return std::llround(value * unitsPerOne);
}

QVariantList rowValues(const clsTable& item, qint16 zNumber, qint32 line)
{
    return {zNumber,
            item.TableNUM,
            item.tableORDER,
            item.itemUID,
            item.itemDesc(),
            inUnits(item.itemQuantity, kThousandths),
            inUnits(item.itemPrice, kHundredths),
            item.itemDep,
            static_cast<double>(inUnits(item.itemVatRate, kHundredths)),
            line};
}

clsTable itemFromRow(const QSqlRecord& row)
{
    clsTable item;
    item.zNumber = static_cast<qint16>(row.value(0).toInt());
    item.TableNUM = static_cast<qint16>(row.value(1).toInt());
    item.tableORDER = static_cast<qint16>(row.value(2).toInt());
    item.itemUID = row.value(3).toInt();
    item.setItemDesc(row.value(4).toString());
    item.itemQuantity = row.value(5).toDouble() / kThousandths;
    item.itemPrice = row.value(6).toDouble() / kHundredths;
    item.itemDep = static_cast<qint16>(row.value(7).toInt());
    item.itemVatRate = row.value(8).toDouble() / kHundredths;
    return item;
}

// The next running line number, counted on inside the caller's transaction; -1 on failure.
qint32 nextLineNumber(StoreConnection& store)
{
    QSqlRecord row;
    if (!store.readFirst(kLastLine, {}, row))
        return kFailed;
    const QVariant last = row.value(0);
    if (last.isNull())
        return store.exec(kFirstLine) ? 1 : kFailed;
    // A counter that cannot go one further (a store written by someone else)
    // fails the call rather than wrapping round.
    const qint64 current = last.toLongLong();
    if (current >= std::numeric_limits<qint32>::max())
        return kFailed;
    const qint32 next = static_cast<qint32>(current) + 1;
    return store.exec(kNextLine, {next, last}) ? next : kFailed;
}

// A count of rows as the 16-bit results give it; none is "no such row".
qint16 rowCountResult(qint32 rows)
{
    if (rows == 0)
        return kNoSuchRow;
    return static_cast<qint16>(qMin<qint32>(rows, std::numeric_limits<qint16>::max()));
}

qint32 doneOrNoRow(qint32 rows)
{
    return rows > 0 ? kGood : (rows == 0 ? kNoSuchRow : rows);
}
} // namespace

clsItemData::clsItemData(QString programDirectory, int busyWaitMs)
    : programDirectory_(std::move(programDirectory))
    , busyWaitMs_(busyWaitMs)
{
}

QString clsItemData::storePath() const
{
    return QDir(programDirectory_).filePath(serial_ + kFileSuffix);
}

QString clsItemData::lastFailure() const
{
    return OrderStoreFaultText(lastFault_, storePath(), lastDetail_);
}

qint16 clsItemData::orders_AddRecord(const clsTable& item)
{
    beginCall();
    qint16 result = addRow(item);
    if (lastFault_ == OrderStoreFault::Unreadable && setStoreAside())
        result = addRow(item);
    return result;
}

qint16 clsItemData::orders_DelRecord(const clsTable& item)
{
    return rowCountResult(writeRows(kDeleteItem, {zNumber_, item.TableNUM, item.itemUID}));
}

qint16 clsItemData::orders_DelAllRecords(const clsTable& item)
{
    return rowCountResult(writeRows(kDeleteTable, {zNumber_, item.TableNUM}));
}

qint16 clsItemData::orders_DelAllDBRecords()
{
    return rowCountResult(onStore([this](StoreConnection& store) -> qint32 {
        if (!store.beginWrite() || !store.exec(kDeleteAll))
            return fail(store);
        const qint32 rows = store.rowsAffected();
        // The line numbers start again at 1 after each Z, rows or none.
        if (!store.exec(kClearCounter) || !store.commit())
            return fail(store);
        return rows;
    }));
}

clsTable clsItemData::orders_FindRecord(const clsTable& item, const QString& query)
{
    clsTable found;
    const qint32 result = onStore([&](StoreConnection& store) -> qint32 {
        QSqlRecord row;
        // A lookup never changes the store, whatever query it is given.
        bool read = store.makeReadOnly();
        if (read && query.isEmpty()) {
            read = store.readFirst(kFindItem,
                                   {zNumber_, item.itemDesc(), inUnits(item.itemPrice, kHundredths),
                                    inUnits(item.itemQuantity, kThousandths), item.TableNUM},
                                   row);
        } else if (read) {
            read = store.readFirst(query, {}, row);
        }
        if (!read)
            return fail(store);
        if (row.isEmpty())
            return kNoSuchRow;
        if (row.count() < kItemColumns)
            return fail(OrderStoreFault::Failed,
                        QStringLiteral("η αναζήτηση δίνει %1 στήλες αντί για %2")
                            .arg(row.count())
                            .arg(kItemColumns));
        found = itemFromRow(row);
        return kGood;
    });
    found.Result = static_cast<qint16>(result);
    return found;
}

qint32 clsItemData::orders_UpdateRecord(const clsTable& item)
{
    return doneOrNoRow(writeRows(kUpdateMoved, {item.itemUID_Dest, item.TableNUM_Dest,
                                                item.tableORDER_Dest, item.itemUID, item.TableNUM,
                                                item.tableORDER}));
}

qint32 clsItemData::orders_MarkRecord(const clsTable& item)
{
    return doneOrNoRow(writeRows(kMarkMoved, {zNumber_, item.TableNUM, item.itemUID}));
}

qint16 clsItemData::addRow(const clsTable& item)
{
    return static_cast<qint16>(onStoreMade([&](StoreConnection& store) -> qint32 {
        const qint32 line = nextLineNumber(store);
        if (line < 1 || !store.exec(kInsertItem, rowValues(item, zNumber_, line)) || !store.commit())
            return fail(store);
        return kGood;
    }));
}

qint32 clsItemData::onStoreMade(const StoreWork& work)
{
    const bool creating = !QFileInfo(storePath()).isFile();
    StoreConnection store(storePath(), busyWaitMs_);
    bool present = false;
    if (!store.open() || !store.hasTables(present)) {
        if (creating) {
            fail(OrderStoreFault::CannotCreate, store.error().text());
            return kNoStore;
        }
        fail(store);
        return kOpenFailed;
    }
    if (!store.beginWrite())
        return fail(store);
    if (!present && !store.createTables()) {
        fail(OrderStoreFault::CannotCreate, store.error().text());
        return kNoStore;
    }
    return work(store);
}

qint32 clsItemData::orders_MatchTable(qint16 table, const QList<clsTable>& onRegister)
{
    beginCall();
    if (onRegister.isEmpty() && !QFileInfo(storePath()).isFile())
        return 0;
    const auto match = [&](StoreConnection& store) -> qint32 {
        QList<QSqlRecord> rows;
        if (!store.readAll(kTableRows, {table}, rows))
            return fail(store);
        std::set<std::pair<qint32, qint16>> held;
        for (const clsTable& item : onRegister)
            held.insert({item.itemUID, item.tableORDER});
        std::set<std::pair<qint32, qint16>> kept;
        qint32 changed = 0;
        for (const QSqlRecord& row : rows) {
            const std::pair<qint32, qint16> key{row.value(1).toInt(), static_cast<qint16>(row.value(2).toInt())};
            const QVariantList rowid{row.value(0)};
            // A row of an item the register no longer holds, or a second row of one it does.
            if (!held.contains(key) || !kept.insert(key).second) {
                if (!store.exec(kDeleteRow, rowid))
                    return fail(store);
                ++changed;
            } else if (row.value(3).toInt() != 0) {
                if (!store.exec(kReleaseRow, rowid))
                    return fail(store);
                ++changed;
            }
        }
        for (const clsTable& item : onRegister) {
            if (kept.contains({item.itemUID, item.tableORDER}))
                continue;
            kept.insert({item.itemUID, item.tableORDER});
            const qint32 line = nextLineNumber(store);
            if (line < 1 || !store.exec(kInsertItem, rowValues(item, zNumber_, line)))
                return fail(store);
            ++changed;
        }
        return store.commit() ? changed : fail(store);
    };
    qint32 result = onStoreMade(match);
    if (lastFault_ == OrderStoreFault::Unreadable && setStoreAside())
        result = onStoreMade(match);
    return result;
}

qint32 clsItemData::writeRows(const QString& sql, const QVariantList& values)
{
    return onStore([&](StoreConnection& store) -> qint32 {
        if (!store.beginWrite() || !store.exec(sql, values))
            return fail(store);
        const qint32 rows = store.rowsAffected();
        return store.commit() ? rows : fail(store);
    });
}

qint32 clsItemData::onStore(const StoreWork& work)
{
    beginCall();
    if (!QFileInfo(storePath()).isFile()) {
        fail(OrderStoreFault::NoStore);
        return kNoStore;
    }
    qint32 result = kFailed;
    {
        StoreConnection store(storePath(), busyWaitMs_);
        bool present = false;
        if (!store.open() || !store.hasTables(present)) {
            result = fail(store);
        } else if (!present) {
            fail(OrderStoreFault::NoStore);
            result = kNoStore;
        } else {
            result = work(store);
        }
    } // the file is closed before it may be set aside
    if (lastFault_ == OrderStoreFault::Unreadable && setStoreAside())
        return kNoStore;
    return result;
}

qint32 clsItemData::fail(OrderStoreFault fault, const QString& detail)
{
    lastFault_ = fault;
    lastDetail_ = detail;
    return kFailed;
}

qint32 clsItemData::fail(const StoreConnection& store)
{
    return fail(ClassifyStoreError(store.error()), store.error().text());
}

void clsItemData::beginCall()
{
    lastFault_ = OrderStoreFault::None;
    lastDetail_.clear();
    setAsidePath_.clear();
}

bool clsItemData::setStoreAside()
{
    const QString aside = SetStoreAside(storePath(), QDateTime::currentDateTime());
    if (aside.isEmpty())
        return false;
    setAsidePath_ = aside;
    lastFault_ = OrderStoreFault::SetAside;
    lastDetail_ = aside;
    return true;
}
