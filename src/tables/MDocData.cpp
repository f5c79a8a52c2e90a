#include "tables/MDocData.h"

#include "config/RegionalNumber.h"
#include "link/DeviceLink.h"
#include "protocol/CountersQuery.h"
#include "protocol/CurrentReceiptQuery.h"
#include "protocol/DeviceCommands.h"
#include "protocol/TableContentsQuery.h"

#include <cmath>

namespace {
const QString kNoAmount = QStringLiteral("0.00");
const QString kNoItem = QStringLiteral("-1");
} // namespace

mDocData::mDocData(DeviceLink& link, QLocale locale)
    : link_(link)
    , locale_(std::move(locale))
{
}

qint16 mDocData::ReadReceiptTotals()
{
    const auto receipt = link_.ask(CurrentReceiptQuery{locale_});
    if (!receipt)
        return -1;
    dailyNumber_ = receipt->dailyNumber;
    receiptAmount_ = receipt->amount;
    return 0;
}

double mDocData::ReadRemainingAmount()
{
    return ReadReceiptTotals() == 0 ? receiptAmount_ : 0.0;
}

qint32 mDocData::ReadProgressiveBase()
{
    const auto counters = link_.ask(CountersQuery{});
    if (!counters || !counters->receiptCounter)
        return -1;
    return *counters->receiptCounter - counters->lastZ;
}

QString mDocData::ReadTableAmount(qint16 table)
{
    if (table < 1)
        return kNoAmount;
    const auto contents = link_.ask(TableContentsQuery{table});
    if (!contents)
        return kNoAmount;
    QString text = FormatDeviceNumber(contents->amount(), DeviceCommands::kAmountDecimals);
    return text.replace(QLatin1Char('.'), clsRegional(locale_).getOSCurrenrcy_Decimal_Sep());
}

QString mDocData::ReadTableLastItem(qint16 table)
{
    if (table < 1)
        return kNoItem;
    const auto contents = link_.ask(TableContentsQuery{table});
    if (!contents || !contents->lastItemNumber)
        return kNoItem;
    return *contents->lastItemNumber;
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
