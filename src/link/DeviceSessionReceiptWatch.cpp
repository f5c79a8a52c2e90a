// The resend decision of the device session for the commands that change the
// receipt in hand, and the check of the register's figures before a payment.
// Nothing here adds to the wire while replies come back: the figures are
// asked only after a reply was lost.

#include "link/CommandTrail.h"
#include "link/DevicePort.h"
#include "link/DeviceSession.h"
#include "link/SerialExchange.h"
#include "protocol/DeviceCommands.h"
#include "protocol/ReceiptFiguresQuery.h"
#include "shell/CommunicationLog.h"
#include "shell/ModuleVariables.h"
#include "shell/ResultSink.h"

namespace {

const QString kExecutedReply = QStringLiteral("00/00/00/");
const QString kTotalsDifferText =
    QStringLiteral("Η απόδειξη ακυρώθηκε πριν την πληρωμή: τα ποσά της ταμειακής διαφέρουν από "
                   "τις γραμμές που επιβεβαίωσε");
const QString kJobStoppedText =
    QStringLiteral("Η εργασία σταμάτησε πριν την πληρωμή: η απόδειξη δεν εκδόθηκε");

bool lostAfterSending(const DeviceReply& reply)
{
    return reply.outcome() == ReplyOutcome::NoReply || reply.outcome() == ReplyOutcome::LinkLost;
}

QString money(qint64 cents)
{
    return QString::number(cents / 100.0, 'f', 2);
}

// Commands the ledger cannot follow: a table visit, a pre-collection, a card
// payment, the zero payment that ends a visit or settles a balance.
bool leavesLedgerBehind(const QString& command, const DocumentEffect& effect,
                        const SendOptions& options)
{
    if (options.logMode == SendOptions::kLogModeCard)
        return true;
    if (command.startsWith(u'"') || command.startsWith(QLatin1String("&/"))
        || command.startsWith(QLatin1String("6/")))
        return true;
    return effect.kind == DocumentEffect::Kind::None && command.startsWith(QLatin1String("5/"))
        && command != DeviceCommands::EftOutcomeQuery();
}

} // namespace

void DeviceSession::beginReceiptWatch()
{
    ledger_.reset();
    receiptInDoubt_ = false;
    receiptShort_ = false;
    receiptStopped_ = false;
}

bool DeviceSession::guardsDocument(const DocumentEffect& effect, const SendOptions& options) const
{
    // A card command has its own rule: one send, then the outcome query.
    return effect.changesDocument() && options.logMode != SendOptions::kLogModeCard
        && !options.sendOnce;
}

std::optional<ReceiptFiguresQuery::Answer> DeviceSession::askFigures()
{
    const ReceiptFiguresQuery query;
    for (int i = 0; i < kFigureQueries; ++i) {
        // A late reply of the lost command must not be taken for the figures.
        port_.dropStaleInput(kStaleQuietMs);
        qint16 timeoutSeconds = 0;
        const LinkBackend::Exchanged exchanged =
            port_.ExchangeCommand(query.command(), timeoutSeconds, vars_.IgnoreOperatorBusy, false, 1);
        if (const auto figures = query.read(exchanged.reply))
            return figures;
    }
    return std::nullopt;
}

LinkBackend::Exchanged DeviceSession::exchangeDocumentCommand(const QString& command,
                                                              const DocumentEffect& effect,
                                                              qint16& timeoutSeconds)
{
    int unsent = 0;
    int sends = 0;
    for (;;) {
        LinkBackend::Exchanged exchanged =
            port_.ExchangeCommand(command, timeoutSeconds, vars_.IgnoreOperatorBusy, false, 1);
        const DeviceReply& reply = exchanged.reply;
        // The frame never went out: the register has not seen the command.
        if (reply.status() == SerialExchange::kStatusNoEnqAnswer) {
            if (++unsent <= kMaxUnsentResends)
                continue;
            receiptShort_ = true;
            return exchanged;
        }
        if (!lostAfterSending(reply))
            return exchanged;

        receiptInDoubt_ = true;
        ++sends;
        const auto figures = askFigures();
        const DocumentLedger::Executed executed =
            figures ? ledger_.judge(effect, *figures) : DocumentLedger::Executed::Unknown;
        switch (executed) {
        case DocumentLedger::Executed::Yes:
            log_.PrintCombine(QStringLiteral(" executed, reply lost: ") + command);
            return {DeviceReply::decode(kExecutedReply, false), exchanged.sentForm};
        case DocumentLedger::Executed::No:
            if (sends < kMaxDocumentSends)
                continue;
            receiptShort_ = true;
            return exchanged;
        case DocumentLedger::Executed::Unknown:
            receiptShort_ = true;
            ledger_.forget();
            return exchanged;
        }
    }
}

// Before a command that changes the receipt: nothing more once the job was
// stopped; before a payment, once something went wrong, the register's
// figures must be what the confirmed lines add up to, or the receipt is voided.
std::optional<DeviceReply> DeviceSession::checkBeforePayment(const DocumentEffect& effect)
{
    if (receiptStopped_)
        return DeviceReply::linkFailure(kStatusJobStopped, kJobStoppedText, ReplyOutcome::Refused);
    if (effect.kind != DocumentEffect::Kind::Payment || (!receiptInDoubt_ && !receiptShort_))
        return std::nullopt;

    const auto figures = askFigures();
    if (!receiptShort_ && figures && ledger_.agrees(*figures))
        return std::nullopt;

    receiptStopped_ = true;
    const QString registerTotal = figures ? money(figures->totalCents) : QString();
    const QString confirmed = ledger_.known() ? money(ledger_.totalCents()) : QString();
    qint16 timeoutSeconds = 0;
    if (trail_)
        trail_->sending(DeviceCommands::VoidDocument(), false);
    const bool voided = port_.ExchangeCommand(DeviceCommands::VoidDocument(), timeoutSeconds,
                                              vars_.IgnoreOperatorBusy, false, 1)
                            .reply.ok();
    if (voided) {
        ledger_.reset();
        if (trail_)
            trail_->confirmed(DeviceCommands::VoidDocument());
    }
    results_.noteBeforeExit(QStringLiteral("jobNote = %1;totals;%2;%3")
                                .arg(voided ? QStringLiteral("voided") : QStringLiteral("stopped"),
                                     registerTotal, confirmed));
    return DeviceReply::linkFailure(voided ? kStatusTotalsDiffer : kStatusJobStopped,
                                    voided ? kTotalsDifferText : kJobStoppedText,
                                    ReplyOutcome::Refused);
}

void DeviceSession::followDocument(const QString& command, const DocumentEffect& effect,
                                   const SendOptions& options, const DeviceReply& reply)
{
    if (leavesLedgerBehind(command, effect, options)) {
        ledger_.forget();
        return;
    }
    if (reply.ok() && (guardsDocument(effect, options) || effect.kind == DocumentEffect::Kind::Void))
        ledger_.confirmed(effect);
}
