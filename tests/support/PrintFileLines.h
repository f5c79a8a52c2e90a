#pragma once

#include <QString>

// A PLU line of a print file with its fields in their columns.
inline QString pluLine(const QString& description, const QString& quantity, const QString& price,
                       const QString& vat = QStringLiteral("13.00"), const QString& department = QStringLiteral("2"))
{
    return QStringLiteral(" PLU 5201234567890 ") + description.leftJustified(28, u' ')
        + quantity.rightJustified(7, u' ') + QStringLiteral("  ") + price.rightJustified(9, u' ')
        + QStringLiteral("   ") + vat.rightJustified(5, u' ') + department.rightJustified(3, u' ');
}
