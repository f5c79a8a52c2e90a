#pragma once

#include "protocol/DeviceCommands.h"
#include "protocol/DeviceReply.h"
#include "protocol/ReplyNumbers.h"

#include <QString>
#include <optional>

// "i/": the register's counters: field 5 the number of the last Z, field 6
// the progressive receipt counter.
struct CountersQuery {
    static constexpr int kLastZField = 5;
    static constexpr int kReceiptCounterField = 6;

    struct Answer {
        qint32 lastZ = 0;                      // 0 when no number
        std::optional<qint32> receiptCounter; // nothing when no whole number
    };

    QString command() const { return DeviceCommands::Counters(); }
    std::optional<Answer> read(const DeviceReply& reply) const
    {
        if (!reply.ok())
            return std::nullopt;
        Answer answer;
        answer.lastZ = reply.field(kLastZField).trimmed().toInt();
        const QString counter = reply.field(kReceiptCounterField);
        if (IsWholeNumber(counter))
            answer.receiptCounter = counter.trimmed().toInt();
        return answer;
    }
};
