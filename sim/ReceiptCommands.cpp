#include "ReceiptCommands.h"

#include "CardTerminalCommands.h"
#include "DeviceCode.h"
#include "Document.h"
#include "FieldNumbers.h"
#include "Paper.h"
#include "TableCommands.h"

using fieldnumbers::parseInt;
using fieldnumbers::parseScaled;

namespace {
constexpr int kCardQueryPayment = 99;
constexpr int kDescriptionChars = 15;
constexpr int kSecondDescriptionChars = 30;
constexpr int kPaymentTextChars = 30;
constexpr int kCommentChars = 30;
constexpr int kPaymentFieldsWithTerminal = 9;

bool parseFlag(const QString& text, int& value) { return parseInt(text, value) && value >= 0 && value <= 1; }
} // namespace

ReceiptCommands::ReceiptCommands(RegisterMemory& memory, Document& document, TableCommands& tables,
                                 CardTerminalCommands& cards)
    : m_(memory)
    , document_(document)
    , tables_(tables)
    , cards_(cards)
{
}

void ReceiptCommands::enrol(CommandTable& table)
{
    table.add({"3/S/a/b/1/1/1/1/"}, [this](Command& c) { return sale(c); });
    table.add({"4/1//t/0/0/0/"}, [this](Command& c) { return adjustment(c); });
    table.add({"5/1/1/t//////", "5/1/1/t///1/1/", "5/1/0.00////"}, [this](Command& c) { return payment(c); });
    table.add({"6/0/", "6/0/1//"}, [this](Command& c) { return preCollection(c); });
    table.add({"7/1/1/t/"}, [this](Command& c) { return comment(c); });
    table.add({"+/", "+/1/99/"}, [this](Command& c) { return cancel(c); });
}

int ReceiptCommands::vatIndexOf(qint64 rate) const
{
    for (int i = 0; i < capacity::kVatCategories; ++i)
        if (m_.vatRates[i] == rate)
            return i;
    return -1;
}

bool ReceiptCommands::voidable(const SaleLine& line) const
{
    qint64 left = 0;
    for (const SaleLine& l : m_.receipt.lines) {
        if (l.desc.trimmed() != line.desc.trimmed() || l.priceCents != line.priceCents)
            continue;
        if (l.kind == SaleLine::Sale)
            left += l.qtyMilli;
        else if (l.kind == SaleLine::Cancel)
            left -= l.qtyMilli;
    }
    return m_.receipt.state != Receipt::Closed && left >= line.qtyMilli;
}

Reply ReceiptCommands::sale(Command& c)
{
    const QString kindText = c.field(1);
    if (kindText != QLatin1String("S") && kindText != QLatin1String("R") && kindText != QLatin1String("C"))
        return Reply::refuse(devicecode::kWrongFields);
    SaleLine line;
    line.kind = kindText == QLatin1String("S")   ? SaleLine::Sale
                : kindText == QLatin1String("R") ? SaleLine::Return
                                                 : SaleLine::Cancel;
    line.desc = c.field(2).left(kDescriptionChars);
    line.desc2 = c.field(3).left(kSecondDescriptionChars);
    qint64 rate = 0;
    if (!parseScaled(c.field(4), 1000, line.qtyMilli) || !parseScaled(c.field(5), 100, line.priceCents) ||
        !parseInt(c.field(6), line.dep) || !parseScaled(c.field(7), 100, rate))
        return Reply::refuse(devicecode::kWrongFields);
    if (line.desc.trimmed().isEmpty())
        return Reply::refuse(devicecode::kBlankDescription);
    if (line.qtyMilli <= 0)
        return Reply::refuse(devicecode::kNeedQuantity);
    if (line.priceCents <= 0)
        return Reply::refuse(devicecode::kWrongPrice);
    if (line.dep < 1 || line.dep > capacity::kDepartments)
        return Reply::refuse(devicecode::kWrongDepartment);
    if (!m_.departments[line.dep].active)
        return Reply::refuse(devicecode::kInactiveDepartment);
    line.vat = vatIndexOf(rate);
    if (line.vat < 0)
        return Reply::refuse(devicecode::kWrongVat);

    if (m_.visitTable > 0)
        return tables_.sellOnVisit(c, line);

    Receipt& r = m_.receipt;
    if (r.state == Receipt::InPayment)
        return Reply::refuse(devicecode::kInPayment);
    if (r.kind == Receipt::PreCollection && r.state == Receipt::Open)
        return Reply::refuse(devicecode::kReceiptOpen);
    if (line.kind == SaleLine::Cancel && !voidable(line))
        return Reply::refuse(devicecode::kInvalidVoid);
    if (r.state == Receipt::Closed)
        document_.open(c, Receipt::Sale, 0);
    const qint64 amount = fieldnumbers::lineAmount(line.qtyMilli, line.priceCents);
    line.amount = line.kind == SaleLine::Sale ? amount : -amount;
    r.lines << line;
    c.printed << paper::saleLine(line);
    return Reply::ok();
}

Reply ReceiptCommands::adjustment(Command& c)
{
    Adjustment a;
    int type = 0, scope = 0, kind = 0;
    if (!parseScaled(c.field(1), 100, a.value) || !parseFlag(c.field(4), type) || !parseFlag(c.field(5), scope) ||
        !parseFlag(c.field(6), kind))
        return Reply::refuse(devicecode::kWrongFields);
    a.surcharge = type == 1;
    a.onSubtotal = scope == 1;
    a.asAmount = kind == 1;
    a.text = c.field(3).left(kDescriptionChars);
    return document_.adjust(c, a);
}

Reply ReceiptCommands::payment(Command& c)
{
    int number = 0;
    qint64 amount = 0;
    if (!parseInt(c.field(1), number) || !parseScaled(c.field(2), 100, amount) || amount < 0)
        return Reply::refuse(devicecode::kWrongFields);
    if (number == kCardQueryPayment && c.field(3) == QLatin1String(" "))
        return cards_.transactions();
    int terminal = 0;
    if (c.fieldCount() == kPaymentFieldsWithTerminal && c.field(7) == QLatin1String("1") &&
        !CardTerminalCommands::parseTerminal(c.field(6), terminal))
        return Reply::refuse(devicecode::kWrongFields);

    // A zero payment ends whatever is in hand: a table visit, or a document
    // whose balance it settles.
    if (amount == 0 && terminal == 0 && m_.visitTable > 0) {
        document_.endVisit(c);
        return Reply::ok();
    }
    if (m_.receipt.state == Receipt::Closed || m_.receipt.kind == Receipt::Table)
        return Reply::refuse(devicecode::kNoOpenReceipt);
    return document_.pay(c, number, amount, c.field(3).left(kPaymentTextChars), terminal);
}

Reply ReceiptCommands::preCollection(Command& c)
{
    if (c.fieldCount() != 5) // "6/0/" and "6/1/" are accepted as they are
        return Reply::ok();
    if (document_.anythingOpen())
        return Reply::refuse(devicecode::kReceiptOpen);
    document_.open(c, Receipt::PreCollection, 0);
    return Reply::ok();
}

Reply ReceiptCommands::comment(Command& c)
{
    int station = 0;
    parseInt(c.field(1), station);
    if (station == 0) {
        int line = 0;
        parseInt(c.field(2), line);
        if (line < 1 || line > 2)
            return Reply::refuse(devicecode::kWrongFields);
        m_.display[line - 1] = c.field(3);
        return Reply::ok();
    }
    int style = 0;
    if (!parseInt(c.field(2), style) || style < 1 || style > 4)
        return Reply::refuse(devicecode::kWrongFields);
    const QString text = c.field(3).left(kCommentChars);
    c.printed << (style == 2 || style == 4 ? paper::centred(text) : text);
    return Reply::ok();
}

Reply ReceiptCommands::cancel(Command& c)
{
    if (c.fieldCount() == 4) {
        int number = 0;
        if (!parseInt(c.field(1), number) || number < 1 || number > m_.dailyNumber)
            return Reply::refuse(devicecode::kInvalidVoid);
        c.printed << paper::centred(QStringLiteral("ΑΚΥΡΩΣΗ ΠΑΡΑΣΤΑΤΙΚΟΥ %1").arg(number)) << QString();
        return Reply::ok();
    }
    Receipt& r = m_.receipt;
    if (r.state == Receipt::Closed)
        return Reply::refuse(devicecode::kNoOpenReceipt);
    m_.day.voids += document_.total();
    c.printed << paper::row(QStringLiteral("ΑΚΥΡΩΣΗ ΑΠΟΔΕΙΞΗΣ"), fieldnumbers::money(document_.total())) << QString();
    r.state = Receipt::Closed;
    r.lines.clear();
    r.payments.clear();
    if (r.kind == Receipt::Table)
        m_.tables[r.table].closing = false;
    return Reply::ok();
}
