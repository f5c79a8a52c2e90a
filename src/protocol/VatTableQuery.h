#pragma once

#include "protocol/DeviceReply.h"

#include <QList>
#include <QLocale>
#include <QString>
#include <optional>

// "e/": the register's VAT rates, one category a field from field 3 on. The
// register writes "24.00"; the rate is read with its point as the decimal mark
// whatever the regional settings say. An empty field is a rate of 0.
struct VatTableQuery {
    static constexpr int kFirstRateField = 3;

    QLocale locale = QLocale::system();

    QString command() const;
    // One rate a VAT category; nothing when refused.
    std::optional<QList<double>> read(const DeviceReply& reply) const;
};
