#include "reports/MimeMessage.h"

#include "DataFile.h"
#include "MailText.h"
#include "PrintQString.h"

#include <QFile>
#include <QTimeZone>
#include <gtest/gtest.h>

namespace {

MimeMail zMail()
{
    MimeMail mail;
    mail.from = QStringLiteral("Κατάστημα <shop@example.gr>");
    mail.to = {QStringLiteral("z@acct.gr")};
    mail.subject = QStringLiteral("Αρχείο 'Ζ' 02/01/2026 10:20");
    mail.body = QStringLiteral("Γεια\nσας");
    mail.attachments = {{QStringLiteral("Z0123.out"), QByteArrayLiteral("POS,1\r\n")}};
    mail.date = QDateTime(QDate(2026, 1, 2), QTime(10, 20, 30), QTimeZone(7200));
    mail.messageId = QStringLiteral("id1@example.gr");
    mail.boundary = QByteArrayLiteral("BOUNDARY");
    return mail;
}

} // namespace

TEST(MimeMessage, ZMailWithAttachmentIsExactlyTheExpectedText)
{
    // The golden mail is kept with LF line ends; the wire has CRLF.
    const QByteArray expected = DataBytes(QStringLiteral("reports/zmail.eml")).replace("\n", "\r\n");
    EXPECT_EQ(BuildMimeMessage(zMail()), expected);
}

TEST(MimeMessage, HeaderTextFoldsIntoWholeCharacterWordsAndKeepsToOneHeader)
{
    EXPECT_EQ(EncodeHeaderText(QStringLiteral("Z file 0123")), QByteArray("Z file 0123"));
    EXPECT_EQ(EncodeHeaderText(QStringLiteral("a\r\nBcc: x@y.z")), QByteArray("a Bcc: x@y.z"));

    const QString subject = QStringLiteral("Βρείτε συνυμμένο το αρχείο του 'Ζ' με αριθμό 123 της ταμειακής μου 😀 τέλος");
    const QByteArray encoded = EncodeHeaderText(subject);
    EXPECT_GT(encoded.count("=?UTF-8?B?"), 3);
    for (const QByteArray& line : encoded.split('\n'))
        EXPECT_LE(QByteArray("Subject: ").size() + line.size(), 77) << line.constData();
    EXPECT_EQ(decodeHeaderWords(encoded), subject);
}
