#pragma once

#include "payments/PayEftRecord.h"

#include <QString>

// The card road of a receipt payment (tot outside a table, with an active
// payment map record). The default sends nothing; the card subsystem puts
// its own in place. description is the payment text with "/" made "-",
// tag the job's document tag.
class CardRoads {
public:
    virtual ~CardRoads() = default;
    virtual void payInReceipt(const PayEftRecord& record, double amount, const QString& description,
                              const QString& tag)
    {
        Q_UNUSED(record) Q_UNUSED(amount) Q_UNUSED(description) Q_UNUSED(tag)
    }
    // The card road of a pay line outside a table: amount is the balance the
    // register reports.
    virtual void payFromMapInReceipt(const PayEftRecord& record, double amount)
    {
        Q_UNUSED(record) Q_UNUSED(amount)
    }
};
