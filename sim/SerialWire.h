#pragma once

#include "WireChunk.h"

#include <QByteArray>
#include <vector>

class SimRegister;

// The register's side of the serial protocol: ACK to ENQ, a frame of STX,
// text, two check digits and ETX, NACK to a frame whose digits are wrong,
// the reply as STX, text, ETX. Anything else on the line is ignored.
class SerialWire {
public:
    static constexpr char kStx = 0x02;
    static constexpr char kEtx = 0x03;
    static constexpr char kEnq = 0x05;
    static constexpr char kAck = 0x06;
    static constexpr char kNack = 0x15;
    static constexpr int kMaxFrameBytes = 4096 + 2;

    explicit SerialWire(SimRegister& reg) : reg_(reg) {}

    std::vector<WireChunk> receive(const QByteArray& bytes);

    // Byte sum of the trimmed text, kept below 256, then modulo 100.
    static int checkDigits(const QByteArray& text);

    int acksReceived() const { return acks_; }

private:
    void frameEnded(std::vector<WireChunk>& out);

    SimRegister& reg_;
    bool inFrame_ = false;
    QByteArray frame_;
    int acks_ = 0;
};
