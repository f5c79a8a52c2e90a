#pragma once

#include "link/Transport.h"

#include <QTcpSocket>

// A TCP connection to the register, used with the blocking calls of
// QTcpSocket on the calling thread. A read takes what has arrived and stops at
// the first moment nothing more is there; a peer that closes leaves nothing.
class TcpTransport final : public Transport {
public:
    static constexpr int kConnectWaitMs = 10000;
    static constexpr int kWriteWaitMs = 10000;
    static constexpr int kFirstByteWaitMs = 256;

    TcpTransport() = default;

    // Status 0, or TransportFactory's TCP failures.
    qint16 connectTo(const QString& address, quint16 port);

    qint64 write(const QByteArray& data) override;
    QByteArray read(int maxBytes) override;
    bool waitForData(int timeoutMs) override;
    bool peerClosed() const override;
    void close() override;

    qintptr socketNumber() const { return socket_.socketDescriptor(); }

private:
    QTcpSocket socket_;
    bool wasConnected_ = false;
};
