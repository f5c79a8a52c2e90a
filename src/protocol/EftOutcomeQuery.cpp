#include "protocol/EftOutcomeQuery.h"

#include "protocol/DeviceCommands.h"

#include <cmath>

namespace {
// The index of the last transaction is (highest field index - 4) / 14 - 1,
// rounded; a reply of fewer than 12 fields holds none.
constexpr int kCountOffset = 4;
} // namespace

QString EftOutcomeQuery::command() const
{
    return DeviceCommands::EftOutcomeQuery();
}

std::optional<EftOutcomeQuery::Answer> EftOutcomeQuery::read(const DeviceReply& reply) const
{
    if (!reply.ok())
        return std::nullopt;
    Answer answer;
    answer.lastText = reply.lastButOneField();
    const qsizetype highestIndex = reply.fieldCount() - 1;
    // Halves round to even.
    const int last = int(std::nearbyint(double(highestIndex - kCountOffset)
                                            / kFieldsPerTransaction
                                        - 1.0));
    for (int j = 0; j <= last; ++j) {
        QStringList fields;
        for (int k = 0; k < kFieldsPerTransaction; ++k)
            fields << reply.field(kFirstTransactionField + kFieldsPerTransaction * j + k);
        answer.transactions << fields;
    }
    return answer;
}
