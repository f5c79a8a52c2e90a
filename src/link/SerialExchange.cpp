#include "link/SerialExchange.h"

#include "link/LinkLogStamp.h"
#include "link/Transport.h"
#include "protocol/LinkBytes.h"
#include "protocol/ReplyDecoder.h"
#include "shell/CodePage.h"
#include "shell/CommunicationLog.h"

namespace {

qint64 roundedToSecond(qint64 ms)
{
    return (ms + 500) / 1000 * 1000;
}

QString drainedText(QString text)
{
    text.replace(QChar(linkbytes::ACK), QStringLiteral("<ACK>"));
    text.replace(QChar(linkbytes::NACK), QStringLiteral("<NACK>"));
    return text;
}

} // namespace

SerialExchange::SerialExchange(Transport& port, Clock& clock, CommunicationLog& log)
    : port_(port)
    , clock_(clock)
    , log_(log)
{
}

void SerialExchange::log(const QString& text)
{
    log_.PrintCombine(LinkLogStamp(clock_) + text);
}

qint64 SerialExchange::SerialWrite(const QString& text)
{
    if (text.size() > kComBufferBytes) {
        SerialWrite(text.left(kComBufferBytes));
        return SerialWrite(text.mid(kComBufferBytes));
    }
    return port_.write(codepage::toWin1253(text));
}

QString SerialExchange::SerialRead()
{
    return codepage::fromWin1253(port_.read(kComBufferBytes));
}

void SerialExchange::DrainLink()
{
    const QString rest = SerialRead();
    if (!rest.isEmpty())
        log(QStringLiteral(" Buf       ") + drainedText(rest));
}

DeviceReply SerialExchange::noEnqAnswer()
{
    return DeviceReply::linkFailure(kStatusNoEnqAnswer,
                                    QStringLiteral("Αναμονή Απόκρισης Ταμειακής..."),
                                    ReplyOutcome::LinkLost);
}

DeviceReply SerialExchange::run(const QString& frame, qint16& timeoutSeconds,
                                bool ignoreOperatorBusy, int maxFrames, bool sendOnce)
{
    if (timeoutSeconds == 0)
        timeoutSeconds = kDefaultEnqWaitSeconds;
    const qint64 replyWaitMs = sendOnce ? timeoutSeconds * 1000LL : kReplyWaitMs;
    const qint64 enqDeadline = roundedToSecond(clock_.monotonicMs()) + timeoutSeconds * 1000LL;
    QString enqAnswer;
    QString buffer;
    int framesSent = 0;
    int silentFrames = 0;

    for (;;) {
        SerialWrite(QString(QChar(linkbytes::ENQ)));
        log(QStringLiteral(" ENQ"));
        clock_.sleepMs(kAfterEnqMs);

        // Any byte at all answers the ENQ; on a resend the old answer stands.
        while (enqAnswer.isEmpty()) {
            enqAnswer = SerialRead();
            log(QStringLiteral(" RAW       ") + enqAnswer);
            if (clock_.monotonicMs() > enqDeadline) {
                DrainLink();
                return noEnqAnswer();
            }
        }

        SerialWrite(frame);
        log(QStringLiteral(" send:     ") + frame);
        // Bytes that arrive do not extend the deadline of a frame.
        const qint64 replyDeadline = clock_.monotonicMs() + replyWaitMs;
        const qsizetype frameStart = buffer.size();
        bool complete = false;
        for (;;) {
            if (!buffer.isEmpty() && buffer.back() == QChar(linkbytes::ETX)) {
                complete = true;
                break;
            }
            buffer += SerialRead();
            if (clock_.monotonicMs() >= replyDeadline)
                break;
        }
        if (complete)
            break;

        if (!buffer.mid(frameStart).contains(QChar(linkbytes::NACK)))
            ++silentFrames;
        if (sendOnce || ++framesSent >= kMaxFrames || silentFrames >= maxFrames)
            return DeviceReply::linkFailure(
                kStatusNoReply, QStringLiteral("Ο Φορολ. Εκτυπωτής δεν Απαντά σε εντολή !"),
                ReplyOutcome::NoReply);
    }

    port_.write(QByteArray(1, linkbytes::ACK));
    const QString received = StripControlBytes(buffer);
    log(QStringLiteral(" reply     ") + received);
    const DeviceReply reply = DeviceReply::decode(received, ignoreOperatorBusy);
    log(QStringLiteral(" exres     ") + reply.text());
    log(QStringLiteral(" -----------"));
    DrainLink();
    return reply;
}
