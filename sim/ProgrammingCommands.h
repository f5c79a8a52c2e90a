#pragma once

#include "CommandTable.h"
#include "RegisterMemory.h"

// What a driver programs into the register: payments, the receipt footer
// and the tax server settings.
class ProgrammingCommands {
public:
    explicit ProgrammingCommands(RegisterMemory& memory);

    void enrol(CommandTable& table);

private:
    Reply payment(Command& c);     // Y/<n>/<text>/<short>//0/<mask>/<type>/<printed>/
    Reply footerLines(Command& c); // j/<line 1>/.../<line 4>/////
    Reply footerPairs(Command& c); // F/<style>/<text>/... six lines
    Reply taxServer(Command& c);   // ]/<connect>/0//<server>/80/<key>/<QR address>/

    RegisterMemory& m_;
};
