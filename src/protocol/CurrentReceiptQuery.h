#pragma once

#include "protocol/DeviceReply.h"

#include <QLocale>
#include <QString>
#include <optional>

// "9/": the receipt in hand: field 8 its number within the day, field 9 its
// amount.
struct CurrentReceiptQuery {
    static constexpr int kDailyNumberField = 8;
    static constexpr int kAmountField = 9;

    struct Answer {
        qint16 dailyNumber = 0;
        double amount = 0.0;
    };

    // The amount is read under these separators, whichever mark the register used.
    QLocale locale = QLocale::system();

    QString command() const;
    // Nothing when refused, or when the daily number is no whole number.
    std::optional<Answer> read(const DeviceReply& reply) const;
};
