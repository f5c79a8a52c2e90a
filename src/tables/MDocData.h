#pragma once

#include "tables/ClsDocData.h"

#include <QLocale>
#include <QString>

class DeviceLink;

// mDocData: asks the register what a finished job amounted to. Each figure is
// asked for on its own, so one refused query does not lose the others.
class mDocData {
public:
    explicit mDocData(DeviceLink& link, QLocale locale = QLocale::system());

    clsDocData BuildDocData(qint16 table);
    // The amount of the receipt in hand; 0 when the query fails.
    double ReadRemainingAmount();
    // 0 good, -1 not read; keeps the daily number and the amount.
    qint16 ReadReceiptTotals();
    // Field 6 minus field 5 of the counters; -1 not read.
    qint32 ReadProgressiveBase();
    // The table's amount with two decimals in the regional form; "0.00" for none.
    QString ReadTableAmount(qint16 table);
    // First sub-field of the table's last item; "-1" when not read.
    QString ReadTableLastItem(qint16 table);

private:
    DeviceLink& link_;
    QLocale locale_;
    qint16 dailyNumber_ = 0;
    double receiptAmount_ = 0.0;
};
