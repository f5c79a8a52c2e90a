#include "link/TcpBackend.h"

#include "link/TcpExchange.h"

TcpBackend::TcpBackend(std::unique_ptr<clsNet_TCP> net, Clock& clock, CommunicationLog& log)
    : net_(std::move(net))
    , clock_(clock)
    , log_(log)
{
}

LinkBackend::Exchanged TcpBackend::exchange(const QString& command, qint16& timeoutSeconds,
                                            bool ignoreOperatorBusy, bool sendOnce)
{
    // The network waits its own ten seconds a send; a command sent once waits
    // its whole time-out instead.
    const qint16 singleSendWaitSeconds = sendOnce ? timeoutSeconds : qint16(0);
    return {TcpExchange(*net_, clock_, log_).run(command, ignoreOperatorBusy, singleSendWaitSeconds),
            command};
}

void TcpBackend::close()
{
    net_->ShutdownConnection();
}
