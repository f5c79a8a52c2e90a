#pragma once

#include "protocol/DocumentEffect.h"
#include "protocol/ReceiptFiguresQuery.h"

#include <QtGlobal>

// The receipt in hand as the commands the register confirmed have built it:
// open or not, its total and what was paid, in cents. With it a command whose
// reply was lost is judged against the register's own figures ("9/"), so that
// it goes out again only when it was not executed, and the figures are
// checked before a payment once something went wrong. It follows the receipt
// from the start of a job, when nothing is open; a table visit or a card
// payment, which it cannot follow, leaves it unknown.
class DocumentLedger {
public:
    enum class Executed { Yes, No, Unknown };

    // A job begins: no receipt in hand, nothing in doubt.
    void reset();
    // Something happened that the ledger cannot follow.
    void forget() { known_ = false; }
    bool known() const { return known_; }

    // The register accepted the command.
    void confirmed(const DocumentEffect& effect);
    // Whether the register executed the command, by its figures.
    Executed judge(const DocumentEffect& effect, const ReceiptFiguresQuery::Answer& figures) const;
    // The register's figures are what the confirmed commands add up to.
    bool agrees(const ReceiptFiguresQuery::Answer& figures) const;

    qint64 totalCents() const { return state_.total; }

private:
    struct State {
        bool open = false;
        qint64 total = 0;
        qint64 paid = 0;
        qint64 lastSale = 0; // the last line when it is a sale, for a discount on it
    };
    static State after(State s, const DocumentEffect& effect);
    static bool matches(const State& s, const ReceiptFiguresQuery::Answer& figures);

    bool known_ = false;
    State state_;
};
