#pragma once

class DeviceLink;
class Operator;
struct ModuleVariables;

// The day's package of a terminal's transactions, closed by the register on
// one command. The operator picks the terminal among the active ones
// (frmEFTSelect). -1 when the register accepted the command, 0 in every other
// case, a cancelled choice included.
int SendEftBatchCommand(DeviceLink& link, Operator& op);

// The menu item s8: opens the link when closed, sends the batch command,
// tells the operator how it went, and closes the link again.
void RunEftBatch(DeviceLink& link, Operator& op, const ModuleVariables& vars);
