#include "config/VatFile.h"

#include "config/RegionalNumber.h"

#include "shell/FileProcedures.h"

#include <QFile>
#include <QtEndian>

namespace {

constexpr qint64 kRateSize = 8;
}

int ReadVatsFile(const QString& path, VatRates& rates)
{
    QFile file(path);
    if (!mFile::OpenCreatingForRead(file))
        return -1;
    QByteArray bytes = file.read(kRateSize * kVatCategories);
    if (bytes.isNull() && file.error() != QFileDevice::NoError)
        return -1;
    bytes.append(QByteArray(kRateSize * kVatCategories - bytes.size(), '\0'));
    for (int i = 0; i < kVatCategories; ++i)
        rates[i] = qFromLittleEndian<double>(bytes.constData() + i * kRateSize);
    return 0;
}

int WriteVatsFile(const QString& path, const QList<double>& rates)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadWrite))
        return -1;
    QByteArray bytes(rates.size() * kRateSize, '\0');
    for (qsizetype i = 0; i < rates.size(); ++i)
        qToLittleEndian<double>(rates[i], bytes.data() + i * kRateSize);
    return file.write(bytes) == bytes.size() ? 0 : -1;
}

double VatRateOfCategory(const QString& path, int index)
{
    VatRates rates{};
    if (index < 0 || index >= kVatCategories || ReadVatsFile(path, rates) != 0)
        return 0.0;
    return rates[index];
}

QString VatBoxText(double rate, const QLocale& locale)
{
    return clsRegional(locale).plainText(rate);
}

int VatCategoryOfRate(const QString& path, double rate, const QLocale& locale)
{
    for (int category = 1; category <= kVatCategories; ++category) {
        const double held = VatRateOfCategory(path, category - 1);
        if (ParseRegionalNumber(VatBoxText(held, locale), nullptr, locale) == rate)
            return category;
    }
    return 0;
}

int VatBoxesToArray(QStringList& boxes, VatRates& rates, const QLocale& locale)
{
    const clsRegional regional(locale);
    while (boxes.size() < kVatCategories)
        boxes.append(QString());
    for (int i = 0; i < kVatCategories; ++i) {
        boxes[i] = DotToComma(boxes[i]);
        // The box's comma is its decimal mark, whatever the settings say.
        QString plain = boxes[i].trimmed();
        plain.replace(QLatin1Char(','), regional.getOSCurrenrcy_Decimal_Sep());
        bool ok = false;
        const double value = locale.toDouble(plain, &ok);
        if (!ok)
            return -1;
        rates[i] = value;
    }
    return 0;
}
