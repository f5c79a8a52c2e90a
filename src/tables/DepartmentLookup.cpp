#include "tables/DepartmentLookup.h"

#include "config/RegionalNumber.h"
#include "config/VatFile.h"
#include "link/DeviceLink.h"
#include "operations/DeviceCommands.h"

#include <QStringList>

namespace {
constexpr int kDescriptionField = 3;
constexpr int kVatCategoryField = 4;
} // namespace

clsDepartmentInfo ReadDepartment(DeviceLink& link, qint16 department, const QString& vatsPath,
                                 const QLocale& locale)
{
    clsDepartmentInfo info;
    qint16 status = 0;
    QString reply;
    link.SendCommand(DeviceCommands::DepartmentData(department), status, reply);
    if (status != 0) {
        info.Result = -1;
        return info;
    }
    const QStringList fields = reply.split(QLatin1Char('/'));
    info.Result = 0;
    info.DepNumber = department;
    info.DepDesc = fields.value(kDescriptionField).trimmed();
    const int category = fields.value(kVatCategoryField).trimmed().toInt();
    const double rate = VatRateOfCategory(vatsPath, category - 1);
    info.DepVatRate = ParseRegionalNumber(VatBoxText(rate, locale), nullptr, locale);
    return info;
}
