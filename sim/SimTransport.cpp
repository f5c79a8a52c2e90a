#include "SimTransport.h"

#include "shell/Clock.h"

SimTransport::SimTransport(SimRegister& reg, Wire wire, Clock& clock)
    : wire_(wire)
    , clock_(clock)
    , serial_(reg)
    , tcp_(reg)
{
}

qint64 SimTransport::write(const QByteArray& data)
{
    if (closed_ || closedByPeer_)
        return -1;
    queue(wire_ == Wire::Serial ? serial_.receive(data) : tcp_.command(data));
    return data.size();
}

void SimTransport::queue(const std::vector<WireChunk>& chunks)
{
    const qint64 now = clock_.monotonicMs();
    for (const WireChunk& c : chunks)
        pending_.push_back({now + c.afterMs, c.bytes, c.dropAfter});
}

bool SimTransport::anythingDue() const
{
    return !pending_.empty() && pending_.front().dueMs <= clock_.monotonicMs();
}

qint64 SimTransport::nextDueMs() const { return pending_.empty() ? -1 : pending_.front().dueMs; }

QByteArray SimTransport::read(int maxBytes)
{
    if (!anythingDue()) {
        // Nothing on the line: the read waits its time out, or until the
        // register's next bytes arrive, whichever comes first.
        const qint64 due = nextDueMs();
        const qint64 wait = due < 0 ? kIdleReadMs : qMin<qint64>(kIdleReadMs, due - clock_.monotonicMs());
        clock_.sleepMs(wait);
        if (!anythingDue())
            return {};
    }
    QByteArray out;
    while (anythingDue() && out.size() < maxBytes) {
        Pending& p = pending_.front();
        const int take = qMin<int>(maxBytes - static_cast<int>(out.size()), static_cast<int>(p.bytes.size()));
        out += p.bytes.left(take);
        p.bytes.remove(0, take);
        if (p.bytes.isEmpty()) {
            if (p.dropAfter)
                closedByPeer_ = true;
            pending_.pop_front();
        }
    }
    return out;
}

bool SimTransport::waitForData(int timeoutMs)
{
    if (anythingDue())
        return true;
    const qint64 due = nextDueMs();
    if (due >= 0 && due <= clock_.monotonicMs() + timeoutMs) {
        clock_.sleepMs(due - clock_.monotonicMs());
        return true;
    }
    if (timeoutMs > 0)
        clock_.sleepMs(timeoutMs);
    return false;
}
