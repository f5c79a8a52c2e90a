#include "link/TcpExchange.h"

#include "link/LinkLogStamp.h"
#include "link/ReplyDecoder.h"
#include "link/clsNet_TCP.h"
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

void TcpExchange::run(const QString& command, qint16& status, QString& reply,
                      bool ignoreOperatorBusy)
{
    status = 0;
    reply.clear();
    const QByteArray bytes = codepage::toWin1253(command);

    for (int sends = 0;;) {
        clock_.sleepMs(kBeforeSendMs);
        net_.SendData(bytes);
        // A payment gives the register time before anything is asked of it.
        if (command.startsWith(u'5'))
            clock_.sleepMs(kAfterPaymentSendMs);
        log(QStringLiteral(" send:     ") + command);
        const qint64 deadline = roundedToSecond(clock_.monotonicMs()) + kReplyWaitMs;
        if (waitForReply(deadline))
            break;
        status = kStatusNoReply;
        if (++sends >= kMaxSends) {
            reply = kNoReplyText;
            return;
        }
    }

    Transport* connection = net_.connection();
    const QByteArray received = connection ? connection->read(kMaxReplyBytes) : QByteArray();
    if (received.isEmpty()) {
        status = kStatusNoReply;
        reply = kNoReplyText;
        return;
    }
    reply = StripControlBytes(codepage::fromWin1253(received));
    log(QStringLiteral(" reply     ") + reply);
    status = DecodeReply(reply, ignoreOperatorBusy);
    log(QStringLiteral(" exres     ") + reply);
    log(QStringLiteral(" -----------"));
}
