#pragma once

#include "CommandTable.h"
#include "RegisterMemory.h"

class Document;

// Tables 1 to 290: titles, visits that take items, the selecting and
// cancelling of a line, moves of items and of whole tables, the closing and
// paying of a table's receipt, contents and reports.
class TableCommands {
public:
    TableCommands(RegisterMemory& memory, Document& document);

    void enrol(CommandTable& table);

    // A sale, or a cancellation of the selected line, while a visit is open.
    Reply sellOnVisit(Command& c, SaleLine& line);

private:
    using TableStep = Reply (TableCommands::*)(Command&, int);
    // The table of field 2 (05 when it is no table), then the step.
    Reply onTable(Command& c, TableStep step);

    Reply title(Command& c);                 // "/0/<table>/1/<line 1>/<line 2>/
    Reply openVisit(Command& c, int table);  // &/0/
    Reply prepare(Command& c, int table);    // &/1/
    Reply pay(Command& c, int table);        // &/3/
    Reply move(Command& c);                  // &/4/
    Reply select(Command& c, int table);     // &/5/
    Reply moveItem(Command& c);              // &/9/
    Reply report(Command& c);                // &/10/
    Reply contents(Command& c, int table);   // &/11/

    // Ends a visit, opens the table's receipt with its items and gives it the discount.
    Reply prepareClosing(Command& c, int table, qint64 discount);
    void openTableReceipt(Command& c, int table);
    // A later discount takes the place of the one given before.
    Reply discountTable(Command& c, qint64 discount);
    // A table whose items were all cancelled closes without a receipt.
    Reply freeEmptiedTable(Command& c, int table);
    bool tableReceiptOpen(int table) const;

    Reply moveWholeTable(Command& c, int from, int to);
    Reply endItemMove(Command& c, int from, int to);
    // The item goes onto the destination with a new identifier and the next order.
    TableItem transfer(const TableItem& item, int to);

    Reply cancelSelected(Command& c, TableRecord& t, SaleLine& line);
    // The order slip of the visit begins with its first line.
    void beginSlip(Command& c);

    RegisterMemory& m_;
    Document& document_;
};
