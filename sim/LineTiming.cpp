#include "LineTiming.h"

#include <algorithm>

namespace {
constexpr qint64 kUsPerSecond = 1000000;
constexpr qint64 kUsPerMs = 1000;

qint64 toMsRoundedUp(qint64 us) { return (us + kUsPerMs - 1) / kUsPerMs; }
} // namespace

qint64 LineTiming::wireUs(qint64 bytes) const
{
    if (baud_ <= 0)
        return 0;
    return (bytes * kBitsPerByte * kUsPerSecond + baud_ - 1) / baud_;
}

std::vector<TimedBytes> LineTiming::schedule(qint64 nowMs, int readBytes, const std::vector<WireChunk>& answers)
{
    std::vector<TimedBytes> out;
    if (baud_ <= 0) {
        for (const WireChunk& a : answers)
            out.push_back({nowMs + a.afterMs, a.bytes, a.dropAfter});
        return out;
    }
    // Bytes written faster than the line carries them wait their turn on it.
    const qint64 inStart = std::max(nowMs * kUsPerMs, inFreeUs_);
    inFreeUs_ = inStart + wireUs(readBytes);
    for (const WireChunk& a : answers) {
        const qint64 ready = inStart + wireUs(a.inputBytes) + a.afterMs * kUsPerMs;
        const qint64 start = std::max(ready, outFreeUs_);
        const int n = static_cast<int>(a.bytes.size());
        // A byte is there for the reader once its stop bit is in.
        for (int i = 0; i < n; ++i)
            out.push_back({toMsRoundedUp(start + wireUs(i + 1)), a.bytes.mid(i, 1), a.dropAfter && i == n - 1});
        if (n == 0)
            out.push_back({toMsRoundedUp(ready), QByteArray(), a.dropAfter});
        outFreeUs_ = start + wireUs(n);
    }
    return out;
}
