#include "operations/DeviceVatRates.h"

#include "config/RegionalNumber.h"
#include "config/VatFile.h"
#include "link/DeviceLink.h"
#include "operations/DeviceCommands.h"

#include <QStringList>

namespace {
constexpr int kFirstRateField = 3;
constexpr int kRatesWritten = 6; // the start-up file carries a sixth, empty rate
} // namespace

qint16 ReadDeviceVatRates(DeviceLink& link, const QString& vatsPath, const QLocale& locale)
{
    qint16 status = 0;
    QString reply;
    link.SendCommand(DeviceCommands::VatTable(), status, reply, true);
    if (status != 0)
        return status;

    const QStringList fields = reply.split(QLatin1Char('/'));
    QList<double> rates(kRatesWritten, 0.0);
    for (int i = 0; i < kVatCategories; ++i) {
        // The register writes "24.00"; read with its point as the decimal
        // mark under any settings, so the file holds the register's number.
        const QString text = DotToComma(fields.value(kFirstRateField + i).trimmed());
        if (!text.isEmpty())
            rates[i] = ParseRegionalNumber(text, nullptr, locale);
    }
    WriteVatsFile(vatsPath, rates);
    return status;
}
