#pragma once

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
    struct Pending {
        qint64 dueMs;
        QByteArray bytes;
        bool dropAfter;
    };
    void queue(std::deque<Pending>& q, const std::vector<WireChunk>& chunks, int baud);
    void flush(std::deque<Pending>& q, int fd, bool tcp);
    void closeClient();

    SimRegister& reg_;
    Clock& clock_;
    SerialWire serial_;
    TcpWire tcp_;
    int ptyMaster_ = -1;
    int ptySlave_ = -1;
    QString ptyLink_;
    int baud_ = 0;
    int listenFd_ = -1;
    int clientFd_ = -1;
    QByteArray tcpBuffer_;
    qint64 tcpLastByteMs_ = 0;
    std::deque<Pending> serialOut_;
    std::deque<Pending> tcpOut_;
};
