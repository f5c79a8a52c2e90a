#pragma once

#include "protocol/DeviceCommands.h"
#include "protocol/DeviceReply.h"

#include <QString>
#include <optional>

// "d/<department>": a department's description and the VAT category it
// sells under, counted from 1.
struct DepartmentQuery {
    static constexpr int kDescriptionField = 3;
    static constexpr int kVatCategoryField = 4;

    struct Answer {
        QString description;
        int vatCategory = 0;
    };

    int department = 0;

    QString command() const { return DeviceCommands::DepartmentData(department); }
    std::optional<Answer> read(const DeviceReply& reply) const
    {
        if (!reply.ok())
            return std::nullopt;
        return Answer{reply.field(kDescriptionField).trimmed(),
                      reply.field(kVatCategoryField).trimmed().toInt()};
    }
};
