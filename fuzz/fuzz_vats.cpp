// vats.dat of any bytes: every category's rate, the category of each rate
// found, and the rates through the settings form's boxes and back.
#include "config/VatFile.h"

#include "support/FuzzScratch.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const QString path =
        fuzzing::writeScratchFile(QStringLiteral("vats.dat"), fuzzing::bytesOf(data, size));
    VatRates rates{};
    ReadVatsFile(path, rates);
    // A Greek desktop writes "," for the decimal mark, others ".".
    for (const QLocale& locale : {QLocale::c(), QLocale(QLocale::Greek, QLocale::Greece)}) {
        QStringList boxes;
        for (int i = 0; i < kVatCategories; ++i) {
            const double rate = VatRateOfCategory(path, i);
            VatCategoryOfRate(path, rate, locale);
            boxes << VatBoxText(rate, locale);
        }
        VatBoxesToArray(boxes, rates, locale);
    }
    return 0;
}
