#pragma once

#include "records/ClsTable.h"

#include <QList>
#include <QString>

// What getdata and FPrinterWrite share for the length of one print job.
// Owned by the Engine, next to ModuleVariables.
struct ReceiptState {
    qint16 LastStatus = 0;
    QString LastReply;
    double ItemPrice = 0.0;
    double ItemQty = 0.0;
    qint16 DiscountScope = 0; // 0 after an item (mod line), 1 on the subtotal (dis line)
    qint16 TableMode = 0;     // 0 no table, 1 table open, 2 moved or settled in parts
    qint16 TableFrom = 0;
    qint16 TableTo = 0;
    QString StoreSerial;
    qint16 StoreZ = 0;
    QList<clsTable> PendingVoids;
    bool PaymentDone = false;
    bool CommentAfterTotal = false;

    qint16 currentTable() const { return CurrentTable_; }
    qint16 lastTable() const { return LastTable_; }
    // Setting -1 over a real table remembers it in LastTable; setting a real
    // table clears LastTable; -1 over -1 leaves LastTable alone.
    void setCurrentTable(qint16 table)
    {
        if (table == -1 && CurrentTable_ != -1)
            LastTable_ = CurrentTable_;
        if (table != -1)
            LastTable_ = -1;
        CurrentTable_ = table;
    }

    double tableDiscount() const { return TableDiscount_ < 0 ? -TableDiscount_ : TableDiscount_; }
    void setTableDiscount(double amount) { TableDiscount_ = amount; }

private:
    qint16 CurrentTable_ = -1;
    qint16 LastTable_ = -1;
    double TableDiscount_ = 0.0;
};
