#include "link/TcpBackend.h"

#include "link/TcpExchange.h"

TcpBackend::TcpBackend(std::unique_ptr<clsNet_TCP> net, Clock& clock, CommunicationLog& log)
    : net_(std::move(net))
    , clock_(clock)
    , log_(log)
{
}

LinkBackend::Exchanged TcpBackend::exchange(const QString& command, qint16& timeoutSeconds,
                                            bool ignoreOperatorBusy, bool sendOnce,
                                            int maxSends)
{
    // The network waits its own ten seconds a send; a command sent once waits
    // its whole time-out instead.
    const qint16 singleSendWaitSeconds = sendOnce ? timeoutSeconds : qint16(0);
    return {TcpExchange(*net_, clock_, log_)
                .run(command, ignoreOperatorBusy, maxSends, singleSendWaitSeconds),
            command};
}
void TcpBackend::dropStaleInput(int quietMs)
{
    Transport* connection = net_->connection();
    TcpExchange exchange(*net_, clock_, log_);
    while (connection && !connection->peerClosed() && connection->waitForData(quietMs)) {
        if (connection->peerClosed())
            break;
        exchange.dropStaleBytes();
    }
}

void TcpBackend::close()
{
    net_->ShutdownConnection();
}
