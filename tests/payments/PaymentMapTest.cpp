#include "payments/PaymentMap.h"

#include "DataFile.h"
#include "PrintQString.h"
#include "ScriptedOperator.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QtEndian>
#include <gtest/gtest.h>

namespace {

class PaymentMapTest : public ::testing::Test {
protected:
    QTemporaryDir dir;
    QString path = dir.filePath("payeft.dat");
    ScriptedOperator op;
};

TEST_F(PaymentMapTest, AMissingFileIsMadeEmptyAndRecordsLieInTheirOwnSlotByteForByte)
{
    PayEftRecord r;
    r.payId = 3;
    EXPECT_EQ(ReadPayEftRecord(path, r), 0);
    EXPECT_TRUE(QFile::exists(path));
    EXPECT_EQ(QFile(path).size(), 0);

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
    EXPECT_EQ(std::tuple(back.ecrEft, back.retries, back.isActive()), std::tuple(qint16(2), qint16(258), true));
}

TEST_F(PaymentMapTest, SlotsNeverWrittenAreOrdinaryPayments)
{
    PayEftRecord r;
    r.payId = 2;
    r.active = -1;
    ASSERT_EQ(WritePayEftRecord(path, r), 0);

    // A gap before the written slot, the slot, past the end of the file.
    const PayEftRecord beyond = PaymentMapLookup(40, path, op);
    EXPECT_EQ((std::tuple(PaymentMapLookup(1, path, op).isActive(), PaymentMapLookup(2, path, op).isActive(),
                          beyond.isActive(), beyond.payId)),
              std::tuple(false, true, false, qint16(0)));
    EXPECT_TRUE(op.messages.isEmpty());
}

TEST_F(PaymentMapTest, AnUnreadableMapOrABadNumberIsToldAndCountsAsNotActive)
{
    PaymentMapLookup(0, path, op);
    QDir(dir.path()).mkdir("payeft.dat");
    const PayEftRecord r = PaymentMapLookup(5, path, op);
    EXPECT_EQ(std::tuple(r.isActive(), r.isPreCollect()), std::tuple(false, false));
    ASSERT_EQ(op.messages.size(), 2);
    EXPECT_EQ(std::tuple(op.messages[1].title, op.messages[1].text, op.messages[1].icon),
              std::tuple(QString("Μύνημα Kerbano"), QString("Αδυναμία ανάγνωσης παραμέτρων πληρωμών"),
                         Operator::Icon::Warning));

    PayEftRecord w;
    w.payId = 5;
    EXPECT_EQ(WritePayEftRecord(path, w), -1);
}

void writeBytes(const QString& path, const QByteArray& bytes)
{
    QFile f(path);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly | QIODevice::Truncate) && f.write(bytes) == bytes.size());
}

// A record's 14 bytes from its seven fields, laid out by hand as a damaged or
// foreign file would hold them.
QByteArray recordBytes(const QList<qint16>& fields)
{
    QByteArray bytes(14, '\0');
    for (int i = 0; i < 7; ++i)
        qToLittleEndian<qint16>(fields.value(i), bytes.data() + 2 * i);
    return bytes;
}

TEST_F(PaymentMapTest, AShortFileReadsZerosBehindItsEndAndAHugeOneOnlyItsSlot)
{
    writeBytes(path, QByteArray::fromHex("0100" "0300" "02")); // 5 bytes
    PayEftRecord r = PaymentMapLookup(1, path, op);
    EXPECT_EQ(std::tuple(r.payId, r.ecrPayment, r.ecrEft, r.isActive()), std::tuple(qint16(1), qint16(3), qint16(2), false));

    // 10 MB: a record far inside the file is read from its own slot.
    QByteArray big(10 * 1024 * 1024, '\0');
    big.replace((5000 - 1) * 128, 14, recordBytes({5000, 3, 12, -1, 0, 2, 10}));
    writeBytes(path, big);
    r = PaymentMapLookup(5000, path, op);
    EXPECT_EQ(std::tuple(r.isActive(), r.ecrEft, r.altPayment), std::tuple(true, qint16(12), qint16(10)));
    EXPECT_FALSE(PaymentMapLookup(4999, path, op).isActive());
    EXPECT_TRUE(op.messages.isEmpty());
}

TEST_F(PaymentMapTest, AnActiveRecordWithAFieldOutOfRangeIsAnOrdinaryPaymentToldOnce)
{
    const QStringList rows = DataLines(QStringLiteral("payments/payeft-slot-2.txt"));
    ASSERT_EQ(rows.size(), 12);
    for (const QString& row : rows) {
        QList<qint16> fields;
        for (const QString& field : row.split(u' '))
            fields << qint16(field.toInt());
        writeBytes(path, QByteArray(128, '\0') + recordBytes(fields));
        op.messages.clear();
        const PayEftRecord r = PaymentMapLookup(2, path, op);
        EXPECT_EQ(std::tuple(r.isActive(), r.isPreCollect()), std::tuple(false, false)) << row.toStdString();
        ASSERT_EQ(op.messages.size(), 1);
        EXPECT_EQ(op.messages[0].text, "Λάθος παράμετροι πληρωμής 2 στο payeft.dat: η πληρωμή γίνεται χωρίς EFTPOS");
    }

    // The edges of every range are good, and an inactive record is never judged.
    op.messages.clear();
    PayEftRecord edge;
    edge.payId = 2;
    edge.active = -1;
    edge.ecrPayment = 10;
    edge.ecrEft = 0; // "Ανενεργό" on the window: the register refuses it at each attempt
    edge.retries = 20;
    edge.preCollect = -1;
    ASSERT_EQ(WritePayEftRecord(path, edge), 0);
    EXPECT_TRUE(PaymentMapLookup(2, path, op).isPreCollect());
    PayEftRecord off;
    off.payId = 2;
    off.ecrEft = 99;
    ASSERT_EQ(WritePayEftRecord(path, off), 0);
    EXPECT_FALSE(PaymentMapLookup(2, path, op).isActive());
    EXPECT_TRUE(op.messages.isEmpty());
}

} // namespace
