#pragma once

#include "protocol/DeviceReply.h"

#include <QString>
#include <optional>

// "9/" read in full, for checking what the register executed: field 3 the
// receipt's state (0 closed, 1 open, 2 in payment), 5 its total, 6 what was
// paid, 8 its number within the day, 9 the balance. Amounts in cents.
struct ReceiptFiguresQuery {
    static constexpr int kStateField = 3;
    static constexpr int kTotalField = 5;
    static constexpr int kPaidField = 6;
    static constexpr int kDailyNumberField = 8;
    static constexpr int kBalanceField = 9;

    struct Answer {
        bool open = false;
        qint64 totalCents = 0;
        qint64 paidCents = 0;
        int dailyNumber = 0;
        qint64 balanceCents = 0;
    };

    QString command() const;
    // Nothing when refused, or when a figure is not a number (a reply that
    // belongs to another command reads as nothing).
    std::optional<Answer> read(const DeviceReply& reply) const;
};
