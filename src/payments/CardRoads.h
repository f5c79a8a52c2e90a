#pragma once

#include "payments/PayEftRecord.h"
#include "payments/clsPayment.h"

#include <QString>
#include <functional>

// The card roads of a payment whose payment map record is active. The
// default sends nothing; the card subsystem puts its own in place.
class CardRoads {
public:
    virtual ~CardRoads() = default;

    // tot outside a table: the card road, or the pre-collection road when the
    // record says so. description is the payment text with "/" made "-", tag
    // the job's document tag, the same way.
    virtual void payInReceipt(const PayEftRecord& record, double amount, const QString& description,
                              const QString& tag)
    {
        Q_UNUSED(record) Q_UNUSED(amount) Q_UNUSED(description) Q_UNUSED(tag)
    }
    // The card road of a pay line outside a table. balance reads the balance
    // the register reports: once for the card, again for an alternative payment.
    virtual void payFromMapInReceipt(const PayEftRecord& record,
                                     const std::function<double()>& balance)
    {
        Q_UNUSED(record) Q_UNUSED(balance)
    }
    // The card part of a table's payment, once the table stands on the
    // register: its discount, the attempts, the alternative payment. True when
    // the table counts as paid, so that its order store rows may go.
    virtual bool payTableByCard(const PayEftRecord& record, const clsPayment& payment,
                                qint16 table, double tableDiscount)
    {
        Q_UNUSED(record) Q_UNUSED(payment) Q_UNUSED(table) Q_UNUSED(tableDiscount)
        return false;
    }
    // Behind the last line of a print file: the notice of a receipt whose card
    // payment an alternative payment replaced.
    virtual void PrintPendingPaymentNotice() {}
};
