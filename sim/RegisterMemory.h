#pragma once

#include <QDataStream>
#include <QList>
#include <QString>
#include <array>

// Everything the register remembers: the day, the document in hand, the
// programming (VAT, departments, payments, terminals) and the tables.
// Money is held in cents and quantities in thousandths, as a register does.

// What the register has room for; arrays are indexed from 1, as the commands count.
namespace capacity {
constexpr int kVatCategories = 5;
constexpr int kDepartments = 50;
constexpr int kPayments = 10;
constexpr int kTerminals = 12;
constexpr int kTables = 290;
} // namespace capacity

struct SaleLine {
    enum Kind : qint32 { Sale, Return, Cancel, Discount, Surcharge };
    qint32 kind = Sale;
    QString desc;
    QString desc2;
    qint64 qtyMilli = 0;
    qint64 priceCents = 0;
    qint32 dep = 0;
    qint32 vat = 0;          // category 0..4 (A..E)
    qint64 amount = 0;       // signed effect on the total
    qint64 subtotalShare = 0; // share of subtotal discounts and surcharges
};

struct PaymentLine {
    qint32 number = 0;
    QString name;
    QString text;
    qint64 amount = 0;
};

struct Receipt {
    enum State : qint32 { Closed, Open, InPayment };
    enum Kind : qint32 { Sale, Table, PreCollection };
    qint32 state = Closed;
    qint32 kind = Sale;
    qint32 table = 0;
    qint32 daily = 0;
    qint64 progressive = 0;
    QList<SaleLine> lines;
    QList<PaymentLine> payments;
    qint64 change = 0;
};

struct TableItem {
    qint32 uid = 0;
    qint32 order = 0;
    QString desc;
    QString desc2;
    qint64 qtyMilli = 0;
    qint64 priceCents = 0;
    qint32 dep = 0;
    qint32 vat = 0;
};

struct TableRecord {
    QString title1;
    QString title2;
    bool open = false;
    bool closing = false;
    qint32 nextOrder = 1;
    QList<TableItem> items;
};

struct Department {
    QString name;
    qint32 vat = 1; // 1..5
    bool active = false;
};

struct PaymentType {
    QString name;
    QString shortName;
    QString mask = QStringLiteral("000000000"); // first character: active
    QString printText;
    qint32 type = 0; // 0 cash, 1 card, 2 credit, 3 preloaded card, 4 other electronic
    bool active() const { return mask.startsWith(QLatin1Char('1')); }
};

struct Terminal {
    QString name;
    QString address;
    bool active = false;
    // approved card payments since the last batch
    qint32 batchCount = 0;
    qint64 batchAmount = 0;
};

struct CardTransaction {
    qint32 terminal = 0;
    qint32 payment = 0;
    qint64 amount = 0;
    QString text;
    bool approved = false;
    QString stamp;
    qint32 receipt = 0;
};

struct DayFigures {
    std::array<qint64, capacity::kVatCategories> gross{};
    qint64 total = 0;
    qint32 receipts = 0;
    qint64 voids = 0;
    qint64 returns = 0;
    qint64 corrections = 0;
    std::array<qint64, capacity::kDepartments + 1> depCountMilli{};
    std::array<qint64, capacity::kDepartments + 1> depAmount{};
    std::array<qint64, capacity::kPayments + 1> paymentAmount{}; // taken, change given back
};

struct RegisterMemory {
    // identity
    QString modelPrefix = QStringLiteral("DNT");
    QString serialDigits = QStringLiteral("00012345");

    // day and counters
    bool dayOpen = false;
    qint32 zNumber = 0;            // last Z printed
    qint32 dailyNumber = 0;        // last receipt number of the day
    qint64 progressive = 0;        // last progressive receipt number
    qint64 progressiveAtDayStart = 0;
    DayFigures day;
    DayFigures lastZ;
    QString lastZStamp;

    // programming
    std::array<qint64, capacity::kVatCategories> vatRates{2400, 1300, 600, 1700, 900}; // hundredths of a percent
    std::array<Department, capacity::kDepartments + 1> departments{};
    std::array<PaymentType, capacity::kPayments + 1> payments{};
    std::array<Terminal, capacity::kTerminals + 1> terminals{};
    std::array<QString, 6> footer{};
    std::array<QString, 2> display{};
    bool taxConnect = false;
    QString taxServer;
    QString taxKey;
    QString taxQr;

    // document in hand and tables
    Receipt receipt;
    std::array<TableRecord, capacity::kTables + 1> tables{};
    qint32 nextUid = 1;
    qint32 visitTable = 0;   // table taking items now
    bool visitSlip = false;  // the visit's order slip has begun on paper
    qint32 selectedOrder = 0; // line chosen by &/5/
    qint32 moveFrom = 0;
    qint32 moveTo = 0;
    QStringList movedPairs;
    QList<CardTransaction> cardTransactions; // of the last document

    // A register fresh from the factory, as the demo expects it.
    static RegisterMemory factory();
};

QDataStream& operator<<(QDataStream& s, const RegisterMemory& m);
QDataStream& operator>>(QDataStream& s, RegisterMemory& m);
