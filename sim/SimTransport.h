#pragma once

#include "SerialWire.h"
#include "TcpWire.h"
#include "link/Transport.h"

#include <deque>

class Clock;
class SimRegister;

// The virtual register in-process, behind the driver's Transport seam: no
// sockets, no threads. Time is the given Clock's: a read with nothing due
// lets the clock run on by the serial read's 256 ms.
class SimTransport final : public Transport {
public:
    enum class Wire { Serial, Tcp };
    static constexpr int kIdleReadMs = 256;

    SimTransport(SimRegister& reg, Wire wire, Clock& clock);

    qint64 write(const QByteArray& data) override;
    QByteArray read(int maxBytes) override;
    bool waitForData(int timeoutMs) override;
    bool peerClosed() const override { return closedByPeer_; }
    void close() override { closed_ = true; }

private:
    struct Pending {
        qint64 dueMs;
        QByteArray bytes;
        bool dropAfter;
    };
    void queue(const std::vector<WireChunk>& chunks);
    bool anythingDue() const;
    qint64 nextDueMs() const;

    Wire wire_;
    Clock& clock_;
    SerialWire serial_;
    TcpWire tcp_;
    std::deque<Pending> pending_;
    bool closed_ = false;
    bool closedByPeer_ = false;
};
