#pragma once

#include "link/Transport.h"

#include <QString>
#include <QtGlobal>
#include <memory>

// Opens the byte pipes of the link. The real one uses the serial port and the
// network; tests put scripted pipes in its place.
class TransportFactory {
public:
    // Serial failures: the device cannot be opened.
    static constexpr qint16 kSerialOpenFailed = -1;
    // Serial failures: the speed or format cannot be set.
    static constexpr qint16 kSerialSetupFailed = -2;
    // TCP failures: the address text is no address.
    static constexpr qint16 kTcpBadAddress = -5;
    // TCP failures: the register did not accept the connection.
    static constexpr qint16 kTcpConnectFailed = -6;

    virtual ~TransportFactory() = default;

    // device: a path such as /dev/ttyS0 or COM1; baud: the [baud] text.
    virtual std::unique_ptr<Transport> openSerial(const QString& device, const QString& baud,
                                                  qint16& status) = 0;
    virtual std::unique_ptr<Transport> connectTcp(const QString& address, quint16 port,
                                                  qint16& status) = 0;
};
