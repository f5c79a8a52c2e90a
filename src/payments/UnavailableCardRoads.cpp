#include "payments/UnavailableCardRoads.h"

#include "link/DeviceLink.h"

namespace {
constexpr qint16 kCardRoadStatus = 99;
const QString kCardRoadText = QStringLiteral("Πληρωμή με κάρτα EFTPOS μη διαθέσιμη");
} // namespace

UnavailableCardRoads::UnavailableCardRoads(DeviceLink& link)
    : link_(link)
{
}

void UnavailableCardRoads::payInReceipt(const PayEftRecord&, double, const QString&, const QString&)
{
    tell();
}

void UnavailableCardRoads::payFromMapInReceipt(const PayEftRecord&, double)
{
    tell();
}

void UnavailableCardRoads::tell()
{
    link_.ShowDeviceMessage(kCardRoadStatus, kCardRoadText);
}
