#include "link/DocumentLedger.h"

#include <cmath>

namespace {
constexpr double kHundredthsOfPercent = 10000.0;
} // namespace

void DocumentLedger::reset()
{
    known_ = true;
    state_ = State();
}

void DocumentLedger::confirmed(const DocumentEffect& effect)
{
    state_ = after(state_, effect);
}

DocumentLedger::State DocumentLedger::after(State s, const DocumentEffect& effect)
{
    using Kind = DocumentEffect::Kind;
    switch (effect.kind) {
    case Kind::Sale:
        s.open = true;
        s.total += effect.amountCents;
        s.lastSale = effect.amountCents > 0 ? effect.amountCents : 0;
        break;
    case Kind::Discount: {
        const qint64 base = effect.onSubtotal ? s.total : s.lastSale;
        const qint64 amount = effect.percentage
            ? std::llround(static_cast<double>(base) * effect.amountCents / kHundredthsOfPercent)
            : effect.amountCents;
        s.total += effect.surcharge ? amount : -amount;
        if (!effect.onSubtotal)
            s.lastSale = 0;
        break;
    }
    case Kind::Payment:
        s.paid += effect.amountCents;
        if (s.paid >= s.total)
            s = State();
        break;
    case Kind::Void:
        s = State();
        break;
    case Kind::Comment:
    case Kind::None:
        break;
    }
    return s;
}

bool DocumentLedger::matches(const State& s, const ReceiptFiguresQuery::Answer& figures)
{
    if (!s.open)
        return !figures.open;
    return figures.open && figures.totalCents == s.total && figures.paidCents == s.paid;
}

DocumentLedger::Executed DocumentLedger::judge(const DocumentEffect& effect,
                                               const ReceiptFiguresQuery::Answer& figures) const
{
    if (!known_ || effect.kind == DocumentEffect::Kind::Comment)
        return Executed::Unknown;
    const bool asBefore = matches(state_, figures);
    const bool asAfter = matches(after(state_, effect), figures);
    if (asAfter && !asBefore)
        return Executed::Yes;
    if (asBefore && !asAfter)
        return Executed::No;
    return Executed::Unknown;
}

bool DocumentLedger::agrees(const ReceiptFiguresQuery::Answer& figures) const
{
    return known_ && matches(state_, figures);
}
