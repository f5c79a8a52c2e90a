#include "link/TcpExchange.h"

#include "link/LinkLogStamp.h"
#include "link/clsNet_TCP.h"
#include "protocol/ReplyDecoder.h"
#include "shell/CodePage.h"
#include "shell/CommunicationLog.h"
#include "link/Transport.h"

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

void TcpExchange::dropStaleBytes()
{
    Transport* connection = net_.connection();
    if (!connection || connection->peerClosed())
        return;
    QByteArray stale;
    while (stale.size() < kMaxReplyBytes && connection->waitForData(0) && !connection->peerClosed()) {
        const QByteArray more = connection->read(kMaxReplyBytes);
        if (more.isEmpty())
            break;
        stale += more;
    }
    if (!stale.isEmpty())
        log(QStringLiteral(" Buf       ") + codepage::fromWin1253(stale));
}

// A reply whose last field is not closed yet waits for the rest up to the
// deadline; a closed one takes what follows within the serial read's silence.
QByteArray TcpExchange::readWholeReply(Transport& connection, qint64 deadline)
{
    QByteArray received = connection.read(kMaxReplyBytes);
    while (!received.isEmpty() && received.size() < kMaxReplyBytes) {
        const bool closed = StripControlBytes(codepage::fromWin1253(received)).endsWith(u'/');
        const qint64 left = deadline - clock_.monotonicMs();
        const int wait = closed ? kReplyTailSilenceMs : static_cast<int>(qMax<qint64>(0, left));
        if (wait <= 0 || !connection.waitForData(wait) || connection.peerClosed())
            break;
        const QByteArray more = connection.read(kMaxReplyBytes - received.size());
        if (more.isEmpty())
            break;
        received += more;
    }
    return received;
}

DeviceReply TcpExchange::run(const QString& command, bool ignoreOperatorBusy, int maxSends,
                             qint16 singleSendWaitSeconds)
{
    const QByteArray bytes = codepage::toWin1253(command);
    const bool sendOnce = singleSendWaitSeconds > 0;
    const qint64 replyWaitMs = sendOnce ? singleSendWaitSeconds * 1000LL : kReplyWaitMs;
    const int sendLimit = sendOnce ? 1 : maxSends;
    qint64 deadline = 0;

    for (int sends = 0;;) {
        clock_.sleepMs(kBeforeSendMs);
        dropStaleBytes();
        const bool sent = net_.SendData(bytes);
        // A payment gives the register time before anything is asked of it.
        if (command.startsWith(u'5'))
            clock_.sleepMs(kAfterPaymentSendMs);
        log(QStringLiteral(" send:     ") + command);
        deadline = roundedToSecond(clock_.monotonicMs()) + replyWaitMs;
        if (waitForReply(deadline))
            break;
        if (++sends >= sendLimit)
            return noReply(!sent);
    }

    Transport* connection = net_.connection();
    const QByteArray received = connection ? readWholeReply(*connection, deadline) : QByteArray();
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
