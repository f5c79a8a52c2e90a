#pragma once

#include "protocol/DeviceReply.h"

#include <QByteArray>
#include <QString>
#include <QtGlobal>

class Clock;
class CommunicationLog;
class Transport;

// One command over RS-232: ENQ, wait for any answer, the frame, wait for a
// reply ending in ETX, ACK, decode, drain. At most four frames.
class SerialExchange {
public:
    static constexpr qint16 kDefaultEnqWaitSeconds = 3;
    static constexpr int kAfterEnqMs = 50;
    static constexpr int kReplyWaitMs = 3000;
    static constexpr int kMaxFrames = 4;
    static constexpr int kComBufferBytes = 255;

    static constexpr qint16 kStatusNoReply = -4;
    static constexpr qint16 kStatusNoEnqAnswer = -207;

    // What a register that never answered the ENQ leaves, on an open line or none.
    static DeviceReply noEnqAnswer();

    SerialExchange(Transport& port, Clock& clock, CommunicationLog& log);

    // frame: the framed command. timeoutSeconds 0 becomes 3 and is written back.
    // maxFrames below kMaxFrames limits the frames that met silence; a frame
    // the register refused with NACK was not taken and always goes out again.
    // sendOnce: one frame only, its reply awaited for timeoutSeconds (a card
    // payment, which must not reach the register twice).
    DeviceReply run(const QString& frame, qint16& timeoutSeconds, bool ignoreOperatorBusy,
                    int maxFrames = kMaxFrames, bool sendOnce = false);

    // Writes in pieces of at most 255 bytes; returns the bytes of the last piece.
    qint64 SerialWrite(const QString& text);
    QString SerialRead();
    void DrainLink();

private:
    void log(const QString& text);

    Transport& port_;
    Clock& clock_;
    CommunicationLog& log_;
};
