#pragma once

#include "payments/CLSpAY.h"
#include "payments/clsEFT.h"

#include <QList>
#include <QString>
#include <QtGlobal>

class DeviceLink;

// A row of a list on the card windows: its text and the value stored behind it.
struct ListRow {
    QString text;
    qint16 value = 0;
};

// The register's terminals (slots 1 to 12) and payments (slots 1 to 10).
// 0 good, -1 when the register refused; the link has shown its status.
int ReadEftDevice(DeviceLink& link, int slot, clsEFT& terminal);
int ReadDevicePayment(DeviceLink& link, int slot, CLSpAY& payment);

// The two lists of the payment map's window, each beginning with "---"
// (value 0). Terminals keep their slot's position: an inactive one reads
// "Ανενεργό" and stores 0. Payments list the active ones of type 1, 3 or 4.
struct PaymentLists {
    QList<ListRow> terminals; // cmbECREFT
    QList<ListRow> payments;  // cmbECRPayment
};
PaymentLists FillPaymentLists(DeviceLink& link);

// The first row whose stored value equals value, else 0.
int getItembyData(const QList<ListRow>& list, qint16 value);
