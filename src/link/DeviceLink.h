#pragma once

#include "protocol/DeviceReply.h"

#include <QString>
#include <QtGlobal>

class Clock;

// How one command is to be sent.
struct SendOptions {
    // A failed command leaves an "Err = " line in the result file.
    static constexpr int kLogModeResultFile = 0;
    // Probes and status polls, and card payment commands: no line.
    static constexpr int kLogModeProbe = 1;
    static constexpr int kLogModeCard = 2;

    // Nothing is shown to the operator and nothing is sent again.
    bool quiet = false;
    // The wait for the register's answer to ENQ on a serial line; 0 means 3.
    qint16 timeoutSeconds = 0;
    int logMode = kLogModeResultFile;
    // A card payment: its terminal may still be working when the answer is
    // late, so the wire sends it once and waits the whole timeoutSeconds for
    // the reply, on TCP as on a serial line. A lost answer is the caller's to
    // learn from the register (the outcome query), never by sending again.
    bool sendOnce = false;
};

// The one road to the register, as the operations, tables, payments and
// reports see it. The device session stands behind it; tests put a scripted
// link in its place.
class DeviceLink {
public:
    virtual ~DeviceLink() = default;

    // Sends one command; the reply carries the status (0 success, a device
    // code, or a negative link failure), the text, and the fields.
    DeviceReply send(const QString& command, const SendOptions& options = {})
    {
        return doSend(command, options);
    }

    // Sends a query (a command paired with its reader) and reads its answer;
    // nothing when the register refused or did not answer.
    template <typename Query>
    auto ask(const Query& query, const SendOptions& options = {})
    {
        return query.read(send(query.command(), options));
    }

    // The status-and-text form of send. timeoutSeconds 0 is left holding 3.
    void SendCommand(const QString& command, qint16& status, QString& reply, bool quiet,
                     qint16& timeoutSeconds, int logMode);
    // The usual call: not quiet, the default ENQ wait, logged to the result file.
    void SendCommand(const QString& command, qint16& status, QString& reply, bool quiet = false,
                     int logMode = SendOptions::kLogModeResultFile);

    // What the operator sees of a status: a message box, or the device-wait
    // window that polls until the register clears.
    virtual void ShowDeviceMessage(qint16 status, const QString& reply) = 0;

    // The pause of a caller that asks the register again and again until it
    // clears (the zero payment of WaitForRegister): waits ms, and answers
    // false when the wait is to be given up instead, as the device-wait
    // window gives it up (the process is ending, or the wait since
    // waitSinceMs passed its limit; never while a card payment runs). A
    // scripted link just sleeps on the clock.
    virtual bool pauseBeforeAskingAgain(Clock& clock, qint64 ms, qint64 waitSinceMs);

    // Opens the link named by [port] ("comN", a "/dev/" path, or address:port)
    // and identifies the register; failures come back as status and text and
    // have been shown to the operator unless quiet.
    virtual void OpenDeviceLink(const QString& port, qint16& status, QString& reply, bool quiet) = 0;
    virtual void CloseDeviceLink() = 0;
    virtual bool isConnected() const = 0;
    // True while the open link is TCP.
    virtual bool tcpPort() const = 0;

private:
    virtual DeviceReply doSend(const QString& command, const SendOptions& options) = 0;
};
