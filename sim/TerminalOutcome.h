#pragma once

#include <QString>

// What a card terminal answers to one card payment: whether the money was
// taken, the text it reports to the register, and how long it kept the
// register waiting.
struct TerminalOutcome {
    bool approved = true;
    QString text = QStringLiteral("APPROVED");
    int waitSeconds = 0;

    static TerminalOutcome approve(const QString& text = QStringLiteral("APPROVED"));
    static TerminalOutcome decline(const QString& text);
    // A text as the terminal's own vocabulary reads it: one of its refusals
    // (busy, no contact, declined, ...) takes no money, anything else does.
    static TerminalOutcome ofText(const QString& text);
};

// The terminal texts of the line between register and terminal.
namespace terminaltext {
inline const QString kBusy = QStringLiteral("POS IS BUSY");
inline const QString kNoContact = QStringLiteral("SEND:TIMEOUT WHILE SEND DATA TO POS");
bool isRefusal(const QString& text);
} // namespace terminaltext

// One line of the fault script about the terminals: a standing state
// (put on or taken off the line) or an answer to the next card payments.
struct TerminalRule {
    enum Kind { Answer, Online, Offline };
    Kind kind = Answer;
    int terminal = 0;   // 1 to 12; 0 any terminal
    int remaining = 1;  // card payments it answers; -1 every one
    TerminalOutcome outcome;
};
