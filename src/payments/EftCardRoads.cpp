#include "payments/EftCardRoads.h"

#include "link/DeviceLink.h"
#include "link/LinkMessageTitle.h"
#include "link/WaitForRegister.h"
#include "protocol/DeviceCommands.h"
#include "protocol/EftOutcomeQuery.h"
#include "shell/Clock.h"
#include "shell/ModuleVariables.h"
#include "shell/Operator.h"

namespace dc = DeviceCommands;

namespace {

const QString kOutcomeUnknown = QStringLiteral(
    "Άγνωστη έκβαση πληρωμής με κάρτα: ελέγξτε το EFTPOS και την ταμειακή πριν δοθεί άλλη πληρωμή");

// EftBusy for as long as the attempts last: the device-wait window polls the
// register with the card's long wait meanwhile.
class EftBusyHold {
public:
    explicit EftBusyHold(ModuleVariables& vars)
        : vars_(vars)
    {
        vars_.EftBusy = true;
    }
    ~EftBusyHold() { vars_.EftBusy = false; }
    EftBusyHold(const EftBusyHold&) = delete;
    EftBusyHold& operator=(const EftBusyHold&) = delete;

private:
    ModuleVariables& vars_;
};

bool answerLost(const DeviceReply& reply)
{
    return reply.outcome() == ReplyOutcome::LinkLost || reply.outcome() == ReplyOutcome::NoReply;
}

const SendOptions kQuietOptions{.quiet = true};

} // namespace

EftCardRoads::EftCardRoads(DeviceLink& link, ModuleVariables& vars, Operator& op, Clock& clock)
    : link_(link)
    , vars_(vars)
    , op_(op)
    , clock_(clock)
{
}

EftOutcome EftCardRoads::EftStatusQuery()
{
    const auto answer = link_.ask(EftOutcomeQuery{});
    if (!answer)
        return EftOutcome::NoAnswer;
    return ClassifyTerminalText(answer->lastText);
}

// The card command's answer never came: the query alone may tell. An
// approval counts only when the register lists a transaction at all, since
// an empty list reads as approved too.
EftOutcome EftCardRoads::outcomeAfterLostAnswer()
{
    const auto answer = link_.ask(EftOutcomeQuery{});
    if (!answer)
        return EftOutcome::NoAnswer;
    const EftOutcome outcome = ClassifyTerminalText(answer->lastText);
    if (outcome == EftOutcome::Approved && answer->transactions.isEmpty())
        return EftOutcome::NoAnswer;
    return outcome;
}

void EftCardRoads::tellOutcomeUnknown()
{
    op_.message(LinkMessageTitle(vars_), kOutcomeUnknown, Operator::Icon::Critical);
}

bool EftCardRoads::sendsToQuery(const DeviceReply& reply, Road road) const
{
    const qint16 status = reply.status();
    return status == 0 || status == kStatusEftInProgress || status == kStatusEftPaymentInProgress
        || (road == Road::Table && status == kStatusTableClosing);
}

// Each attempt of the pre-collection is a small document of its own that
// carries the business document's reference.
bool EftCardRoads::openPreCollection(const QString& tag)
{
    link_.send(dc::PreCollectionDocument());
    link_.send(dc::DocumentNumberCaption());
    return link_.send(dc::DocumentNumberLine(tag)).ok();
}

EftCardRoads::Attempts EftCardRoads::attempt(const PayEftRecord& record,
                                             const QString& cardCommand, Road road,
                                             const QString& tag)
{
    const EftBusyHold busy(vars_);
    const bool table = road == Road::Table;
    const SendOptions cardOptions{
        .quiet = table,
        .timeoutSeconds = kCardWaitSeconds,
        .logMode = table ? SendOptions::kLogModeProbe : SendOptions::kLogModeCard,
        .sendOnce = true,
    };
    Attempts result;
    const int attempts = record.retries + 1;
    for (int i = 0; i < attempts; ++i) {
        if (road == Road::PreCollection && !openPreCollection(tag))
            continue;
        const DeviceReply reply = link_.send(cardCommand, cardOptions);
        EftOutcome outcome;
        if (answerLost(reply)) {
            outcome = outcomeAfterLostAnswer();
            if (outcome == EftOutcome::NoAnswer) {
                result.outcomeUnknown = true;
                tellOutcomeUnknown();
                return result;
            }
        } else if (!sendsToQuery(reply, road)) {
            continue;
        } else {
            outcome = EftStatusQuery();
        }

        switch (outcome) {
        case EftOutcome::Approved:
            result.paid = true;
            return result;
        case EftOutcome::FinalRefusal:
            return result;
        case EftOutcome::TerminalBusy:
            clock_.sleepMs(kBusyTerminalWaitMs);
            break;
        case EftOutcome::NoContact:
            if (table) {
                link_.send(dc::DeviceCode(kTerminalReleaseCode), kQuietOptions);
                link_.send(dc::DeviceCode(kTerminalResetCode), kQuietOptions);
            }
            break;
        case EftOutcome::TryAgain:
            if (road == Road::PreCollection)
                WaitForRegister(link_, op_, clock_);
            break;
        case EftOutcome::NoAnswer:
            break;
        }
    }
    return result;
}

void EftCardRoads::payInReceipt(const PayEftRecord& record, double amount,
                                const QString& description, const QString& tag)
{
    const QString card = dc::CardPayment(record.ecrPayment, amount, description, record.ecrEft);
    if (record.isPreCollect()) {
        const Attempts result = attempt(record, card, Road::PreCollection, tag);
        // What the pre-collection left open closes at zero; there is no alternative here.
        if (!result.paid && !result.outcomeUnknown)
            WaitForRegister(link_, op_, clock_);
        return;
    }
    const Attempts result = attempt(record, card, Road::Receipt, tag);
    if (result.paid || result.outcomeUnknown || record.altPayment <= 0)
        return;
    if (link_.send(dc::CardReplacementPaymentWithText(record.altPayment, amount, description)).ok())
        vars_.EftFallbackUsed = true;
}

void EftCardRoads::payFromMapInReceipt(const PayEftRecord& record,
                                       const std::function<double()>& balance)
{
    const QString card =
        dc::CardPayment(record.ecrPayment, balance(), QString(), record.ecrEft);
    const Attempts result = attempt(record, card, Road::Receipt, QString());
    if (result.paid || result.outcomeUnknown || record.altPayment <= 0)
        return;
    // The balance is read anew: a part may have been paid meanwhile.
    if (link_.send(dc::CardReplacementPayment(record.altPayment, balance())).ok())
        vars_.EftFallbackUsed = true;
}

bool EftCardRoads::payTableByCard(const PayEftRecord& record, const clsPayment& payment,
                                  qint16 table, double tableDiscount)
{
    link_.send(dc::PrepareTableClosing(table, tableDiscount), kQuietOptions);
    const QString card = dc::PayTableByCard(table, record.ecrPayment, payment.Amount, payment.Desc,
                                            record.ecrEft);
    const Attempts result = attempt(record, card, Road::Table, QString());
    if (result.paid)
        return true;
    if (result.outcomeUnknown || record.altPayment <= 0)
        return false;
    const qint16 status =
        link_.send(dc::PayTable(table, record.altPayment, payment.Amount, payment.Desc),
                   kQuietOptions)
            .status();
    if (status != 0 && status != kStatusTableClosing)
        return false;
    vars_.EftFallbackUsed = true;
    return true;
}

void EftCardRoads::PrintPendingPaymentNotice()
{
    if (!vars_.EftFallbackUsed)
        return;
    // A line that fails does not stop the others.
    for (const QString& line : dc::PendingPaymentNotice())
        link_.send(line);
    vars_.EftFallbackUsed = false;
}
