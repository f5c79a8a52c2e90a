#pragma once

#include "protocol/DeviceCommands.h"
#include "protocol/DeviceReply.h"

#include <QString>
#include <optional>

// "?/" asked for the second status byte: its bit of value 16 is set while a
// document or a table visit is open on the register.
struct OpenDocumentQuery {
    static constexpr int kStatusByte = 2;
    static constexpr int kOpenBit = 4;

    QString command() const { return DeviceCommands::StatusProbe(); }
    // Nothing when the register refused or did not answer.
    std::optional<bool> read(const DeviceReply& reply) const
    {
        if (!reply.ok())
            return std::nullopt;
        return reply.statusBitSet(kStatusByte, kOpenBit);
    }
};
