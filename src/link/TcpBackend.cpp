#include "link/TcpBackend.h"

#include "link/TcpExchange.h"

TcpBackend::TcpBackend(std::unique_ptr<clsNet_TCP> net, Clock& clock, CommunicationLog& log)
    : net_(std::move(net))
    , clock_(clock)
    , log_(log)
{
}

LinkBackend::Exchanged TcpBackend::exchange(const QString& command, qint16& timeoutSeconds,
                                            bool ignoreOperatorBusy, int maxSends)
{
    Q_UNUSED(timeoutSeconds) // the network waits its own ten seconds a send
    return {TcpExchange(*net_, clock_, log_).run(command, ignoreOperatorBusy, maxSends), command};
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
