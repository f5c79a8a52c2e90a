#pragma once

#include <QByteArray>

// A byte pipe to the register: a serial port, a TCP socket, or in tests a
// scripted fake or the virtual register in-process. It knows nothing of
// commands, frames or replies.
class Transport {
public:
    virtual ~Transport() = default;

    // Writes all of data; returns the bytes written, or -1 when the pipe failed.
    virtual qint64 write(const QByteArray& data) = 0;

    // Reads what is there, with the serial read behaviour: returns after 20 ms
    // of silence following the first byte, or after about 256 ms with nothing
    // (then empty). At most maxBytes.
    virtual QByteArray read(int maxBytes) = 0;

    // True when bytes are ready to read within timeoutMs (0: just look).
    virtual bool waitForData(int timeoutMs) = 0;

    // True once the peer has closed a connection (a serial line never does).
    virtual bool peerClosed() const { return false; }

    virtual void close() = 0;
};
