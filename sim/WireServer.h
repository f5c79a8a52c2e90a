#pragma once

#include "LineTiming.h"
#include "SerialWire.h"
#include "TcpWire.h"

#include <QString>
#include <deque>

class Clock;
class SimRegister;

// Serves the register on a pseudo-terminal and/or a TCP port, one TCP client
// at a time, from one poll() loop: every wait blocks in the OS.
class WireServer {
public:
    WireServer(SimRegister& reg, Clock& clock);
    ~WireServer();
    WireServer(const WireServer&) = delete;
    WireServer& operator=(const WireServer&) = delete;

    bool openPty(const QString& linkPath, int baud, QString* error);
    bool listenTcp(const QString& host, quint16 port, QString* error);
    // Runs until the process is stopped.
    void run();

private:
    using Pending = std::deque<TimedBytes>;
    void queue(Pending& q, const std::vector<TimedBytes>& timed);
    void flush(Pending& q, int fd, bool tcp);
    void closeClient();
    qint64 pollTimeoutMs() const;

    SimRegister& reg_;
    Clock& clock_;
    SerialWire serial_;
    TcpWire tcp_;
    LineTiming serialLine_;
    LineTiming tcpLine_; // no pacing: the network is taken as instant
    int ptyMaster_ = -1;
    int ptySlave_ = -1;
    QString ptyLink_;
    int listenFd_ = -1;
    int clientFd_ = -1;
    Pending serialOut_;
    Pending tcpOut_;
};
