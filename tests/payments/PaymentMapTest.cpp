#include "payments/PaymentMap.h"

#include "ScriptedOperator.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace {

class PaymentMapTest : public ::testing::Test {
protected:
    QTemporaryDir dir;
    QString path = dir.filePath("payeft.dat");
    ScriptedOperator op;
};

TEST_F(PaymentMapTest, RecordsLieInTheirOwnSlotByteForByte)
{
    PayEftRecord r;
    r.payId = 7;
    r.ecrPayment = 3;
    r.ecrEft = 2;
    r.active = -1;
    r.preCollect = 0;
    r.retries = 258;
    r.altPayment = 1;
    ASSERT_EQ(WritePayEftRecord(path, r), 0);

    QFile f(path);
    ASSERT_TRUE(f.open(QIODevice::ReadOnly));
    const QByteArray file = f.readAll();
    ASSERT_EQ(file.size(), 7 * 128);
    EXPECT_EQ(file.left(768), QByteArray(768, '\0'));
    EXPECT_EQ(file.mid(768, 14), QByteArray::fromHex("0700" "0300" "0200" "ffff" "0000" "0201" "0100"));
    EXPECT_EQ(file.mid(782), QByteArray(114, '\0'));

    PayEftRecord back;
    back.payId = 7;
    ASSERT_EQ(ReadPayEftRecord(path, back), 0);
    EXPECT_EQ(back.ecrEft, 2);
    EXPECT_EQ(back.retries, 258);
    EXPECT_TRUE(back.isActive());
}

TEST_F(PaymentMapTest, SlotsNeverWrittenAreOrdinaryPayments)
{
    PayEftRecord r;
    r.payId = 2;
    r.active = -1;
    ASSERT_EQ(WritePayEftRecord(path, r), 0);

    const PayEftRecord first = PaymentMapLookup(1, path, op);   // a gap before the written slot
    const PayEftRecord beyond = PaymentMapLookup(40, path, op); // past the end of the file
    EXPECT_FALSE(first.isActive());
    EXPECT_FALSE(beyond.isActive());
    EXPECT_EQ(beyond.payId, 0);
    EXPECT_TRUE(PaymentMapLookup(2, path, op).isActive());
    EXPECT_TRUE(op.messages.isEmpty());
}

TEST_F(PaymentMapTest, AMissingFileIsMadeEmptyOnFirstRead)
{
    PayEftRecord r;
    r.payId = 3;
    EXPECT_EQ(ReadPayEftRecord(path, r), 0);
    EXPECT_TRUE(QFile::exists(path));
    EXPECT_EQ(QFile(path).size(), 0);
}

TEST_F(PaymentMapTest, AnUnreadableMapOrABadNumberIsToldAndCountsAsNotActive)
{
    PaymentMapLookup(0, path, op);
    QDir(dir.path()).mkdir("payeft.dat");
    const PayEftRecord r = PaymentMapLookup(5, path, op);
    EXPECT_FALSE(r.isActive());
    EXPECT_FALSE(r.isPreCollect());
    ASSERT_EQ(op.messages.size(), 2);
    EXPECT_EQ(op.messages[1].title, "Μύνημα Kerbano");
    EXPECT_EQ(op.messages[1].text, "Αδυναμία ανάγνωσης παραμέτρων πληρωμών");
    EXPECT_EQ(op.messages[1].icon, Operator::Icon::Warning);

    PayEftRecord w;
    w.payId = 5;
    EXPECT_EQ(WritePayEftRecord(path, w), -1);
}

} // namespace
