#pragma once

#include "protocol/DeviceReply.h"

#include <QtGlobal>
#include <optional>

// The reply of a sale ("3/S/...") made on an open table: field 3 the item
// identifier the register gave the line, field 4 the line's order on the table.
struct SaleOnTableReply {
    static constexpr int kItemIdentifierField = 3;
    static constexpr int kLineOrderField = 4;

    qint32 itemIdentifier = 0;
    qint16 lineOrder = 0;

    // Nothing when the sale was refused; a field that is no number reads 0.
    static std::optional<SaleOnTableReply> read(const DeviceReply& reply)
    {
        if (!reply.ok())
            return std::nullopt;
        return SaleOnTableReply{reply.field(kItemIdentifierField).toInt(),
                                static_cast<qint16>(reply.field(kLineOrderField).toInt())};
    }
};
