#pragma once

#include "protocol/DeviceReply.h"

#include <QLocale>
#include <QString>
#include <array>
#include <optional>

// The queries the Z file is made from, each paired with its reader. A reader
// answers nothing when the register refused, when the reply lacks a field it
// names, or when a number in it cannot be read: a Z file is written from
// whole answers or not at all. Amounts and rates are read whichever decimal
// mark the register used, and kept at two decimals as the register meant
// them. An empty number field counts as 0.
namespace zfile {

inline constexpr int kVatCategories = 5;
using CategoryValues = std::array<double, kVatCategories>;

// A number of a reply field at two decimals; nothing when it is no number.
std::optional<double> ReadAmountField(const QString& field, const QLocale& locale);

// "e/": the rates of categories A to E in fields 3 to 7.
struct VatRatesQuery {
    static constexpr int kFirstRateField = 3;
    QLocale locale = QLocale::system();

    QString command() const;
    std::optional<CategoryValues> read(const DeviceReply& reply) const;
};

// "0/": the figures of the last Z.
struct DayFiguresQuery {
    static constexpr int kFirstGrossField = 3;
    static constexpr int kTotalField = 8;
    static constexpr int kFirstCounterField = 9;
    static constexpr int kSecondCounterField = 10;
    static constexpr int kVoidsField = 11;
    static constexpr int kReturnsField = 12;
    static constexpr int kCorrectionsField = 13;

    struct Answer {
        CategoryValues gross{};
        double total = 0.0;
        qint64 firstCounter = 0;  // receipts of the day
        qint64 secondCounter = 0; // progressive number at its end
        double voids = 0.0;
        double returns = 0.0;
        double corrections = 0.0;
    };
    QLocale locale = QLocale::system();

    QString command() const;
    std::optional<Answer> read(const DeviceReply& reply) const;
};

// "i/": field 5, the number of the last Z, as the register wrote it and as a number.
struct LastZQuery {
    static constexpr int kLastZField = 5;

    struct Answer {
        QString text;
        qint64 number = 0;
    };

    QString command() const;
    std::optional<Answer> read(const DeviceReply& reply) const;
};

// "t/": the date and the time of the last Z, as texts.
struct ZStampQuery {
    static constexpr int kDateField = 3;
    static constexpr int kTimeField = 4;

    struct Answer {
        QString date;
        QString time;
    };

    QString command() const;
    std::optional<Answer> read(const DeviceReply& reply) const;
};

// "d/<department>/": the department's part of the last Z.
struct DepartmentTotalsQuery {
    static constexpr int kNameField = 3;
    static constexpr int kVatIndexField = 4;
    static constexpr int kCountField = 8;
    static constexpr int kAmountField = 9;
    static constexpr int kNameMax = 20;

    struct Answer {
        QString name; // at most 20 characters, as the register wrote them
        qint32 count = 0; // whole pieces
        double amount = 0.0;
        qint32 vatIndex = 0;
    };
    int department = 0;
    QLocale locale = QLocale::system();

    QString command() const;
    std::optional<Answer> read(const DeviceReply& reply) const;
};

// "a/": the register's serial (field 5 and field 3 joined) and its POS number (field 4).
struct PosIdentityQuery {
    static constexpr int kNumberField = 3;
    static constexpr int kPosNumberField = 4;
    static constexpr int kModelField = 5;

    struct Answer {
        QString serial;
        QString posNumber;
    };

    QString command() const;
    std::optional<Answer> read(const DeviceReply& reply) const;
};

// "s/": field 10, the text that closes the Z file's first line.
struct DayStatusQuery {
    static constexpr int kClosingTextField = 10;

    QString command() const;
    std::optional<QString> read(const DeviceReply& reply) const;
};

} // namespace zfile
