#include "link/TcpExchange.h"

#include "link/LinkLogStamp.h"
#include "link/clsNet_TCP.h"
#include "protocol/ReplyDecoder.h"
#include "shell/CodePage.h"
#include "shell/CommunicationLog.h"

namespace {

const QString kNoReplyText = QStringLiteral("Ο Φορολ. Μηχανισμός δεν Απαντά σε εντολή !");

qint64 roundedToSecond(qint64 ms)
{
    return (ms + 500) / 1000 * 1000;
}

} // namespace

TcpExchange::TcpExchange(clsNet_TCP& net, Clock& clock, CommunicationLog& log)
    : net_(net)
    , clock_(clock)
    , log_(log)
{
}

void TcpExchange::log(const QString& text)
{
    log_.PrintCombine(LinkLogStamp(clock_) + text);
}

// Blocks until something is readable or the deadline passes.
bool TcpExchange::waitForReply(qint64 deadline)
{
    for (;;) {
        const qint64 left = deadline - clock_.monotonicMs();
        if (left <= 0)
            return false;
        Transport* connection = net_.connection();
        if (!connection) {
            clock_.sleepMs(left);
            return false;
        }
        if (connection->waitForData(static_cast<int>(left)))
            return true;
    }
}

DeviceReply TcpExchange::noReply(bool lost)
{
    return DeviceReply::linkFailure(kStatusNoReply, kNoReplyText,
                                    lost ? ReplyOutcome::LinkLost : ReplyOutcome::NoReply);
}

DeviceReply TcpExchange::run(const QString& command, bool ignoreOperatorBusy,
                             qint16 singleSendWaitSeconds)
{
    const QByteArray bytes = codepage::toWin1253(command);
    const bool sendOnce = singleSendWaitSeconds > 0;
    const qint64 replyWaitMs = sendOnce ? singleSendWaitSeconds * 1000LL : kReplyWaitMs;

    for (int sends = 0;;) {
        clock_.sleepMs(kBeforeSendMs);
        const bool sent = net_.SendData(bytes);
        // A payment gives the register time before anything is asked of it.
        if (command.startsWith(u'5'))
            clock_.sleepMs(kAfterPaymentSendMs);
        log(QStringLiteral(" send:     ") + command);
        const qint64 deadline = roundedToSecond(clock_.monotonicMs()) + replyWaitMs;
        if (waitForReply(deadline))
            break;
        if (sendOnce || ++sends >= kMaxSends)
            return noReply(!sent);
    }

    Transport* connection = net_.connection();
    const QByteArray received = connection ? connection->read(kMaxReplyBytes) : QByteArray();
    // Something was readable and nothing came: the register hung up.
    if (received.isEmpty())
        return noReply(true);
    const QString text = StripControlBytes(codepage::fromWin1253(received));
    log(QStringLiteral(" reply     ") + text);
    const DeviceReply reply = DeviceReply::decode(text, ignoreOperatorBusy);
    log(QStringLiteral(" exres     ") + reply.text());
    log(QStringLiteral(" -----------"));
    return reply;
}
