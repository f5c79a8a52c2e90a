#include "Document.h"

#include "CardTerminalCommands.h"
#include "DeviceCode.h"
#include "FieldNumbers.h"
#include "Paper.h"

#include <cmath>

using fieldnumbers::money;
using paper::centred;
using paper::row;

Document::Document(RegisterMemory& memory, CardTerminalCommands& cards)
    : m_(memory)
    , cards_(cards)
{
}

bool Document::anythingOpen() const { return receiptOpen() || m_.visitTable > 0; }

qint64 Document::total() const
{
    qint64 t = 0;
    for (const SaleLine& l : m_.receipt.lines)
        t += l.amount + l.subtotalShare;
    return t;
}

qint64 Document::paid() const
{
    qint64 p = 0;
    for (const PaymentLine& l : m_.receipt.payments)
        p += l.amount;
    return p;
}

void Document::openDay()
{
    if (!m_.dayOpen) {
        m_.dayOpen = true;
        m_.day = DayFigures{};
    }
}

void Document::open(Command& c, int kind, int table)
{
    openDay();
    m_.receipt = Receipt{};
    m_.receipt.state = Receipt::Open;
    m_.receipt.kind = kind;
    m_.receipt.table = table;
    m_.receipt.daily = ++m_.dailyNumber;
    m_.receipt.progressive = ++m_.progressive;
    m_.cardTransactions.clear();
    c.printed << paper::rule(QLatin1Char('=')) << centred(QStringLiteral("KERBANO ΔΟΚΙΜΑΣΤΙΚΗ ΤΑΜΕΙΑΚΗ"))
              << centred(QStringLiteral("ΑΦΜ 999999999")) << centred(m_.modelPrefix + m_.serialDigits);
    const QString title = kind == Receipt::PreCollection ? QStringLiteral("ΠΡΟΕΙΣΠΡΑΞΗ")
                          : kind == Receipt::Table       ? QStringLiteral("ΑΠΟΔΕΙΞΗ ΤΡΑΠΕΖΙΟΥ %1").arg(table)
                                                         : QStringLiteral("ΑΠΟΔΕΙΞΗ ΛΙΑΝΙΚΗΣ");
    c.printed << row(title, QStringLiteral("Α/Α %1").arg(m_.receipt.daily, 4, 10, QLatin1Char('0')))
              << row(paper::stamp(c.now), QStringLiteral("ΑΡ.ΠΡΟΓ %1").arg(m_.receipt.progressive))
              << paper::rule(QLatin1Char('-'));
}

void Document::bookIntoDay(std::array<qint64, capacity::kVatCategories>& byCategory)
{
    DayFigures& d = m_.day;
    for (const SaleLine& l : m_.receipt.lines) {
        const qint64 v = l.amount + l.subtotalShare;
        byCategory[l.vat] += v;
        d.gross[l.vat] += v;
        d.depAmount[l.dep] += v;
        if (l.kind == SaleLine::Sale)
            d.depCountMilli[l.dep] += l.qtyMilli;
        else if (l.kind == SaleLine::Return) {
            d.depCountMilli[l.dep] -= l.qtyMilli;
            d.returns += -l.amount;
        } else if (l.kind == SaleLine::Cancel) {
            d.depCountMilli[l.dep] -= l.qtyMilli;
            d.corrections += -l.amount;
        }
    }
    for (const PaymentLine& p : m_.receipt.payments)
        d.paymentAmount[p.number] += p.amount;
    // The change leaves the drawer from the payment that overpaid: the last.
    if (!m_.receipt.payments.isEmpty())
        d.paymentAmount[m_.receipt.payments.last().number] -= m_.receipt.change;
    d.total += total();
    d.receipts += 1;
}

void Document::printVatAnalysis(Command& c, const std::array<qint64, capacity::kVatCategories>& byCategory) const
{
    for (int i = 0; i < capacity::kVatCategories; ++i) {
        if (byCategory[i] == 0)
            continue;
        const qint64 rate = m_.vatRates[i];
        const qint64 netAmount = std::llround(byCategory[i] * 10000.0 / (10000 + rate));
        c.printed << QStringLiteral("ΦΠΑ %1 %2%  ΚΑΘ %3  ΦΠΑ %4")
                         .arg(paper::vatLetter(i))
                         .arg(money(rate))
                         .arg(money(netAmount))
                         .arg(money(byCategory[i] - netAmount));
    }
}

void Document::close(Command& c)
{
    Receipt& r = m_.receipt;
    std::array<qint64, capacity::kVatCategories> byCategory{};
    bookIntoDay(byCategory);
    if (r.change > 0)
        c.printed << row(QStringLiteral("ΡΕΣΤΑ"), money(r.change));
    c.printed << paper::rule(QLatin1Char('-'));
    printVatAnalysis(c, byCategory);
    c.printed << row(QStringLiteral("ΣΥΝΟΛΟ ΕΥΡΩ"), money(total()));
    for (const QString& f : m_.footer)
        if (!f.isEmpty())
            c.printed << centred(f);
    c.printed << centred(QStringLiteral("ΑΡ. ΑΠΟΔ. %1  Z %2").arg(r.daily).arg(m_.zNumber + 1))
              << centred(QStringLiteral("ΝΟΜΙΜΗ ΑΠΟΔΕΙΞΗ")) << QString();
    r.state = Receipt::Closed;
    if (r.kind == Receipt::Table) {
        TableRecord& t = m_.tables[r.table];
        t.items.clear();
        t.open = false;
        t.closing = false;
        t.nextOrder = 1;
    }
}

void Document::endVisit(Command& c)
{
    if (m_.visitSlip) {
        qint64 onTable = 0;
        for (const TableItem& i : m_.tables[m_.visitTable].items)
            onTable += fieldnumbers::lineAmount(i.qtyMilli, i.priceCents);
        c.printed << row(QStringLiteral("ΣΥΝΟΛΟ ΤΡΑΠΕΖΙΟΥ"), money(onTable)) << paper::rule(QLatin1Char('-'))
                  << QString();
    }
    m_.visitTable = 0;
    m_.selectedOrder = 0;
    m_.visitSlip = false;
}

Reply Document::adjust(Command& c, const Adjustment& a)
{
    const Receipt& r = m_.receipt;
    if (m_.visitTable > 0 || r.state == Receipt::Closed || r.kind == Receipt::PreCollection)
        return Reply::refuse(devicecode::kNoOpenReceipt);
    if (r.state == Receipt::InPayment)
        return Reply::refuse(devicecode::kInPayment);
    if (a.value == 0)
        return Reply::refuse(devicecode::kZeroDiscount);
    if (a.value < 0 || (!a.asAmount && a.value > 10000))
        return Reply::refuse(devicecode::kDiscountLimit);

    SaleLine adjustment;
    adjustment.kind = a.surcharge ? SaleLine::Surcharge : SaleLine::Discount;
    adjustment.desc = a.text;
    return a.onSubtotal ? adjustSubtotal(c, adjustment, a) : adjustLastSale(c, adjustment, a);
}

Reply Document::adjustLastSale(Command& c, SaleLine& adjustment, const Adjustment& a)
{
    Receipt& r = m_.receipt;
    if (r.lines.isEmpty() || r.lines.last().kind != SaleLine::Sale)
        return Reply::refuse(devicecode::kWrongDiscount);
    const SaleLine& last = r.lines.last();
    const qint64 base = last.amount;
    const qint64 amount = a.asAmount ? a.value : std::llround(base * a.value / 10000.0);
    if (amount == 0)
        return Reply::refuse(devicecode::kZeroDiscount);
    if (!a.surcharge && amount > base)
        return Reply::refuse(devicecode::kDiscountLimit);
    adjustment.amount = a.surcharge ? amount : -amount;
    adjustment.dep = last.dep;
    adjustment.vat = last.vat;
    if (!a.asAmount)
        c.printed << QStringLiteral("  %1%").arg(money(a.value));
    r.lines << adjustment;
    c.printed << paper::saleLine(adjustment);
    return Reply::ok();
}

Reply Document::adjustSubtotal(Command& c, SaleLine& adjustment, const Adjustment& a)
{
    Receipt& r = m_.receipt;
    const qint64 base = total();
    if (base <= 0)
        return Reply::refuse(devicecode::kWrongDiscount);
    const qint64 amount = a.asAmount ? a.value : std::llround(base * a.value / 10000.0);
    if (amount == 0)
        return Reply::refuse(devicecode::kZeroDiscount);
    if (!a.surcharge && amount > base)
        return Reply::refuse(devicecode::kDiscountLimit);
    const qint64 signedAmount = a.surcharge ? amount : -amount;
    // Spread over the lines by their share, so the VAT analysis stays exact.
    qint64 given = 0;
    int lastIndex = -1;
    for (int i = 0; i < r.lines.size(); ++i) {
        SaleLine& l = r.lines[i];
        const qint64 net = l.amount + l.subtotalShare;
        if (net == 0)
            continue;
        const qint64 share = std::llround(static_cast<long double>(signedAmount) * net / base);
        l.subtotalShare += share;
        given += share;
        lastIndex = i;
    }
    if (lastIndex >= 0)
        r.lines[lastIndex].subtotalShare += signedAmount - given;
    c.printed << row(QStringLiteral("ΥΠΟΣΥΝΟΛΟ"), money(base));
    adjustment.amount = signedAmount;
    c.printed << paper::saleLine(adjustment);
    return Reply::ok();
}

void Document::addPreCollectionLine(qint64 amount)
{
    SaleLine l;
    l.kind = SaleLine::Sale;
    l.desc = QStringLiteral("ΠΡΟΕΙΣΠΡΑΞΗ");
    l.qtyMilli = 1000;
    l.priceCents = amount;
    l.amount = amount;
    l.dep = 1;
    l.vat = m_.departments[1].vat - 1;
    m_.receipt.lines << l;
}

Reply Document::pay(Command& c, int number, qint64 amount, const QString& text, int terminal)
{
    if (number < 1 || number > capacity::kPayments)
        return Reply::refuse(devicecode::kWrongPayment);
    const PaymentType& pt = m_.payments[number];
    if (!pt.active())
        return Reply::refuse(devicecode::kInactivePayment);
    Receipt& r = m_.receipt;
    const qint64 due = total();
    if (due < 0)
        return Reply::refuse(devicecode::kNegativeTotal);
    const qint64 balance = due - paid();
    // A pre-collection's zero payment closes it at the amount already paid.
    if (r.kind == Receipt::PreCollection && amount == 0 && terminal == 0) {
        close(c);
        return Reply::ok();
    }
    if (amount == 0)
        amount = balance;
    if (r.kind != Receipt::PreCollection && amount > balance && pt.type != 0)
        return Reply::refuse(devicecode::kNoChangeForPayment);

    CardTransaction card;
    if (terminal > 0) {
        if (!cards_.terminalActive(terminal))
            return Reply::refuse(devicecode::kEftInactive);
        card = cards_.charge(c, terminal, number, amount);
        if (!card.approved)
            return Reply::ok();
    }

    if (r.kind == Receipt::PreCollection && r.lines.isEmpty())
        addPreCollectionLine(amount);
    if (r.state == Receipt::Open)
        c.printed << row(QStringLiteral("ΣΥΝΟΛΟ"), money(total()));
    r.state = Receipt::InPayment;
    r.payments << PaymentLine{number, pt.name, text, amount};
    c.printed << row(text.trimmed().isEmpty() ? pt.name : text, money(amount));
    if (terminal > 0)
        c.printed << cards_.approvalLines(card);
    if (paid() >= total()) {
        r.change = paid() - total();
        close(c);
    }
    return Reply::ok();
}
