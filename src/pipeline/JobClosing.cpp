#include "pipeline/JobClosing.h"

#include "link/DeviceLink.h"
#include "protocol/EftOutcomeQuery.h"
#include "records/ReceiptState.h"
#include "tables/MDocData.h"

namespace {
// Positions, within one transaction, of the eight fields handed to the application.
constexpr int kPassedFields[] = {3, 4, 5, 6, 7, 8, 10, 2};
} // namespace

QStringList CardPaymentLines(DeviceLink& link, ReceiptState& receipt)
{
    const EftOutcomeQuery query;
    const DeviceReply reply = link.send(query.command());
    receipt.LastStatus = reply.status();
    receipt.LastReply = reply.text();
    // A refused query counts as a reply without transactions.
    const std::optional<EftOutcomeQuery::Answer> answer = query.read(reply);
    if (!answer)
        return {};
    QStringList lines;
    for (qsizetype j = 0; j < answer->transactions.size(); ++j) {
        QStringList passed;
        for (const int position : kPassedFields)
            passed << answer->transactions.at(j).value(position);
        lines << QStringLiteral("ccPay%1 = %2").arg(j).arg(passed.join(QLatin1Char(';')));
    }
    return lines;
}

DocumentFigures ReadDocumentFigures(DeviceLink& link, const ReceiptState& receipt)
{
    const qint16 table = receipt.lastTable();
    const clsDocData doc = mDocData(link).BuildDocData(table);
    DocumentFigures figures;
    figures.amount = table < 1 ? doc.recAmount : doc.ordAmount;
    figures.recNumberProgr = doc.recNumberProgr;
    figures.recNumberDaily = doc.recNumberDaily;
    figures.ordNumber = doc.ordNumber;
    return figures;
}
