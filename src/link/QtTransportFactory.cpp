#include "link/QtTransportFactory.h"

#include "link/SerialTransport.h"
#include "link/TcpTransport.h"

std::unique_ptr<Transport> QtTransportFactory::openSerial(const QString& device,
                                                          const QString& baud, qint16& status)
{
    auto serial = std::make_unique<SerialTransport>();
    status = serial->open(device, baud);
    if (status != 0)
        return nullptr;
    return serial;
}

std::unique_ptr<Transport> QtTransportFactory::connectTcp(const QString& address, quint16 port,
                                                          qint16& status)
{
    auto tcp = std::make_unique<TcpTransport>();
    status = tcp->connectTo(address, port);
    if (status != 0)
        return nullptr;
    return tcp;
}
