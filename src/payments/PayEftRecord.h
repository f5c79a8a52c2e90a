#pragma once

#include <QtGlobal>

// One row of the payment map, as it lies in payeft.dat: seven 16-bit
// little-endian fields. Flags hold -1 for true and 0 for false.
struct PayEftRecord {
    qint16 payId = 0;      // the application's payment number, also the slot
    qint16 ecrPayment = 0; // register payment that carries the card sale
    qint16 ecrEft = 0;     // register EFTPOS terminal, 1 to 12
    qint16 active = 0;     // card handling on
    qint16 preCollect = 0; // pre-collection
    qint16 retries = 0;    // extra attempts after the first
    qint16 altPayment = 0; // register payment taking over a failed card payment; 0 none

    static constexpr int kSize = 14;

    bool isActive() const { return active != 0; }
    bool isPreCollect() const { return preCollect != 0; }
};
