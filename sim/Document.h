#pragma once

#include "Command.h"
#include "RegisterMemory.h"
#include "Reply.h"

class CardTerminalCommands;

// A discount or surcharge as "4/" gives it.
struct Adjustment {
    qint64 value = 0;        // cents, or hundredths of a percent
    bool surcharge = false;
    bool onSubtotal = false; // else on the last sale
    bool asAmount = false;   // else a percentage
    QString text;
};

// The document in hand (a receipt, a table's receipt or a pre-collection)
// and the table visit: what the receipt and table commands share.
class Document {
public:
    Document(RegisterMemory& memory, CardTerminalCommands& cards);

    // A document or a table visit is open: bit 4 of status byte 2.
    bool anythingOpen() const;
    bool receiptOpen() const { return m_.receipt.state != Receipt::Closed; }

    qint64 total() const;
    qint64 paid() const;

    // The first document of a day opens the day.
    void openDay();
    // Takes the next daily and progressive numbers and prints the header.
    void open(Command& c, int kind, int table);
    // Paid in full: books the document into the day, prints its foot and
    // frees the table it settled.
    void close(Command& c);
    // The table visit ends, and its order slip if anything went on it.
    void endVisit(Command& c);

    // A discount or surcharge on the last sale, or spread over the lines.
    Reply adjust(Command& c, const Adjustment& a);
    // A payment; amount 0 pays the balance. With a terminal the card
    // terminal is asked first, and what it refuses leaves the balance.
    Reply pay(Command& c, int number, qint64 amount, const QString& text, int terminal);

private:
    Reply adjustLastSale(Command& c, SaleLine& adjustment, const Adjustment& a);
    Reply adjustSubtotal(Command& c, SaleLine& adjustment, const Adjustment& a);
    void addPreCollectionLine(qint64 amount);
    void bookIntoDay(std::array<qint64, capacity::kVatCategories>& byCategory);
    void printVatAnalysis(Command& c, const std::array<qint64, capacity::kVatCategories>& byCategory) const;

    RegisterMemory& m_;
    CardTerminalCommands& cards_;
};
