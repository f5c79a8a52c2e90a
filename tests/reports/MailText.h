#pragma once

#include <QByteArray>
#include <QRegularExpression>
#include <QString>
#include <gtest/gtest.h>

// The text behind the RFC 2047 words of a header value, joined; fails the test
// on a word that is too long or a byte sequence cut inside a character.
inline QString decodeHeaderWords(const QByteArray& value)
{
    static const QRegularExpression word(QStringLiteral("=\\?UTF-8\\?B\\?([A-Za-z0-9+/=]*)\\?="));
    QString text;
    auto it = word.globalMatch(QString::fromLatin1(value));
    while (it.hasNext()) {
        const auto m = it.next();
        EXPECT_LE(m.capturedLength(), 75);
        const QByteArray bytes = QByteArray::fromBase64(m.captured(1).toLatin1());
        const QString piece = QString::fromUtf8(bytes);
        EXPECT_EQ(piece.toUtf8(), bytes) << "a character cut between two words";
        text += piece;
    }
    return text;
}

// The base64 lines of the part that follows the given header line.
inline QByteArray partPayload(const QByteArray& message, const QByteArray& headerLine)
{
    const qsizetype header = message.indexOf(headerLine);
    if (header < 0)
        return {};
    const qsizetype start = message.indexOf("\r\n\r\n", header) + 4;
    return message.mid(start, message.indexOf("\r\n--", start) - start);
}
