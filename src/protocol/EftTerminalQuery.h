#pragma once

#include "protocol/DeviceCommands.h"
#include "protocol/DeviceReply.h"

#include <QString>
#include <optional>

// ",/11/<slot>/": one of the register's EFTPOS terminals: field 3 active (a
// whole number, non-zero is true), 4 its address, 6 its name.
struct EftTerminalQuery {
    static constexpr int kActiveField = 3;
    static constexpr int kAddressField = 4;
    static constexpr int kNameField = 6;

    struct Answer {
        bool active = false;
        QString address;
        QString name;
    };

    int slot = 0;

    QString command() const { return DeviceCommands::EftTerminalDefinition(slot); }
    std::optional<Answer> read(const DeviceReply& reply) const
    {
        if (!reply.ok())
            return std::nullopt;
        return Answer{reply.field(kActiveField).trimmed().toInt() != 0, reply.field(kAddressField),
                      reply.field(kNameField)};
    }
};

// "y/<slot>/": one of the register's payments: field 3 its name, 6 its flag
// mask (the first flag is the payment's activity), 7 its type.
struct PaymentDefinitionQuery {
    static constexpr int kNameField = 3;
    static constexpr int kFlagsField = 6;
    static constexpr int kTypeField = 7;

    struct Answer {
        QString name;
        bool active = false;
        qint16 type = 0;
    };

    int slot = 0;

    QString command() const { return DeviceCommands::PaymentDefinition(slot); }
    std::optional<Answer> read(const DeviceReply& reply) const
    {
        if (!reply.ok())
            return std::nullopt;
        const QString flags = reply.field(kFlagsField);
        const bool active = !flags.isEmpty() && flags.at(0).digitValue() > 0;
        return Answer{reply.field(kNameField).trimmed(), active,
                      static_cast<qint16>(reply.field(kTypeField).trimmed().toInt())};
    }
};
