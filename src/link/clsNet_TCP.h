#pragma once

#include "link/Transport.h"

#include <QByteArray>
#include <QString>
#include <memory>

class Clock;
class CommunicationLog;
class Operator;
class TransportFactory;
struct ModuleVariables;

// The network link to one register: one connection, re-opened when a send
// fails. Released, it closes its connection.
class clsNet_TCP {
public:
    static constexpr int kSendTries = 4;
    static constexpr int kShutdownPauses = 5;

    clsNet_TCP(TransportFactory& factory, CommunicationLog& log, Clock& clock, Operator& op,
               const ModuleVariables& vars);
    ~clsNet_TCP();
    clsNet_TCP(const clsNet_TCP&) = delete;
    clsNet_TCP& operator=(const clsNet_TCP&) = delete;

    QString LocalHostIP;  // kept for the record; the connection does not use it
    QString RemoteHostIP;
    quint16 RemotePort = 0;

    // 0, or TransportFactory's TCP failures.
    qint16 OpenConnection();
    // Sends all of data; a failed send re-opens the connection, up to four
    // times, then tells the operator. True when the data went out.
    bool SendData(const QByteArray& data);
    void ShutdownConnection();

    Transport* connection() const { return connection_.get(); }

    // The first address of this machine that is not a loopback or empty one.
    static QString LocalIpAddress();

private:
    TransportFactory& factory_;
    CommunicationLog& log_;
    Clock& clock_;
    Operator& op_;
    const ModuleVariables& vars_;
    std::unique_ptr<Transport> connection_;
    int connectionNumber_ = 0;
};
