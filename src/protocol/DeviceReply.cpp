#include "protocol/DeviceReply.h"

#include "protocol/DeviceStatusClass.h"
#include "protocol/ReplyDecoder.h"

namespace {
constexpr qint16 kStatusNoReply = -4;
constexpr int kStatusByteDigits = 2;
} // namespace

ReplyOutcome OutcomeOfStatus(qint16 status)
{
    if (status == 0)
        return ReplyOutcome::Success;
    if (status == kStatusNoReply)
        return ReplyOutcome::NoReply;
    if (status < 0)
        return ReplyOutcome::LinkLost;
    return IsWaitStatus(status) ? ReplyOutcome::Busy : ReplyOutcome::Refused;
}

DeviceReply::DeviceReply(qint16 status, QString text, ReplyOutcome outcome, const QString& received)
    : status_(status)
    , text_(std::move(text))
    , outcome_(outcome)
    , fields_(received.split(u'/'))
{
}

DeviceReply DeviceReply::decode(const QString& received, bool ignoreOperatorBusy)
{
    QString text = received;
    const qint16 status = DecodeReply(text, ignoreOperatorBusy);
    return DeviceReply(status, std::move(text), OutcomeOfStatus(status), StripControlBytes(received));
}

DeviceReply DeviceReply::linkFailure(qint16 status, const QString& message, ReplyOutcome outcome)
{
    return DeviceReply(status, message, outcome, QString());
}

DeviceReply DeviceReply::fromStatusAndText(qint16 status, const QString& text)
{
    return DeviceReply(status, text, OutcomeOfStatus(status), text);
}

int DeviceReply::hexField(qsizetype index) const
{
    const QString digits = field(index);
    if (digits.size() != kStatusByteDigits)
        return -1;
    bool ok = false;
    const int value = digits.toInt(&ok, 16);
    const bool plain = digits.at(0).isLetterOrNumber() && digits.at(1).isLetterOrNumber();
    return ok && plain ? value : -1;
}

bool DeviceReply::statusBitSet(int statusByte, int bit) const
{
    const int value = statusByte == 1 ? statusByte1() : statusByte == 2 ? statusByte2() : -1;
    return value >= 0 && (value & (1 << bit)) != 0;
}
