#include "protocol/VatTableQuery.h"

#include "config/RegionalNumber.h"
#include "config/VatFile.h"
#include "protocol/DeviceCommands.h"

QString VatTableQuery::command() const
{
    return DeviceCommands::VatTable();
}

std::optional<QList<double>> VatTableQuery::read(const DeviceReply& reply) const
{
    if (!reply.ok())
        return std::nullopt;
    QList<double> rates(kVatCategories, 0.0);
    for (int i = 0; i < kVatCategories; ++i) {
        const QString text = DotToComma(reply.field(kFirstRateField + i).trimmed());
        if (!text.isEmpty())
            rates[i] = ParseRegionalNumber(text, nullptr, locale);
    }
    return rates;
}
