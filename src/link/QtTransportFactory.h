#pragma once

#include "link/TransportFactory.h"

// The real pipes: SerialTransport and TcpTransport.
class QtTransportFactory final : public TransportFactory {
public:
    std::unique_ptr<Transport> openSerial(const QString& device, const QString& baud,
                                          qint16& status) override;
    std::unique_ptr<Transport> connectTcp(const QString& address, quint16 port,
                                          qint16& status) override;
};
