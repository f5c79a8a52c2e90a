#pragma once

#include "protocol/DeviceReply.h"

#include <QString>
#include <QtGlobal>

class Clock;
class CommunicationLog;
class clsNet_TCP;
class Transport;

// One command over TCP: the plain text, a wait of up to 10 seconds for
// anything to arrive, then the reply read whole. At most four sends, or one
// for a command sent once; a peer that closes ends it at once.
//
// Replies stay in step with their commands: what lies in the socket before a
// command goes out is the late answer of an earlier one and is dropped, and a
// reply is read until it closes its last field and the line has been quiet
// for the serial read's silence, so a reply cut by the network is one reply.
class TcpExchange {
public:
    static constexpr int kBeforeSendMs = 10;
    static constexpr int kAfterPaymentSendMs = 200;
    static constexpr int kReplyWaitMs = 10000;
    static constexpr int kMaxSends = 4;
    static constexpr int kMaxReplyBytes = 2049;
    // Quiet that ends a reply which closes its last field, as on the serial line.
    static constexpr int kReplyTailSilenceMs = 20;

    static constexpr qint16 kStatusNoReply = -4;

    TcpExchange(clsNet_TCP& net, Clock& clock, CommunicationLog& log);

    // maxSends: below kMaxSends where a command must not go out twice blindly.
    // singleSendWaitSeconds above 0: one send only, its reply awaited that
    // long (a card payment, which must not reach the register twice).
    DeviceReply run(const QString& command, bool ignoreOperatorBusy, int maxSends = kMaxSends,
                    qint16 singleSendWaitSeconds = 0);

    // Reads away and logs whatever lies in the socket now.
    void dropStaleBytes();

    // What a command gets when nothing came back. lost: the command could not
    // be sent or the register hung up, rather than a register that stayed silent.
    static DeviceReply noReply(bool lost);

private:
    bool waitForReply(qint64 deadline);
    QByteArray readWholeReply(Transport& connection, qint64 deadline);
    void log(const QString& text);

    clsNet_TCP& net_;
    Clock& clock_;
    CommunicationLog& log_;
};
