#include "tables/DepartmentLookup.h"

#include "config/RegionalNumber.h"
#include "config/VatFile.h"
#include "link/DeviceLink.h"
#include "protocol/DepartmentQuery.h"

clsDepartmentInfo ReadDepartment(DeviceLink& link, qint16 department, const QString& vatsPath,
                                 const QLocale& locale)
{
    clsDepartmentInfo info;
    const auto answer = link.ask(DepartmentQuery{department});
    if (!answer) {
        info.Result = -1;
        return info;
    }
    info.Result = 0;
    info.DepNumber = department;
    info.DepDesc = answer->description;
    const double rate = VatRateOfCategory(vatsPath, answer->vatCategory - 1);
    info.DepVatRate = ParseRegionalNumber(VatBoxText(rate, locale), nullptr, locale);
    return info;
}
