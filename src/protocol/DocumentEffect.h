#pragma once

#include <QString>
#include <QtGlobal>

// What a command does to the receipt in hand, read from the command text as
// it goes out: the commands whose execution the register's figures ("9/")
// show, so that a command whose reply was lost can be checked before it is
// sent again. Amounts in cents.
struct DocumentEffect {
    enum class Kind {
        None,      // leaves the receipt alone, or is not the receipt's (a table, a card)
        Sale,      // "3/S/", "3/R/", "3/C/": a line; a return or a cancellation takes off
        Discount,  // "4/": off (or onto) the last sale or the subtotal
        Payment,   // "5/<n>/<amount>/...": pays into the receipt
        Comment,   // "7/1/": printed only; the figures cannot show it
        Void,      // "+/": the receipt in hand voided
    };

    Kind kind = Kind::None;
    qint64 amountCents = 0;  // the line (signed), the discount value, or the payment
    bool percentage = false; // a discount as a percentage: amountCents are hundredths of a percent
    bool onSubtotal = false;
    bool surcharge = false;

    // A command that changes the receipt in hand and goes to the register as
    // it is (not a card payment, not the zero payment that ends a table visit).
    bool changesDocument() const { return kind != Kind::None && kind != Kind::Void; }

    static DocumentEffect of(const QString& command);
};
