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
using paper::centred;
using paper::row;

namespace {
constexpr int kPaymentTextChars = 30;
constexpr int kPayFieldsWithTerminal = 18;

bool parseTable(const QString& text, int& table)
{
    return parseInt(text, table) && table >= 1 && table <= capacity::kTables;
}

QString movedPair(const TableItem& from, const TableItem& to)
{
    return QStringLiteral("%1-%2|%3-%4").arg(from.uid).arg(from.order).arg(to.uid).arg(to.order);
}
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
    if (c.field(1) != QLatin1String("0") || !parseTable(c.field(2), table))
        return Reply::refuse(devicecode::kWrongFields);
    m_.tables[table].title1 = c.field(4).trimmed();
    m_.tables[table].title2 = c.field(5).trimmed();
    return Reply::ok();
}

Reply TableCommands::openVisit(Command& c, int table)
{
    if (document_.receiptOpen())
        return Reply::refuse(devicecode::kReceiptOpen);
    if (m_.visitTable == table)
        return Reply::ok();
    if (m_.visitTable > 0 || m_.tables[table].closing)
        return Reply::refuse(devicecode::kTableWrongState);
    document_.openDay();
    TableRecord& t = m_.tables[table];
    t.open = true;
    m_.visitTable = table;
    m_.selectedOrder = 0;
    c.printed << paper::rule(QLatin1Char('-')) << centred(QStringLiteral("ΔΕΛΤΙΟ ΠΑΡΑΓΓΕΛΙΑΣ"))
              << centred(QStringLiteral("ΤΡΑΠΕΖΙ %1 %2").arg(table).arg(t.title1).trimmed())
              << centred(paper::stamp(c.now));
    return Reply::ok();
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
    line.amount = lineAmount(line.qtyMilli, line.priceCents);
    c.printed << paper::saleLine(line);
    return Reply::ok({QString::number(item.uid), QString::number(item.order)});
}

Reply TableCommands::cancelSelected(Command& c, TableRecord& t, SaleLine& line)
{
    const auto it = std::find_if(t.items.begin(), t.items.end(),
                                 [&](const TableItem& i) { return i.order == m_.selectedOrder; });
    if (m_.selectedOrder == 0 || it == t.items.end())
        return Reply::refuse(devicecode::kInvalidVoid);
    line.amount = -lineAmount(line.qtyMilli, it->priceCents);
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
    if (m_.visitTable != table)
        return Reply::refuse(devicecode::kTableWrongState);
    const auto& items = m_.tables[table].items;
    int order = 0;
    if (!parseInt(c.field(3), order) ||
        std::none_of(items.begin(), items.end(), [&](const TableItem& i) { return i.order == order; }))
        return Reply::refuse(devicecode::kWrongFields);
    m_.selectedOrder = order;
    return Reply::ok();
}

Reply TableCommands::prepare(Command& c, int table) { return prepareClosing(c, table, c.field(12)); }

Reply TableCommands::prepareClosing(Command& c, int table, const QString& discountText)
{
    TableRecord& t = m_.tables[table];
    if (!t.open)
        return Reply::refuse(devicecode::kInactiveTable);
    if (m_.visitTable > 0 && m_.visitTable != table)
        return Reply::refuse(devicecode::kTableWrongState);
    const Receipt& r = m_.receipt;
    if (r.state != Receipt::Closed && !(r.kind == Receipt::Table && r.table == table))
        return Reply::refuse(devicecode::kReceiptOpen);
    qint64 discount = 0;
    if (!discountText.isEmpty() && !fieldnumbers::parseScaled(discountText, 100, discount))
        return Reply::refuse(devicecode::kWrongFields);
    if (r.state == Receipt::InPayment)
        return Reply::refuse(devicecode::kInPayment);
    if (m_.visitTable == table)
        document_.endVisit(c);
    if (r.state == Receipt::Closed) {
        document_.open(c, Receipt::Table, table);
        for (const TableItem& i : t.items) {
            SaleLine l;
            l.kind = SaleLine::Sale;
            l.desc = i.desc;
            l.desc2 = i.desc2;
            l.qtyMilli = i.qtyMilli;
            l.priceCents = i.priceCents;
            l.dep = i.dep;
            l.vat = i.vat;
            l.amount = lineAmount(i.qtyMilli, i.priceCents);
            m_.receipt.lines << l;
            c.printed << paper::saleLine(l);
        }
        t.closing = true;
    }
    if (discount > 0) {
        Adjustment a;
        a.value = discount;
        a.onSubtotal = true;
        a.asAmount = true;
        a.text = QStringLiteral("ΕΚΠΤΩΣΗ");
        return document_.adjust(c, a);
    }
    return Reply::ok();
}

Reply TableCommands::pay(Command& c, int table)
{
    int number = 0;
    qint64 amount = 0;
    if (!parseInt(c.field(5), number) || !fieldnumbers::parseScaled(c.field(12), 100, amount) || amount < 0)
        return Reply::refuse(devicecode::kWrongFields);
    int terminal = 0;
    if (c.fieldCount() == kPayFieldsWithTerminal && c.field(16) == QLatin1String("1") &&
        !CardTerminalCommands::parseTerminal(c.field(15), terminal))
        return Reply::refuse(devicecode::kWrongFields);
    if (!m_.tables[table].open)
        return Reply::refuse(devicecode::kInactiveTable);
    const Receipt& r = m_.receipt;
    if (!(r.kind == Receipt::Table && r.table == table && r.state != Receipt::Closed)) {
        const Reply prepared = prepareClosing(c, table, QString());
        if (!prepared.isOk())
            return prepared;
    }
    return document_.pay(c, number, amount, c.field(13).left(kPaymentTextChars), terminal);
}

Reply TableCommands::contents(Command&, int table)
{
    const TableRecord& t = m_.tables[table];
    QStringList r{QString::number(t.items.size())};
    for (const TableItem& i : t.items)
        r << QStringList{QString::number(i.order),         QString::number(i.uid),
                         i.desc,                           fieldnumbers::quantity(i.qtyMilli),
                         money(lineAmount(i.qtyMilli, i.priceCents)), QString::number(i.dep),
                         money(m_.vatRates[i.vat])}
                 .join(QLatin1Char('|'));
    return Reply::ok(r);
}

Reply TableCommands::report(Command& c)
{
    int from = 0, to = 0;
    if (!parseTable(c.field(2), from) || !parseTable(c.field(3), to))
        return Reply::refuse(devicecode::kWrongFields);
    const bool detail = c.field(4) == QLatin1String("1");
    c.printed << paper::rule(QLatin1Char('=')) << centred(QStringLiteral("ΑΝΑΦΟΡΑ ΤΡΑΠΕΖΙΩΝ"));
    for (int t = from; t <= to; ++t) {
        const TableRecord& rec = m_.tables[t];
        if (rec.items.isEmpty())
            continue;
        qint64 sum = 0;
        for (const TableItem& i : rec.items) {
            const qint64 amount = lineAmount(i.qtyMilli, i.priceCents);
            sum += amount;
            if (detail)
                c.printed << row(QStringLiteral("  %1 %2").arg(i.order).arg(i.desc), money(amount));
        }
        c.printed << row(QStringLiteral("ΤΡΑΠΕΖΙ %1 %2").arg(t).arg(rec.title1), money(sum));
    }
    c.printed << QString();
    return Reply::ok();
}

Reply TableCommands::move(Command& c)
{
    int from = 0, to = 0;
    if (!parseTable(c.field(2), from) || !parseTable(c.field(3), to) || from == to)
        return Reply::refuse(devicecode::kWrongFields);
    TableRecord& src = m_.tables[from];
    TableRecord& dst = m_.tables[to];
    if (!src.open)
        return Reply::refuse(devicecode::kInactiveTable);
    if (m_.visitTable > 0 || src.closing || dst.closing || document_.receiptOpen())
        return Reply::refuse(devicecode::kTableWrongState);
    dst.open = true;
    if (c.field(4) == QLatin1String("1")) { // single items follow with &/9/
        m_.moveFrom = from;
        m_.moveTo = to;
        m_.movedPairs.clear();
        return Reply::ok();
    }
    QStringList pairs;
    for (const TableItem& i : src.items) {
        TableItem moved = i;
        moved.uid = m_.nextUid++;
        moved.order = dst.nextOrder++;
        dst.items << moved;
        pairs << movedPair(i, moved);
    }
    src.items.clear();
    src.open = false;
    src.nextOrder = 1;
    c.printed << centred(QStringLiteral("ΜΕΤΑΦΟΡΑ ΤΡΑΠΕΖΙΟΥ %1 -> %2").arg(from).arg(to));
    return Reply::ok(pairs);
}

Reply TableCommands::moveItem(Command& c)
{
    int from = 0, to = 0, uid = 0;
    if (!parseTable(c.field(2), from) || !parseTable(c.field(3), to) || !parseInt(c.field(4), uid))
        return Reply::refuse(devicecode::kWrongFields);
    if (m_.moveFrom != from || m_.moveTo != to)
        return Reply::refuse(devicecode::kTableWrongState);
    if (uid == 0)
        return endItemMove(c, from, to);
    TableRecord& src = m_.tables[from];
    TableRecord& dst = m_.tables[to];
    const auto it =
        std::find_if(src.items.begin(), src.items.end(), [&](const TableItem& i) { return i.uid == uid; });
    if (it == src.items.end())
        return Reply::refuse(devicecode::kWrongFields);
    TableItem moved = *it;
    moved.uid = m_.nextUid++;
    moved.order = dst.nextOrder++;
    m_.movedPairs << movedPair(*it, moved);
    dst.items << moved;
    src.items.erase(it);
    return Reply::ok();
}

Reply TableCommands::endItemMove(Command& c, int from, int to)
{
    TableRecord& src = m_.tables[from];
    const QStringList pairs = m_.movedPairs;
    m_.movedPairs.clear();
    m_.moveFrom = m_.moveTo = 0;
    if (src.items.isEmpty()) {
        src.open = false;
        src.nextOrder = 1;
    }
    if (!pairs.isEmpty())
        c.printed << centred(QStringLiteral("ΜΕΤΑΦΟΡΑ %1 ΕΙΔΩΝ %2 -> %3").arg(pairs.size()).arg(from).arg(to));
    return Reply::ok(pairs);
}
