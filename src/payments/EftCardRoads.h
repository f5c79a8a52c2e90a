#pragma once

#include "payments/CardRoads.h"
#include "protocol/EftOutcome.h"

#include <QString>
#include <QtGlobal>

class Clock;
class DeviceLink;
class DeviceReply;
class Operator;
struct ModuleVariables;

// Card payments through the EFTPOS terminals that hang on the register. The
// program never talks to a terminal: it sends the register a payment that
// names one, asks the register afterwards how the transaction ended, and
// tries again, gives up or falls back on the alternative payment by the
// terminal's text.
//
// No second charge: a card command is sent once by the link (sendOnce, 301
// seconds on either wire). When its answer is lost, the outcome query goes
// out before anything else, and when that too finds nothing the payment ends
// unpaid without another card command or an alternative payment, and the
// operator is told to look at the terminal.
class EftCardRoads final : public CardRoads {
public:
    // The card command's wait for the register, which waits for the terminal.
    static constexpr qint16 kCardWaitSeconds = 301;
    // A terminal that said POS IS BUSY gets this long before the next attempt.
    static constexpr int kBusyTerminalWaitMs = 3000;
    // Statuses after which the card command's outcome is asked: the register
    // took it (0), or the terminal was still at work while the device-wait
    // window held the call (193, 207), or a table's receipt still has a balance.
    static constexpr qint16 kStatusEftInProgress = 193;
    static constexpr qint16 kStatusEftPaymentInProgress = 207;
    static constexpr qint16 kStatusTableClosing = 201;
    // The table road's release commands after a terminal out of contact.
    static constexpr int kTerminalReleaseCode = 33;
    static constexpr int kTerminalResetCode = 100;

    EftCardRoads(DeviceLink& link, ModuleVariables& vars, Operator& op, Clock& clock);

    void payInReceipt(const PayEftRecord& record, double amount, const QString& description,
                      const QString& tag) override;
    void payFromMapInReceipt(const PayEftRecord& record,
                             const std::function<double()>& balance) override;
    bool payTableByCard(const PayEftRecord& record, const clsPayment& payment, qint16 table,
                        double tableDiscount) override;
    void PrintPendingPaymentNotice() override;

    // Asks the register how its last card transaction ended.
    EftOutcome EftStatusQuery();

private:
    enum class Road { Receipt, PreCollection, Table };
    struct Attempts {
        bool paid = false;
        // The answer of a card command was lost and the register could not
        // tell what became of it: the terminal may have charged the card.
        bool outcomeUnknown = false;
    };

    Attempts attempt(const PayEftRecord& record, const QString& cardCommand, Road road,
                     const QString& tag);
    bool openPreCollection(const QString& tag);
    EftOutcome outcomeAfterLostAnswer();
    void tellOutcomeUnknown();
    bool sendsToQuery(const DeviceReply& reply, Road road) const;

    DeviceLink& link_;
    ModuleVariables& vars_;
    Operator& op_;
    Clock& clock_;
};
