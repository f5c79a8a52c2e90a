#include "protocol/CurrentReceiptQuery.h"

#include "config/RegionalNumber.h"
#include "protocol/DeviceCommands.h"
#include "protocol/ReplyNumbers.h"

QString CurrentReceiptQuery::command() const
{
    return DeviceCommands::CurrentReceipt();
}

std::optional<CurrentReceiptQuery::Answer> CurrentReceiptQuery::read(const DeviceReply& reply) const
{
    const QString daily = reply.field(kDailyNumberField);
    if (!reply.ok() || !IsWholeNumber(daily))
        return std::nullopt;
    return Answer{static_cast<qint16>(daily.trimmed().toInt()),
                  ParseRegionalNumber(reply.field(kAmountField), nullptr, locale)};
}
