#pragma once

#include "link/DeviceLink.h"
#include "records/ClsTable.h"
#include "tables/ClsItemData.h"

#include <QString>
#include <QtGlobal>

class Clock;
class Operator;
class ResultSink;
struct ModuleVariables;
struct ReceiptState;

// The procedures that keep a table's two homes in step: the register holds
// the items, the order store remembers the identifier and line order the
// register gave each one. The print file's table tags, the table branches of
// plu and tot and the Z report call them. A store failure never undoes what
// the register did: the operator is told and the job goes on.
class TableFlows {
public:
    static constexpr qint16 kLastTable = 290;
    // The table a settlement in parts (TBS) moves to.
    static constexpr qint16 kPartSettlementTable = 290;
    // A whole-table move may take the register a while.
    static constexpr qint16 kWholeMoveTimeoutSeconds = 120;
    // &/3/ answers this while the table's receipt is still being closed.
    static constexpr qint16 kStatusClosureInProgress = 201;

    TableFlows(DeviceLink& link, Operator& op, Clock& clock, ReceiptState& receipt,
               const ModuleVariables& vars, ResultSink& results, QString programDirectory);

    // Fields 5 and 3 of the a/ reply; "NO_SERIAL N" when it is refused.
    QString ReadSerialNumber();
    // The number the next Z will have; -1 when i/ is refused.
    qint16 ReadNextZ();
    // StoreSerial and StoreZ read afresh from the register.
    void readStoreKeys();
    // A document or a table visit is open on the register.
    bool IsStatusBitSet();
    // Closes what is open on the register with a payment of zero.
    qint16 WaitForRegister();
    // Cancels the waiting negative lines, found by their store rows. 0, or -1
    // when the store failed while the list was worked (the list then stays).
    qint16 ProcessPendingVoids();
    // Cancels every item of CurrentTable and closes the emptied table.
    qint16 VoidWholeTable();
    qint16 DeleteTableRecords(qint16 table);
    // Rewrites the rows the register moved, as its reply names them.
    qint16 ApplyTransferReply(qint16 from, qint16 to, const QString& reply);
    // The store's rows of table made to say what the register holds on it,
    // after a job that ended before it could keep them in step. The rows
    // changed; -1 when the register's table could not be read whole or the
    // store failed (the operator is told of a store fault).
    qint32 MatchStoreToTable(qint16 table);
    // The tables of range ("001-010"; anything else is 1 to 290) that hold
    // items, as "3, 7"; "-1" when the register refused a query.
    void getOpenTablesList(const QString& range, QString& list);

    // Before a table is paid: the register is brought to the table (open
    // visit closed, a move in parts ended) and the waiting voids are done.
    void bringTableToRegister();
    // The plain payment of CurrentTable: its closing with TableDiscount, then
    // payment number payment of amount (0: the balance). The rows go once paid.
    // fromTotal: the tot road, where a good closing spends the discount.
    void payTable(qint16 payment, double amount, bool fromTotal);

    // A store for StoreSerial and StoreZ, or for the serial and Z given.
    clsItemData store() const;
    clsItemData store(const QString& serial, qint16 zNumber) const;
    ReceiptState& receipt() { return receipt_; }
    // Tells the operator what went wrong in the store's last call, if anything did.
    void reportStoreFault(const clsItemData& store);
    // "Err = DB<result>, [<command>, Reply=<reply>] DateTime = <stamp>"
    void writeStoreFailureLine(qint32 result, const QString& command, const QString& reply);

    // Sends and leaves status and text in ReceiptState.
    DeviceReply send(const QString& command, const SendOptions& options = {});

private:
    void cancelOnTable(const clsTable& row, bool quiet, bool fullDescription);

    DeviceLink& link_;
    Operator& op_;
    Clock& clock_;
    ReceiptState& receipt_;
    const ModuleVariables& vars_;
    ResultSink& results_;
    QString programDirectory_;
};
