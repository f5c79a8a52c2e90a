#include "RegisterMemory.h"

RegisterMemory RegisterMemory::factory()
{
    RegisterMemory m;
    const char* depNames[] = {"", "ΤΜΗΜΑ 1", "ΤΜΗΜΑ 2", "ΤΜΗΜΑ 3", "ΤΜΗΜΑ 4", "ΤΜΗΜΑ 5"};
    for (int d = 1; d <= 5; ++d)
        m.departments[d] = Department{QString::fromUtf8(depNames[d]), d, true};
    for (int d = 6; d <= capacity::kDepartments; ++d)
        m.departments[d] = Department{QStringLiteral("ΤΜΗΜΑ %1").arg(d), 1, false};

    auto pay = [&](int n, const char* name, const char* shortName, const char* mask, int type) {
        m.payments[n] = PaymentType{QString::fromUtf8(name), QString::fromUtf8(shortName),
                                    QString::fromLatin1(mask), QString::fromUtf8(name), type};
    };
    pay(1, "ΜΕΤΡΗΤΑ", "ΜΕΤΡ", "100011010", 0);
    pay(2, "ΚΑΡΤΑ", "ΚΑΡΤ", "100000001", 1);
    pay(3, "ΠΡΟΠΛΗΡΩΜΕΝΗ", "ΠΡΟΠ", "100000001", 3);
    pay(4, "ΠΙΣΤΩΣΗ", "ΠΙΣΤ", "100000001", 2);
    pay(5, "ΕΠΙΤΑΓΗ", "ΕΠΙΤ", "100000001", 2);
    for (int n = 6; n <= capacity::kPayments; ++n)
        m.payments[n] = PaymentType{QStringLiteral("ΠΛΗΡΩΜΗ %1").arg(n), QString(),
                                    QStringLiteral("000000000"), QString(), 2};

    m.terminals[1] = Terminal{QStringLiteral("EFT POS 1"), QStringLiteral("192.168.1.50"), true};
    for (int t = 2; t <= capacity::kTerminals; ++t)
        m.terminals[t] = Terminal{QStringLiteral("EFT POS %1").arg(t), QStringLiteral("0.0.0.0"), false};
    for (int t = 1; t <= capacity::kTables; ++t)
        m.tables[t].title1 = QStringLiteral("ΤΡΑΠΕΖΙ-%1").arg(t);
    return m;
}

// Streams, field by field; the version in front lets a later register refuse
// an older file instead of misreading it.
namespace {

constexpr quint32 kMagic = 0x4B455233; // "KER3": terminal batches, slips and the day's payments

template <typename T, std::size_t N>
QDataStream& put(QDataStream& s, const std::array<T, N>& a)
{
    for (const auto& v : a)
        s << v;
    return s;
}
template <typename T, std::size_t N>
QDataStream& get(QDataStream& s, std::array<T, N>& a)
{
    for (auto& v : a)
        s >> v;
    return s;
}

} // namespace

QDataStream& operator<<(QDataStream& s, const SaleLine& l)
{
    return s << l.kind << l.desc << l.desc2 << l.qtyMilli << l.priceCents << l.dep << l.vat << l.amount
             << l.subtotalShare;
}
QDataStream& operator>>(QDataStream& s, SaleLine& l)
{
    return s >> l.kind >> l.desc >> l.desc2 >> l.qtyMilli >> l.priceCents >> l.dep >> l.vat >> l.amount
             >> l.subtotalShare;
}
QDataStream& operator<<(QDataStream& s, const PaymentLine& p) { return s << p.number << p.name << p.text << p.amount; }
QDataStream& operator>>(QDataStream& s, PaymentLine& p) { return s >> p.number >> p.name >> p.text >> p.amount; }
QDataStream& operator<<(QDataStream& s, const Receipt& r)
{
    return s << r.state << r.kind << r.table << r.daily << r.progressive << r.lines << r.payments << r.change;
}
QDataStream& operator>>(QDataStream& s, Receipt& r)
{
    return s >> r.state >> r.kind >> r.table >> r.daily >> r.progressive >> r.lines >> r.payments >> r.change;
}
QDataStream& operator<<(QDataStream& s, const TableItem& i)
{
    return s << i.uid << i.order << i.desc << i.desc2 << i.qtyMilli << i.priceCents << i.dep << i.vat;
}
QDataStream& operator>>(QDataStream& s, TableItem& i)
{
    return s >> i.uid >> i.order >> i.desc >> i.desc2 >> i.qtyMilli >> i.priceCents >> i.dep >> i.vat;
}
QDataStream& operator<<(QDataStream& s, const TableRecord& t)
{
    return s << t.title1 << t.title2 << t.open << t.closing << t.nextOrder << t.items;
}
QDataStream& operator>>(QDataStream& s, TableRecord& t)
{
    return s >> t.title1 >> t.title2 >> t.open >> t.closing >> t.nextOrder >> t.items;
}
QDataStream& operator<<(QDataStream& s, const Department& d) { return s << d.name << d.vat << d.active; }
QDataStream& operator>>(QDataStream& s, Department& d) { return s >> d.name >> d.vat >> d.active; }
QDataStream& operator<<(QDataStream& s, const PaymentType& p)
{
    return s << p.name << p.shortName << p.mask << p.printText << p.type;
}
QDataStream& operator>>(QDataStream& s, PaymentType& p)
{
    return s >> p.name >> p.shortName >> p.mask >> p.printText >> p.type;
}
QDataStream& operator<<(QDataStream& s, const Terminal& t)
{
    return s << t.name << t.address << t.active << t.batchCount << t.batchAmount;
}
QDataStream& operator>>(QDataStream& s, Terminal& t)
{
    return s >> t.name >> t.address >> t.active >> t.batchCount >> t.batchAmount;
}
QDataStream& operator<<(QDataStream& s, const CardTransaction& c)
{
    return s << c.terminal << c.payment << c.amount << c.text << c.approved << c.stamp << c.receipt;
}
QDataStream& operator>>(QDataStream& s, CardTransaction& c)
{
    return s >> c.terminal >> c.payment >> c.amount >> c.text >> c.approved >> c.stamp >> c.receipt;
}
QDataStream& operator<<(QDataStream& s, const DayFigures& d)
{
    put(s, d.gross) << d.total << d.receipts << d.voids << d.returns << d.corrections;
    put(s, d.depCountMilli);
    put(s, d.depAmount);
    return put(s, d.paymentAmount);
}
QDataStream& operator>>(QDataStream& s, DayFigures& d)
{
    get(s, d.gross) >> d.total >> d.receipts >> d.voids >> d.returns >> d.corrections;
    get(s, d.depCountMilli);
    get(s, d.depAmount);
    return get(s, d.paymentAmount);
}

QDataStream& operator<<(QDataStream& s, const RegisterMemory& m)
{
    s << kMagic << m.modelPrefix << m.serialDigits << m.dayOpen << m.zNumber << m.dailyNumber << m.progressive
      << m.progressiveAtDayStart << m.day << m.lastZ << m.lastZStamp;
    put(s, m.vatRates);
    put(s, m.departments);
    put(s, m.payments);
    put(s, m.terminals);
    put(s, m.footer);
    put(s, m.display);
    s << m.taxConnect << m.taxServer << m.taxKey << m.taxQr << m.receipt;
    put(s, m.tables);
    return s << m.nextUid << m.visitTable << m.selectedOrder << m.moveFrom << m.moveTo << m.movedPairs
             << m.cardTransactions << m.visitSlip;
}

QDataStream& operator>>(QDataStream& s, RegisterMemory& m)
{
    quint32 magic = 0;
    s >> magic;
    if (magic != kMagic) {
        s.setStatus(QDataStream::ReadCorruptData);
        return s;
    }
    s >> m.modelPrefix >> m.serialDigits >> m.dayOpen >> m.zNumber >> m.dailyNumber >> m.progressive
        >> m.progressiveAtDayStart >> m.day >> m.lastZ >> m.lastZStamp;
    get(s, m.vatRates);
    get(s, m.departments);
    get(s, m.payments);
    get(s, m.terminals);
    get(s, m.footer);
    get(s, m.display);
    s >> m.taxConnect >> m.taxServer >> m.taxKey >> m.taxQr >> m.receipt;
    get(s, m.tables);
    return s >> m.nextUid >> m.visitTable >> m.selectedOrder >> m.moveFrom >> m.moveTo >> m.movedPairs
             >> m.cardTransactions >> m.visitSlip;
}
