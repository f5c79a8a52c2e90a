#include "operations/DeviceVatRates.h"

#include "config/VatFile.h"
#include "link/DeviceLink.h"
#include "protocol/VatTableQuery.h"

namespace {
constexpr int kRatesWritten = 6; // the start-up file carries a sixth, empty rate
} // namespace

qint16 ReadDeviceVatRates(DeviceLink& link, const QString& vatsPath, const QLocale& locale)
{
    const VatTableQuery query{locale};
    const DeviceReply reply = link.send(query.command(), {.quiet = true});
    const std::optional<QList<double>> rates = query.read(reply);
    if (!rates)
        return reply.status();
    QList<double> written = *rates;
    written.resize(kRatesWritten, 0.0);
    WriteVatsFile(vatsPath, written);
    return reply.status();
}
