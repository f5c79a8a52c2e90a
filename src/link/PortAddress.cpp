#include "link/PortAddress.h"

#include <QStringList>

namespace {

QString serialDevice(const QString& port)
{
#ifdef Q_OS_WIN
    return port;
#else
    bool numeric = false;
    const int n = port.mid(3).toInt(&numeric);
    if (!numeric || n < 1)
        return port; // not a COM number: the open fails on the text as typed
    return QStringLiteral("/dev/ttyS") + QString::number(n - 1);
#endif
}

} // namespace

PortAddress PortAddress::parse(const QString& port)
{
    PortAddress out;
    if (port.left(3).toUpper() == QLatin1String("COM")) {
        out.kind = Kind::Serial;
        out.device = serialDevice(port);
        return out;
    }
    if (port.startsWith(QLatin1String("/dev/"))) {
        out.kind = Kind::Serial;
        out.device = port;
        return out;
    }
    const QStringList parts = port.split(u':');
    if (parts.size() < 2)
        return out;
    bool numeric = false;
    const int number = parts.at(1).trimmed().toInt(&numeric);
    if (!numeric || number < 0 || number > kHighestTcpPort)
        return out;
    out.kind = Kind::Tcp;
    out.address = parts.at(0);
    out.tcpPort = static_cast<quint16>(number);
    return out;
}
