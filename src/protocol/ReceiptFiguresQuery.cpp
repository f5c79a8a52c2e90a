#include "protocol/ReceiptFiguresQuery.h"

#include "protocol/DeviceCommands.h"

#include <cmath>

namespace {

std::optional<qint64> centsOf(const QString& field)
{
    bool ok = false;
    const double value = field.trimmed().toDouble(&ok);
    if (!ok)
        return std::nullopt;
    return std::llround(value * 100.0);
}

} // namespace

QString ReceiptFiguresQuery::command() const
{
    return DeviceCommands::CurrentReceipt();
}

std::optional<ReceiptFiguresQuery::Answer> ReceiptFiguresQuery::read(const DeviceReply& reply) const
{
    if (!reply.ok())
        return std::nullopt;
    bool stateOk = false;
    bool dailyOk = false;
    const int state = reply.field(kStateField).trimmed().toInt(&stateOk);
    const int daily = reply.field(kDailyNumberField).trimmed().toInt(&dailyOk);
    const auto total = centsOf(reply.field(kTotalField));
    const auto paid = centsOf(reply.field(kPaidField));
    const auto balance = centsOf(reply.field(kBalanceField));
    if (!stateOk || !dailyOk || !total || !paid || !balance)
        return std::nullopt;
    return Answer{state != 0, *total, *paid, daily, *balance};
}
