#pragma once

#include "protocol/DeviceReply.h"

#include <QString>
#include <QtGlobal>

// The functions of one transport under the link, chosen once when the link
// opens: the serial line or the network. Above it nothing asks which.
class LinkBackend {
public:
    struct Exchanged {
        DeviceReply reply;
        // The command as it went out: framed on a serial line, plain on TCP.
        QString sentForm;
    };

    // Every send the exchange allows itself.
    static constexpr int kAllSends = 4;

    virtual ~LinkBackend() = default;

    virtual bool isTcp() const = 0;
    // One command and its reply, always quiet. timeoutSeconds: the wait for
    // the answer to ENQ on a serial line; 0 becomes 3 there and is written back.
    // maxSends: how often a command that met silence may go out (at most kAllSends).
    // sendOnce: no second send of an unanswered command; the reply is awaited
    // for timeoutSeconds instead (SendOptions::sendOnce).
    virtual Exchanged exchange(const QString& command, qint16& timeoutSeconds,
                               bool ignoreOperatorBusy, bool sendOnce,
                               int maxSends = kAllSends) = 0;
    // Reads away, and logs, what arrives until the line has been quiet for quietMs.
    virtual void dropStaleInput(int quietMs) = 0;
    virtual void close() = 0;
};
