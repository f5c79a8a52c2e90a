#include "protocol/ZFileQueries.h"

#include "config/RegionalNumber.h"
#include "protocol/DeviceCommands.h"

#include <cmath>

namespace zfile {

namespace {

constexpr int kAmountDecimals = 2;

std::optional<qint64> wholeField(const DeviceReply& reply, int index)
{
    bool ok = false;
    const qint64 value = reply.field(index).trimmed().toLongLong(&ok);
    return ok ? std::optional<qint64>(value) : std::nullopt;
}

// The reply carries the field at index. A reply closes with "/": the empty
// piece behind the last slash is no field.
bool hasField(const DeviceReply& reply, int index)
{
    const qsizetype pieces = reply.fieldCount();
    const bool closed = pieces > 0 && reply.field(pieces - 1).isEmpty();
    return index < (closed ? pieces - 1 : pieces);
}

std::optional<double> amountField(const DeviceReply& reply, int index, const QLocale& locale)
{
    if (!hasField(reply, index))
        return std::nullopt;
    return ReadAmountField(reply.field(index), locale);
}

std::optional<CategoryValues> categoryFields(const DeviceReply& reply, int first, const QLocale& locale)
{
    CategoryValues values{};
    for (int i = 0; i < kVatCategories; ++i) {
        const auto value = amountField(reply, first + i, locale);
        if (!value)
            return std::nullopt;
        values[i] = *value;
    }
    return values;
}

} // namespace

std::optional<double> ReadAmountField(const QString& field, const QLocale& locale)
{
    const QString text = field.trimmed();
    if (text.isEmpty())
        return 0.0;
    const clsRegional regional(locale);
    bool ok = false;
    const double value = regional.getDbl_regional(text, regional.getOSCurrenrcy_Decimal_Sep(),
                                                  regional.getOSCurrenrcy_Thousand_Sep(), &ok);
    if (!ok || !std::isfinite(value))
        return std::nullopt;
    // Two decimals, as the register keeps its amounts.
    bool back = false;
    const double rounded = QLocale::c().toDouble(FormatDeviceNumber(value, kAmountDecimals, locale), &back);
    return back ? std::optional<double>(rounded) : std::nullopt;
}

QString VatRatesQuery::command() const
{
    return DeviceCommands::VatTable();
}

std::optional<CategoryValues> VatRatesQuery::read(const DeviceReply& reply) const
{
    if (!reply.ok())
        return std::nullopt;
    return categoryFields(reply, kFirstRateField, locale);
}

QString DayFiguresQuery::command() const
{
    return DeviceCommands::ZDataFiscal();
}

std::optional<DayFiguresQuery::Answer> DayFiguresQuery::read(const DeviceReply& reply) const
{
    if (!reply.ok() || !hasField(reply, kCorrectionsField))
        return std::nullopt;
    const auto gross = categoryFields(reply, kFirstGrossField, locale);
    const auto total = amountField(reply, kTotalField, locale);
    const auto first = wholeField(reply, kFirstCounterField);
    const auto second = wholeField(reply, kSecondCounterField);
    const auto voids = amountField(reply, kVoidsField, locale);
    const auto returns = amountField(reply, kReturnsField, locale);
    const auto corrections = amountField(reply, kCorrectionsField, locale);
    if (!gross || !total || !first || !second || !voids || !returns || !corrections)
        return std::nullopt;
    return Answer{*gross, *total, *first, *second, *voids, *returns, *corrections};
}

QString LastZQuery::command() const
{
    return DeviceCommands::Counters();
}

std::optional<LastZQuery::Answer> LastZQuery::read(const DeviceReply& reply) const
{
    if (!reply.ok())
        return std::nullopt;
    const auto number = wholeField(reply, kLastZField);
    if (!number || *number < 0)
        return std::nullopt;
    return Answer{reply.field(kLastZField).trimmed(), *number};
}

QString ZStampQuery::command() const
{
    return DeviceCommands::ZDataTotals();
}

std::optional<ZStampQuery::Answer> ZStampQuery::read(const DeviceReply& reply) const
{
    if (!reply.ok() || !hasField(reply, kTimeField))
        return std::nullopt;
    return Answer{reply.field(kDateField), reply.field(kTimeField)};
}

QString DepartmentTotalsQuery::command() const
{
    return DeviceCommands::DepartmentTotals(department);
}

std::optional<DepartmentTotalsQuery::Answer> DepartmentTotalsQuery::read(const DeviceReply& reply) const
{
    if (!reply.ok() || !hasField(reply, kAmountField))
        return std::nullopt;
    const auto vatIndex = wholeField(reply, kVatIndexField);
    const auto count = wholeField(reply, kCountField);
    const auto amount = amountField(reply, kAmountField, locale);
    if (!vatIndex || !count || !amount)
        return std::nullopt;
    return Answer{reply.field(kNameField).left(kNameMax), static_cast<qint32>(*count), *amount,
                  static_cast<qint32>(*vatIndex)};
}

QString PosIdentityQuery::command() const
{
    return DeviceCommands::DeviceSerial();
}

std::optional<PosIdentityQuery::Answer> PosIdentityQuery::read(const DeviceReply& reply) const
{
    if (!reply.ok() || !hasField(reply, kModelField))
        return std::nullopt;
    return Answer{reply.field(kModelField) + reply.field(kNumberField), reply.field(kPosNumberField)};
}

QString DayStatusQuery::command() const
{
    return DeviceCommands::ZDataSums();
}

std::optional<QString> DayStatusQuery::read(const DeviceReply& reply) const
{
    if (!reply.ok() || !hasField(reply, kClosingTextField))
        return std::nullopt;
    return reply.field(kClosingTextField);
}

} // namespace zfile
