#include "tables/OrderStoreRoads.h"

#include "protocol/DeviceCommands.h"
#include "records/ReceiptState.h"
#include "tables/ClsItemData.h"
#include "tables/TableFlows.h"

OrderStoreRoads::OrderStoreRoads(TableFlows& flows)
    : flows_(flows)
{
}

void OrderStoreRoads::storeSoldItem(const clsTable& item, const QString& command, const QString& reply)
{
    clsItemData store = flows_.store();
    const qint16 result = store.orders_AddRecord(item);
    if (result < 0)
        flows_.writeStoreFailureLine(result, command, reply);
    flows_.reportStoreFault(store);
}

void OrderStoreRoads::removeReturnedItem(const clsTable& item, const QString& command,
                                         const QString& reply)
{
    clsItemData store = flows_.store();
    const clsTable found = store.orders_FindRecord(item);
    qint32 result = found.Result;
    if (result == 0)
        result = store.orders_DelRecord(found);
    if (result < 0)
        flows_.writeStoreFailureLine(result, command, reply);
    flows_.reportStoreFault(store);
}

void OrderStoreRoads::moveItem(const clsTable& item)
{
    ReceiptState& receipt = flows_.receipt();
    clsItemData store = flows_.store();
    const clsTable found = store.orders_FindRecord(item);
    if (found.Result < 0) {
        // No row names the item: the line is dropped, the register is not asked.
        flows_.writeStoreFailureLine(found.Result, QString(), receipt.LastReply);
        flows_.reportStoreFault(store);
        return;
    }
    const DeviceReply moved =
        flows_.send(DeviceCommands::MoveItem(receipt.TableFrom, receipt.TableTo, found.itemUID));
    if (!moved.ok())
        return;
    store.orders_MarkRecord(found);
    flows_.reportStoreFault(store);
}

void OrderStoreRoads::bringTableToRegister()
{
    flows_.bringTableToRegister();
}

void OrderStoreRoads::payTable(double amount, qint16 payment)
{
    flows_.payTable(payment, amount, true);
}

qint32 OrderStoreRoads::clearOrderStore()
{
    const QString serial = flows_.ReadSerialNumber();
    clsItemData store = flows_.store(serial, flows_.ReadNextZ());
    const qint32 result = store.orders_DelAllDBRecords();
    // A register that never served a table has no store: nothing to tell.
    if (store.lastFault() != OrderStoreFault::NoStore)
        flows_.reportStoreFault(store);
    return result;
}

void OrderStoreRoads::forgetPaidTable(qint16 table)
{
    flows_.DeleteTableRecords(table);
}
