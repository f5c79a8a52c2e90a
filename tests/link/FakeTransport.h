#pragma once

#include "link/Transport.h"
#include "link/TransportFactory.h"
#include "shell/Clock.h"

#include <QList>
#include <deque>
#include <functional>
#include <limits>

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

    void deliver(const QByteArray& bytes, qint64 delayMs = 0)
    {
        pending_.push_back({clock_.monotonicMs() + delayMs, bytes});
    }

    QList<QByteArray> writesStartingWith(char first) const
    {
        QList<QByteArray> out;
        for (const auto& w : writes)
            if (w.bytes.startsWith(first))
                out << w.bytes;
        return out;
    }

    qint64 write(const QByteArray& data) override
    {
        if (failWrites)
            return -1;
        writes.append({clock_.monotonicMs(), data});
        if (onWrite)
            onWrite(data);
        return data.size();
    }

    QByteArray read(int maxBytes) override
    {
        if (peerClosed())
            return {};
        const qint64 first = nextAt();
        if (first > now() + 256) {
            clock_.advance(256);
            return {};
        }
        clock_.advance(first - now());
        QByteArray out;
        while (out.size() < maxBytes && nextAt() <= now() + 20) {
            clock_.advance(nextAt() - now());
            Chunk& c = pending_.front();
            const int take = std::min<int>(maxBytes - out.size(), c.bytes.size());
            out += c.bytes.left(take);
            c.bytes.remove(0, take);
            if (c.bytes.isEmpty())
                pending_.pop_front();
        }
        clock_.advance(20);
        return out;
    }

    bool waitForData(int timeoutMs) override
    {
        const qint64 at = std::min(nextAt(), closeAtMs < 0 ? kNever : closeAtMs);
        if (at <= now() + timeoutMs) {
            clock_.advance(at - now());
            return true;
        }
        clock_.advance(timeoutMs);
        return false;
    }

    bool peerClosed() const override { return closeAtMs >= 0 && now() >= closeAtMs; }
    void close() override { ++closes; }
    int closes = 0;

private:
    static constexpr qint64 kNever = std::numeric_limits<qint64>::max() / 2;
    struct Chunk {
        qint64 atMs;
        QByteArray bytes;
    };
    qint64 now() const { return clock_.monotonicMs(); }
    qint64 nextAt() const
    {
        if (pending_.empty())
            return kNever;
        return std::max(pending_.front().atMs, now());
    }

    VirtualClock& clock_;
    std::deque<Chunk> pending_;
};

// Hands out scripted pipes and counts the openings.
class FakeFactory final : public TransportFactory {
public:
    explicit FakeFactory(VirtualClock& clock) : clock_(clock) {}

    qint16 nextStatus = 0;
    int serialOpens = 0;
    int tcpConnects = 0;
    QString lastDevice;
    // Called for every new pipe so the test can script the device behind it.
    std::function<void(FakeTransport&)> script;
    QList<FakeTransport*> made;

    std::unique_ptr<Transport> openSerial(const QString& device, const QString&,
                                          qint16& status) override
    {
        ++serialOpens;
        lastDevice = device;
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
