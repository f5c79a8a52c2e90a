#pragma once

#include <QString>
#include <QtGlobal>

// What the register says about one of its EFTPOS terminals.
struct clsEFT {
    qint16 EFT_Payment = 0; // not filled by the terminal's read
    QString EFT_Name;
    QString EFT_IP;
    bool EFT_active = false;
};
