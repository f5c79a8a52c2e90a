#include "link/TcpTransport.h"

#include "link/TransportFactory.h"

#include <QHostAddress>

qint16 TcpTransport::connectTo(const QString& address, quint16 port)
{
    QHostAddress host;
    if (!host.setAddress(address.trimmed()))
        return TransportFactory::kTcpBadAddress;
    socket_.connectToHost(host, port);
    if (!socket_.waitForConnected(kConnectWaitMs)) {
        socket_.abort();
        return TransportFactory::kTcpConnectFailed;
    }
    wasConnected_ = true;
    return 0;
}

qint64 TcpTransport::write(const QByteArray& data)
{
    if (socket_.state() != QAbstractSocket::ConnectedState)
        return -1;
    const qint64 written = socket_.write(data);
    if (written < 0)
        return -1;
    while (socket_.bytesToWrite() > 0) {
        if (!socket_.waitForBytesWritten(kWriteWaitMs))
            return -1;
    }
    return written;
}

QByteArray TcpTransport::read(int maxBytes)
{
    if (socket_.bytesAvailable() == 0 && !socket_.waitForReadyRead(kFirstByteWaitMs))
        return {};
    QByteArray data = socket_.read(maxBytes);
    // What has already arrived joins in; nothing is waited for.
    while (data.size() < maxBytes && socket_.waitForReadyRead(0))
        data += socket_.read(maxBytes - data.size());
    if (peerClosed())
        return {};
    return data;
}

bool TcpTransport::waitForData(int timeoutMs)
{
    if (socket_.bytesAvailable() > 0 || peerClosed())
        return true;
    const bool ready = socket_.waitForReadyRead(timeoutMs);
    return ready || peerClosed();
}

bool TcpTransport::peerClosed() const
{
    return wasConnected_ && socket_.state() != QAbstractSocket::ConnectedState;
}

void TcpTransport::close()
{
    socket_.abort();
    wasConnected_ = false;
}
