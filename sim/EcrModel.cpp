#include "EcrModel.h"

#include <QHash>
#include <QSet>
#include <cmath>

namespace {

// Device codes the register answers with (their texts live in the driver).
enum Code : int {
    kOk = 0x00,
    kWrongFieldCount = 0x01,
    kWrongFields = 0x05,
    kWrongCommand = 0x06,
    kWrongDepartment = 0x08,
    kWrongVat = 0x09,
    kWrongPayment = 0x0C,
    kReceiptOpen = 0x14,
    kInPayment = 0x15,
    kWrongPrice = 0x18,
    kWrongDiscount = 0x1C,
    kInactivePayment = 0x40,
    kInactiveDepartment = 0x41,
    kNoOpenReceipt = 0x46,
    kDiscountLimit = 0x4A,
    kZeroDiscount = 0x4B,
    kBlankDescription = 0x4C,
    kNegativeTotal = 0x53,
    kNoChangeForPayment = 0x5A,
    kInvalidRefund = 0x6F,
    kInvalidVoid = 0x70,
    kWrongAesKey = 0x7D,
    kNeedQuantity = 0x88,
    kInactiveTable = 0xAF,
    kEftInactive = 0xBC,
    kTableWrongState = 0xCE,
};

constexpr int kPaperWidth = 40;
constexpr int kMaxDepartment = 50;
constexpr int kMaxTable = 290;
constexpr int kMaxTerminal = 12;
constexpr int kMaxPayment = 10;
constexpr int kCardQueryPayment = 99;
constexpr quint8 kDocumentOpenBit = 0x10; // status byte 2

// Canonical forms of every command the register knows; the number of fields
// of each is what the register counts before it looks at anything else.
const QHash<QString, QSet<int>>& fieldCounts()
{
    static const QHash<QString, QSet<int>> counts = [] {
        const char* forms[] = {
            "?/", "a/", "v/", "i/", "9/", "e/", "0/", "t/", "s/", "d/1", "d/1/", "y/1/", ",/11/1/",
            "3/S/a/b/1/1/1/1/", "4/1//t/0/0/0/", "5/1/1/t//////", "5/1/1/t///1/1/", "5/1/0.00////",
            "6/0/", "6/0/1//", "7/1/1/t/", "j/a/b/c/d/////", "F/0/./0/./0/./0/./0/./0/./", "E/", "m/",
            "k/0/0", "+/", "+/1/99/", "\"/0/1/1/a/b/", "&/0/1//////////////", "&/1/1//0///f/////d/////",
            "&/1/1//0////////////", "&/3/1//0/1///////a/t////", "&/3/1//0/1///////a/t//1/1/",
            "&/4/1/2/0/1///////////", "&/5/1/1/////////////", "&/9/1/2/3////////////",
            "&/10/1/290/1////////////", "&/11/1//0/0///////////", "I/0/0", "L/", "w/1/1/",
            "x/1/1/99999/", "x/2/1/", "x/7///", "z/1/2600/", ")/15/", "]/1/0//s/80/k/q/",
            "Y/1/t/a//0/m/0/t/", "\\/15/1/////////////////",
        };
        QHash<QString, QSet<int>> h;
        for (const char* f : forms) {
            const QStringList p = QString::fromUtf8(f).split(QLatin1Char('/'));
            const QString key = p[0] == QLatin1String("&") || p[0] == QLatin1String(",") ||
                                        p[0] == QLatin1String("\\")
                                    ? p[0] + QLatin1Char('/') + p.value(1)
                                    : p[0];
            h[key].insert(p.size());
        }
        return h;
    }();
    return counts;
}

QString hex2(int v) { return QStringLiteral("%1").arg(v & 0xFF, 2, 16, QLatin1Char('0')).toUpper(); }

QString money(qint64 cents)
{
    const qint64 a = std::llabs(cents);
    return QStringLiteral("%1%2.%3")
        .arg(cents < 0 ? QStringLiteral("-") : QString())
        .arg(a / 100)
        .arg(a % 100, 2, 10, QLatin1Char('0'));
}

QString quantity(qint64 milli)
{
    const qint64 a = std::llabs(milli);
    return QStringLiteral("%1%2.%3")
        .arg(milli < 0 ? QStringLiteral("-") : QString())
        .arg(a / 1000)
        .arg(a % 1000, 3, 10, QLatin1Char('0'));
}

bool parseScaled(const QString& text, int scale, qint64& out)
{
    bool ok = false;
    const double v = text.trimmed().toDouble(&ok);
    if (!ok || !std::isfinite(v) || std::fabs(v) > 1e12)
        return false;
    out = std::llround(v * scale);
    return true;
}

bool parseInt(const QString& text, int& out)
{
    bool ok = false;
    out = text.trimmed().toInt(&ok);
    return ok;
}

qint64 lineAmount(qint64 qtyMilli, qint64 priceCents)
{
    const long double v = static_cast<long double>(qtyMilli) * priceCents / 1000.0L;
    return std::llround(v);
}

QString row(const QString& left, const QString& right)
{
    const int gap = kPaperWidth - left.size() - right.size();
    if (gap < 1)
        return left.left(kPaperWidth - right.size() - 1) + QLatin1Char(' ') + right;
    return left + QString(gap, QLatin1Char(' ')) + right;
}

QString centred(const QString& text)
{
    const int pad = (kPaperWidth - text.size()) / 2;
    return pad > 0 ? QString(pad, QLatin1Char(' ')) + text : text;
}

QChar vatLetter(int index) { return QChar(u'Α' + index); }

} // namespace

struct EcrModel::Ctx {
    QStringList f;
    QDateTime now;
    QStringList printed;
    QString field(int i) const { return f.value(i); }
};

EcrModel::EcrModel(RegisterMemory& memory)
    : m_(memory)
{
}

EcrModel::Outcome EcrModel::execute(const QString& command, const QDateTime& now)
{
    Ctx c;
    c.f = command.trimmed().split(QLatin1Char('/'));
    c.now = now;
    Outcome out;
    out.reply = dispatch(c);
    out.printed = c.printed;
    return out;
}

// --- replies ---------------------------------------------------------------

namespace {
QString replyWith(int code, quint8 status2, const QStringList& data = {})
{
    QString r = hex2(code) + QLatin1Char('/') + hex2(0) + QLatin1Char('/') + hex2(status2) + QLatin1Char('/');
    for (const QString& d : data)
        r += d + QLatin1Char('/');
    return r;
}
} // namespace

#define STATUS2 static_cast<quint8>((m_.receipt.state != Receipt::Closed || m_.visitTable > 0) ? kDocumentOpenBit : 0)
#define REFUSE(code) return replyWith((code), STATUS2)
#define ANSWER(...) return replyWith(kOk, STATUS2, __VA_ARGS__)

QString EcrModel::dispatch(Ctx& c)
{
    const QString code = c.field(0);
    if (code.isEmpty())
        REFUSE(kWrongCommand);
    const bool withSub = code == QLatin1String("&") || code == QLatin1String(",") || code == QLatin1String("\\");
    const QString key = withSub ? code + QLatin1Char('/') + c.field(1) : code;
    const auto it = fieldCounts().constFind(key);
    if (it == fieldCounts().constEnd())
        REFUSE(kWrongCommand);
    if (!it->contains(c.f.size()))
        REFUSE(kWrongFieldCount);

    const QChar k = code.at(0);
    switch (k.unicode()) {
    case '?':
        ANSWER({});
    case 'a':
        ANSWER({m_.serialDigits, QStringLiteral("1"), m_.modelPrefix});
    case 'v':
        ANSWER({QStringLiteral("SIM 1.0"), QStringLiteral("1.08")});
    case 'i':
        ANSWER({QString::number(m_.dailyNumber), QString::number(m_.progressive), QString::number(m_.zNumber),
                QString::number(m_.zNumber + m_.progressiveAtDayStart)});
    case '9':
    case 'e':
    case '0':
    case 't':
    case 's':
    case 'd':
    case 'y':
    case ',':
        return cmdStatus(c);
    case '3':
        return cmdSale(c);
    case '4':
        return cmdDiscount(c);
    case '5':
        return cmdPayment(c);
    case '7':
        return cmdComment(c);
    case '+':
        return cmdVoid(c);
    case 'x':
    case 'z':
        return cmdReport(c);
    case '&':
    case '"':
        return cmdTable(c);
    case 'Y':
        return cmdProgramPayment(c);
    case ']':
        return cmdTaxServer(c);
    case 'j':
        for (int i = 0; i < 4; ++i)
            m_.footer[i] = c.field(i + 1) == QLatin1String(".") ? QString() : c.field(i + 1);
        ANSWER({});
    case 'F':
        for (int i = 0; i < 6; ++i)
            m_.footer[i] = c.field(2 * i + 2) == QLatin1String(".") ? QString() : c.field(2 * i + 2);
        ANSWER({});
    case '6':
        if (c.f.size() == 5) { // pre-collection document
            if (m_.receipt.state != Receipt::Closed || m_.visitTable > 0)
                REFUSE(kReceiptOpen);
            openReceipt(c, Receipt::PreCollection, 0);
        }
        ANSWER({});
    case 'w': {
        int lines = 0;
        parseInt(c.field(2), lines);
        for (int i = 0; i < qBound(0, lines, 20); ++i)
            c.printed << QString();
        ANSWER({});
    }
    case '\\': {
        int t = 0;
        if (!parseInt(c.field(2), t) || t < 1 || t > kMaxTerminal)
            REFUSE(kWrongFields);
        if (!m_.terminals[t].active)
            REFUSE(kEftInactive);
        c.printed << centred(QStringLiteral("ΠΑΚΕΤΟ ΣΥΝΑΛΛΑΓΩΝ EFT #%1").arg(t)) << centred(m_.terminals[t].name)
                  << centred(c.now.toString(QStringLiteral("dd/MM/yyyy hh:mm")));
        ANSWER({});
    }
    case ')':
    case 'E':
    case 'm':
    case 'k':
    case 'L':
    case 'I':
        ANSWER({});
    default:
        REFUSE(kWrongCommand);
    }
}

// --- reading commands ------------------------------------------------------

QString EcrModel::cmdStatus(Ctx& c)
{
    const QChar k = c.field(0).at(0);
    if (k == QLatin1Char('9')) {
        const bool open = m_.receipt.state != Receipt::Closed;
        const qint64 amount = open ? receiptTotal() - receiptPaid() : receiptTotal();
        ANSWER({QString::number(m_.receipt.state), QString::number(m_.receipt.lines.size()),
                money(receiptTotal()), money(receiptPaid()), money(m_.receipt.change),
                QString::number(m_.receipt.daily), money(amount), QString::number(m_.receipt.progressive)});
    }
    if (k == QLatin1Char('e')) {
        QStringList r;
        for (qint64 v : m_.vatRates)
            r << money(v);
        ANSWER(r);
    }
    if (k == QLatin1Char('0')) {
        QStringList r;
        for (qint64 g : m_.lastZ.gross)
            r << money(g);
        r << money(m_.lastZ.total) << QString::number(m_.lastZ.receipts)
          << QString::number(m_.progressiveAtDayStart) << money(m_.lastZ.voids) << money(m_.lastZ.returns)
          << money(m_.lastZ.corrections);
        ANSWER(r);
    }
    if (k == QLatin1Char('t')) {
        const QDateTime z = QDateTime::fromString(m_.lastZStamp, Qt::ISODate);
        const QDateTime when = z.isValid() ? z : c.now;
        ANSWER({when.toString(QStringLiteral("dd-MM-yyyy")), when.toString(QStringLiteral("hhmmss"))});
    }
    if (k == QLatin1Char('s')) {
        ANSWER({QString::number(m_.dayOpen ? 1 : 0), QString::number(m_.receipt.state), QString::number(m_.zNumber),
                QString::number(m_.dailyNumber), QString::number(m_.progressive), QStringLiteral("0"),
                QStringLiteral("0"), m_.modelPrefix + m_.serialDigits, QStringLiteral("999999999")});
    }
    if (k == QLatin1Char('d')) {
        int d = 0;
        if (!parseInt(c.field(1), d) || d < 1 || d > kMaxDepartment)
            REFUSE(kWrongDepartment);
        const Department& dep = m_.departments[d];
        ANSWER({dep.name, QString::number(dep.vat), QString::number(dep.active ? 1 : 0), QStringLiteral("0.00"),
                QStringLiteral("0"), quantity(m_.lastZ.depCountMilli[d]).section(QLatin1Char('.'), 0, 0),
                money(m_.lastZ.depAmount[d])});
    }
    if (k == QLatin1Char('y')) {
        int p = 0;
        if (!parseInt(c.field(1), p) || p < 1 || p > kMaxPayment)
            REFUSE(kWrongPayment);
        const PaymentType& pt = m_.payments[p];
        ANSWER({pt.name, pt.shortName, QStringLiteral("0"), pt.mask, QString::number(pt.type), pt.printText});
    }
    // ",/11/<terminal>/"
    if (c.field(1) != QLatin1String("11"))
        REFUSE(kWrongCommand);
    int t = 0;
    if (!parseInt(c.field(2), t) || t < 1 || t > kMaxTerminal)
        REFUSE(kWrongFields);
    const Terminal& term = m_.terminals[t];
    ANSWER({QString::number(term.active ? 1 : 0), term.address, QStringLiteral("0"), term.name});
}

// --- the receipt -----------------------------------------------------------

int EcrModel::vatIndexOf(qint64 rate) const
{
    for (int i = 0; i < 5; ++i)
        if (m_.vatRates[i] == rate)
            return i;
    return -1;
}

qint64 EcrModel::receiptTotal() const
{
    qint64 t = 0;
    for (const SaleLine& l : m_.receipt.lines)
        t += l.amount + l.subtotalShare;
    return t;
}

qint64 EcrModel::receiptPaid() const
{
    qint64 p = 0;
    for (const PaymentLine& l : m_.receipt.payments)
        p += l.amount;
    return p;
}

void EcrModel::openReceipt(Ctx& c, int kind, int table)
{
    if (!m_.dayOpen) {
        m_.dayOpen = true;
        m_.day = DayFigures{};
    }
    m_.receipt = Receipt{};
    m_.receipt.state = Receipt::Open;
    m_.receipt.kind = kind;
    m_.receipt.table = table;
    m_.receipt.daily = ++m_.dailyNumber;
    m_.receipt.progressive = ++m_.progressive;
    m_.cardTransactions.clear();
    const QString sep(kPaperWidth, QLatin1Char('='));
    c.printed << sep << centred(QStringLiteral("KERBANO ΔΟΚΙΜΑΣΤΙΚΗ ΤΑΜΕΙΑΚΗ"))
              << centred(QStringLiteral("ΑΦΜ 999999999")) << centred(m_.modelPrefix + m_.serialDigits);
    const QString title = kind == Receipt::PreCollection ? QStringLiteral("ΠΡΟΕΙΣΠΡΑΞΗ")
                          : kind == Receipt::Table       ? QStringLiteral("ΑΠΟΔΕΙΞΗ ΤΡΑΠΕΖΙΟΥ %1").arg(table)
                                                         : QStringLiteral("ΑΠΟΔΕΙΞΗ ΛΙΑΝΙΚΗΣ");
    c.printed << row(title, QStringLiteral("Α/Α %1").arg(m_.receipt.daily, 4, 10, QLatin1Char('0')))
              << row(c.now.toString(QStringLiteral("dd/MM/yyyy hh:mm")),
                     QStringLiteral("ΑΡ.ΠΡΟΓ %1").arg(m_.receipt.progressive))
              << QString(kPaperWidth, QLatin1Char('-'));
}

namespace {
QStringList printSaleLine(const SaleLine& l)
{
    QStringList out;
    const QString letter = QString(vatLetter(l.vat));
    switch (l.kind) {
    case SaleLine::Sale:
    case SaleLine::Return:
    case SaleLine::Cancel: {
        const QString label = l.kind == SaleLine::Return   ? QStringLiteral("ΕΠΙΣΤΡΟΦΗ ")
                              : l.kind == SaleLine::Cancel ? QStringLiteral("ΑΚΥΡΩΣΗ ")
                                                           : QString();
        if (l.qtyMilli != 1000)
            out << QStringLiteral("  %1 x %2").arg(quantity(l.qtyMilli), money(l.priceCents));
        out << row(label + l.desc, money(l.amount) + QLatin1Char(' ') + letter);
        if (!l.desc2.isEmpty())
            out << QStringLiteral("  ") + l.desc2;
        break;
    }
    case SaleLine::Discount:
    case SaleLine::Surcharge:
        out << row(l.desc.isEmpty() ? (l.kind == SaleLine::Discount ? QStringLiteral("ΕΚΠΤΩΣΗ")
                                                                    : QStringLiteral("ΕΠΙΒΑΡΥΝΣΗ"))
                                    : l.desc,
                   money(l.amount) + (l.dep > 0 ? QLatin1Char(' ') + letter : QString()));
        break;
    }
    return out;
}
} // namespace

QString EcrModel::cmdSale(Ctx& c)
{
    const QString kindText = c.field(1);
    if (kindText != QLatin1String("S") && kindText != QLatin1String("R") && kindText != QLatin1String("C"))
        REFUSE(kWrongFields);
    SaleLine line;
    line.kind = kindText == QLatin1String("S") ? SaleLine::Sale
                : kindText == QLatin1String("R") ? SaleLine::Return
                                                 : SaleLine::Cancel;
    line.desc = c.field(2).left(15);
    line.desc2 = c.field(3).left(30);
    qint64 rate = 0;
    if (!parseScaled(c.field(4), 1000, line.qtyMilli) || !parseScaled(c.field(5), 100, line.priceCents) ||
        !parseInt(c.field(6), line.dep) || !parseScaled(c.field(7), 100, rate))
        REFUSE(kWrongFields);
    if (line.desc.trimmed().isEmpty())
        REFUSE(kBlankDescription);
    if (line.qtyMilli <= 0)
        REFUSE(kNeedQuantity);
    if (line.priceCents <= 0)
        REFUSE(kWrongPrice);
    if (line.dep < 1 || line.dep > kMaxDepartment)
        REFUSE(kWrongDepartment);
    if (!m_.departments[line.dep].active)
        REFUSE(kInactiveDepartment);
    line.vat = vatIndexOf(rate);
    if (line.vat < 0)
        REFUSE(kWrongVat);
    const qint64 amount = lineAmount(line.qtyMilli, line.priceCents);

    if (m_.visitTable > 0) {
        TableRecord& t = m_.tables[m_.visitTable];
        if (line.kind == SaleLine::Return)
            REFUSE(kInvalidRefund);
        if (line.kind == SaleLine::Cancel) {
            const auto it = std::find_if(t.items.begin(), t.items.end(),
                                         [&](const TableItem& i) { return i.order == m_.selectedOrder; });
            if (m_.selectedOrder == 0 || it == t.items.end())
                REFUSE(kInvalidVoid);
            line.amount = -lineAmount(line.qtyMilli, it->priceCents);
            c.printed << printSaleLine(line);
            if (it->qtyMilli > line.qtyMilli)
                it->qtyMilli -= line.qtyMilli;
            else
                t.items.erase(it);
            m_.selectedOrder = 0;
            ANSWER({});
        }
        TableItem item{m_.nextUid++, t.nextOrder++, line.desc, line.desc2, line.qtyMilli, line.priceCents,
                       line.dep, line.vat};
        t.items << item;
        line.amount = amount;
        c.printed << printSaleLine(line);
        ANSWER({QString::number(item.uid), QString::number(item.order)});
    }

    Receipt& r = m_.receipt;
    if (r.state == Receipt::InPayment)
        REFUSE(kInPayment);
    if (r.kind == Receipt::PreCollection && r.state == Receipt::Open)
        REFUSE(kReceiptOpen);
    if (line.kind == SaleLine::Cancel) {
        // A void takes back part of an earlier sale of the same item.
        qint64 left = 0;
        for (const SaleLine& l : r.lines) {
            if (l.desc.trimmed() != line.desc.trimmed() || l.priceCents != line.priceCents)
                continue;
            if (l.kind == SaleLine::Sale)
                left += l.qtyMilli;
            else if (l.kind == SaleLine::Cancel)
                left -= l.qtyMilli;
        }
        if (r.state == Receipt::Closed || left < line.qtyMilli)
            REFUSE(kInvalidVoid);
    }
    if (r.state == Receipt::Closed)
        openReceipt(c, Receipt::Sale, 0);
    line.amount = line.kind == SaleLine::Sale ? amount : -amount;
    r.lines << line;
    c.printed << printSaleLine(line);
    ANSWER({});
}

QString EcrModel::cmdDiscount(Ctx& c)
{
    qint64 value = 0;
    int type = 0, scope = 0, kind = 0;
    if (!parseScaled(c.field(1), 100, value) || !parseInt(c.field(4), type) || !parseInt(c.field(5), scope) ||
        !parseInt(c.field(6), kind) || type < 0 || type > 1 || scope < 0 || scope > 1 || kind < 0 || kind > 1)
        REFUSE(kWrongFields);
    Receipt& r = m_.receipt;
    if (m_.visitTable > 0 || r.state == Receipt::Closed || r.kind == Receipt::PreCollection)
        REFUSE(kNoOpenReceipt);
    if (r.state == Receipt::InPayment)
        REFUSE(kInPayment);
    if (value == 0)
        REFUSE(kZeroDiscount);
    if (value < 0 || (kind == 0 && value > 10000))
        REFUSE(kDiscountLimit);

    SaleLine adj;
    adj.kind = type == 0 ? SaleLine::Discount : SaleLine::Surcharge;
    adj.desc = c.field(3).left(15);
    if (scope == 0) {
        if (r.lines.isEmpty() || r.lines.last().kind != SaleLine::Sale)
            REFUSE(kWrongDiscount);
        const SaleLine& last = r.lines.last();
        const qint64 base = last.amount;
        const qint64 amount = kind == 0 ? std::llround(base * value / 10000.0) : value;
        if (amount == 0)
            REFUSE(kZeroDiscount);
        if (type == 0 && amount > base)
            REFUSE(kDiscountLimit);
        adj.amount = type == 0 ? -amount : amount;
        adj.dep = last.dep;
        adj.vat = last.vat;
        if (kind == 0)
            c.printed << QStringLiteral("  %1%").arg(money(value));
        r.lines << adj;
        c.printed << printSaleLine(adj);
        ANSWER({});
    }
    const qint64 base = receiptTotal();
    if (base <= 0)
        REFUSE(kWrongDiscount);
    const qint64 amount = kind == 0 ? std::llround(base * value / 10000.0) : value;
    if (amount == 0)
        REFUSE(kZeroDiscount);
    if (type == 0 && amount > base)
        REFUSE(kDiscountLimit);
    const qint64 signedAmount = type == 0 ? -amount : amount;
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
    adj.amount = signedAmount;
    c.printed << printSaleLine(adj);
    ANSWER({});
}

// --- payments --------------------------------------------------------------

QString EcrModel::cmdPayment(Ctx& c)
{
    int number = 0;
    qint64 amount = 0;
    if (!parseInt(c.field(1), number) || !parseScaled(c.field(2), 100, amount) || amount < 0)
        REFUSE(kWrongFields);
    if (number == kCardQueryPayment && c.field(3) == QLatin1String(" "))
        return cmdCardQuery(c);
    int terminal = 0;
    if (c.f.size() == 9 && c.field(7) == QLatin1String("1")) {
        if (!parseInt(c.field(6), terminal) || terminal < 1 || terminal > kMaxTerminal)
            REFUSE(kWrongFields);
    }

    // A zero payment ends whatever is in hand: a table visit, or a document
    // whose balance it settles.
    if (amount == 0 && terminal == 0 && m_.visitTable > 0) {
        endVisit(c);
        ANSWER({});
    }
    if (m_.receipt.state == Receipt::Closed || m_.receipt.kind == Receipt::Table)
        REFUSE(kNoOpenReceipt);
    return pay(c, number, amount, c.field(3).left(30), terminal);
}

QString EcrModel::pay(Ctx& c, int number, qint64 amount, const QString& text, int terminal)
{
    if (number < 1 || number > kMaxPayment)
        REFUSE(kWrongPayment);
    const PaymentType& pt = m_.payments[number];
    if (!pt.active())
        REFUSE(kInactivePayment);
    Receipt& r = m_.receipt;
    const qint64 total = receiptTotal();
    if (total < 0)
        REFUSE(kNegativeTotal);
    const qint64 balance = total - receiptPaid();
    if (r.kind == Receipt::PreCollection && amount == 0 && terminal == 0) {
        closeReceipt(c);
        ANSWER({});
    }
    if (amount == 0)
        amount = balance;
    if (r.kind != Receipt::PreCollection && amount > balance && pt.type != 0)
        REFUSE(kNoChangeForPayment);

    if (terminal > 0) {
        if (!m_.terminals[terminal].active)
            REFUSE(kEftInactive);
        CardTransaction tx;
        tx.terminal = terminal;
        tx.payment = number;
        tx.amount = amount;
        tx.text = cardOutcomes_.empty() ? QStringLiteral("APPROVED") : cardOutcomes_.front();
        if (!cardOutcomes_.empty())
            cardOutcomes_.pop_front();
        tx.approved = !tx.text.contains(QLatin1String("DECLINED")) && !tx.text.contains(QLatin1String("ERROR")) &&
                      !tx.text.contains(QLatin1String("PROBLEM")) && !tx.text.contains(QLatin1String("UNREACHABLE")) &&
                      !tx.text.contains(QLatin1String("TIMEOUT")) && !tx.text.contains(QLatin1String("BUSY")) &&
                      !tx.text.contains(QLatin1String("INVALID")) && !tx.text.contains(QLatin1String("DISCONNECTION")) &&
                      !tx.text.contains(QLatin1String("INACTIVE")) && !tx.text.contains(QLatin1String("CLOSED")) &&
                      !tx.text.contains(QLatin1String("NOT SUPPORTED")) && !tx.text.contains(QLatin1String("DUPLICATE")) &&
                      !tx.text.contains(QLatin1String("WRONG")) && !tx.text.contains(QLatin1String("FAILED"));
        tx.stamp = c.now.toString(QStringLiteral("ddMMyyhhmmss"));
        tx.receipt = r.daily;
        m_.cardTransactions << tx;
        if (!tx.approved) {
            c.printed << row(QStringLiteral("EFT #%1 ΑΠΟΡΡΙΦΘΗΚΕ").arg(terminal), money(amount));
            ANSWER({});
        }
    }

    if (r.kind == Receipt::PreCollection && r.lines.isEmpty()) {
        SaleLine l;
        l.kind = SaleLine::Sale;
        l.desc = QStringLiteral("ΠΡΟΕΙΣΠΡΑΞΗ");
        l.qtyMilli = 1000;
        l.priceCents = amount;
        l.amount = amount;
        l.dep = 1;
        l.vat = m_.departments[1].vat - 1;
        r.lines << l;
    }
    if (r.state == Receipt::Open)
        c.printed << row(QStringLiteral("ΣΥΝΟΛΟ"), money(receiptTotal()));
    r.state = Receipt::InPayment;
    r.payments << PaymentLine{number, pt.name, text, amount};
    c.printed << row(text.trimmed().isEmpty() ? pt.name : text, money(amount));
    if (terminal > 0)
        c.printed << QStringLiteral("  EFT #%1 %2").arg(terminal).arg(m_.cardTransactions.last().text);
    if (receiptPaid() >= receiptTotal()) {
        r.change = receiptPaid() - receiptTotal();
        closeReceipt(c);
    }
    ANSWER({});
}

QString EcrModel::cmdCardQuery(Ctx&)
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
          << QStringLiteral("%1").arg(tx.stamp) << (tx.approved ? QStringLiteral("00") : QStringLiteral("05"))
          << QString::number(tx.receipt) << QStringLiteral("%1").arg(index, 6, 10, QLatin1Char('0'))
          << QStringLiteral("EUR") << QStringLiteral("SIMBANK") << tx.text;
    }
    ANSWER(r);
}

void EcrModel::closeReceipt(Ctx& c)
{
    Receipt& r = m_.receipt;
    DayFigures& d = m_.day;
    std::array<qint64, 5> net{};
    for (const SaleLine& l : r.lines) {
        const qint64 v = l.amount + l.subtotalShare;
        net[l.vat] += v;
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
    d.total += receiptTotal();
    d.receipts += 1;
    if (r.change > 0)
        c.printed << row(QStringLiteral("ΡΕΣΤΑ"), money(r.change));
    c.printed << QString(kPaperWidth, QLatin1Char('-'));
    for (int i = 0; i < 5; ++i) {
        if (net[i] == 0)
            continue;
        const qint64 rate = m_.vatRates[i];
        const qint64 netAmount = std::llround(net[i] * 10000.0 / (10000 + rate));
        c.printed << QStringLiteral("ΦΠΑ %1 %2%  ΚΑΘ %3  ΦΠΑ %4")
                         .arg(vatLetter(i))
                         .arg(money(rate))
                         .arg(money(netAmount))
                         .arg(money(net[i] - netAmount));
    }
    c.printed << row(QStringLiteral("ΣΥΝΟΛΟ ΕΥΡΩ"), money(receiptTotal()));
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

QString EcrModel::cmdComment(Ctx& c)
{
    int station = 0;
    parseInt(c.field(1), station);
    if (station == 0) {
        int line = 0;
        parseInt(c.field(2), line);
        if (line < 1 || line > 2)
            REFUSE(kWrongFields);
        m_.display[line - 1] = c.field(3);
        ANSWER({});
    }
    int style = 0;
    if (!parseInt(c.field(2), style) || style < 1 || style > 4)
        REFUSE(kWrongFields);
    const QString text = c.field(3).left(30);
    c.printed << (style == 2 || style == 4 ? centred(text) : text);
    ANSWER({});
}

QString EcrModel::cmdVoid(Ctx& c)
{
    if (c.f.size() == 4) { // "+/<number>/99/": cancels an earlier document by its number
        int number = 0;
        if (!parseInt(c.field(1), number) || number < 1 || number > m_.dailyNumber)
            REFUSE(kInvalidVoid);
        c.printed << centred(QStringLiteral("ΑΚΥΡΩΣΗ ΠΑΡΑΣΤΑΤΙΚΟΥ %1").arg(number)) << QString();
        ANSWER({});
    }
    Receipt& r = m_.receipt;
    if (r.state == Receipt::Closed)
        REFUSE(kNoOpenReceipt);
    m_.day.voids += receiptTotal();
    c.printed << row(QStringLiteral("ΑΚΥΡΩΣΗ ΑΠΟΔΕΙΞΗΣ"), money(receiptTotal())) << QString();
    r.state = Receipt::Closed;
    r.lines.clear();
    r.payments.clear();
    if (r.kind == Receipt::Table)
        m_.tables[r.table].closing = false;
    ANSWER({});
}

// --- reports ---------------------------------------------------------------

void EcrModel::printZ(Ctx& c, const DayFigures& f, const QString& title)
{
    c.printed << QString(kPaperWidth, QLatin1Char('=')) << centred(title)
              << centred(c.now.toString(QStringLiteral("dd/MM/yyyy hh:mm")));
    for (int i = 0; i < 5; ++i)
        c.printed << row(QStringLiteral("ΦΠΑ %1 %2%").arg(vatLetter(i)).arg(money(m_.vatRates[i])), money(f.gross[i]));
    for (int d = 1; d <= kMaxDepartment; ++d)
        if (f.depAmount[d] != 0 || f.depCountMilli[d] != 0)
            c.printed << row(m_.departments[d].name + QStringLiteral(" x") + quantity(f.depCountMilli[d]),
                             money(f.depAmount[d]));
    c.printed << row(QStringLiteral("ΑΠΟΔΕΙΞΕΙΣ"), QString::number(f.receipts))
              << row(QStringLiteral("ΑΚΥΡΩΣΕΙΣ"), money(f.voids)) << row(QStringLiteral("ΕΠΙΣΤΡΟΦΕΣ"), money(f.returns))
              << row(QStringLiteral("ΔΙΟΡΘΩΣΕΙΣ"), money(f.corrections)) << row(QStringLiteral("ΣΥΝΟΛΟ"), money(f.total))
              << QString();
}

QString EcrModel::cmdReport(Ctx& c)
{
    const bool z = c.field(0) == QLatin1String("x") && c.field(1) == QLatin1String("7");
    if (!z) {
        if (m_.receipt.state != Receipt::Closed)
            REFUSE(kReceiptOpen);
        printZ(c, m_.day, QStringLiteral("ΑΝΑΦΟΡΑ X (%1)").arg(c.f.mid(1).join(QLatin1Char(' ')).trimmed()));
        ANSWER({});
    }
    if (m_.receipt.state != Receipt::Closed || m_.visitTable > 0)
        REFUSE(kReceiptOpen);
    m_.zNumber += 1;
    printZ(c, m_.day, QStringLiteral("ΑΝΑΦΟΡΑ Z %1").arg(m_.zNumber, 4, 10, QLatin1Char('0')));
    m_.lastZ = m_.day;
    m_.lastZStamp = c.now.toString(Qt::ISODate);
    m_.day = DayFigures{};
    m_.dayOpen = false;
    m_.dailyNumber = 0;
    m_.progressiveAtDayStart = m_.progressive;
    m_.receipt = Receipt{};
    m_.cardTransactions.clear();
    ANSWER({});
}

// --- programming -----------------------------------------------------------

QString EcrModel::cmdProgramPayment(Ctx& c)
{
    int p = 0;
    if (!parseInt(c.field(1), p) || p < 1 || p > kMaxPayment)
        REFUSE(kWrongPayment);
    if (m_.receipt.state != Receipt::Closed)
        REFUSE(kReceiptOpen);
    int type = 0;
    parseInt(c.field(7), type);
    m_.payments[p] = PaymentType{c.field(2), c.field(3), c.field(6), c.field(8), type};
    ANSWER({});
}

QString EcrModel::cmdTaxServer(Ctx& c)
{
    if (c.field(6).size() != 64)
        REFUSE(kWrongAesKey);
    m_.taxConnect = c.field(1) == QLatin1String("1");
    m_.taxServer = QString(c.field(4)).replace(QLatin1Char('~'), QLatin1Char('/'));
    m_.taxKey = c.field(6);
    m_.taxQr = QString(c.field(7)).replace(QLatin1Char('~'), QLatin1Char('/'));
    ANSWER({});
}

// --- tables ----------------------------------------------------------------

namespace {
bool parseTable(const QString& text, int& table)
{
    return parseInt(text, table) && table >= 1 && table <= kMaxTable;
}
} // namespace

void EcrModel::endVisit(Ctx& c)
{
    c.printed << QString(kPaperWidth, QLatin1Char('-')) << QString();
    m_.visitTable = 0;
    m_.selectedOrder = 0;
}

QString EcrModel::cmdTable(Ctx& c)
{
    if (c.field(0) == QLatin1String("\"")) {
        int table = 0;
        if (c.field(1) != QLatin1String("0") || !parseTable(c.field(2), table))
            REFUSE(kWrongFields);
        m_.tables[table].title1 = c.field(4).trimmed();
        m_.tables[table].title2 = c.field(5).trimmed();
        ANSWER({});
    }
    const QString sub = c.field(1);
    int table = 0;
    if (sub == QLatin1String("4"))
        return cmdTableMove(c);
    if (sub == QLatin1String("9"))
        return cmdTableItemMove(c);
    if (sub == QLatin1String("10")) {
        int from = 0, to = 0;
        if (!parseTable(c.field(2), from) || !parseTable(c.field(3), to))
            REFUSE(kWrongFields);
        const bool detail = c.field(4) == QLatin1String("1");
        c.printed << QString(kPaperWidth, QLatin1Char('=')) << centred(QStringLiteral("ΑΝΑΦΟΡΑ ΤΡΑΠΕΖΙΩΝ"));
        for (int t = from; t <= to; ++t) {
            const TableRecord& rec = m_.tables[t];
            if (rec.items.isEmpty())
                continue;
            qint64 sum = 0;
            for (const TableItem& i : rec.items) {
                sum += lineAmount(i.qtyMilli, i.priceCents);
                if (detail)
                    c.printed << row(QStringLiteral("  %1 %2").arg(i.order).arg(i.desc),
                                     money(lineAmount(i.qtyMilli, i.priceCents)));
            }
            c.printed << row(QStringLiteral("ΤΡΑΠΕΖΙ %1 %2").arg(t).arg(rec.title1), money(sum));
        }
        c.printed << QString();
        ANSWER({});
    }
    if (!parseTable(c.field(2), table))
        REFUSE(kWrongFields);
    if (sub == QLatin1String("0"))
        return cmdTableOpen(c, table);
    if (sub == QLatin1String("1"))
        return cmdTablePrepare(c, table);
    if (sub == QLatin1String("3"))
        return cmdTablePay(c, table);
    if (sub == QLatin1String("11"))
        return cmdTableContents(c, table);
    if (sub == QLatin1String("5")) {
        int order = 0;
        if (m_.visitTable != table)
            REFUSE(kTableWrongState);
        const auto& items = m_.tables[table].items;
        if (!parseInt(c.field(3), order) ||
            std::none_of(items.begin(), items.end(), [&](const TableItem& i) { return i.order == order; }))
            REFUSE(kWrongFields);
        m_.selectedOrder = order;
        ANSWER({});
    }
    REFUSE(kWrongCommand);
}

QString EcrModel::cmdTableOpen(Ctx& c, int table)
{
    if (m_.receipt.state != Receipt::Closed)
        REFUSE(kReceiptOpen);
    if (m_.visitTable == table)
        ANSWER({});
    if (m_.visitTable > 0 || m_.tables[table].closing)
        REFUSE(kTableWrongState);
    if (!m_.dayOpen) {
        m_.dayOpen = true;
        m_.day = DayFigures{};
    }
    TableRecord& t = m_.tables[table];
    t.open = true;
    m_.visitTable = table;
    m_.selectedOrder = 0;
    c.printed << QString(kPaperWidth, QLatin1Char('-')) << centred(QStringLiteral("ΔΕΛΤΙΟ ΠΑΡΑΓΓΕΛΙΑΣ"))
              << centred(QStringLiteral("ΤΡΑΠΕΖΙ %1 %2").arg(table).arg(t.title1).trimmed())
              << centred(c.now.toString(QStringLiteral("dd/MM/yyyy hh:mm")));
    ANSWER({});
}

QString EcrModel::cmdTablePrepare(Ctx& c, int table)
{
    TableRecord& t = m_.tables[table];
    if (!t.open)
        REFUSE(kInactiveTable);
    if (m_.visitTable > 0 && m_.visitTable != table)
        REFUSE(kTableWrongState);
    if (m_.receipt.state != Receipt::Closed && !(m_.receipt.kind == Receipt::Table && m_.receipt.table == table))
        REFUSE(kReceiptOpen);
    qint64 discount = 0;
    if (!c.field(12).isEmpty() && !parseScaled(c.field(12), 100, discount))
        REFUSE(kWrongFields);
    if (m_.receipt.state == Receipt::InPayment)
        REFUSE(kInPayment);
    if (m_.visitTable == table)
        endVisit(c);
    if (m_.receipt.state == Receipt::Closed) {
        openReceipt(c, Receipt::Table, table);
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
            c.printed << printSaleLine(l);
        }
        t.closing = true;
    }
    if (discount > 0) {
        Ctx dc;
        dc.now = c.now;
        dc.f = QStringList{QStringLiteral("4"), c.field(12), QString(), QStringLiteral("ΕΚΠΤΩΣΗ"),
                           QStringLiteral("0"), QStringLiteral("1"), QStringLiteral("1"), QString()};
        const QString r = cmdDiscount(dc);
        c.printed << dc.printed;
        if (!r.startsWith(QLatin1String("00")))
            return r;
    }
    ANSWER({});
}

QString EcrModel::cmdTablePay(Ctx& c, int table)
{
    int number = 0;
    qint64 amount = 0;
    if (!parseInt(c.field(5), number) || !parseScaled(c.field(12), 100, amount) || amount < 0)
        REFUSE(kWrongFields);
    int terminal = 0;
    if (c.f.size() == 18 && c.field(16) == QLatin1String("1")) {
        if (!parseInt(c.field(15), terminal) || terminal < 1 || terminal > kMaxTerminal)
            REFUSE(kWrongFields);
    }
    if (!m_.tables[table].open)
        REFUSE(kInactiveTable);
    if (!(m_.receipt.kind == Receipt::Table && m_.receipt.table == table && m_.receipt.state != Receipt::Closed)) {
        Ctx prep;
        prep.now = c.now;
        prep.f = QStringList{QStringLiteral("&"), QStringLiteral("1"), QString::number(table)};
        while (prep.f.size() < 18)
            prep.f << QString();
        const QString r = cmdTablePrepare(prep, table);
        c.printed << prep.printed;
        if (!r.startsWith(QLatin1String("00")))
            return r;
    }
    return pay(c, number, amount, c.field(13).left(30), terminal);
}

QString EcrModel::cmdTableContents(Ctx&, int table)
{
    const TableRecord& t = m_.tables[table];
    QStringList r{QString::number(t.items.size())};
    for (const TableItem& i : t.items)
        r << QStringList{QString::number(i.order), QString::number(i.uid), i.desc, quantity(i.qtyMilli),
                         money(lineAmount(i.qtyMilli, i.priceCents)), QString::number(i.dep),
                         money(m_.vatRates[i.vat])}
                 .join(QLatin1Char('|'));
    ANSWER(r);
}

QString EcrModel::cmdTableMove(Ctx& c)
{
    int from = 0, to = 0;
    if (!parseTable(c.field(2), from) || !parseTable(c.field(3), to) || from == to)
        REFUSE(kWrongFields);
    TableRecord& src = m_.tables[from];
    TableRecord& dst = m_.tables[to];
    if (!src.open)
        REFUSE(kInactiveTable);
    if (m_.visitTable > 0 || src.closing || dst.closing || m_.receipt.state != Receipt::Closed)
        REFUSE(kTableWrongState);
    dst.open = true;
    if (c.field(4) == QLatin1String("1")) { // single items follow with &/9/
        m_.moveFrom = from;
        m_.moveTo = to;
        m_.movedPairs.clear();
        ANSWER({});
    }
    QStringList pairs;
    for (const TableItem& i : src.items) {
        TableItem moved = i;
        moved.uid = m_.nextUid++;
        moved.order = dst.nextOrder++;
        dst.items << moved;
        pairs << QStringLiteral("%1-%2|%3-%4").arg(i.uid).arg(i.order).arg(moved.uid).arg(moved.order);
    }
    src.items.clear();
    src.open = false;
    src.nextOrder = 1;
    c.printed << centred(QStringLiteral("ΜΕΤΑΦΟΡΑ ΤΡΑΠΕΖΙΟΥ %1 -> %2").arg(from).arg(to));
    ANSWER(pairs);
}

QString EcrModel::cmdTableItemMove(Ctx& c)
{
    int from = 0, to = 0, uid = 0;
    if (!parseTable(c.field(2), from) || !parseTable(c.field(3), to) || !parseInt(c.field(4), uid))
        REFUSE(kWrongFields);
    if (m_.moveFrom != from || m_.moveTo != to)
        REFUSE(kTableWrongState);
    TableRecord& src = m_.tables[from];
    TableRecord& dst = m_.tables[to];
    if (uid == 0) {
        const QStringList pairs = m_.movedPairs;
        m_.movedPairs.clear();
        m_.moveFrom = m_.moveTo = 0;
        if (src.items.isEmpty()) {
            src.open = false;
            src.nextOrder = 1;
        }
        if (!pairs.isEmpty())
            c.printed << centred(QStringLiteral("ΜΕΤΑΦΟΡΑ %1 ΕΙΔΩΝ %2 -> %3").arg(pairs.size()).arg(from).arg(to));
        ANSWER(pairs);
    }
    const auto it =
        std::find_if(src.items.begin(), src.items.end(), [&](const TableItem& i) { return i.uid == uid; });
    if (it == src.items.end())
        REFUSE(kWrongFields);
    TableItem moved = *it;
    moved.uid = m_.nextUid++;
    moved.order = dst.nextOrder++;
    m_.movedPairs << QStringLiteral("%1-%2|%3-%4").arg(it->uid).arg(it->order).arg(moved.uid).arg(moved.order);
    dst.items << moved;
    src.items.erase(it);
    ANSWER({});
}
