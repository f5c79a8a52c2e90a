#include "link/DeviceStatusClass.h"
#include "link/ReplyDecoder.h"

#include <QList>
#include <gtest/gtest.h>

namespace {

struct Decoded {
    qint16 status;
    QString reply;
};

Decoded decode(const QString& text, bool ignoreOperatorBusy = false)
{
    QString reply = text;
    const qint16 status = DecodeReply(reply, ignoreOperatorBusy);
    return {status, reply};
}

TEST(DecodeReply, DeviceCodesGiveTheirStatusAndTableText)
{
    EXPECT_EQ(decode("00/00/00/1/2/").status, 0);
    EXPECT_EQ(decode("00/00/00/1/2/").reply, "00/00/00/1/2/");
    EXPECT_EQ(decode("06/00/00/").status, 6);
    EXPECT_EQ(decode("06/00/00/").reply, "Λάθος Εντολή !");
    EXPECT_EQ(decode("2C/00/00/").status, 44);
    EXPECT_EQ(decode("2C/00/00/").reply, "Τέλος Χαρτοταινίας  'PAPEREND' !");
    EXPECT_EQ(decode("0A/00/00/").status, 10);
    EXPECT_EQ(decode("0A/00/00/").reply, "Λάθος αριθμός Χειριστή !");
    EXPECT_EQ(decode("cf/00/00/").reply, "EFTPOS payment in progress");
    // C4 is a success; C8 has no row and keeps the reply as it came.
    EXPECT_EQ(decode("C4/00/00/9/").status, 0);
    EXPECT_EQ(decode("C4/00/00/9/").reply, "C4/00/00/9/");
    EXPECT_EQ(decode("C8/00/00/").status, 200);
    EXPECT_EQ(decode("C8/00/00/").reply, "C8/00/00/");
}

TEST(DecodeReply, StatusBitsCountOnlyWithoutDeviceCodeAndTheLastSetBitWins)
{
    EXPECT_EQ(decode("00/04/00/").status, 252);
    EXPECT_EQ(decode("00/04/00/").reply, "DEVICE STATUS:/ Tέλος Χαρτιού !");
    EXPECT_EQ(decode("00/10/00/").status, 255);
    EXPECT_EQ(decode("00/10/00/").reply, "DEVICE ERROR:/ Αποσυνδεδεμένος Εκτυπωτής!");
    // Bits 0 and 4: the fault overrides the busy.
    EXPECT_EQ(decode("00/11/00/").reply, "DEVICE ERROR:/ Αποσυνδεδεμένος Εκτυπωτής!");
    EXPECT_EQ(decode("00/80/00/").reply, "DEVICE ERROR:/ Πρόβλημα Κόψιμο Χαρτιου!");
    EXPECT_EQ(decode("00/00/80/").reply, "DEVICE STATUS:/ EJ Απασχολημένο!");
    // Bit 3 of byte 1 and bit 4 of byte 2 mean nothing here.
    EXPECT_EQ(decode("00/08/10/").status, 0);
    // A device code wins over a bit; a code without a row keeps the bit's text.
    EXPECT_EQ(decode("2C/04/00/").status, 44);
    EXPECT_EQ(decode("2C/04/00/").reply, "Τέλος Χαρτοταινίας  'PAPEREND' !");
    EXPECT_EQ(decode("C8/04/00/").status, 200);
    EXPECT_EQ(decode("C8/04/00/").reply, "/ Tέλος Χαρτιού !");
}

TEST(DecodeReply, OperatorBusyBitUnlessIgnored)
{
    EXPECT_EQ(decode("00/00/04/").status, 251);
    EXPECT_EQ(decode("00/00/04/").reply,
              "DEVICE STATUS:/ Ταμειακή απασχoλημένη απο Χειριστή...");
    EXPECT_EQ(decode("00/00/04/", true).status, 0);
    EXPECT_EQ(decode("00/01/04/", true).status, 252);
}

TEST(DecodeReply, ControlBytesAreRemovedBeforeReading)
{
    const Decoded d = decode(QStringLiteral("\x02\x06") + "06/00/00/" + QChar(0x03));
    EXPECT_EQ(d.status, 6);
}

TEST(DecodeReply, UnreadableRepliesAreFaultsNotSuccess)
{
    for (const char* text : {"", "0", "00/00", "00/0", "ZZ/00/00/", "00/XY/00/", "00/00/ 1/"}) {
        const Decoded d = decode(text);
        EXPECT_EQ(d.status, kStatusUnreadableReply) << text;
        EXPECT_EQ(d.reply, QStringLiteral("DEVICE ERROR:") + text) << text;
    }
}

TEST(DeviceCodeTable, HasTheRowsAndNoOthers)
{
    int rows = 0;
    for (int code = 0; code < 256; ++code)
        rows += DeviceCodeText(code).isNull() ? 0 : 1;
    EXPECT_EQ(rows, 176);
    EXPECT_TRUE(DeviceCodeText(0x3B).isNull());
    EXPECT_TRUE(DeviceCodeText(0xC4).isNull());
    EXPECT_EQ(DeviceCodeText(0x0D), " Διάβασμα φορολ.μνήμης Υπέρβαση ανώτατου ορίου !");
    EXPECT_EQ(ByteToBits(5), "00000101");
    EXPECT_EQ(ByteToBits(0xFC), "11111100");
}

TEST(StatusClasses, WaitAndRetryAreExactlyTheirLists)
{
    const QList<int> wait = {26, 44, 54, 79, 93, 170, 193, 200, 207, 251, 252};
    const QList<int> retry = {26, 44, 54, 170, 251};
    for (int s = -300; s <= 300; ++s) {
        EXPECT_EQ(IsWaitStatus(qint16(s)), wait.contains(s)) << s;
        EXPECT_EQ(IsRetryStatus(qint16(s)), retry.contains(s)) << s;
    }
}

} // namespace
