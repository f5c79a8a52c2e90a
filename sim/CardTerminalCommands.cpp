#include "CardTerminalCommands.h"

#include "DeviceCode.h"
#include "FieldNumbers.h"
#include "Paper.h"

using fieldnumbers::money;
using paper::centred;

namespace {
const QString kApproved = QStringLiteral("APPROVED");
// A terminal text with any of these words is a payment that did not happen.
const char* const kRefusalWords[] = {
    "DECLINED", "ERROR",  "PROBLEM",       "UNREACHABLE", "TIMEOUT",   "BUSY",  "INVALID",
    "DISCONNECTION", "INACTIVE", "CLOSED", "NOT SUPPORTED", "DUPLICATE", "WRONG", "FAILED",
};
} // namespace

CardTerminalCommands::CardTerminalCommands(RegisterMemory& memory)
    : m_(memory)
{
}

void CardTerminalCommands::enrol(CommandTable& table)
{
    table.add({",/11/1/"}, [this](Command& c) { return definition(c); });
    table.add({"\\/15/1/////////////////"}, [this](Command& c) { return batch(c); });
}

bool CardTerminalCommands::parseTerminal(const QString& text, int& terminal)
{
    return fieldnumbers::parseInt(text, terminal) && terminal >= 1 && terminal <= capacity::kTerminals;
}

bool CardTerminalCommands::approves(const QString& terminalText)
{
    for (const char* word : kRefusalWords)
        if (terminalText.contains(QLatin1String(word)))
            return false;
    return true;
}

const CardTransaction& CardTerminalCommands::charge(Command& c, int terminal, int payment, qint64 amount)
{
    CardTransaction tx;
    tx.terminal = terminal;
    tx.payment = payment;
    tx.amount = amount;
    tx.text = outcomes_.empty() ? kApproved : outcomes_.front();
    if (!outcomes_.empty())
        outcomes_.pop_front();
    tx.approved = approves(tx.text);
    tx.stamp = c.now.toString(QStringLiteral("ddMMyyhhmmss"));
    tx.receipt = m_.receipt.daily;
    m_.cardTransactions << tx;
    if (!tx.approved)
        c.printed << paper::row(QStringLiteral("EFT #%1 ΑΠΟΡΡΙΦΘΗΚΕ").arg(terminal), money(amount));
    return m_.cardTransactions.last();
}

Reply CardTerminalCommands::transactions() const
{
    // One count field, then fourteen fields a transaction; the terminal's text last.
    QStringList r{QString::number(m_.cardTransactions.size())};
    int index = 0;
    for (const CardTransaction& tx : m_.cardTransactions) {
        ++index;
        r << QString::number(index) << QString::number(tx.terminal) << QString::number(tx.payment)
          << money(tx.amount) << (tx.approved ? QStringLiteral("VISA") : QString())
          << (tx.approved ? QStringLiteral("************%1").arg(1000 + index) : QString())
          << (tx.approved ? QStringLiteral("%1").arg(100000 + tx.receipt * 10 + index) : QString())
          << tx.stamp << (tx.approved ? QStringLiteral("00") : QStringLiteral("05"))
          << QString::number(tx.receipt) << QStringLiteral("%1").arg(index, 6, 10, QLatin1Char('0'))
          << QStringLiteral("EUR") << QStringLiteral("SIMBANK") << tx.text;
    }
    return Reply::ok(r);
}

Reply CardTerminalCommands::definition(Command& c)
{
    int t = 0;
    if (!parseTerminal(c.field(2), t))
        return Reply::refuse(devicecode::kWrongFields);
    const Terminal& term = m_.terminals[t];
    return Reply::ok({QString::number(term.active ? 1 : 0), term.address, QStringLiteral("0"), term.name});
}

Reply CardTerminalCommands::batch(Command& c)
{
    int t = 0;
    if (!parseTerminal(c.field(2), t))
        return Reply::refuse(devicecode::kWrongFields);
    if (!terminalActive(t))
        return Reply::refuse(devicecode::kEftInactive);
    c.printed << centred(QStringLiteral("ΠΑΚΕΤΟ ΣΥΝΑΛΛΑΓΩΝ EFT #%1").arg(t)) << centred(m_.terminals[t].name)
              << centred(paper::stamp(c.now));
    return Reply::ok();
}
