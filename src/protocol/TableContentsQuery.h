#pragma once

#include "protocol/DeviceReply.h"

#include <QList>
#include <QString>
#include <QStringList>
#include <optional>

// "&/11/<table>//0/0///////////": what stands on a table, one item a field
// from field 4 on, its sub-fields separated by "|": its line order (the
// item's number), its identifier, description, quantity, amount, department
// and VAT rate, numbers written with a point.
struct TableContentsQuery {
    static constexpr int kFirstItemField = 4;
    static constexpr int kItemNumberSubField = 0;
    static constexpr int kItemIdentifierSubField = 1;
    static constexpr int kItemDescriptionSubField = 2;
    static constexpr int kItemQuantitySubField = 3;
    static constexpr int kItemAmountSubField = 4;
    static constexpr int kItemDepartmentSubField = 5;
    static constexpr int kItemVatRateSubField = 6;

    // One item as the register keeps it.
    struct Item {
        int lineOrder = 0;
        qint32 identifier = 0;
        QString description;
        double quantity = 0.0;
        double amount = 0.0;
        int department = 0;
        double vatRate = 0.0;
    };

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
        // Every item read whole; nothing when one of them lacks a line order,
        // an identifier or a quantity that reads as a number.
        std::optional<QList<Item>> wholeItems() const;
    };

    int table = 0;

    QString command() const;
    std::optional<Answer> read(const DeviceReply& reply) const;
};
