#pragma once

#include "protocol/DeviceReply.h"

#include <QList>
#include <QString>
#include <QStringList>
#include <optional>

// "5/99/0/ ///1/1/": the register's card transactions of the receipt, 14
// fields a transaction from field 3 on. The last data field is the card
// terminal's text about the last transaction.
struct EftOutcomeQuery {
    static constexpr int kFirstTransactionField = 3;
    static constexpr int kFieldsPerTransaction = 14;

    struct Answer {
        // Each transaction's 14 fields, by their position within it.
        QList<QStringList> transactions;
        // The terminal's text; empty when the reply is too short to hold one.
        QString lastText;
    };

    QString command() const;
    // Nothing when refused.
    std::optional<Answer> read(const DeviceReply& reply) const;
};
