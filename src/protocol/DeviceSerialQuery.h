#pragma once

#include "protocol/DeviceCommands.h"
#include "protocol/DeviceReply.h"

#include <QString>
#include <optional>

// "a/": who the register is. The identification text is field 5 and field 3
// joined in that order; its first three characters name the model.
struct DeviceSerialQuery {
    static constexpr int kModelField = 5;
    static constexpr int kNumberField = 3;

    QString command() const { return DeviceCommands::DeviceSerial(); }
    // Nothing when refused, or when the reply is too short to name the register.
    std::optional<QString> read(const DeviceReply& reply) const
    {
        if (!reply.ok() || reply.fieldCount() <= kModelField)
            return std::nullopt;
        return reply.field(kModelField) + reply.field(kNumberField);
    }
};
