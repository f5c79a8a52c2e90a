#pragma once

#include "link/LinkBackend.h"
#include "link/Transport.h"

#include <memory>

class Clock;
class CommunicationLog;
class Operator;

// The link over RS-232: each command framed and exchanged by SerialExchange.
// Closed, or before any port was opened, nothing answers the ENQ.
class SerialBackend final : public LinkBackend {
public:
    SerialBackend(std::unique_ptr<Transport> comHandle, Clock& clock, CommunicationLog& log,
                  Operator& op);

    bool isTcp() const override { return false; }
    Exchanged exchange(const QString& command, qint16& timeoutSeconds, bool ignoreOperatorBusy,
                       bool sendOnce, int maxSends = kAllSends) override;
    void dropStaleInput(int quietMs) override;
    void close() override;

    // The open serial port; null when none.
    Transport* comHandle() const { return comHandle_.get(); }

private:
    std::unique_ptr<Transport> comHandle_;
    Clock& clock_;
    CommunicationLog& log_;
    Operator& op_;
};
