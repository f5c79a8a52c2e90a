#pragma once

#include "link/Transport.h"
#include "link/TransportFactory.h"
#include "shell/Clock.h"

#include <QList>
#include <deque>
#include <functional>

// A byte pipe on the virtual clock. The "device" behind it is the onWrite
// script, which schedules bytes with deliver(). Reads follow the serial read
// behaviour: 20 ms of silence after the first byte, or 256 ms of nothing.
class FakeTransport final : public Transport {
public:
    struct Write {
        qint64 atMs;
        QByteArray bytes;
    };
    explicit FakeTransport(VirtualClock& clock) : clock_(clock) {}

    std::function<void(const QByteArray& written)> onWrite;
    QList<Write> writes;
    bool failWrites = false;
    qint64 closeAtMs = -1;

    void deliver(const QByteArray& bytes, qint64 delayMs = 0) { pending_.push_back({now() + delayMs, bytes}); }

    qint64 write(const QByteArray& data) override
    {
        if (failWrites)
            return -1;
        writes.append({now(), data});
        if (onWrite)
            onWrite(data);
        return data.size();
    }
    QByteArray read(int maxBytes) override
    {
        if (peerClosed())
            return {};
        if (nextAt() > now() + 256) {
            clock_.advance(256);
            return {};
        }
        clock_.advance(nextAt() - now());
        QByteArray out;
        while (out.size() < maxBytes && nextAt() <= now() + 20) {
            clock_.advance(nextAt() - now());
            QByteArray& chunk = pending_.front().bytes;
            const int take = std::min<int>(maxBytes - out.size(), chunk.size());
            out += chunk.left(take);
            chunk.remove(0, take);
            if (chunk.isEmpty())
                pending_.pop_front();
        }
        clock_.advance(20);
        return out;
    }
    bool waitForData(int timeoutMs) override
    {
        const qint64 at = std::min(nextAt(), closeAtMs < 0 ? kNever : closeAtMs);
        clock_.advance(std::max<qint64>(0, std::min<qint64>(at - now(), timeoutMs)));
        return at <= now();
    }
    bool peerClosed() const override { return closeAtMs >= 0 && now() >= closeAtMs; }
    void close() override {}

private:
    static constexpr qint64 kNever = qint64(1) << 60;
    qint64 now() const { return clock_.monotonicMs(); }
    qint64 nextAt() const { return pending_.empty() ? kNever : std::max(pending_.front().atMs, now()); }

    VirtualClock& clock_;
    std::deque<Write> pending_;
};

// Hands out scripted pipes and counts the TCP connections.
class FakeFactory final : public TransportFactory {
public:
    explicit FakeFactory(VirtualClock& clock) : clock_(clock) {}

    qint16 nextStatus = 0;
    int tcpConnects = 0;
    std::function<void(FakeTransport&)> script; // scripts the device behind each new pipe
    QList<FakeTransport*> made;

    std::unique_ptr<Transport> openSerial(const QString&, const QString&, qint16& status) override
    {
        return make(status);
    }
    std::unique_ptr<Transport> connectTcp(const QString&, quint16, qint16& status) override
    {
        ++tcpConnects;
        return make(status);
    }

private:
    std::unique_ptr<Transport> make(qint16& status)
    {
        status = nextStatus;
        if (status != 0)
            return nullptr;
        auto t = std::make_unique<FakeTransport>(clock_);
        if (script)
            script(*t);
        made << t.get();
        return t;
    }
    VirtualClock& clock_;
};
