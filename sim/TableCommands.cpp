#include "TableCommands.h"

#include "CardTerminalCommands.h"
#include "DeviceCode.h"
#include "Document.h"
#include "FieldNumbers.h"
#include "Paper.h"

#include <algorithm>

using fieldnumbers::lineAmount;
using fieldnumbers::money;
using fieldnumbers::parseInt;
using fieldnumbers::parseScaled;
using paper::centred;
using paper::row;

namespace {
constexpr int kPaymentTextChars = 30;
// The register right-aligns the two title lines in these widths.
constexpr int kTitleLine1Chars = 20;
constexpr int kTitleLine2Chars = 32;

const QString kZero = QStringLiteral("0");
const QString kOne = QStringLiteral("1");

bool parseTable(const QString& text, int& table)
{
    return parseInt(text, table) && table >= 1 && table <= capacity::kTables;
}

// Fields 2 and 3: source and destination of a move, or the range of a report.
bool parseTablePair(const Command& c, int& first, int& second)
{
    return parseTable(c.field(2), first) && parseTable(c.field(3), second);
}

qint64 itemAmount(const TableItem& i) { return lineAmount(i.qtyMilli, i.priceCents); }

SaleLine saleLineOf(const TableItem& i)
{
    SaleLine l;
    l.kind = SaleLine::Sale;
    l.desc = i.desc;
    l.desc2 = i.desc2;
    l.qtyMilli = i.qtyMilli;
    l.priceCents = i.priceCents;
    l.dep = i.dep;
    l.vat = i.vat;
    l.amount = itemAmount(i);
    return l;
}

void freeTable(TableRecord& t)
{
    t.items.clear();
    t.open = false;
    t.closing = false;
    t.nextOrder = 1;
}

QString movedPair(const TableItem& from, const TableItem& to)
{
    return QStringLiteral("%1-%2|%3-%4").arg(from.uid).arg(from.order).arg(to.uid).arg(to.order);
}

// The count of moved items, then one field a moved item.
Reply transferReply(const QStringList& pairs) { return Reply::ok(QStringList{QString::number(pairs.size())} + pairs); }
} // namespace

TableCommands::TableCommands(RegisterMemory& memory, Document& document)
    : m_(memory)
    , document_(document)
{
}

void TableCommands::enrol(CommandTable& table)
{
    table.add({"\"/0/1/1/a/b/"}, [this](Command& c) { return title(c); });
    table.add({"&/0/1//////////////"}, [this](Command& c) { return onTable(c, &TableCommands::openVisit); });
    table.add({"&/1/1//0///f/////d/////", "&/1/1//0////////////"},
              [this](Command& c) { return onTable(c, &TableCommands::prepare); });
    table.add({"&/3/1//0/1///////a/t////", "&/3/1//0/1///////a/t//1/1/"},
              [this](Command& c) { return onTable(c, &TableCommands::pay); });
    table.add({"&/4/1/2/0/1///////////"}, [this](Command& c) { return move(c); });
    table.add({"&/5/1/1/////////////"}, [this](Command& c) { return onTable(c, &TableCommands::select); });
    table.add({"&/9/1/2/3////////////"}, [this](Command& c) { return moveItem(c); });
    table.add({"&/10/1/290/1////////////"}, [this](Command& c) { return report(c); });
    table.add({"&/11/1//0/0///////////"}, [this](Command& c) { return onTable(c, &TableCommands::contents); });
}

Reply TableCommands::onTable(Command& c, TableStep step)
{
    int table = 0;
    if (!parseTable(c.field(2), table))
        return Reply::refuse(devicecode::kWrongFields);
    return (this->*step)(c, table);
}

Reply TableCommands::title(Command& c)
{
    int table = 0;
    if (c.field(1) != kZero || !parseTable(c.field(2), table) || c.field(3) != kOne)
        return Reply::refuse(devicecode::kWrongFields);
    if (c.field(4).size() > kTitleLine1Chars || c.field(5).size() > kTitleLine2Chars)
        return Reply::refuse(devicecode::kFieldTooLong);
    m_.tables[table].title1 = c.field(4).trimmed();
    m_.tables[table].title2 = c.field(5).trimmed();
    return Reply::ok();
}

Reply TableCommands::openVisit(Command&, int table)
{
    if (m_.visitTable == table)
        return Reply::ok();
    if (document_.receiptOpen())
        return Reply::refuse(devicecode::kReceiptOpen);
    if (m_.visitTable > 0 || m_.moveFrom > 0 || m_.tables[table].closing)
        return Reply::refuse(devicecode::kTableWrongState);
    document_.openDay();
    m_.tables[table].open = true;
    m_.visitTable = table;
    m_.selectedOrder = 0;
    m_.visitSlip = false;
    return Reply::ok();
}

void TableCommands::beginSlip(Command& c)
{
    if (m_.visitSlip)
        return;
    m_.visitSlip = true;
    const TableRecord& t = m_.tables[m_.visitTable];
    c.printed << paper::rule(QLatin1Char('-')) << centred(QStringLiteral("ΔΕΛΤΙΟ ΠΑΡΑΓΓΕΛΙΑΣ"))
              << centred(QStringLiteral("ΤΡΑΠΕΖΙ %1").arg(m_.visitTable));
    for (const QString& title : {t.title1, t.title2})
        if (!title.isEmpty())
            c.printed << centred(title);
    c.printed << centred(paper::stamp(c.now)) << paper::rule(QLatin1Char('-'));
}

Reply TableCommands::sellOnVisit(Command& c, SaleLine& line)
{
    TableRecord& t = m_.tables[m_.visitTable];
    if (line.kind == SaleLine::Return)
        return Reply::refuse(devicecode::kInvalidRefund);
    if (line.kind == SaleLine::Cancel)
        return cancelSelected(c, t, line);
    const TableItem item{m_.nextUid++, t.nextOrder++, line.desc,     line.desc2,
                         line.qtyMilli, line.priceCents, line.dep, line.vat};
    t.items << item;
    line.amount = itemAmount(item);
    beginSlip(c);
    c.printed << paper::saleLine(line);
    return Reply::ok({QString::number(item.uid), QString::number(item.order)});
}

Reply TableCommands::cancelSelected(Command& c, TableRecord& t, SaleLine& line)
{
    const auto it = std::find_if(t.items.begin(), t.items.end(),
                                 [&](const TableItem& i) { return i.order == m_.selectedOrder; });
    // Only the line chosen by &/5/, as it was sold, and no more of it than stands.
    if (m_.selectedOrder == 0 || it == t.items.end() || it->desc.trimmed() != line.desc.trimmed() ||
        it->priceCents != line.priceCents || line.qtyMilli > it->qtyMilli)
        return Reply::refuse(devicecode::kInvalidVoid);
    line.amount = -lineAmount(line.qtyMilli, it->priceCents);
    beginSlip(c);
    c.printed << paper::saleLine(line);
    if (it->qtyMilli > line.qtyMilli)
        it->qtyMilli -= line.qtyMilli;
    else
        t.items.erase(it);
    m_.selectedOrder = 0;
    return Reply::ok();
}

Reply TableCommands::select(Command& c, int table)
{
    if (m_.visitTable == 0)
        return Reply::refuse(devicecode::kInactiveTable);
    if (m_.visitTable != table)
        return Reply::refuse(devicecode::kTableWrongState);
    int order = 0;
    if (!parseInt(c.field(3), order))
        return Reply::refuse(devicecode::kWrongFields);
    const auto& items = m_.tables[table].items;
    if (std::none_of(items.begin(), items.end(), [&](const TableItem& i) { return i.order == order; }))
        return Reply::refuse(devicecode::kInvalidVoid);
    m_.selectedOrder = order;
    return Reply::ok();
}

Reply TableCommands::prepare(Command& c, int table)
{
    const QString flag = c.field(7);
    qint64 discount = 0;
    if (c.field(4) != kZero || (flag != kOne && !flag.isEmpty()) ||
        (!c.field(12).isEmpty() && !parseScaled(c.field(12), 100, discount)) || discount < 0)
        return Reply::refuse(devicecode::kWrongFields);
    // The flag says whether field 12 is a discount at all.
    if (flag.isEmpty() && discount != 0)
        return Reply::refuse(devicecode::kWrongFields);
    if (flag == kOne && discount == 0)
        return Reply::refuse(devicecode::kZeroDiscount);
    return prepareClosing(c, table, discount);
}

bool TableCommands::tableReceiptOpen(int table) const
{
    const Receipt& r = m_.receipt;
    return r.state != Receipt::Closed && r.kind == Receipt::Table && r.table == table;
}

Reply TableCommands::prepareClosing(Command& c, int table, qint64 discount)
{
    TableRecord& t = m_.tables[table];
    if (!t.open)
        return Reply::refuse(devicecode::kInactiveTable);
    if ((m_.visitTable > 0 && m_.visitTable != table) || m_.moveFrom == table || m_.moveTo == table)
        return Reply::refuse(devicecode::kTableWrongState);
    const bool ownReceipt = tableReceiptOpen(table);
    if (document_.receiptOpen() && !ownReceipt)
        return Reply::refuse(devicecode::kReceiptOpen);
    if (ownReceipt && m_.receipt.state == Receipt::InPayment)
        return Reply::refuse(devicecode::kInPayment);
    if (m_.visitTable == table)
        document_.endVisit(c);
    if (t.items.isEmpty())
        return Reply::ok(); // nothing to close: the payment frees it
    if (!ownReceipt)
        openTableReceipt(c, table);
    return discountTable(c, discount);
}

void TableCommands::openTableReceipt(Command& c, int table)
{
    TableRecord& t = m_.tables[table];
    document_.open(c, Receipt::Table, table);
    for (const QString& title : {t.title1, t.title2})
        if (!title.isEmpty())
            c.printed << centred(title);
    for (const TableItem& i : t.items) {
        const SaleLine l = saleLineOf(i);
        m_.receipt.lines << l;
        c.printed << paper::saleLine(l);
    }
    t.closing = true;
}

Reply TableCommands::discountTable(Command& c, qint64 discount)
{
    Receipt& r = m_.receipt;
    qint64 given = 0;
    for (const SaleLine& l : r.lines)
        given -= l.subtotalShare;
    if (discount == given)
        return Reply::ok();
    if (given != 0) {
        for (SaleLine& l : r.lines)
            l.subtotalShare = 0;
        c.printed << row(QStringLiteral("ΑΚΥΡΩΣΗ ΕΚΠΤΩΣΗΣ"), money(given));
    }
    if (discount == 0)
        return Reply::ok();
    Adjustment a;
    a.value = discount;
    a.onSubtotal = true;
    a.asAmount = true;
    a.text = QStringLiteral("ΕΚΠΤΩΣΗ");
    return document_.adjust(c, a);
}

Reply TableCommands::pay(Command& c, int table)
{
    int number = 0;
    qint64 amount = 0;
    if (c.field(4) != kZero || !parseInt(c.field(5), number) || !parseScaled(c.field(12), 100, amount) || amount < 0)
        return Reply::refuse(devicecode::kWrongFields);
    int terminal = 0;
    const bool byCard = c.field(16) == kOne;
    if (byCard ? !CardTerminalCommands::parseTerminal(c.field(15), terminal)
               : !(c.field(15).isEmpty() && c.field(16).isEmpty()))
        return Reply::refuse(devicecode::kWrongFields);
    if (!m_.tables[table].open)
        return Reply::refuse(devicecode::kInactiveTable);
    if (!tableReceiptOpen(table)) {
        const Reply prepared = prepareClosing(c, table, 0);
        if (!prepared.isOk())
            return prepared;
        if (!tableReceiptOpen(table))
            return freeEmptiedTable(c, table);
    }
    const Reply paid = document_.pay(c, number, amount, c.field(13).left(kPaymentTextChars), terminal);
    // Paid in part, or the card took nothing: the table is still closing.
    if (paid.isOk() && tableReceiptOpen(table))
        return Reply::refuse(devicecode::kTableClosureInProgress);
    return paid;
}

Reply TableCommands::freeEmptiedTable(Command& c, int table)
{
    freeTable(m_.tables[table]);
    c.printed << centred(QStringLiteral("ΤΡΑΠΕΖΙ %1 ΑΚΥΡΩΘΗΚΕ").arg(table)) << QString();
    return Reply::ok();
}

Reply TableCommands::contents(Command& c, int table)
{
    if (c.field(4) != kZero || c.field(5) != kZero)
        return Reply::refuse(devicecode::kWrongFields);
    const TableRecord& t = m_.tables[table];
    QStringList r{QString::number(t.items.size())};
    for (const TableItem& i : t.items)
        r << QStringList{QString::number(i.order), QString::number(i.uid), i.desc,
                         fieldnumbers::quantity(i.qtyMilli), money(itemAmount(i)), QString::number(i.dep),
                         money(m_.vatRates[i.vat])}
                 .join(QLatin1Char('|'));
    return Reply::ok(r);
}

Reply TableCommands::report(Command& c)
{
    int from = 0, to = 0;
    const QString kind = c.field(4);
    if (!parseTablePair(c, from, to) || from > to || (kind != kZero && kind != kOne))
        return Reply::refuse(devicecode::kWrongFields);
    if (document_.anythingOpen())
        return Reply::refuse(devicecode::kReceiptOpen);
    const bool detail = kind == kOne;
    c.printed << paper::rule(QLatin1Char('=')) << centred(QStringLiteral("ΑΝΑΦΟΡΑ ΤΡΑΠΕΖΙΩΝ"))
              << centred(detail ? QStringLiteral("ΑΝΑΛΥΤΙΚΗ") : QStringLiteral("ΣΥΝΟΠΤΙΚΗ"))
              << centred(QStringLiteral("ΤΡΑΠΕΖΙΑ %1 - %2").arg(from).arg(to)) << centred(paper::stamp(c.now))
              << paper::rule(QLatin1Char('-'));
    int tablesInUse = 0;
    qint64 total = 0;
    for (int t = from; t <= to; ++t) {
        const TableRecord& rec = m_.tables[t];
        if (rec.items.isEmpty())
            continue;
        ++tablesInUse;
        qint64 sum = 0;
        for (const TableItem& i : rec.items)
            sum += itemAmount(i);
        total += sum;
        c.printed << row(QStringLiteral("ΤΡΑΠΕΖΙ %1 %2").arg(t).arg(rec.title1), money(sum));
        if (detail)
            for (const TableItem& i : rec.items)
                c.printed << row(QStringLiteral("  %1 %2 x%3").arg(i.order).arg(i.desc, fieldnumbers::quantity(i.qtyMilli)),
                                 money(itemAmount(i)));
    }
    c.printed << paper::rule(QLatin1Char('-')) << row(QStringLiteral("ΑΝΟΙΚΤΑ ΤΡΑΠΕΖΙΑ"), QString::number(tablesInUse))
              << row(QStringLiteral("ΣΥΝΟΛΟ"), money(total)) << paper::rule(QLatin1Char('=')) << QString();
    return Reply::ok();
}

Reply TableCommands::move(Command& c)
{
    int from = 0, to = 0;
    const QString mode = c.field(4);
    if (!parseTablePair(c, from, to) || from == to || (mode != kZero && mode != kOne) || c.field(5) != kOne)
        return Reply::refuse(devicecode::kWrongFields);
    if (document_.receiptOpen())
        return Reply::refuse(devicecode::kReceiptOpen);
    const bool itemsOneByOne = mode == kOne;
    if (itemsOneByOne && m_.moveFrom == from && m_.moveTo == to)
        return Reply::ok(); // the move begun before goes on
    const TableRecord& src = m_.tables[from];
    if (m_.visitTable > 0 || m_.moveFrom > 0 || src.closing || m_.tables[to].closing)
        return Reply::refuse(devicecode::kTableWrongState);
    if (!src.open)
        return Reply::refuse(devicecode::kInactiveTable);
    if (src.items.isEmpty())
        return Reply::refuse(devicecode::kNoLinesToTransfer);
    if (!itemsOneByOne)
        return moveWholeTable(c, from, to);
    m_.moveFrom = from;
    m_.moveTo = to;
    m_.movedPairs.clear();
    return Reply::ok();
}

TableItem TableCommands::transfer(const TableItem& item, int to)
{
    TableRecord& dst = m_.tables[to];
    TableItem moved = item;
    moved.uid = m_.nextUid++;
    moved.order = dst.nextOrder++;
    dst.items << moved;
    dst.open = true;
    return moved;
}

Reply TableCommands::moveWholeTable(Command& c, int from, int to)
{
    TableRecord& src = m_.tables[from];
    QStringList pairs;
    qint64 amount = 0;
    for (const TableItem& i : src.items) {
        pairs << movedPair(i, transfer(i, to));
        amount += itemAmount(i);
    }
    freeTable(src);
    c.printed << centred(QStringLiteral("ΜΕΤΑΦΟΡΑ ΤΡΑΠΕΖΙΟΥ %1 -> %2").arg(from).arg(to))
              << row(QStringLiteral("ΕΙΔΗ %1").arg(pairs.size()), money(amount)) << QString();
    return transferReply(pairs);
}

Reply TableCommands::moveItem(Command& c)
{
    int from = 0, to = 0, uid = 0;
    if (!parseTablePair(c, from, to) || !parseInt(c.field(4), uid))
        return Reply::refuse(devicecode::kWrongFields);
    if (m_.moveFrom != from || m_.moveTo != to)
        return Reply::refuse(devicecode::kTableWrongState);
    if (uid == 0)
        return endItemMove(c, from, to);
    TableRecord& src = m_.tables[from];
    const auto it =
        std::find_if(src.items.begin(), src.items.end(), [&](const TableItem& i) { return i.uid == uid; });
    if (it == src.items.end())
        return Reply::refuse(devicecode::kNoLinesToTransfer);
    m_.movedPairs << movedPair(*it, transfer(*it, to));
    src.items.erase(it);
    return Reply::ok();
}

Reply TableCommands::endItemMove(Command& c, int from, int to)
{
    const QStringList pairs = m_.movedPairs;
    m_.movedPairs.clear();
    m_.moveFrom = m_.moveTo = 0;
    if (m_.tables[from].items.isEmpty())
        freeTable(m_.tables[from]);
    if (!pairs.isEmpty())
        c.printed << centred(QStringLiteral("ΜΕΤΑΦΟΡΑ %1 ΕΙΔΩΝ %2 -> %3").arg(pairs.size()).arg(from).arg(to))
                  << QString();
    return transferReply(pairs);
}
