#pragma once

#include <QString>
#include <QtGlobal>

// The register's answer about one department.
struct clsDepartmentInfo {
    qint16 Result = 0; // 0 good, -1 the register refused the query
    qint16 DepNumber = 0;
    QString DepDesc;
    double DepVatRate = 0.0; // rate of the department's VAT category, from vats.dat
};
