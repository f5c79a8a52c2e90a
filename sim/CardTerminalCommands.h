#pragma once

#include "CommandTable.h"
#include "RegisterMemory.h"
#include "TerminalOutcome.h"

#include <array>
#include <deque>
#include <vector>

// The EFT terminals that hang on the register: their definitions, the card
// payments they are asked for, the transactions of the document and the
// batch that closes a terminal's package.
class CardTerminalCommands {
public:
    explicit CardTerminalCommands(RegisterMemory& memory);

    void enrol(CommandTable& table);

    // How the terminals answer, from the fault script, in its order: a rule
    // answers the card payments of its terminal until its count runs out.
    // Without a rule a terminal approves at once.
    void addRule(const TerminalRule& rule);
    // Answers the next card payment of any terminal, before every rule.
    void answerNextFirst(const TerminalOutcome& outcome) { first_.push_back(outcome); }
    // Answers a card payment of any terminal after the rules already given.
    void queueOutcome(const QString& text);

    // A terminal number of a command: 1 to 12.
    static bool parseTerminal(const QString& text, int& terminal);
    // Programmed active, unless the script put it on or off the line.
    bool terminalActive(int terminal) const;

    // Asks the terminal for the amount. The transaction is kept for the
    // query whatever the terminal said; a refusal is printed here, an
    // approval by the payment, under its own line, with approvalLines().
    CardTransaction charge(Command& c, int terminal, int payment, qint64 amount);
    // What the terminal printed for the transaction just charged.
    QStringList approvalLines(const CardTransaction& tx) const;

    // "5/99/0/ ///1/1/": the transactions of the current or last document.
    Reply transactions() const;

private:
    enum class Standing { AsProgrammed, Online, Offline };

    TerminalOutcome nextOutcome(int terminal);

    Reply definition(Command& c); // ",/11/<terminal>/"
    Reply batch(Command& c);      // "\/15/<terminal>/..."

    RegisterMemory& m_;
    std::deque<TerminalOutcome> first_;
    std::vector<TerminalRule> rules_;
    std::array<Standing, capacity::kTerminals + 1> standing_{};
};
