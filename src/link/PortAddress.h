#pragma once

#include <QString>
#include <QtGlobal>

// What a [port] value names: a serial device, or a register on the network.
struct PortAddress {
    enum class Kind { Serial, Tcp, Invalid };

    // The highest port number the link can open: the number travels as a
    // 16-bit signed value.
    static constexpr int kHighestTcpPort = 32767;

    Kind kind = Kind::Invalid;
    QString device;  // Serial: the path handed to the port
    QString address; // Tcp
    quint16 tcpPort = 0;

    // "comN" in any case is serial (COMN on Windows, /dev/ttyS(N-1) elsewhere),
    // as is a "/dev/" path, used as typed. Anything else is address:port; a
    // third part behind a second ":" is dropped. A missing, non-numeric or too
    // high port number gives Invalid.
    static PortAddress parse(const QString& port);
};
