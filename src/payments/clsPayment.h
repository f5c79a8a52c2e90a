#pragma once

#include <QString>
#include <QtGlobal>

// One payment in flight while a table is being paid.
struct clsPayment {
    qint16 nPayment = 0; // the application's payment number
    double Amount = 0.0;
    QString Desc;
};
