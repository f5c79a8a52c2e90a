#pragma once

#include <QByteArray>

// Bytes a wire sends back, and how long after the command came in.
struct WireChunk {
    int afterMs = 0;
    QByteArray bytes;
    bool dropAfter = false; // TCP: close the connection once this is out
    int inputBytes = 0;     // serial: bytes of the read taken in when this was answered
};
