#include "ControlCommands.h"

#include "FieldNumbers.h"

#include <QtGlobal>

namespace {
constexpr int kMostFeedLines = 20;

Reply accept(Command&) { return Reply::ok(); }
} // namespace

void ControlCommands::enrol(CommandTable& table)
{
    table.add({"w/1/1/"}, &ControlCommands::feed);
    table.add({"I/0/0"}, accept);  // drawer
    table.add({"L/"}, accept);
    table.add({"E/"}, accept);     // header
    table.add({"m/"}, accept);
    table.add({"k/0/0"}, accept);
    table.add({")/15/"}, accept);  // the codes of a waiting register
}

Reply ControlCommands::feed(Command& c)
{
    int lines = 0;
    fieldnumbers::parseInt(c.field(2), lines);
    for (int i = 0; i < qBound(0, lines, kMostFeedLines); ++i)
        c.printed << QString();
    return Reply::ok();
}
