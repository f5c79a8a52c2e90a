#include "protocol/ReplyDecoder.h"

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
        {"06/00/00/", false, 6, "Λάθος Εντολή !"},
        {"2C/00/00/", false, 44, "Τέλος Χαρτοταινίας  'PAPEREND' !"},
        {"0A/00/00/", false, 10, "Λάθος αριθμός Χειριστή !"},
        {"0D/00/00/", false, 13, " Διάβασμα φορολ.μνήμης Υπέρβαση ανώτατου ορίου !"},
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
}

TEST(DecodeReply, UnreadableRepliesAreFaultsNotSuccess)
{
    for (const char* text : {"", "0", "00/00", "00/0", "ZZ/00/00/", "00/XY/00/", "00/00/ 1/"}) {
        QString reply = text;
        EXPECT_EQ(DecodeReply(reply, false), kStatusUnreadableReply) << text;
        EXPECT_EQ(reply, QStringLiteral("DEVICE ERROR:") + text) << text;
    }
}

} // namespace
