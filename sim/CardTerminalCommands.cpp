#include "CardTerminalCommands.h"

#include "DeviceCode.h"
#include "FieldNumbers.h"
#include "Paper.h"

using fieldnumbers::money;
using paper::centred;
using paper::row;

namespace {
constexpr int kMsPerSecond = 1000;
const QString kApprovedResponse = QStringLiteral("00");
const QString kRefusedResponse = QStringLiteral("05");

// The card details a terminal gives back for an approved transaction.
QString cardOf(const CardTransaction& tx) { return tx.approved ? QStringLiteral("VISA") : QString(); }
QString maskedNumberOf(const CardTransaction& tx, int index)
{
    return tx.approved ? QStringLiteral("************%1").arg(1000 + index) : QString();
}
QString authorisationOf(const CardTransaction& tx, int index)
{
    return tx.approved ? QString::number(100000 + tx.receipt * 10 + index) : QString();
}
} // namespace

CardTerminalCommands::CardTerminalCommands(RegisterMemory& memory)
    : m_(memory)
{
    standing_.fill(Standing::AsProgrammed);
}

void CardTerminalCommands::enrol(CommandTable& table)
{
    table.add({",/11/1/"}, [this](Command& c) { return definition(c); });
    table.add({"\\/15/1/////////////////"}, [this](Command& c) { return batch(c); });
}

void CardTerminalCommands::addRule(const TerminalRule& rule)
{
    if (rule.kind == TerminalRule::Answer)
        rules_.push_back(rule);
    else
        standing_[rule.terminal] = rule.kind == TerminalRule::Online ? Standing::Online : Standing::Offline;
}

void CardTerminalCommands::queueOutcome(const QString& text)
{
    TerminalRule r;
    r.outcome = TerminalOutcome::ofText(text);
    rules_.push_back(r);
}

bool CardTerminalCommands::parseTerminal(const QString& text, int& terminal)
{
    return fieldnumbers::parseInt(text, terminal) && terminal >= 1 && terminal <= capacity::kTerminals;
}

bool CardTerminalCommands::terminalActive(int terminal) const
{
    switch (standing_[terminal]) {
    case Standing::Online:
        return true;
    case Standing::Offline:
        return false;
    case Standing::AsProgrammed:
        break;
    }
    return m_.terminals[terminal].active;
}

TerminalOutcome CardTerminalCommands::nextOutcome(int terminal)
{
    if (!first_.empty()) {
        const TerminalOutcome o = first_.front();
        first_.pop_front();
        return o;
    }
    for (TerminalRule& r : rules_) {
        if (r.remaining == 0 || (r.terminal != 0 && r.terminal != terminal))
            continue;
        if (r.remaining > 0)
            --r.remaining;
        return r.outcome;
    }
    return TerminalOutcome::approve();
}

CardTransaction CardTerminalCommands::charge(Command& c, int terminal, int payment, qint64 amount)
{
    const TerminalOutcome o = nextOutcome(terminal);
    // A slow terminal holds the register's answer back.
    c.replyAfterMs += o.waitSeconds * kMsPerSecond;
    CardTransaction tx;
    tx.terminal = terminal;
    tx.payment = payment;
    tx.amount = amount;
    tx.text = QString(o.text).replace(QLatin1Char('/'), QLatin1Char('-')); // no field holds a slash
    tx.approved = o.approved;
    tx.stamp = c.now.addSecs(o.waitSeconds).toString(QStringLiteral("ddMMyyhhmmss"));
    tx.receipt = m_.receipt.daily;
    m_.cardTransactions << tx;
    if (tx.approved) {
        Terminal& t = m_.terminals[terminal];
        t.batchCount += 1;
        t.batchAmount += amount;
    } else {
        c.printed << row(QStringLiteral("EFT #%1 ΑΠΟΡΡΙΦΘΗΚΕ").arg(terminal), money(amount))
                  << QStringLiteral("  ") + tx.text;
    }
    return tx;
}

QStringList CardTerminalCommands::approvalLines(const CardTransaction& tx) const
{
    const int index = static_cast<int>(m_.cardTransactions.size());
    return {QStringLiteral("  EFT #%1 %2").arg(tx.terminal).arg(tx.text),
            QStringLiteral("  %1 %2").arg(cardOf(tx), maskedNumberOf(tx, index)),
            QStringLiteral("  ΕΓΚΡΙΣΗ %1").arg(authorisationOf(tx, index))};
}

Reply CardTerminalCommands::transactions() const
{
    // One count field, then fourteen fields a transaction; the terminal's text last.
    QStringList r{QString::number(m_.cardTransactions.size())};
    int index = 0;
    for (const CardTransaction& tx : m_.cardTransactions) {
        ++index;
        r << QString::number(index) << QString::number(tx.terminal) << QString::number(tx.payment)
          << money(tx.amount) << cardOf(tx) << maskedNumberOf(tx, index) << authorisationOf(tx, index) << tx.stamp
          << (tx.approved ? kApprovedResponse : kRefusedResponse) << QString::number(tx.receipt)
          << QStringLiteral("%1").arg(index, 6, 10, QLatin1Char('0')) << QStringLiteral("EUR")
          << QStringLiteral("SIMBANK") << tx.text;
    }
    return Reply::ok(r);
}

Reply CardTerminalCommands::definition(Command& c)
{
    int t = 0;
    if (!parseTerminal(c.field(2), t))
        return Reply::refuse(devicecode::kWrongFields);
    const Terminal& term = m_.terminals[t];
    return Reply::ok({QString::number(terminalActive(t) ? 1 : 0), term.address, QStringLiteral("0"), term.name});
}

Reply CardTerminalCommands::batch(Command& c)
{
    int t = 0;
    if (!parseTerminal(c.field(2), t))
        return Reply::refuse(devicecode::kWrongFields);
    if (!terminalActive(t))
        return Reply::refuse(devicecode::kEftInactive);
    if (m_.receipt.state != Receipt::Closed)
        return Reply::refuse(devicecode::kReceiptOpen);
    Terminal& term = m_.terminals[t];
    c.printed << paper::rule(QLatin1Char('=')) << centred(QStringLiteral("ΠΑΚΕΤΟ ΣΥΝΑΛΛΑΓΩΝ EFT #%1").arg(t))
              << centred(term.name) << centred(paper::stamp(c.now)) << paper::rule(QLatin1Char('-'))
              << row(QStringLiteral("ΣΥΝΑΛΛΑΓΕΣ"), QString::number(term.batchCount))
              << row(QStringLiteral("ΣΥΝΟΛΟ"), money(term.batchAmount)) << paper::rule(QLatin1Char('=')) << QString();
    const Reply reply = Reply::ok({QString::number(term.batchCount), money(term.batchAmount)});
    term.batchCount = 0;
    term.batchAmount = 0;
    return reply;
}
