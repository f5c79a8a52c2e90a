#pragma once

#include "records/ClsTable.h"
#include "tables/OrderStoreFault.h"

#include <QList>
#include <QString>
#include <QtGlobal>
#include <functional>

class StoreConnection;

// How long a call waits for another program to let go of the store file.
inline constexpr int kStoreBusyWaitMs = 2000;

// clsItemData: the order store. One SQLite file per register,
// "<serial>_Orders.sqlite" in the program's directory, remembers for each item
// sold on a table the identifier and line order the register gave it.
// Quantities are kept in thousandths, prices and VAT rates in hundredths.
//
// Made for one use and dropped: each call opens the file, works in one short
// transaction and closes it again. Results: 0 or a row count good, -1 the call
// failed, -2 no such row, -3 no store. The store shows nothing to the
// operator; lastFailure() has the text for the caller to show.
class clsItemData {
public:
    explicit clsItemData(QString programDirectory, int busyWaitMs = kStoreBusyWaitMs);

    // Selects the file.
    void ecrSerialNumber(const QString& serial) { serial_ = serial; }
    // The Z period that the queries are confined to.
    void ecrZnumber(qint16 z) { zNumber_ = z; }

    // Stores a sold item, making the store when it is missing. 0 good, -1
    // failure while writing, -2 failure while opening, -3 the store could not
    // be made.
    qint16 orders_AddRecord(const clsTable& item);
    // The item's rows of TableNUM and itemUID in the Z period.
    qint16 orders_DelRecord(const clsTable& item);
    // Every row of TableNUM in the Z period.
    qint16 orders_DelAllRecords(const clsTable& item);
    // Every row of every period, and the line counter, which starts again at 1.
    qint16 orders_DelAllDBRecords();
    // The oldest row of the Z period on TableNUM with this description, price
    // and quantity that is not waiting in a move; or the first row of query
    // when one is given (used as it stands). Result tells: 0 found, -1, -2, -3.
    clsTable orders_FindRecord(const clsTable& item, const QString& query = QString());
    // The row of itemUID and tableORDER on TableNUM, of any period, is
    // rewritten for the destination and no longer waits in a move.
    qint32 orders_UpdateRecord(const clsTable& item);
    // The oldest row of itemUID on TableNUM in the Z period waits in a move.
    qint32 orders_MarkRecord(const clsTable& item);
    // The rows of table, of any period, made to say what the register holds
    // on it, in one transaction: a row of an item it no longer holds goes, an
    // item it holds with no row gets one (in the Z period), a row waiting in
    // a move is released. The rows changed, or -1, -2 failure while opening,
    // -3 the store could not be made.
    qint32 orders_MatchTable(qint16 table, const QList<clsTable>& onRegister);

    QString storePath() const;
    // What went wrong in the last call, None when nothing did. After SetAside
    // the call itself may have gone through on a new store.
    OrderStoreFault lastFault() const { return lastFault_; }
    // The Greek text for the operator about the last call; empty when none.
    QString lastFailure() const;
    // Where the last call kept an unreadable file; empty when it kept none.
    QString setAsidePath() const { return setAsidePath_; }

private:
    using StoreWork = std::function<qint32(StoreConnection&)>;

    qint16 addRow(const clsTable& item);
    // Runs work in a write transaction on the store, made when missing.
    qint32 onStoreMade(const StoreWork& work);
    qint32 writeRows(const QString& sql, const QVariantList& values);
    // Runs work on the existing store and turns its faults into the results.
    qint32 onStore(const StoreWork& work);
    qint32 fail(OrderStoreFault fault, const QString& detail = QString());
    qint32 fail(const StoreConnection& store);
    void beginCall();
    bool setStoreAside();

    QString programDirectory_;
    int busyWaitMs_;
    QString serial_;
    qint16 zNumber_ = 0;
    OrderStoreFault lastFault_ = OrderStoreFault::None;
    QString lastDetail_;
    QString setAsidePath_;
};
