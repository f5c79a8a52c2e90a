#pragma once

#include "EcrModel.h"
#include "FaultScript.h"
#include "RegisterMemory.h"

#include <QByteArray>
#include <QString>

class Clock;

// The register as the wires see it: its memory and command handling, the
// fault script, the paper tape, the journal and the memory kept on disk.
class SimRegister {
public:
    struct Options {
        QString stateDir;
        QString journalPath;
        QString tapePath;
        QString modelPrefix; // empty: keep what the memory says
        QString serialDigits;
    };

    // What goes back for one command.
    struct Response {
        QByteArray reply;      // the reply text in Windows-1253; empty when nothing goes back
        int splitAt = -1;      // >= 0: send reply[0, splitAt) first, the rest after splitMs
        int splitMs = 0;
        int delayMs = 0;
        bool nack = false;     // serial: NACK instead of a reply
        bool drop = false;     // TCP: close the connection
    };

    SimRegister(const Options& options, Clock& clock);

    bool loadFaults(const QString& scriptText, QString* error = nullptr);

    // One command as it came off the wire (Windows-1253, no framing).
    Response handle(const QByteArray& command);
    // The bytes hold a whole command the register knows (see EcrModel).
    bool isWholeCommand(const QByteArray& command) const;
    // A frame whose check digits were wrong: journalled, not executed.
    void noteBadFrame(const QByteArray& frame);
    // False when the fault script keeps the next ENQ unanswered.
    bool answerEnq();

    const RegisterMemory& memory() const { return memory_; }
    int commandsReceived() const { return received_; }
    QString lastError() const { return lastError_; }

private:
    // Executes the command unless it is too long or the fault script answers for it.
    // replyAfterMs: how long the register itself takes to answer.
    Reply answer(const QByteArray& raw, const QString& command, int faultCode, int& replyAfterMs);
    void journal(const QString& command, const QString& reply);
    void print(const QStringList& lines);
    void persist();

    Options options_;
    Clock& clock_;
    RegisterMemory memory_;
    EcrModel model_;
    FaultScript faults_;
    int received_ = 0;
    QString lastCommand_;
    QString lastError_;
    QByteArray savedImage_; // what the memory file holds
};
