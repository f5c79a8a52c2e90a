#pragma once

#include "CommandTable.h"
#include "RegisterMemory.h"

#include <deque>

// The EFT terminals that hang on the register: their definitions, the card
// payments they are asked for, the transactions of the document and the batch.
class CardTerminalCommands {
public:
    explicit CardTerminalCommands(RegisterMemory& memory);

    void enrol(CommandTable& table);

    // What the terminal answers to the next card payments, in turn; with
    // nothing queued it approves.
    void queueOutcome(const QString& text) { outcomes_.push_back(text); }

    // A terminal number of a command: 1 to 12.
    static bool parseTerminal(const QString& text, int& terminal);
    bool terminalActive(int terminal) const { return m_.terminals[terminal].active; }

    // Asks the terminal for the amount. The transaction is kept for the
    // query whatever the terminal said; a refusal is printed.
    const CardTransaction& charge(Command& c, int terminal, int payment, qint64 amount);

    // "5/99/0/ ///1/1/": the transactions of the current or last document.
    Reply transactions() const;

private:
    static bool approves(const QString& terminalText);

    Reply definition(Command& c); // ",/11/<terminal>/"
    Reply batch(Command& c);      // "\/15/<terminal>/..."

    RegisterMemory& m_;
    std::deque<QString> outcomes_;
};
