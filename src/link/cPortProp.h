#pragma once

#include "link/Transport.h"
#include "link/clsNet_TCP.h"

#include <memory>

// The one port object of the program: which link is open and what holds it.
class cPortProp {
public:
    // -1 (true): the link is TCP; 0: serial.
    bool tcpPort = false;
    // The open serial port (comHandle); empty when none.
    std::unique_ptr<Transport> comHandle;
    // The network link; replaced at every opening, the old one closing itself.
    std::unique_ptr<clsNet_TCP> TCPClass;
    bool isConnected = false;
};
