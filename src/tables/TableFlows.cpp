#include "tables/TableFlows.h"

#include "link/WaitForRegister.h"
#include "protocol/CountersQuery.h"
#include "protocol/DeviceCommands.h"
#include "protocol/DeviceSerialQuery.h"
#include "protocol/OpenDocumentQuery.h"
#include "protocol/TableContentsQuery.h"
#include "protocol/TransferReply.h"
#include "records/ReceiptState.h"
#include "shell/Clock.h"
#include "shell/ModuleVariables.h"
#include "shell/Operator.h"
#include "shell/ResultSink.h"

#include <QList>
#include <QStringList>
#include <cmath>

namespace dc = DeviceCommands;

namespace {
const QString kNoSerial = QStringLiteral("NO_SERIAL N");
const QString kTitleBeforeDevice = QStringLiteral("Μύνημα Kerbano");
const QString kListRefused = QStringLiteral("-1");
const QString kListSeparator = QStringLiteral(", ");
// The range of ltb: three digits, anything, three digits.
constexpr int kRangeDigits = 3;
constexpr qint32 kFailed = -1;
constexpr double kCents = 100.0;

const SendOptions kQuiet{.quiet = true};

bool isStoreFailure(qint32 result) { return result == -1 || result == -3; }

bool readTableNumber(const QString& text, qint16& table)
{
    bool ok = false;
    table = static_cast<qint16>(text.trimmed().toInt(&ok));
    return ok;
}
} // namespace

TableFlows::TableFlows(DeviceLink& link, Operator& op, Clock& clock, ReceiptState& receipt,
                       const ModuleVariables& vars, ResultSink& results, QString programDirectory)
    : link_(link)
    , op_(op)
    , clock_(clock)
    , receipt_(receipt)
    , vars_(vars)
    , results_(results)
    , programDirectory_(std::move(programDirectory))
{
}

DeviceReply TableFlows::send(const QString& command, const SendOptions& options)
{
    DeviceReply reply = link_.send(command, options);
    receipt_.LastStatus = reply.status();
    receipt_.LastReply = reply.text();
    return reply;
}

QString TableFlows::ReadSerialNumber()
{
    const DeviceSerialQuery query;
    return query.read(send(query.command())).value_or(kNoSerial);
}

qint16 TableFlows::ReadNextZ()
{
    const CountersQuery query;
    const std::optional<CountersQuery::Answer> counters = query.read(send(query.command()));
    return counters ? static_cast<qint16>(counters->lastZ + 1) : qint16(-1);
}

void TableFlows::readStoreKeys()
{
    receipt_.StoreSerial = ReadSerialNumber();
    receipt_.StoreZ = ReadNextZ();
}

bool TableFlows::IsStatusBitSet()
{
    const OpenDocumentQuery query;
    return query.read(send(query.command(), kQuiet)).value_or(false);
}

qint16 TableFlows::WaitForRegister()
{
    const qint16 status = ::WaitForRegister(link_, op_, clock_);
    receipt_.LastStatus = status;
    return status;
}

clsItemData TableFlows::store() const
{
    return store(receipt_.StoreSerial, receipt_.StoreZ);
}

clsItemData TableFlows::store(const QString& serial, qint16 zNumber) const
{
    clsItemData data(programDirectory_);
    data.ecrSerialNumber(serial);
    data.ecrZnumber(zNumber);
    return data;
}

void TableFlows::reportStoreFault(const clsItemData& store)
{
    if (store.lastFault() == OrderStoreFault::None)
        return;
    const QString title = vars_.DeviceLabel.isEmpty() ? kTitleBeforeDevice : vars_.DeviceLabel;
    op_.message(title, store.lastFailure(), Operator::Icon::Warning);
}

void TableFlows::writeStoreFailureLine(qint32 result, const QString& command, const QString& reply)
{
    results_.appendResultLine(QStringLiteral("Err = DB%1, [%2, Reply=%3] DateTime = %4")
                                  .arg(result)
                                  .arg(command, reply, clock_.stamp()));
}

void TableFlows::cancelOnTable(const clsTable& row, bool quiet, bool fullDescription)
{
    const SendOptions options{.quiet = quiet};
    send(dc::SelectTableLine(row.TableNUM, row.tableORDER), options);
    const QString desc = row.itemDesc();
    const QString first = fullDescription ? desc.trimmed() : desc.left(dc::kFirstDescriptionMax).trimmed();
    const QString rest = fullDescription ? QString() : desc.mid(dc::kFirstDescriptionMax);
    send(dc::Cancellation(first, rest, row.itemQuantity, row.itemPrice, row.itemDep, row.itemVatRate),
         options);
}

qint16 TableFlows::ProcessPendingVoids()
{
    bool tableOpened = false;
    for (const clsTable& pending : std::as_const(receipt_.PendingVoids)) {
        clsItemData data = store();
        const clsTable row = data.orders_FindRecord(pending);
        if (row.Result < 0) {
            // Nothing of it is known: the register keeps the item.
            reportStoreFault(data);
            continue;
        }
        if (!tableOpened) {
            send(dc::OpenTable(row.TableNUM));
            tableOpened = true;
        }
        cancelOnTable(row, false, false);
        if (receipt_.LastStatus == 0) {
            data.orders_DelRecord(row);
            reportStoreFault(data);
        }
    }
    if (!receipt_.PendingVoids.isEmpty())
        WaitForRegister();
    receipt_.PendingVoids.clear();
    return 0;
}

qint16 TableFlows::VoidWholeTable()
{
    const qint16 table = receipt_.currentTable();
    const QString query =
        QStringLiteral("select * from ecrOrders WHERE ( (zNumber = %1)  AND (tableNUM = %2) AND (bTransfered=0) )")
            .arg(receipt_.StoreZ)
            .arg(table);
    clsTable probe;
    probe.TableNUM = table;
    QList<clsTable> rows;
    qint16 answer = 0;
    clsItemData data = store();
    for (;;) {
        const clsTable row = data.orders_FindRecord(probe, query);
        if (row.Result != 0) {
            reportStoreFault(data);
            break;
        }
        // A row that will not go would be found for ever.
        if (data.orders_DelRecord(row) < 1) {
            reportStoreFault(data);
            answer = -1;
            break;
        }
        rows << row;
    }

    for (qsizetype i = 0; i < rows.size(); ++i) {
        if (i == 0)
            send(dc::OpenTable(table));
        cancelOnTable(rows.at(i), true, true);
        if (receipt_.LastStatus == 0)
            data.orders_DelRecord(rows.at(i));
    }
    if (!rows.isEmpty()) {
        send(dc::ZeroPayment());
        send(dc::PrepareTableClosingWithoutDiscount(table));
        send(dc::TableTokenPayment(table));
    }
    return answer;
}

qint16 TableFlows::DeleteTableRecords(qint16 table)
{
    clsTable item;
    item.TableNUM = table;
    clsItemData data = store();
    const qint16 result = data.orders_DelAllRecords(item);
    if (isStoreFailure(result))
        reportStoreFault(data);
    return result;
}

qint16 TableFlows::ApplyTransferReply(qint16 from, qint16 to, const QString& reply)
{
    const QList<TransferReply::MovedItem> moved =
        TransferReply::read(DeviceReply::fromStatusAndText(0, reply));
    if (moved.isEmpty())
        return 0;
    clsItemData data = store();
    bool told = false;
    for (const TransferReply::MovedItem& m : moved) {
        clsTable item;
        item.TableNUM = from;
        item.TableNUM_Dest = to;
        item.itemUID = m.sourceIdentifier;
        item.tableORDER = m.sourceOrder;
        item.itemUID_Dest = m.destinationIdentifier;
        item.tableORDER_Dest = m.destinationOrder;
        if (isStoreFailure(data.orders_UpdateRecord(item)) && !told) {
            reportStoreFault(data);
            told = true;
        }
    }
    return 0;
}

void TableFlows::getOpenTablesList(const QString& range, QString& list)
{
    qint16 first = 1;
    qint16 last = kLastTable;
    qint16 rangeFirst = 0;
    qint16 rangeLast = 0;
    if (readTableNumber(range.left(kRangeDigits), rangeFirst)
        && readTableNumber(range.right(kRangeDigits), rangeLast)) {
        first = rangeFirst;
        last = rangeLast;
    }
    QStringList tables;
    for (int table = first; table <= last; ++table) {
        const TableContentsQuery query{table};
        const std::optional<TableContentsQuery::Answer> contents = query.read(send(query.command()));
        if (!contents) {
            list = kListRefused;
            return;
        }
        if (contents->holdsItems)
            tables << QString::number(table);
    }
    list = tables.join(kListSeparator);
}

qint32 TableFlows::MatchStoreToTable(qint16 table)
{
    const TableContentsQuery query{table};
    const std::optional<TableContentsQuery::Answer> contents = query.read(send(query.command(), kQuiet));
    const std::optional<QList<TableContentsQuery::Item>> items =
        contents ? contents->wholeItems() : std::nullopt;
    if (!items)
        return kFailed;
    QList<clsTable> onRegister;
    for (const TableContentsQuery::Item& item : *items) {
        clsTable row;
        row.TableNUM = table;
        row.itemUID = item.identifier;
        row.tableORDER = static_cast<qint16>(item.lineOrder);
        row.setItemDesc(item.description);
        row.itemQuantity = item.quantity;
        // The register keeps the line's amount; the store, the price it was sold at.
        row.itemPrice = item.quantity != 0.0 ? std::round(item.amount / item.quantity * kCents) / kCents : item.amount;
        row.itemDep = static_cast<qint16>(item.department);
        row.itemVatRate = item.vatRate;
        onRegister << row;
    }
    clsItemData rows = store();
    const qint32 changed = rows.orders_MatchTable(table, onRegister);
    reportStoreFault(rows);
    return changed < 0 ? kFailed : changed;
}

void TableFlows::bringTableToRegister()
{
    const bool open = IsStatusBitSet();
    if (receipt_.TableMode == 1 && !open)
        WaitForRegister();
    if (receipt_.TableMode == 2) {
        const DeviceReply ended = send(dc::EndItemMove(receipt_.TableFrom, receipt_.TableTo), kQuiet);
        if (ended.ok())
            ApplyTransferReply(receipt_.TableFrom, receipt_.TableTo, ended.text());
    }
    ProcessPendingVoids();
}

void TableFlows::payTable(qint16 payment, double amount, bool fromTotal)
{
    const qint16 table = receipt_.currentTable();
    const DeviceReply prepared = send(dc::PrepareTableClosing(table, receipt_.tableDiscount()), kQuiet);
    if (fromTotal && prepared.ok())
        receipt_.setTableDiscount(0);
    const DeviceReply paid = send(dc::PayTable(table, payment, amount, QString()), kQuiet);
    if (paid.ok() || paid.status() == kStatusClosureInProgress)
        DeleteTableRecords(table);
}
