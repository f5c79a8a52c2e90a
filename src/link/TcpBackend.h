#pragma once

#include "link/LinkBackend.h"
#include "link/clsNet_TCP.h"

#include <memory>

class Clock;
class CommunicationLog;

// The link over TCP: each command sent plain by TcpExchange. Closed, its
// connection is shut, and the next command opens it again by itself.
class TcpBackend final : public LinkBackend {
public:
    TcpBackend(std::unique_ptr<clsNet_TCP> net, Clock& clock, CommunicationLog& log);

    bool isTcp() const override { return true; }
    Exchanged exchange(const QString& command, qint16& timeoutSeconds, bool ignoreOperatorBusy,
                       bool sendOnce, int maxSends = kAllSends) override;
    void dropStaleInput(int quietMs) override;
    void close() override;

    clsNet_TCP& TCPClass() const { return *net_; }

private:
    std::unique_ptr<clsNet_TCP> net_;
    Clock& clock_;
    CommunicationLog& log_;
};
