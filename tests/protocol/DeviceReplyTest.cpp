#include "protocol/DeviceReply.h"

#include "PrintQString.h"

#include <gtest/gtest.h>

namespace {

TEST(DeviceReply, FieldsStandByPositionWhateverTheStatus)
{
    const DeviceReply sale = DeviceReply::decode(QStringLiteral("00/00/00/1045/3/"), false);
    EXPECT_TRUE(sale.ok());
    EXPECT_EQ(sale.text(), "00/00/00/1045/3/");
    EXPECT_EQ(sale.fieldCount(), 6);
    EXPECT_EQ(sale.field(0), "00");
    EXPECT_EQ(sale.field(3), "1045");
    EXPECT_EQ(sale.field(4), "3");
    EXPECT_EQ(sale.lastButOneField(), "3");
    EXPECT_TRUE(sale.field(9).isEmpty());

    // A refusal carries the register's message, its fields the reply as it came.
    const DeviceReply refused = DeviceReply::decode(QStringLiteral("\x02" "2C/00/00/7/\x03"), false);
    EXPECT_EQ(refused.status(), 44);
    EXPECT_EQ(refused.text(), "Τέλος Χαρτοταινίας  'PAPEREND' !");
    EXPECT_EQ(refused.field(3), "7");

    // A link failure has the message and no fields.
    const DeviceReply lost = DeviceReply::linkFailure(-4, QStringLiteral("silent"), ReplyOutcome::NoReply);
    EXPECT_EQ(lost.fieldCount(), 1);
    EXPECT_TRUE(lost.lastButOneField().isEmpty());
}

TEST(DeviceReply, StatusBytesAreReadAsHexadecimal)
{
    const DeviceReply poll = DeviceReply::decode(QStringLiteral("00/0A/12/"), false);
    EXPECT_EQ(poll.deviceCode(), 0);
    EXPECT_EQ(poll.statusByte1(), 0x0A);
    EXPECT_EQ(poll.statusByte2(), 0x12);
    EXPECT_TRUE(poll.statusBitSet(2, 4)); // a receipt is open
    EXPECT_TRUE(poll.statusBitSet(1, 3));
    EXPECT_FALSE(poll.statusBitSet(1, 0));
    EXPECT_FALSE(poll.statusBitSet(3, 0));

    const DeviceReply odd = DeviceReply::fromStatusAndText(0, QStringLiteral("0/ZZ/1 /"));
    EXPECT_EQ(odd.deviceCode(), -1);
    EXPECT_EQ(odd.statusByte1(), -1);
    EXPECT_EQ(odd.statusByte2(), -1);
    EXPECT_FALSE(odd.statusBitSet(1, 0));
}

TEST(DeviceReply, OutcomeTellsRefusalWaitLossAndSilenceApart)
{
    const struct {
        const char* reply;
        ReplyOutcome outcome;
    } decoded[] = {
        {"00/00/00/", ReplyOutcome::Success},  {"C4/00/00/", ReplyOutcome::Success},
        {"BA/00/00/", ReplyOutcome::Refused},  {"00/10/00/", ReplyOutcome::Refused},
        {"ZZ/00/00/", ReplyOutcome::Refused},  {"C1/00/00/", ReplyOutcome::Busy},
        {"CF/00/00/", ReplyOutcome::Busy},     {"1A/00/00/", ReplyOutcome::Busy},
        {"00/01/00/", ReplyOutcome::Busy},     {"00/00/04/", ReplyOutcome::Busy},
    };
    for (const auto& c : decoded)
        EXPECT_EQ(DeviceReply::decode(QString::fromLatin1(c.reply), false).outcome(), c.outcome) << c.reply;

    const struct {
        qint16 status;
        ReplyOutcome outcome;
    } held[] = {{0, ReplyOutcome::Success}, {6, ReplyOutcome::Refused}, {255, ReplyOutcome::Refused},
                {207, ReplyOutcome::Busy},   {-4, ReplyOutcome::NoReply}, {-207, ReplyOutcome::LinkLost},
                {-6, ReplyOutcome::LinkLost}};
    for (const auto& c : held)
        EXPECT_EQ(DeviceReply::fromStatusAndText(c.status, QString()).outcome(), c.outcome) << c.status;
}

} // namespace
