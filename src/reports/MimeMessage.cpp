#include "reports/MimeMessage.h"

#include <QUuid>

namespace {

const QByteArray kCrLf = QByteArrayLiteral("\r\n");
// 39 bytes make 52 base64 characters, so that "Subject: " and one encoded
// word stay inside the 76 characters RFC 2047 allows a line.
constexpr int kWordBytes = 39;
constexpr int kBase64LineLength = 76;

bool isPlainAscii(const QString& text)
{
    for (const QChar c : text) {
        if (c.unicode() < 0x20 || c.unicode() > 0x7E)
            return false;
    }
    return true;
}

QString singleLine(QString text)
{
    text.replace(QLatin1String("\r\n"), QLatin1String(" "));
    text.replace(QLatin1Char('\r'), QLatin1Char(' '));
    text.replace(QLatin1Char('\n'), QLatin1Char(' '));
    return text;
}

QByteArray encodedWord(const QByteArray& utf8)
{
    return QByteArrayLiteral("=?UTF-8?B?") + utf8.toBase64() + QByteArrayLiteral("?=");
}

// A display name or parameter value: quoted when it is plain ASCII, else as
// RFC 2047 words (which take no quotes).
QByteArray quotedPhrase(const QString& text)
{
    if (!isPlainAscii(text))
        return EncodeHeaderText(text);
    QString escaped = text;
    escaped.replace(QLatin1Char('\\'), QLatin1String("\\\\"));
    escaped.replace(QLatin1Char('"'), QLatin1String("\\\""));
    return '"' + escaped.toLatin1() + '"';
}

QByteArray fromHeader(const QString& field)
{
    const QString line = singleLine(field).trimmed();
    const qsizetype open = line.indexOf(QLatin1Char('<'));
    if (open <= 0)
        return MailAddressOf(line).toUtf8();
    QString name = line.left(open).trimmed();
    if (name.size() >= 2 && name.startsWith(QLatin1Char('"')) && name.endsWith(QLatin1Char('"')))
        name = name.mid(1, name.size() - 2);
    return quotedPhrase(name) + " <" + MailAddressOf(line).toUtf8() + '>';
}

// RFC 2231 form of a file name that is not plain ASCII.
QByteArray extendedFileName(const QString& name)
{
    return QByteArrayLiteral("UTF-8''") + name.toUtf8().toPercentEncoding();
}

QByteArray attachmentPart(const MimeAttachment& a)
{
    const QString name = singleLine(a.fileName);
    const bool plain = isPlainAscii(name);
    QByteArray part;
    part += "Content-Type: application/octet-stream; name=" + quotedPhrase(name) + kCrLf;
    part += "Content-Transfer-Encoding: base64" + kCrLf;
    if (plain)
        part += "Content-Disposition: attachment; filename=" + quotedPhrase(name) + kCrLf;
    else
        part += "Content-Disposition: attachment; filename*=" + extendedFileName(name) + kCrLf;
    part += kCrLf;
    part += Base64Lines(a.content);
    return part;
}

QByteArray textPart(const QString& body)
{
    QString text = body;
    text.replace(QLatin1String("\r\n"), QLatin1String("\n"));
    text.replace(QLatin1Char('\r'), QLatin1Char('\n'));
    text.replace(QLatin1Char('\n'), QLatin1String("\r\n"));
    QByteArray part;
    part += "Content-Type: text/plain; charset=UTF-8" + kCrLf;
    part += "Content-Transfer-Encoding: base64" + kCrLf;
    part += kCrLf;
    part += Base64Lines(text.toUtf8());
    return part;
}

QByteArray headers(const MimeMail& mail)
{
    QStringList receivers;
    for (const QString& address : mail.to)
        receivers.append(MailAddressOf(address));
    QByteArray h;
    h += "Date: " + mail.date.toString(Qt::RFC2822Date).toLatin1() + kCrLf;
    h += "From: " + fromHeader(mail.from) + kCrLf;
    h += "To: " + receivers.join(QLatin1String(", ")).toUtf8() + kCrLf;
    h += "Subject: " + EncodeHeaderText(mail.subject) + kCrLf;
    h += "Message-ID: <" + mail.messageId.toLatin1() + '>' + kCrLf;
    h += "MIME-Version: 1.0" + kCrLf;
    return h;
}

} // namespace

QByteArray BuildMimeMessage(const MimeMail& mail)
{
    QByteArray message = headers(mail);
    if (mail.attachments.isEmpty())
        return message + textPart(mail.body);

    const QByteArray dashes = "--" + mail.boundary;
    message += "Content-Type: multipart/mixed; boundary=\"" + mail.boundary + '"' + kCrLf;
    message += kCrLf;
    message += dashes + kCrLf + textPart(mail.body);
    for (const MimeAttachment& a : mail.attachments)
        message += dashes + kCrLf + attachmentPart(a);
    message += dashes + "--" + kCrLf;
    return message;
}

QByteArray EncodeHeaderText(const QString& text)
{
    const QString line = singleLine(text);
    if (isPlainAscii(line))
        return line.toLatin1();

    // Words end between characters, never inside one character's bytes.
    QList<QByteArray> words;
    QByteArray current;
    for (qsizetype i = 0; i < line.size();) {
        const qsizetype width = line.at(i).isHighSurrogate() && i + 1 < line.size() ? 2 : 1;
        const QByteArray bytes = line.mid(i, width).toUtf8();
        if (current.size() + bytes.size() > kWordBytes) {
            words.append(encodedWord(current));
            current.clear();
        }
        current += bytes;
        i += width;
    }
    words.append(encodedWord(current));
    return words.join(kCrLf + ' ');
}

QByteArray Base64Lines(const QByteArray& data)
{
    const QByteArray encoded = data.toBase64();
    QByteArray lines;
    for (qsizetype at = 0; at < encoded.size(); at += kBase64LineLength)
        lines += encoded.mid(at, kBase64LineLength) + kCrLf;
    return lines;
}

QString MailAddressOf(const QString& field)
{
    const qsizetype open = field.indexOf(QLatin1Char('<'));
    const qsizetype close = field.indexOf(QLatin1Char('>'), open + 1);
    if (open >= 0 && close > open)
        return field.mid(open + 1, close - open - 1).trimmed();
    return field.trimmed();
}

QString NewMessageId(const QString& fromAddress)
{
    const qsizetype at = fromAddress.lastIndexOf(QLatin1Char('@'));
    const QString domain = at >= 0 && at + 1 < fromAddress.size() ? fromAddress.mid(at + 1)
                                                                  : QStringLiteral("kerbano.local");
    return QUuid::createUuid().toString(QUuid::WithoutBraces) + QLatin1Char('@') + domain;
}

QByteArray NewMimeBoundary()
{
    return "kerbano-" + QUuid::createUuid().toByteArray(QUuid::Id128);
}
