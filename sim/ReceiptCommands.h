#pragma once

#include "CommandTable.h"
#include "RegisterMemory.h"

class CardTerminalCommands;
class Document;
class TableCommands;

// The receipt: sales, returns and voids, discounts, payments, printed
// comments, the pre-collection and the cancelling of a document.
class ReceiptCommands {
public:
    ReceiptCommands(RegisterMemory& memory, Document& document, TableCommands& tables, CardTerminalCommands& cards);

    void enrol(CommandTable& table);

private:
    Reply sale(Command& c);          // "3/S/", "3/R/", "3/C/"
    Reply adjustment(Command& c);    // "4/"
    Reply payment(Command& c);       // "5/", and the card query "5/99/0/ ///1/1/"
    Reply preCollection(Command& c); // "6/0/1//"; "6/0/" and "6/1/" are taken as they come
    Reply comment(Command& c);       // "7/1/" printed, "7/0/" the customer display
    Reply cancel(Command& c);        // "+/" the open document, "+/<n>/99/" an earlier one

    // A void takes back part of an earlier sale of the same item.
    bool voidable(const SaleLine& line) const;
    int vatIndexOf(qint64 rateHundredths) const;

    RegisterMemory& m_;
    Document& document_;
    TableCommands& tables_;
    CardTerminalCommands& cards_;
};
