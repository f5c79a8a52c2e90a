#pragma once

#include "CommandTable.h"
#include "RegisterMemory.h"

class Document;

// What the register reports and reads out: status, identity, counters, the
// document in hand, the VAT table, departments, payments, the last Z, and
// the X and Z reports themselves.
class ReportCommands {
public:
    ReportCommands(RegisterMemory& memory, Document& document);

    void enrol(CommandTable& table);

private:
    Reply identity() const;               // a/
    Reply counters() const;               // i/
    Reply documentInHand() const;         // 9/
    Reply vatTable() const;               // e/
    Reply lastZFigures() const;           // 0/
    Reply lastZTime(const Command& c) const; // t/
    Reply dayStatus() const;              // s/
    Reply department(const Command& c) const; // d/<n> and d/<n>/
    Reply payment(const Command& c) const;    // y/<n>/
    Reply xReport(Command& c);            // x/ but x/7///, and z/
    Reply zReport(Command& c);            // x/7///

    void printDay(Command& c, const QString& title) const;

    RegisterMemory& m_;
    Document& document_;
};
