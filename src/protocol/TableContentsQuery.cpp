#include "protocol/TableContentsQuery.h"

#include "protocol/DeviceCommands.h"

#include <QLocale>

namespace {
constexpr QChar kSubFieldMark = u'|';

double pointNumber(const QString& text, bool* ok = nullptr)
{
    return QLocale::c().toDouble(text.trimmed(), ok);
}
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
        sum += pointNumber(item.value(kItemAmountSubField));
    return sum;
}

std::optional<QList<TableContentsQuery::Item>> TableContentsQuery::Answer::wholeItems() const
{
    QList<Item> whole;
    for (const QStringList& fields : items) {
        if (fields.size() == 1 && fields.first().trimmed().isEmpty())
            continue;
        Item item;
        bool order = false;
        bool identifier = false;
        bool quantity = false;
        item.lineOrder = fields.value(kItemNumberSubField).trimmed().toInt(&order);
        item.identifier = fields.value(kItemIdentifierSubField).trimmed().toInt(&identifier);
        item.quantity = pointNumber(fields.value(kItemQuantitySubField), &quantity);
        if (!order || !identifier || !quantity)
            return std::nullopt;
        item.description = fields.value(kItemDescriptionSubField);
        item.amount = pointNumber(fields.value(kItemAmountSubField));
        item.department = fields.value(kItemDepartmentSubField).trimmed().toInt();
        item.vatRate = pointNumber(fields.value(kItemVatRateSubField));
        whole << item;
    }
    return whole;
}
