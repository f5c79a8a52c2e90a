#pragma once

#include "records/ClsTable.h"

// An item on a table as the store and the flows see it: department 2.
inline clsTable TableItem(qint16 table, qint32 uid, qint16 order, const QString& desc, double quantity,
                          double price, double vatRate)
{
    clsTable item;
    item.TableNUM = table;
    item.itemUID = uid;
    item.tableORDER = order;
    item.setItemDesc(desc);
    item.itemQuantity = quantity;
    item.itemPrice = price;
    item.itemDep = 2;
    item.itemVatRate = vatRate;
    return item;
}
