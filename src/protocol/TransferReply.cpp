#include "protocol/TransferReply.h"

#include <QStringList>
#include <optional>

namespace {
constexpr QChar kHalfMark = u'|';
constexpr QChar kPartMark = u'-';

// "<identifier>-<order>"
bool readHalf(const QString& half, qint32& identifier, qint16& order)
{
    const QStringList parts = half.split(kPartMark);
    if (parts.size() != 2)
        return false;
    bool idOk = false;
    bool orderOk = false;
    identifier = parts.at(0).trimmed().toInt(&idOk);
    order = parts.at(1).trimmed().toShort(&orderOk);
    return idOk && orderOk;
}

std::optional<TransferReply::MovedItem> readItem(const QString& field)
{
    const QStringList halves = field.split(kHalfMark);
    if (halves.size() != 2)
        return std::nullopt;
    TransferReply::MovedItem item;
    if (!readHalf(halves.at(0), item.sourceIdentifier, item.sourceOrder)
        || !readHalf(halves.at(1), item.destinationIdentifier, item.destinationOrder))
        return std::nullopt;
    return item;
}
} // namespace

QList<TransferReply::MovedItem> TransferReply::read(const DeviceReply& reply)
{
    QList<MovedItem> items;
    // The last field follows the closing "/" and is no item.
    for (qsizetype i = kFirstItemField; i < reply.fieldCount() - 1; ++i) {
        const QString field = reply.field(i);
        if (field.isEmpty())
            break;
        if (const std::optional<MovedItem> item = readItem(field))
            items << *item;
    }
    return items;
}
