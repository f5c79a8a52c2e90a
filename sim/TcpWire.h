#pragma once

#include "WireChunk.h"

#include <QByteArray>
#include <vector>

class SimRegister;

// The register's side of the network: plain command text in, plain reply
// text out, no frame. The register answers as soon as it holds a whole
// command of a form it knows; what it can't tell whole (a shorter form of a
// code that has a longer one, a form without a closing "/", a command it
// doesn't know) it answers once the line has been quiet for kQuietMs.
class TcpWire {
public:
    static constexpr int kQuietMs = 20;

    explicit TcpWire(SimRegister& reg) : reg_(reg) {}

    // Bytes off the socket at nowMs; the answer when they complete a command.
    std::vector<WireChunk> receive(const QByteArray& bytes, qint64 nowMs);
    // When the quiet rule ends what is held; -1 with nothing held.
    qint64 quietDeadlineMs() const;
    // What is held, answered once the line has been quiet long enough.
    std::vector<WireChunk> whenQuiet(qint64 nowMs);
    // The client went away: what it left half is forgotten.
    void clear() { held_.clear(); }

    // The bytes as one command, whatever they hold.
    std::vector<WireChunk> command(const QByteArray& bytes);

private:
    // Control bytes have no place on this wire; a terminal user's CR LF neither.
    static QByteArray cleaned(const QByteArray& bytes);

    SimRegister& reg_;
    QByteArray held_;
    qint64 lastByteMs_ = 0;
};
