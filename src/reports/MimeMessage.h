#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QList>
#include <QString>
#include <QStringList>

// The mail as it goes over the wire: RFC 5322 headers, Greek texts in UTF-8
// (RFC 2047 words in the subject, base64 in the body), each attachment as
// application/octet-stream in base64 under its file name, CR LF line ends.
struct MimeAttachment {
    QString fileName;
    QByteArray content;
};

struct MimeMail {
    QString from;       // "address" or "Name <address>"
    QStringList to;     // addresses
    QString subject;
    QString body;
    QList<MimeAttachment> attachments;
    QDateTime date;
    QString messageId;  // without the angle brackets
    QByteArray boundary; // separates the parts when there are attachments
};

QByteArray BuildMimeMessage(const MimeMail& mail);

// A header value: as it is when it is plain ASCII, else RFC 2047 UTF-8
// words, none longer than 75 characters, one to a folded line.
QByteArray EncodeHeaderText(const QString& text);
// Base64 in lines of 76 characters, each closed by CR LF.
QByteArray Base64Lines(const QByteArray& data);

// The bare address of "Name <address>" or of "address".
QString MailAddressOf(const QString& field);
// Fresh values for each mail.
QString NewMessageId(const QString& fromAddress);
QByteArray NewMimeBoundary();
