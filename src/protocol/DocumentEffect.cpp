#include "protocol/DocumentEffect.h"

#include <QStringList>
#include <cmath>

namespace {

constexpr int kCardPaymentFields = 9; // "5/n/amount/text///terminal/1/" split at "/"
constexpr int kOutcomeQueryPayment = 99;

bool cents(const QString& text, qint64& out)
{
    bool ok = false;
    const double value = text.trimmed().toDouble(&ok);
    if (ok)
        out = std::llround(value * 100.0);
    return ok;
}

bool milli(const QString& text, qint64& out)
{
    bool ok = false;
    const double value = text.trimmed().toDouble(&ok);
    if (ok)
        out = std::llround(value * 1000.0);
    return ok;
}

DocumentEffect sale(const QStringList& f)
{
    DocumentEffect e;
    const QString kind = f.value(1);
    qint64 quantity = 0;
    qint64 price = 0;
    if ((kind != u"S" && kind != u"R" && kind != u"C") || !milli(f.value(4), quantity)
        || !cents(f.value(5), price))
        return e;
    e.kind = DocumentEffect::Kind::Sale;
    const qint64 amount = std::llround(static_cast<double>(quantity) * price / 1000.0);
    e.amountCents = kind == u"S" ? amount : -amount;
    return e;
}

DocumentEffect discount(const QStringList& f)
{
    DocumentEffect e;
    if (!cents(f.value(1), e.amountCents))
        return e;
    e.kind = DocumentEffect::Kind::Discount;
    e.surcharge = f.value(4).trimmed() == u"1";
    e.onSubtotal = f.value(5).trimmed() == u"1";
    e.percentage = f.value(6).trimmed() != u"1";
    return e;
}

DocumentEffect payment(const QStringList& f)
{
    DocumentEffect e;
    bool numbered = false;
    const int number = f.value(1).toInt(&numbered);
    if (!numbered || number == kOutcomeQueryPayment || f.size() == kCardPaymentFields
        || !cents(f.value(2), e.amountCents) || e.amountCents <= 0)
        return DocumentEffect();
    e.kind = DocumentEffect::Kind::Payment;
    return e;
}

} // namespace

DocumentEffect DocumentEffect::of(const QString& command)
{
    const QStringList f = command.split(QLatin1Char('/'));
    const QString code = f.value(0);
    if (code == u"3")
        return sale(f);
    if (code == u"4")
        return discount(f);
    if (code == u"5")
        return payment(f);
    DocumentEffect e;
    if (code == u"7" && f.value(1) == u"1")
        e.kind = Kind::Comment;
    else if (command == u"+/")
        e.kind = Kind::Void;
    return e;
}
