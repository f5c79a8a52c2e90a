#include "protocol/DeviceReply.h"
#include "protocol/ReplyDecoder.h"

#include "DataFile.h"
#include "PrintQString.h"

#include <QSet>
#include <gtest/gtest.h>

namespace {

// Rows of decoded-replies.txt: the reply, whether the operator-busy bit is
// ignored, the status, the reply text after decoding and the outcome.
TEST(DecodeReply, DeviceCodesAndStatusBitsGiveTheirStatusTextAndOutcome)
{
    const QStringList outcomes = {"Success", "Refused", "Busy", "LinkLost", "NoReply"};
    const QStringList rows = DataLines("protocol/decoded-replies.txt");
    ASSERT_GT(rows.size(), 25);
    for (const QString& row : rows) {
        const QStringList cell = row.split(u'\t');
        SCOPED_TRACE(row.toStdString());
        ASSERT_EQ(cell.size(), 5);
        QString reply = cell[0];
        EXPECT_EQ(DecodeReply(reply, cell[1] == "yes"), cell[2].toInt());
        if (cell[3] != "*") {
            EXPECT_EQ(reply, cell[3] == "=" ? cell[0] : cell[3]);
        }
        if (cell[4] != "*") {
            EXPECT_EQ(int(DeviceReply::decode(cell[0], cell[1] == "yes").outcome()), outcomes.indexOf(cell[4]));
        }
    }
    QString framed = QStringLiteral("\x02\x06") + "06/00/00/" + QChar(0x03);
    EXPECT_EQ(DecodeReply(framed, false), 6);
    EXPECT_EQ(framed, "Λάθος Εντολή !");
}

// The register's code table lies in tests/data/device-codes.txt, row by row.
TEST(DecodeReply, EveryRowOfTheCodeTableGivesItsCodeAndTextAndNoOtherCodeHasText)
{
    QSet<int> listed;
    for (const QString& line : DataLines("device-codes.txt")) {
        const QString hex = line.section(u'\t', 0, 0);
        const QString text = line.section(u'\t', 1);
        const int code = hex.toInt(nullptr, 16);
        QString reply = hex + QStringLiteral("/00/00/");
        EXPECT_EQ(DecodeReply(reply, false), code) << hex.toStdString();
        EXPECT_EQ(reply, text) << hex.toStdString();
        EXPECT_EQ(DeviceCodeText(code), text) << hex.toStdString();
        listed.insert(code);
    }
    ASSERT_EQ(listed.size(), 176);
    for (int code = 1; code <= 255; ++code) {
        if (!listed.contains(code)) {
            EXPECT_TRUE(DeviceCodeText(code).isNull()) << code;
        }
    }
}

TEST(DeviceReply, StatusBytesAreReadAsHexadecimal)
{
    const DeviceReply poll = DeviceReply::decode(QStringLiteral("00/0A/12/"), false);
    EXPECT_EQ(std::tuple(poll.deviceCode(), poll.statusByte1(), poll.statusByte2()), std::tuple(0, 0x0A, 0x12));
    EXPECT_TRUE(poll.statusBitSet(2, 4)); // a receipt is open
    EXPECT_TRUE(poll.statusBitSet(1, 3));
    EXPECT_FALSE(poll.statusBitSet(1, 0));
    EXPECT_FALSE(poll.statusBitSet(3, 0));

    const DeviceReply odd = DeviceReply::fromStatusAndText(0, QStringLiteral("0/ZZ/1 /"));
    EXPECT_EQ(std::tuple(odd.deviceCode(), odd.statusByte1(), odd.statusByte2()), std::tuple(-1, -1, -1));
    EXPECT_FALSE(odd.statusBitSet(1, 0));
}

} // namespace
