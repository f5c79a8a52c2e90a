#pragma once

#include <QtGlobal>

// What one print job amounted to, as the register tells it at the job's end.
struct clsDocData {
    double recAmount = 0.0;     // amount of the receipt
    double ordAmount = 0.0;     // amount standing on the table
    qint16 recNumberDaily = 0;  // receipt number within the day; -1 not read
    qint32 recNumberProgr = 0;  // progressive receipt number; -1 not read
    qint16 ordNumber = 0;       // first sub-field of the table's last item
    qint16 tableNumber = 0;     // below 1: no table
};
