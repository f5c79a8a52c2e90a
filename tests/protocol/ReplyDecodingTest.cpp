#include "protocol/DeviceReply.h"
#include "protocol/ReplyDecoder.h"

#include "DataFile.h"
#include "PrintQString.h"

#include <QSet>
#include <gtest/gtest.h>

namespace {

struct Case {
    QString text;
    bool ignoreOperatorBusy;
    qint16 status;
    QString reply; // null: the reply comes back as it went in
};

TEST(DecodeReply, DeviceCodesAndStatusBitsGiveTheirStatusAndText)
{
    const Case cases[] = {
        {"00/00/00/1/2/", false, 0, {}},
        {"cf/00/00/", false, 207, "EFTPOS payment in progress"},
        // C4 is a success; C8 has no row and keeps the reply as it came.
        {"C4/00/00/9/", false, 0, {}},
        {"C8/00/00/", false, 200, {}},
        // Bits count only without a device code, and the last set bit wins.
        {"00/04/00/", false, 252, "DEVICE STATUS:/ Tέλος Χαρτιού !"},
        {"00/10/00/", false, 255, "DEVICE ERROR:/ Αποσυνδεδεμένος Εκτυπωτής!"},
        {"00/11/00/", false, 255, "DEVICE ERROR:/ Αποσυνδεδεμένος Εκτυπωτής!"},
        {"00/80/00/", false, 255, "DEVICE ERROR:/ Πρόβλημα Κόψιμο Χαρτιου!"},
        {"00/00/80/", false, 252, "DEVICE STATUS:/ EJ Απασχολημένο!"},
        {"00/08/10/", false, 0, {}}, // bit 3 of byte 1 and bit 4 of byte 2 mean nothing
        // A device code wins over a bit; a code without a row keeps the bit's text.
        {"2C/04/00/", false, 44, "Τέλος Χαρτοταινίας  'PAPEREND' !"},
        {"C8/04/00/", false, 200, "/ Tέλος Χαρτιού !"},
        {"00/00/04/", false, 251, "DEVICE STATUS:/ Ταμειακή απασχoλημένη απο Χειριστή..."},
        {"00/00/04/", true, 0, {}},
        {"00/01/04/", true, 252, "DEVICE STATUS:/ Απασχολημένο !"},
        {QStringLiteral("\x02\x06") + "06/00/00/" + QChar(0x03), false, 6, "Λάθος Εντολή !"},
    };
    for (const Case& c : cases) {
        QString reply = c.text;
        EXPECT_EQ(DecodeReply(reply, c.ignoreOperatorBusy), c.status) << c.text.toStdString();
        EXPECT_EQ(reply, c.reply.isNull() ? c.text : c.reply) << c.text.toStdString();
    }
    for (const char* text : {"", "0", "00/00", "00/0", "ZZ/00/00/", "00/XY/00/", "00/00/ 1/"}) {
        QString reply = text;
        EXPECT_EQ(DecodeReply(reply, false), kStatusUnreadableReply) << text;
        EXPECT_EQ(reply, QStringLiteral("DEVICE ERROR:") + text) << text;
    }
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

TEST(DeviceReply, FieldsStandByPositionWhateverTheStatus)
{
    const DeviceReply sale = DeviceReply::decode(QStringLiteral("00/00/00/1045/3/"), false);
    EXPECT_TRUE(sale.ok());
    EXPECT_EQ(sale.text(), "00/00/00/1045/3/");
    EXPECT_EQ(sale.fieldCount(), 6);
    EXPECT_EQ(QStringList({sale.field(0), sale.field(3), sale.lastButOneField(), sale.field(9)}),
              QStringList({"00", "1045", "3", ""}));

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
    EXPECT_EQ(std::tuple(poll.deviceCode(), poll.statusByte1(), poll.statusByte2()), std::tuple(0, 0x0A, 0x12));
    EXPECT_TRUE(poll.statusBitSet(2, 4)); // a receipt is open
    EXPECT_TRUE(poll.statusBitSet(1, 3));
    EXPECT_FALSE(poll.statusBitSet(1, 0));
    EXPECT_FALSE(poll.statusBitSet(3, 0));

    const DeviceReply odd = DeviceReply::fromStatusAndText(0, QStringLiteral("0/ZZ/1 /"));
    EXPECT_EQ(std::tuple(odd.deviceCode(), odd.statusByte1(), odd.statusByte2()), std::tuple(-1, -1, -1));
    EXPECT_FALSE(odd.statusBitSet(1, 0));
}

TEST(DeviceReply, OutcomeTellsRefusalWaitLossAndSilenceApart)
{
    const std::pair<const char*, ReplyOutcome> decoded[] = {
        {"00/00/00/", ReplyOutcome::Success}, {"C4/00/00/", ReplyOutcome::Success},
        {"BA/00/00/", ReplyOutcome::Refused}, {"00/10/00/", ReplyOutcome::Refused},
        {"ZZ/00/00/", ReplyOutcome::Refused}, {"C1/00/00/", ReplyOutcome::Busy},
        {"CF/00/00/", ReplyOutcome::Busy},    {"1A/00/00/", ReplyOutcome::Busy},
        {"00/01/00/", ReplyOutcome::Busy},    {"00/00/04/", ReplyOutcome::Busy},
    };
    for (const auto& [reply, outcome] : decoded)
        EXPECT_EQ(DeviceReply::decode(QString::fromLatin1(reply), false).outcome(), outcome) << reply;

    const std::pair<qint16, ReplyOutcome> held[] = {
        {0, ReplyOutcome::Success}, {6, ReplyOutcome::Refused},   {255, ReplyOutcome::Refused},
        {207, ReplyOutcome::Busy},  {-4, ReplyOutcome::NoReply}, {-207, ReplyOutcome::LinkLost},
        {-6, ReplyOutcome::LinkLost}};
    for (const auto& [status, outcome] : held)
        EXPECT_EQ(DeviceReply::fromStatusAndText(status, QString()).outcome(), outcome) << status;
}

} // namespace
