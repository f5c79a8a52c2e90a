#include "operations/DeviceVatRates.h"

#include "ScriptedLink.h"
#include "config/VatFile.h"

#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

TEST(DeviceVatRates, TheRegistersRatesReplaceTheFileUnderEitherLocaleAndARefusalKeepsIt)
{
    for (const QLocale& locale :
         {QLocale(QLocale::Greek, QLocale::Greece), QLocale(QLocale::English, QLocale::UnitedStates)}) {
        QTemporaryDir dir;
        const QString path = dir.filePath("vats.dat");
        ASSERT_EQ(WriteVatsFile(path, {1, 2, 3, 4, 5}), 0);
        ScriptedLink link;
        link.queue.push_back({-4, "silent"});
        EXPECT_EQ(ReadDeviceVatRates(link, path, locale), -4);
        EXPECT_EQ(QFile(path).size(), 40);

        link.queue.push_back({0, "0/00/00/6.00/13.00/24.00/0.00/17.50/"});
        EXPECT_EQ(ReadDeviceVatRates(link, path, locale), 0);
        ASSERT_EQ(link.sent.size(), 2);
        EXPECT_EQ(link.sent[1].command, "e/");
        EXPECT_TRUE(link.sent[1].quiet);
        EXPECT_EQ(QFile(path).size(), 48);
        VatRates rates{};
        ASSERT_EQ(ReadVatsFile(path, rates), 0);
        EXPECT_EQ(rates, (VatRates{6, 13, 24, 0, 17.5}));
    }
}
