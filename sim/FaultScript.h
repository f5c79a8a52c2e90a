#pragma once

#include "TerminalOutcome.h"

#include <QRegularExpression>
#include <QString>
#include <QStringList>
#include <vector>

// What a fault script makes the register do to one command. Several rules may
// apply to one command; their effects add up.
struct FaultEffect {
    int code = -1;          // answer this device code instead of executing
    int status1 = 0;        // status bits to OR into the reply
    int status2 = 0;
    bool silent = false;    // execute nothing, answer nothing
    bool lostReply = false; // execute, but the reply never leaves
    bool nack = false;      // answer NACK (serial) instead of executing
    int splitMs = -1;       // reply in two pieces, this pause between
    int delayMs = 0;        // reply this late
    bool drop = false;      // close the TCP connection after the command arrives
    bool noEnq = false;     // leave the ENQ before this command unanswered
    QStringList cards;      // card terminal texts for this command's card payment
};

// The script: one rule a line, "<selector> : <action> [argument]".
// Selectors: a number N (the Nth command, once), "/regex/" (every match),
// "/regex/ xK" (the first K matches), "*" (every command).
// Actions: code HH, status HH HH, busy, paperend, operator, silent, lost,
// nack, split MS, delay MS, drop, noenq, card TEXT.
// A line "card TEXT" with no selector queues a terminal text for the next card payment.
// A line "terminal <T|*> [xK|always] : <answer>" scripts the card terminals:
// answer is "online", "offline", or "[wait S] approve [TEXT]", "[wait S] decline TEXT",
// "[wait S] busy", "[wait S] nocontact".
class FaultScript {
public:
    bool parse(const QString& text, QString* error = nullptr);

    // The effect on the command numbered n (from 1). Consumes one-shot rules.
    FaultEffect effectFor(int n, const QString& command);
    // Whether the ENQ that precedes command n stays unanswered (consumes it).
    bool swallowEnq(int n, const QString& lastCommand);

    // The card terminals' answers and states, in the order of the script.
    const std::vector<TerminalRule>& terminalRules() const { return terminalRules_; }

private:
    struct Rule {
        int number = 0;
        QRegularExpression pattern;
        bool every = false;
        int remaining = -1; // -1 unlimited
        QString action;
        QString argument;
    };
    static bool parseRule(const QString& line, Rule& r, QString& why);
    bool matches(Rule& r, int n, const QString& command) const;
    std::vector<Rule> rules_;
    std::vector<TerminalRule> terminalRules_;
};
