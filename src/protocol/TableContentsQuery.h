#pragma once

#include "protocol/DeviceReply.h"

#include <QList>
#include <QString>
#include <QStringList>
#include <optional>

// "&/11/<table>//0/0///////////": what stands on a table, one item a field
// from field 4 on, its sub-fields separated by "|": sub-field 0 its number,
// sub-field 4 its amount.
struct TableContentsQuery {
    static constexpr int kFirstItemField = 4;
    static constexpr int kItemNumberSubField = 0;
    static constexpr int kItemAmountSubField = 4;

    struct Answer {
        // The sub-fields of each item.
        QList<QStringList> items;
        // Sub-field 0 of the last field but one: the last item's number. A
        // table without items gives what stands in that field all the same.
        std::optional<QString> lastItemNumber;
        // Field 4 is not empty: the table holds items.
        bool holdsItems = false;

        // The items' amounts added up, each written with a point.
        double amount() const;
    };

    int table = 0;

    QString command() const;
    std::optional<Answer> read(const DeviceReply& reply) const;
};
