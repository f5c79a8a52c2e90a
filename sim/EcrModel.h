#pragma once

#include "CardTerminalCommands.h"
#include "CommandTable.h"
#include "ControlCommands.h"
#include "Document.h"
#include "ProgrammingCommands.h"
#include "ReceiptCommands.h"
#include "RegisterMemory.h"
#include "Reply.h"
#include "ReportCommands.h"
#include "TableCommands.h"

#include <QDateTime>
#include <QStringList>

// The register itself: command text in, reply and printed lines out. It hands
// each command to the family that knows its code. No I/O here; the wire, the
// faults and the files live around it.
class EcrModel {
public:
    struct Outcome {
        Reply reply;         // without any framing
        QStringList printed; // lines the printer put on paper
        int replyAfterMs = 0; // how long the register takes to answer
    };

    explicit EcrModel(RegisterMemory& memory);
    EcrModel(const EcrModel&) = delete;
    EcrModel& operator=(const EcrModel&) = delete;

    Outcome execute(const QString& command, const QDateTime& now);

    // The text is a command in one of the forms the register knows, whole.
    bool isWholeCommand(const QString& text) const { return commands_.isWhole(text.trimmed()); }

    // What the card terminal answers to the next card payments, in turn.
    // With nothing queued the terminal approves.
    void queueCardOutcome(const QString& text) { cards_.queueOutcome(text); }
    // The fault script's card terminals: their answers and states.
    void scriptTerminal(const TerminalRule& rule) { cards_.addRule(rule); }
    // The next card payment gets this text before anything scripted.
    void answerNextCardFirst(const QString& text) { cards_.answerNextFirst(TerminalOutcome::ofText(text)); }

    const RegisterMemory& memory() const { return m_; }

private:
    RegisterMemory& m_;
    CardTerminalCommands cards_;
    Document document_;
    TableCommands tables_;
    ReceiptCommands receipt_;
    ReportCommands reports_;
    ProgrammingCommands programming_;
    ControlCommands control_;
    CommandTable commands_;
};
