#include "protocol/ReplyDecoder.h"

#include "protocol/LinkBytes.h"

#include <QHash>

using namespace Qt::StringLiterals;

namespace {

constexpr int kClassBusy = 0xFC;
constexpr int kClassOperatorBusy = 0xFB;
constexpr int kClassFault = 0xFF;
constexpr int kSuccessCode = 0xC4;

struct StatusBit {
    int byteIndex; // 1 or 2
    int bit;
    int code;
    const char16_t* text;
};

// In the order they are tested: the last set bit wins, so a fault of the
// printer overrides a busy.
constexpr StatusBit kStatusBits[] = {
    {2, 7, kClassBusy, u"/ EJ Απασχολημένο!"},
    {2, 2, kClassOperatorBusy, u"/ Ταμειακή απασχoλημένη απο Χειριστή..."},
    {1, 0, kClassBusy, u"/ Απασχολημένο !"},
    {1, 1, kClassBusy, u"/ EJ Απασχολημένη!"},
    {1, 2, kClassBusy, u"/ Tέλος Χαρτιού !"},
    {1, 4, kClassFault, u"/ Αποσυνδεδεμένος Εκτυπωτής!"},
    {1, 5, kClassFault, u"/ Πρόβλημα Φορολογικής μνήμης!"},
    {1, 6, kClassFault, u"/ Αποσυνδεδεμένος Εκτυπωτής!"},
    {1, 7, kClassFault, u"/ Πρόβλημα Κόψιμο Χαρτιου!"},
};

const QHash<int, QString>& codeTable()
{
    static const QHash<int, QString> table = {
#include "protocol/DeviceCodes.inc"
    };
    return table;
}

// Two hexadecimal digits at offset; -1 when they are missing or not hex.
int hexField(const QString& text, int offset)
{
    if (text.size() < offset + 2)
        return -1;
    bool ok = false;
    const int v = text.mid(offset, 2).toInt(&ok, 16);
    const bool digits = text.at(offset).isLetterOrNumber() && text.at(offset + 1).isLetterOrNumber();
    return ok && digits ? v : -1;
}

} // namespace

QString ByteToBits(quint32 value)
{
    return QString::number(value & 0xFF, 2).rightJustified(8, u'0');
}

QString DeviceCodeText(int code)
{
    return codeTable().value(code);
}

QString StripControlBytes(const QString& text)
{
    QString out = text;
    out.remove(QChar(linkbytes::STX));
    out.remove(QChar(linkbytes::ETX));
    out.remove(QChar(linkbytes::NACK));
    out.remove(QChar(linkbytes::ACK));
    return out;
}

qint16 DecodeReply(QString& reply, bool ignoreOperatorBusy)
{
    reply.remove(QChar(linkbytes::ACK));
    reply.remove(QChar(linkbytes::STX));
    reply.remove(QChar(linkbytes::ETX));

    const int deviceCode = hexField(reply, 0);
    const int status1 = hexField(reply, 3);
    const int status2 = hexField(reply, 6);
    if (deviceCode < 0 || status1 < 0 || status2 < 0) {
        reply = u"DEVICE ERROR:"_s + reply;
        return kStatusUnreadableReply;
    }

    int working = deviceCode;
    QString text = reply;
    for (const StatusBit& sb : kStatusBits) {
        const int value = sb.byteIndex == 1 ? status1 : status2;
        if (!(value & (1 << sb.bit)))
            continue;
        if (sb.code == kClassOperatorBusy && ignoreOperatorBusy)
            continue;
        working = sb.code;
        text = QString::fromUtf16(sb.text);
    }
    if (deviceCode != 0)
        working = deviceCode;
    if (working == 0)
        return 0;

    if (working == kSuccessCode)
        working = 0;
    const QString rowText = DeviceCodeText(working);
    if (!rowText.isNull())
        text = rowText;
    if (working == kClassOperatorBusy || working == kClassBusy)
        text = u"DEVICE STATUS:"_s + text;
    else if (working == kClassFault)
        text = u"DEVICE ERROR:"_s + text;
    reply = text;
    return static_cast<qint16>(working);
}
