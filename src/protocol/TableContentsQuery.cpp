#include "protocol/TableContentsQuery.h"

#include "protocol/DeviceCommands.h"

#include <QLocale>

namespace {
constexpr QChar kSubFieldMark = u'|';
} // namespace

QString TableContentsQuery::command() const
{
    return DeviceCommands::TableContents(table);
}

std::optional<TableContentsQuery::Answer> TableContentsQuery::read(const DeviceReply& reply) const
{
    if (!reply.ok())
        return std::nullopt;
    Answer answer;
    answer.holdsItems = !reply.field(kFirstItemField).isEmpty();
    // The last field follows the closing "/" and is no item.
    for (qsizetype i = kFirstItemField; i < reply.fieldCount() - 1; ++i)
        answer.items << reply.field(i).split(kSubFieldMark);
    if (reply.fieldCount() >= 2)
        answer.lastItemNumber = reply.lastButOneField().split(kSubFieldMark).value(kItemNumberSubField);
    return answer;
}

double TableContentsQuery::Answer::amount() const
{
    double sum = 0.0;
    for (const QStringList& item : items)
        sum += QLocale::c().toDouble(item.value(kItemAmountSubField).trimmed());
    return sum;
}
