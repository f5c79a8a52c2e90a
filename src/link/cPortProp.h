#pragma once

#include "link/LinkBackend.h"

#include <memory>

// The one port object of the program: which link is open and what holds it.
// The backend is the serial line (its comHandle) or the network link (its
// TCPClass), chosen at the last good opening; a serial line without a port
// until then.
class cPortProp {
public:
    // -1 (true): the link is TCP; 0: serial.
    bool tcpPort = false;
    bool isConnected = false;
    std::unique_ptr<LinkBackend> backend;
};
