#pragma once

#include "CommandTable.h"

// Commands that move the paper or set the register's hardware. Only the paper
// feed leaves a trace; the others are accepted as a register accepts them.
class ControlCommands {
public:
    void enrol(CommandTable& table);

private:
    static Reply feed(Command& c); // w/<station>/<lines>/
};
