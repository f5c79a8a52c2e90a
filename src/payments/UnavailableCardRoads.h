#pragma once

#include "payments/CardRoads.h"

class DeviceLink;

// Card payments through the register's EFTPOS terminals are not part of this
// driver yet. A print file that asks for one gets a message and no payment,
// so the receipt stays open on the register and nothing is charged twice.
class UnavailableCardRoads final : public CardRoads {
public:
    explicit UnavailableCardRoads(DeviceLink& link);

    void payInReceipt(const PayEftRecord& record, double amount, const QString& description,
                      const QString& tag) override;
    void payFromMapInReceipt(const PayEftRecord& record, double amount) override;

private:
    void tell();

    DeviceLink& link_;
};
