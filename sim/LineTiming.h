#pragma once

#include "WireChunk.h"

#include <QByteArray>
#include <vector>

// Bytes and the time they are due on the wire.
struct TimedBytes {
    qint64 dueMs = 0;
    QByteArray bytes;
    bool dropAfter = false;
};

// A serial cable at a line speed, 10 bits a byte (start, eight data, stop).
// A pseudo-terminal moves bytes at once; the register answers what comes
// only from the moment a cable would have brought it, and lets its answers
// out one byte at a time at the cable's pace, so a time measured against it
// reads as one on a cable. Without a line speed every answer goes at once, after its own
// fault delay.
class LineTiming {
public:
    static constexpr int kBitsPerByte = 10;

    explicit LineTiming(int baud = 0) : baud_(baud) {}

    // Microseconds that n bytes take on the line, rounded up.
    qint64 wireUs(qint64 bytes) const;

    // A read of readBytes bytes at nowMs and the answers to it: each answer
    // is ready when the byte that prompted it has come in, plus its own
    // delay, and leaves when the line out is free.
    std::vector<TimedBytes> schedule(qint64 nowMs, int readBytes, const std::vector<WireChunk>& answers);

private:
    int baud_;
    qint64 inFreeUs_ = 0;  // the line in carries earlier bytes until then
    qint64 outFreeUs_ = 0; // and the line out
};
