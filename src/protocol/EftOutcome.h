#pragma once

#include <QString>
#include <QtGlobal>

// How a card transaction ended, as the register's terminal text tells it,
// and what the attempts of a card payment do about it.
enum class EftOutcome : qint16 {
    NoAnswer = -1,     // the outcome query itself failed: as TryAgain
    Approved = 0,      // no refusal text: the payment stands
    TryAgain = 1,      // next attempt
    FinalRefusal = 2,  // the payment failed; no more attempts
    TerminalBusy = 3,  // wait, then the next attempt
    NoContact = 4,     // as TryAgain; on a table two release commands go out first
};

// The terminal's text of the last transaction, looked up exactly and
// case-sensitively in the terminals' table of refusals. Any other text, an
// empty one too, is an approval: approvals have no text of their own.
EftOutcome ClassifyTerminalText(const QString& text);

// The reply of the outcome query "5/99/0/ ///1/1/": its last field but one is
// the text of the last transaction. A reply too short to have one is approved.
EftOutcome ClassifyEftOutcome(const QString& reply);
