#include "tables/MDocData.h"

#include "config/RegionalNumber.h"
#include "link/DeviceLink.h"
#include "operations/DeviceCommands.h"

#include <QStringList>
#include <cmath>

namespace {
constexpr int kReceiptFields = 11;
constexpr int kDailyNumberField = 8;
constexpr int kReceiptAmountField = 9;
constexpr int kCounterFields = 7;
constexpr int kLastZField = 5;
constexpr int kProgressiveField = 6;
constexpr int kFirstItemField = 4;
constexpr int kItemAmountSubField = 4;
const QString kNoAmount = QStringLiteral("0.00");
const QString kNoItem = QStringLiteral("-1");

QStringList fieldsOf(const QString& reply, int atLeast)
{
    QStringList fields = reply.split(QLatin1Char('/'));
    while (fields.size() < atLeast)
        fields.append(QString());
    return fields;
}

bool isWholeNumber(const QString& text)
{
    bool ok = false;
    text.trimmed().toLongLong(&ok);
    return ok;
}
} // namespace

mDocData::mDocData(DeviceLink& link, QLocale locale)
    : link_(link)
    , locale_(std::move(locale))
{
}

qint16 mDocData::ReadReceiptTotals()
{
    bool ok = false;
    const QStringList fields = ask(DeviceCommands::CurrentReceipt(), kReceiptFields, ok);
    if (!ok || !isWholeNumber(fields[kDailyNumberField]))
        return -1;
    dailyNumber_ = static_cast<qint16>(fields[kDailyNumberField].trimmed().toInt());
    receiptAmount_ = ParseRegionalNumber(fields[kReceiptAmountField], nullptr, locale_);
    return 0;
}

double mDocData::ReadRemainingAmount()
{
    return ReadReceiptTotals() == 0 ? receiptAmount_ : 0.0;
}

qint32 mDocData::ReadProgressiveBase()
{
    bool ok = false;
    const QStringList fields = ask(DeviceCommands::Counters(), kCounterFields, ok);
    if (!ok || !isWholeNumber(fields[kProgressiveField]))
        return -1;
    return fields[kProgressiveField].trimmed().toInt() - fields[kLastZField].trimmed().toInt();
}

QStringList mDocData::ask(const QString& command, int atLeastFields, bool& ok)
{
    qint16 status = 0;
    QString reply;
    link_.SendCommand(command, status, reply);
    ok = status == 0;
    return ok ? fieldsOf(reply, atLeastFields) : QStringList();
}

QString mDocData::ReadTableAmount(qint16 table)
{
    if (table < 1)
        return kNoAmount;
    bool ok = false;
    const QStringList fields = ask(DeviceCommands::TableContents(table), 0, ok);
    if (!ok)
        return kNoAmount;
    double sum = 0.0;
    for (qsizetype i = kFirstItemField; i < fields.size() - 1; ++i)
        sum += QLocale::c().toDouble(fields[i].split(QLatin1Char('|')).value(kItemAmountSubField).trimmed());
    QString text = FormatDeviceNumber(sum, DeviceCommands::kAmountDecimals);
    return text.replace(QLatin1Char('.'), clsRegional(locale_).getOSCurrenrcy_Decimal_Sep());
}

QString mDocData::ReadTableLastItem(qint16 table)
{
    if (table < 1)
        return kNoItem;
    bool ok = false;
    const QStringList fields = ask(DeviceCommands::TableContents(table), 0, ok);
    if (!ok || fields.size() < 2)
        return kNoItem;
    return fields[fields.size() - 2].split(QLatin1Char('|')).value(0);
}

clsDocData mDocData::BuildDocData(qint16 table)
{
    clsDocData doc;
    doc.tableNumber = table;
    if (ReadReceiptTotals() != 0) {
        doc.recNumberDaily = -1;
        doc.recNumberProgr = -1;
        doc.recAmount = 0.0;
    } else {
        doc.recNumberDaily = dailyNumber_;
        doc.recAmount = receiptAmount_;
    }
    // The progressive number counts from the counters' base; with no base
    // it stays unread.
    const qint32 base = ReadProgressiveBase();
    doc.recNumberProgr = base == -1 ? -1 : base + doc.recNumberDaily;
    doc.ordAmount = ParseRegionalNumber(ReadTableAmount(table), nullptr, locale_);
    doc.ordNumber = static_cast<qint16>(
        std::lround(ParseRegionalNumber(ReadTableLastItem(table), nullptr, locale_)));
    return doc;
}
