#include "Paper.h"

#include "FieldNumbers.h"

using fieldnumbers::money;
using fieldnumbers::quantity;

namespace paper {

QString row(const QString& left, const QString& right)
{
    const int gap = kWidth - static_cast<int>(left.size()) - static_cast<int>(right.size());
    if (gap < 1)
        return left.left(kWidth - right.size() - 1) + QLatin1Char(' ') + right;
    return left + QString(gap, QLatin1Char(' ')) + right;
}

QString centred(const QString& text)
{
    const int pad = (kWidth - static_cast<int>(text.size())) / 2;
    return pad > 0 ? QString(pad, QLatin1Char(' ')) + text : text;
}

QString rule(QChar c) { return QString(kWidth, c); }

QString stamp(const QDateTime& when) { return when.toString(QStringLiteral("dd/MM/yyyy hh:mm")); }

QChar vatLetter(int index) { return QChar(u'Α' + index); }

QStringList saleLine(const SaleLine& l)
{
    QStringList out;
    const QString letter = QString(vatLetter(l.vat));
    switch (l.kind) {
    case SaleLine::Sale:
    case SaleLine::Return:
    case SaleLine::Cancel: {
        const QString label = l.kind == SaleLine::Return   ? QStringLiteral("ΕΠΙΣΤΡΟΦΗ ")
                              : l.kind == SaleLine::Cancel ? QStringLiteral("ΑΚΥΡΩΣΗ ")
                                                           : QString();
        if (l.qtyMilli != 1000)
            out << QStringLiteral("  %1 x %2").arg(quantity(l.qtyMilli), money(l.priceCents));
        out << row(label + l.desc, money(l.amount) + QLatin1Char(' ') + letter);
        if (!l.desc2.isEmpty())
            out << QStringLiteral("  ") + l.desc2;
        break;
    }
    case SaleLine::Discount:
    case SaleLine::Surcharge:
        out << row(l.desc.isEmpty() ? (l.kind == SaleLine::Discount ? QStringLiteral("ΕΚΠΤΩΣΗ")
                                                                    : QStringLiteral("ΕΠΙΒΑΡΥΝΣΗ"))
                                    : l.desc,
                   money(l.amount) + (l.dep > 0 ? QLatin1Char(' ') + letter : QString()));
        break;
    }
    return out;
}

} // namespace paper
