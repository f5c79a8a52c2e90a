#pragma once

#include "protocol/DeviceReply.h"

#include <QString>
#include <QtGlobal>

class Clock;
class CommunicationLog;
class clsNet_TCP;

// One command over TCP: the plain text, a wait of up to 10 seconds for
// anything to arrive, the first read taken as the whole reply. At most four
// sends, or one for a command sent once; a peer that closes ends it at once.
class TcpExchange {
public:
    static constexpr int kBeforeSendMs = 10;
    static constexpr int kAfterPaymentSendMs = 200;
    static constexpr int kReplyWaitMs = 10000;
    static constexpr int kMaxSends = 4;
    static constexpr int kMaxReplyBytes = 2049;

    static constexpr qint16 kStatusNoReply = -4;

    TcpExchange(clsNet_TCP& net, Clock& clock, CommunicationLog& log);

    // singleSendWaitSeconds above 0: one send only, its reply awaited that
    // long (a card payment, which must not reach the register twice).
    DeviceReply run(const QString& command, bool ignoreOperatorBusy,
                    qint16 singleSendWaitSeconds = 0);

    // What a command gets when nothing came back. lost: the command could not
    // be sent or the register hung up, rather than a register that stayed silent.
    static DeviceReply noReply(bool lost);

private:
    bool waitForReply(qint64 deadline);
    void log(const QString& text);

    clsNet_TCP& net_;
    Clock& clock_;
    CommunicationLog& log_;
};
