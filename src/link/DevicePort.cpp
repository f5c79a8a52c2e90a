#include "link/DevicePort.h"

#include "link/SerialBackend.h"
#include "link/TcpBackend.h"
#include "link/TransportFactory.h"
#include "link/clsNet_TCP.h"
#include "shell/ModuleVariables.h"

DevicePort::DevicePort(const ModuleVariables& vars, Clock& clock, Operator& op,
                       TransportFactory& factory, CommunicationLog& log)
    : vars_(vars)
    , clock_(clock)
    , op_(op)
    , factory_(factory)
    , log_(log)
{
    port_.backend = std::make_unique<SerialBackend>(nullptr, clock_, log_, op_);
}

qint16 DevicePort::openSerial(const QString& device)
{
    qint16 status = 0;
    auto serial = factory_.openSerial(device, vars_.baud, status);
    if (status != 0 || !serial)
        return status != 0 ? status : TransportFactory::kSerialOpenFailed;
    port_.backend = std::make_unique<SerialBackend>(std::move(serial), clock_, log_, op_);
    port_.tcpPort = false;
    port_.isConnected = true;
    return 0;
}

qint16 DevicePort::openTcp(const QString& address, quint16 port)
{
    // The connection of an earlier opening closes as its object goes, before
    // the new one opens.
    if (port_.tcpPort)
        port_.backend.reset();
    auto net = std::make_unique<clsNet_TCP>(factory_, log_, clock_, op_, vars_);
    net->LocalHostIP = clsNet_TCP::LocalIpAddress();
    net->RemoteHostIP = address;
    net->RemotePort = port;
    const qint16 status = net->OpenConnection();
    if (status != 0 && !port_.tcpPort)
        return status; // the serial line stays as it was
    port_.backend = std::make_unique<TcpBackend>(std::move(net), clock_, log_);
    if (status != 0)
        return status;
    port_.tcpPort = true;
    port_.isConnected = true;
    return 0;
}

void DevicePort::close()
{
    if (!port_.isConnected)
        return;
    port_.backend->close();
    port_.isConnected = false;
}

LinkBackend::Exchanged DevicePort::ExchangeCommand(const QString& command,
                                                   qint16& timeoutSeconds,
                                                   bool ignoreOperatorBusy, bool sendOnce,
                                                   int maxSends)
{
    return port_.backend->exchange(command, timeoutSeconds, ignoreOperatorBusy, sendOnce, maxSends);
}
