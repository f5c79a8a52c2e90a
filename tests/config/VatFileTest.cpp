#include "config/VatFile.h"

#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace {

const QLocale kGreek(QLocale::Greek, QLocale::Greece);
const QLocale kEnglish(QLocale::English, QLocale::UnitedStates);

class VatFileTest : public ::testing::Test {
protected:
    QTemporaryDir dir;
    QString path = dir.filePath("vats.dat");

    QByteArray bytes() const
    {
        QFile f(path);
        return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
    }
};

TEST_F(VatFileTest, RatesAreLittleEndianDoublesTheFormsWriterLeavesTheTailAndARateFindsItsCategory)
{
    ASSERT_EQ(WriteVatsFile(path, {6, 13, 24, 0, 0, 0}), 0);
    QByteArray file = bytes();
    ASSERT_EQ(file.size(), 48);
    EXPECT_EQ(file.mid(8, 8), QByteArray::fromHex("0000000000002a40")); // 13.0
    EXPECT_EQ(file.mid(40), QByteArray(8, '\0'));

    ASSERT_EQ(WriteVatsFile(path, {5.5, 13, 24, 4, 9}), 0);
    EXPECT_EQ(bytes().size(), 48);
    EXPECT_EQ(VatRateOfCategory(path, 0), 5.5);
    EXPECT_EQ(VatRateOfCategory(path, 4), 9.0);
    EXPECT_EQ(VatRateOfCategory(path, 5), 0.0);

    // A rate's category is the first that holds it exactly, under any locale.
    ASSERT_EQ(WriteVatsFile(path, {24, 13, 13, 6.5, 0, 0}), 0);
    for (const QLocale& locale : {kGreek, kEnglish}) {
        EXPECT_EQ(VatCategoryOfRate(path, 13, locale), 2);
        EXPECT_EQ(VatCategoryOfRate(path, 13.5, locale), 0);
        EXPECT_EQ(VatCategoryOfRate(path, 6.5, locale), 4);
        EXPECT_EQ(VatCategoryOfRate(path, 0, locale), 5);
    }
}

TEST_F(VatFileTest, AMissingOrShortFileReadsAsZerosAndAnUnreadableOneFails)
{
    VatRates rates{1, 1, 1, 1, 1};
    EXPECT_EQ(ReadVatsFile(path, rates), 0);
    EXPECT_EQ(rates, (VatRates{0, 0, 0, 0, 0}));
    EXPECT_TRUE(QFile::exists(path));

    QFile f(path);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly));
    f.write(QByteArray::fromHex("0000000000003840") + QByteArray(3, '\x7f')); // 24.0 and a torn tail
    f.close();
    EXPECT_EQ(ReadVatsFile(path, rates), 0);
    EXPECT_EQ(rates[0], 24.0);
    EXPECT_EQ(VatRateOfCategory(path, 2), 0.0);

    ASSERT_TRUE(QFile::remove(path));
    QDir(dir.path()).mkdir("vats.dat"); // a directory where the file should be
    EXPECT_EQ(ReadVatsFile(path, rates), -1);
    EXPECT_EQ(WriteVatsFile(path, {1, 2, 3, 4, 5}), -1);
    EXPECT_EQ(VatRateOfCategory(path, 0), 0.0);
    EXPECT_EQ(VatCategoryOfRate(path, 13), 0);
    EXPECT_EQ(VatCategoryOfRate(path, 0), 1);
}

TEST(VatBoxes, PointsBecomeCommasAndEveryBoxMustBeANumber)
{
    for (const QLocale& locale : {kGreek, kEnglish}) {
        QStringList boxes{"24", "13.5", "6,5", " 0 ", "17"};
        VatRates rates{};
        EXPECT_EQ(VatBoxesToArray(boxes, rates, locale), 0);
        EXPECT_EQ(boxes[1], "13,5");
        EXPECT_EQ(rates, (VatRates{24, 13.5, 6.5, 0, 17}));

        for (QStringList bad : {QStringList{"24", "x", "6", "0", "0"}, QStringList{"24", "13", "6", "", "0"}})
            EXPECT_EQ(VatBoxesToArray(bad, rates, locale), -1);
    }
    EXPECT_EQ(VatBoxText(6.5, kGreek), "6,5");
    EXPECT_EQ(VatBoxText(24, kEnglish), "24");
}

} // namespace
