#pragma once

#include "link/LinkBackend.h"
#include "link/cPortProp.h"

#include <QString>
#include <QtGlobal>

class Clock;
class CommunicationLog;
class Operator;
class TransportFactory;
struct ModuleVariables;

// The mechanism of the link: opens and closes the port and runs one exchange
// over the backend chosen at opening. It knows nothing of retries, of the
// operator's windows or of the result file; the device session above does.
class DevicePort {
public:
    DevicePort(const ModuleVariables& vars, Clock& clock, Operator& op,
               TransportFactory& factory, CommunicationLog& log);

    cPortProp& PortObject() { return port_; }
    bool isConnected() const { return port_.isConnected; }
    bool tcpPort() const { return port_.tcpPort; }

    // 0, or TransportFactory's serial failures; the port object stays as it
    // was on a failure. device: the path handed to the port, speed [baud].
    qint16 openSerial(const QString& device);
    // 0, or a TCP failure. A new network link replaces a former one even when
    // it fails to connect, so that the next command tries the new address.
    qint16 openTcp(const QString& address, quint16 port);
    void close();

    // One command over whichever backend the link opened, always quiet.
    LinkBackend::Exchanged ExchangeCommand(const QString& command, qint16& timeoutSeconds,
                                           bool ignoreOperatorBusy, bool sendOnce = false,
                                           int maxSends = LinkBackend::kAllSends);
    // Reads away what arrives until the line has been quiet for quietMs.
    void dropStaleInput(int quietMs) { port_.backend->dropStaleInput(quietMs); }

private:
    const ModuleVariables& vars_;
    Clock& clock_;
    Operator& op_;
    TransportFactory& factory_;
    CommunicationLog& log_;
    cPortProp port_;
};
