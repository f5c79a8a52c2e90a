#include "ReportCommands.h"

#include "DeviceCode.h"
#include "Document.h"
#include "FieldNumbers.h"
#include "Paper.h"

using fieldnumbers::money;
using fieldnumbers::parseInt;
using paper::centred;
using paper::row;

namespace {
const QString kTin = QStringLiteral("999999999");
const QString kPosVersion = QStringLiteral("SIM 1.0");
const QString kProtocolVersion = QStringLiteral("1.08");
} // namespace

ReportCommands::ReportCommands(RegisterMemory& memory, Document& document)
    : m_(memory)
    , document_(document)
{
}

void ReportCommands::enrol(CommandTable& table)
{
    // The status probe answers with the status bytes alone.
    table.add({"?/"}, [](Command&) { return Reply::ok(); });
    table.add({"a/"}, [this](Command&) { return identity(); });
    table.add({"v/"}, [](Command&) { return Reply::ok({kPosVersion, kProtocolVersion}); });
    table.add({"i/"}, [this](Command&) { return counters(); });
    table.add({"9/"}, [this](Command&) { return documentInHand(); });
    table.add({"e/"}, [this](Command&) { return vatTable(); });
    table.add({"0/"}, [this](Command&) { return lastZFigures(); });
    table.add({"t/"}, [this](Command& c) { return lastZTime(c); });
    table.add({"s/"}, [this](Command&) { return dayStatus(); });
    table.add({"d/1", "d/1/"}, [this](Command& c) { return department(c); });
    table.add({"y/1/"}, [this](Command& c) { return payment(c); });
    table.add({"x/1/1/99999/", "x/2/1/", "x/7///"}, [this](Command& c) {
        return c.field(1) == QLatin1String("7") ? zReport(c) : xReport(c);
    });
    table.add({"z/1/2600/"}, [this](Command& c) { return xReport(c); });
}

Reply ReportCommands::identity() const
{
    return Reply::ok({m_.serialDigits, QStringLiteral("1"), m_.modelPrefix});
}

Reply ReportCommands::counters() const
{
    return Reply::ok({QString::number(m_.dailyNumber), QString::number(m_.progressive), QString::number(m_.zNumber),
                      QString::number(m_.zNumber + m_.progressiveAtDayStart)});
}

Reply ReportCommands::documentInHand() const
{
    const Receipt& r = m_.receipt;
    const qint64 total = document_.total();
    const qint64 paid = document_.paid();
    // The balance while open, the total of the last document once closed.
    const qint64 amount = document_.receiptOpen() ? total - paid : total;
    return Reply::ok({QString::number(r.state), QString::number(r.lines.size()), money(total), money(paid),
                      money(r.change), QString::number(r.daily), money(amount), QString::number(r.progressive)});
}

Reply ReportCommands::vatTable() const
{
    QStringList r;
    for (qint64 v : m_.vatRates)
        r << money(v);
    return Reply::ok(r);
}

Reply ReportCommands::lastZFigures() const
{
    QStringList r;
    for (qint64 g : m_.lastZ.gross)
        r << money(g);
    r << money(m_.lastZ.total) << QString::number(m_.lastZ.receipts) << QString::number(m_.progressiveAtDayStart)
      << money(m_.lastZ.voids) << money(m_.lastZ.returns) << money(m_.lastZ.corrections);
    for (int p = 1; p <= capacity::kPayments; ++p)
        r << money(m_.lastZ.paymentAmount[p]);
    return Reply::ok(r);
}

Reply ReportCommands::lastZTime(const Command& c) const
{
    const QDateTime z = QDateTime::fromString(m_.lastZStamp, Qt::ISODate);
    const QDateTime when = z.isValid() ? z : c.now;
    return Reply::ok({when.toString(QStringLiteral("dd-MM-yyyy")), when.toString(QStringLiteral("hhmmss"))});
}

Reply ReportCommands::dayStatus() const
{
    return Reply::ok({QString::number(m_.dayOpen ? 1 : 0), QString::number(m_.receipt.state),
                      QString::number(m_.zNumber), QString::number(m_.dailyNumber), QString::number(m_.progressive),
                      money(m_.day.total), QString::number(m_.day.receipts), m_.modelPrefix + m_.serialDigits, kTin});
}

Reply ReportCommands::department(const Command& c) const
{
    int d = 0;
    if (!parseInt(c.field(1), d) || d < 1 || d > capacity::kDepartments)
        return Reply::refuse(devicecode::kWrongDepartment);
    const Department& dep = m_.departments[d];
    // The Z counts whole pieces; a weighed part of one is not a piece.
    const QString wholeCount = QString::number(m_.lastZ.depCountMilli[d] / 1000);
    return Reply::ok({dep.name, QString::number(dep.vat), QString::number(dep.active ? 1 : 0), QStringLiteral("0.00"),
                      QStringLiteral("0"), wholeCount, money(m_.lastZ.depAmount[d])});
}

Reply ReportCommands::payment(const Command& c) const
{
    int p = 0;
    if (!parseInt(c.field(1), p) || p < 1 || p > capacity::kPayments)
        return Reply::refuse(devicecode::kWrongPayment);
    const PaymentType& pt = m_.payments[p];
    return Reply::ok({pt.name, pt.shortName, QStringLiteral("0"), pt.mask, QString::number(pt.type), pt.printText});
}

void ReportCommands::printDay(Command& c, const QString& title) const
{
    const DayFigures& f = m_.day;
    c.printed << paper::rule(QLatin1Char('=')) << centred(title) << centred(paper::stamp(c.now));
    for (int i = 0; i < capacity::kVatCategories; ++i)
        c.printed << row(QStringLiteral("ΦΠΑ %1 %2%").arg(paper::vatLetter(i)).arg(money(m_.vatRates[i])),
                         money(f.gross[i]));
    for (int d = 1; d <= capacity::kDepartments; ++d)
        if (f.depAmount[d] != 0 || f.depCountMilli[d] != 0)
            c.printed << row(m_.departments[d].name + QStringLiteral(" x") + fieldnumbers::quantity(f.depCountMilli[d]),
                             money(f.depAmount[d]));
    for (int p = 1; p <= capacity::kPayments; ++p)
        if (f.paymentAmount[p] != 0)
            c.printed << row(m_.payments[p].name, money(f.paymentAmount[p]));
    c.printed << row(QStringLiteral("ΑΠΟΔΕΙΞΕΙΣ"), QString::number(f.receipts))
              << row(QStringLiteral("ΑΚΥΡΩΣΕΙΣ"), money(f.voids))
              << row(QStringLiteral("ΕΠΙΣΤΡΟΦΕΣ"), money(f.returns))
              << row(QStringLiteral("ΔΙΟΡΘΩΣΕΙΣ"), money(f.corrections))
              << row(QStringLiteral("ΣΥΝΟΛΟ"), money(f.total)) << QString();
}

Reply ReportCommands::xReport(Command& c)
{
    if (document_.receiptOpen())
        return Reply::refuse(devicecode::kReceiptOpen);
    printDay(c, QStringLiteral("ΑΝΑΦΟΡΑ X (%1)").arg(c.fields.mid(1).join(QLatin1Char(' ')).trimmed()));
    return Reply::ok();
}

Reply ReportCommands::zReport(Command& c)
{
    if (document_.anythingOpen())
        return Reply::refuse(devicecode::kReceiptOpen);
    m_.zNumber += 1;
    printDay(c, QStringLiteral("ΑΝΑΦΟΡΑ Z %1").arg(m_.zNumber, 4, 10, QLatin1Char('0')));
    m_.lastZ = m_.day;
    m_.lastZStamp = c.now.toString(Qt::ISODate);
    m_.day = DayFigures{};
    m_.dayOpen = false;
    m_.dailyNumber = 0;
    m_.progressiveAtDayStart = m_.progressive;
    m_.receipt = Receipt{};
    m_.cardTransactions.clear();
    return Reply::ok();
}
