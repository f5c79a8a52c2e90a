#pragma once

#include "link/Transport.h"

#include <QSerialPort>

// RS-232 on QSerialPort: no parity, 8 data bits, 1 stop bit. A read returns
// after 20 ms of silence following the first byte, or after 256 ms of nothing.
class SerialTransport final : public Transport {
public:
    static constexpr int kFirstByteWaitMs = 256;
    static constexpr int kSilenceMs = 20;
    static constexpr int kWriteWaitMs = 2000;

    SerialTransport() = default;

    // Status 0, or TransportFactory's serial failures.
    qint16 open(const QString& device, const QString& baud);

    qint64 write(const QByteArray& data) override;
    QByteArray read(int maxBytes) override;
    bool waitForData(int timeoutMs) override;
    void close() override;

private:
    QSerialPort port_;
};
