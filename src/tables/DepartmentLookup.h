#pragma once

#include "tables/ClsDepartmentInfo.h"

#include <QLocale>
#include <QString>

class DeviceLink;

// Asks the register for a department: its description and, through the VAT
// category it names, the rate kept in vats.dat.
clsDepartmentInfo ReadDepartment(DeviceLink& link, qint16 department, const QString& vatsPath,
                                 const QLocale& locale = QLocale::system());
