#pragma once

#include "records/ClsTable.h"

#include <QString>
#include <QtGlobal>

// What FPrinterWrite hands to the order store and the table flows. The
// default does nothing, so that sales without tables work on their own; the
// table subsystem puts its own in place.
class TableRoads {
public:
    virtual ~TableRoads() = default;

    // plu sold onto a table (status 0): the item goes into the order store.
    // command and reply are those of the sale, for the result file line.
    virtual void storeSoldItem(const clsTable& item, const QString& command, const QString& reply)
    {
        Q_UNUSED(item) Q_UNUSED(command) Q_UNUSED(reply)
    }
    // plu returned outside a table mode but on a table (status 0): the store row goes.
    virtual void removeReturnedItem(const clsTable& item, const QString& command,
                                    const QString& reply)
    {
        Q_UNUSED(item) Q_UNUSED(command) Q_UNUSED(reply)
    }
    // plu in TableMode 2: the item moves from TableFrom to TableTo.
    virtual void moveItem(const clsTable& item) { Q_UNUSED(item) }
    // tot in TableMode 1 or 2, first: the register is brought to the table
    // (its visit closed, a move in parts ended, the waiting voids done). The
    // card road of a table starts behind this too.
    virtual void bringTableToRegister() {}
    // tot in TableMode 1 or 2, the plain payment: the table is closed and paid.
    virtual void payTable(double amount, qint16 payment) { Q_UNUSED(amount) Q_UNUSED(payment) }
    // tot in TableMode 1 or 2, after the card road of the table paid it: its rows go.
    virtual void forgetPaidTable(qint16 table) { Q_UNUSED(table) }
    // End of a good 0Z: every store row and line counter goes. Answers as the
    // store does: 0 or a count good, -1 failed call, -2 no rows, -3 no store.
    virtual qint32 clearOrderStore() { return -2; }
};
