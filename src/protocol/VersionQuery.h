#pragma once

#include "protocol/DeviceCommands.h"
#include "protocol/DeviceReply.h"

#include <QString>
#include <optional>

// "v/": the register's software versions.
struct VersionQuery {
    static constexpr int kPosField = 3;
    static constexpr int kProtocolField = 4;

    struct Answer {
        QString pos;
        QString protocol;
    };

    QString command() const { return DeviceCommands::Versions(); }
    std::optional<Answer> read(const DeviceReply& reply) const
    {
        if (!reply.ok())
            return std::nullopt;
        return Answer{reply.field(kPosField), reply.field(kProtocolField)};
    }
};
