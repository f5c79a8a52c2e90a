#include "ProgrammingCommands.h"

#include "DeviceCode.h"
#include "FieldNumbers.h"

namespace {
constexpr int kAesKeyChars = 64;
constexpr int kJFooterLines = 4;

// "." stands for an empty footer line.
QString footerText(const QString& field) { return field == QLatin1String(".") ? QString() : field; }

// Web addresses travel with "~" for "/".
QString address(const QString& field) { return QString(field).replace(QLatin1Char('~'), QLatin1Char('/')); }
} // namespace

ProgrammingCommands::ProgrammingCommands(RegisterMemory& memory)
    : m_(memory)
{
}

void ProgrammingCommands::enrol(CommandTable& table)
{
    table.add({"Y/1/t/a//0/m/0/t/"}, [this](Command& c) { return payment(c); });
    table.add({"j/a/b/c/d/////"}, [this](Command& c) { return footerLines(c); });
    table.add({"F/0/./0/./0/./0/./0/./0/./"}, [this](Command& c) { return footerPairs(c); });
    table.add({"]/1/0//s/80/k/q/"}, [this](Command& c) { return taxServer(c); });
}

Reply ProgrammingCommands::payment(Command& c)
{
    int p = 0;
    if (!fieldnumbers::parseInt(c.field(1), p) || p < 1 || p > capacity::kPayments)
        return Reply::refuse(devicecode::kWrongPayment);
    if (m_.receipt.state != Receipt::Closed)
        return Reply::refuse(devicecode::kReceiptOpen);
    int type = 0;
    fieldnumbers::parseInt(c.field(7), type);
    m_.payments[p] = PaymentType{c.field(2), c.field(3), c.field(6), c.field(8), type};
    return Reply::ok();
}

Reply ProgrammingCommands::footerLines(Command& c)
{
    for (int i = 0; i < kJFooterLines; ++i)
        m_.footer[i] = footerText(c.field(i + 1));
    return Reply::ok();
}

Reply ProgrammingCommands::footerPairs(Command& c)
{
    for (int i = 0; i < static_cast<int>(m_.footer.size()); ++i)
        m_.footer[i] = footerText(c.field(2 * i + 2));
    return Reply::ok();
}

Reply ProgrammingCommands::taxServer(Command& c)
{
    if (c.field(6).size() != kAesKeyChars)
        return Reply::refuse(devicecode::kWrongAesKey);
    m_.taxConnect = c.field(1) == QLatin1String("1");
    m_.taxServer = address(c.field(4));
    m_.taxKey = c.field(6);
    m_.taxQr = address(c.field(7));
    return Reply::ok();
}
