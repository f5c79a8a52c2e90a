#include "link/SerialTransport.h"

#include "link/TransportFactory.h"

qint16 SerialTransport::open(const QString& device, const QString& baud)
{
    port_.setPortName(device);
    if (!port_.open(QIODevice::ReadWrite))
        return TransportFactory::kSerialOpenFailed;
    bool numeric = false;
    const int speed = baud.trimmed().toInt(&numeric);
    const bool set = numeric && speed > 0 && port_.setBaudRate(speed)
        && port_.setDataBits(QSerialPort::Data8) && port_.setParity(QSerialPort::NoParity)
        && port_.setStopBits(QSerialPort::OneStop)
        && port_.setFlowControl(QSerialPort::NoFlowControl);
    if (!set) {
        port_.close();
        return TransportFactory::kSerialSetupFailed;
    }
    return 0;
}

qint64 SerialTransport::write(const QByteArray& data)
{
    if (!port_.isOpen())
        return -1;
    const qint64 written = port_.write(data);
    if (written < 0)
        return -1;
    while (port_.bytesToWrite() > 0) {
        if (!port_.waitForBytesWritten(kWriteWaitMs))
            break;
    }
    return written;
}

QByteArray SerialTransport::read(int maxBytes)
{
    if (!port_.isOpen())
        return {};
    if (port_.bytesAvailable() == 0 && !port_.waitForReadyRead(kFirstByteWaitMs))
        return {};
    QByteArray data = port_.read(maxBytes);
    while (data.size() < maxBytes) {
        if (port_.bytesAvailable() == 0 && !port_.waitForReadyRead(kSilenceMs))
            break;
        data += port_.read(maxBytes - data.size());
    }
    return data;
}

bool SerialTransport::waitForData(int timeoutMs)
{
    if (!port_.isOpen())
        return false;
    return port_.bytesAvailable() > 0 || port_.waitForReadyRead(timeoutMs);
}

void SerialTransport::close()
{
    port_.close();
}
