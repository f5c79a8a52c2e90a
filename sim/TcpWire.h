#pragma once

#include "WireChunk.h"

#include <QByteArray>
#include <vector>

class SimRegister;

// The register's side of the network: plain command text in, plain reply
// text out, no frame. A command is what arrived before the line fell quiet.
class TcpWire {
public:
    static constexpr int kQuietMs = 20;

    explicit TcpWire(SimRegister& reg) : reg_(reg) {}

    std::vector<WireChunk> command(const QByteArray& bytes);

private:
    SimRegister& reg_;
};
