#include "pipeline/JobClosing.h"

#include "link/DeviceLink.h"
#include "operations/DeviceCommands.h"
#include "operations/ReceiptState.h"
#include "tables/MDocData.h"

#include <cmath>

namespace {
// The reply carries the transactions behind its first nine characters, 14
// fields a transaction.
constexpr int kReplyHeadLength = 9;
constexpr int kFieldsPerTransaction = 14;
constexpr int kFieldsBeforeTransactions = 4;
const QString kRefusedReply = QStringLiteral("////");
// Positions, within one transaction, of the eight fields handed to the application.
constexpr int kPassedFields[] = {3, 4, 5, 6, 7, 8, 10, 2};
} // namespace

QStringList CardPaymentLinesOfReply(const QString& reply)
{
    const qsizetype highestIndex = reply.split(QLatin1Char('/')).size() - 1;
    // Rounded as the register's own arithmetic does: halves to even.
    const double count = std::nearbyint(double(highestIndex - kFieldsBeforeTransactions)
                                            / kFieldsPerTransaction
                                        - 1.0);
    const QStringList fields = reply.mid(kReplyHeadLength).split(QLatin1Char('/'));
    QStringList lines;
    for (int j = 0; j <= int(count); ++j) {
        QStringList passed;
        for (const int offset : kPassedFields)
            passed << fields.value(kFieldsPerTransaction * j + offset);
        lines << QStringLiteral("ccPay%1 = %2").arg(j).arg(passed.join(QLatin1Char(';')));
    }
    return lines;
}

QStringList CardPaymentLines(DeviceLink& link, ReceiptState& receipt)
{
    link.SendCommand(DeviceCommands::EftOutcomeQuery(), receipt.LastStatus, receipt.LastReply);
    return CardPaymentLinesOfReply(receipt.LastStatus == 0 ? receipt.LastReply : kRefusedReply);
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
