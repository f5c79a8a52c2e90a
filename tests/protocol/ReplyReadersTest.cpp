#include "protocol/CountersQuery.h"
#include "protocol/CurrentReceiptQuery.h"
#include "protocol/DepartmentQuery.h"
#include "protocol/DeviceSerialQuery.h"
#include "protocol/EftOutcome.h"
#include "protocol/EftOutcomeQuery.h"
#include "protocol/OpenDocumentQuery.h"
#include "protocol/SaleOnTableReply.h"
#include "protocol/TableContentsQuery.h"
#include "protocol/TransferReply.h"
#include "protocol/VatTableQuery.h"
#include "protocol/VersionQuery.h"
#include "protocol/ZFileQueries.h"

#include "DataFile.h"
#include "PrintQString.h"

#include <functional>
#include <gtest/gtest.h>

namespace {

const QLocale kGreek(QLocale::Greek, QLocale::Greece);
const QLocale kEnglish(QLocale::English, QLocale::UnitedStates);

// A reader's answer written out on one line ("-" for no answer, " | " between
// its parts), so that each case is a row of reader-answers.txt.
template <class T, class F>
QString shown(const std::optional<T>& answer, F parts)
{
    return answer ? QStringList(parts(*answer)).join(QStringLiteral(" | ")) : QStringLiteral("-");
}
QString num(double value) { return QString::number(value); }
QString list(const QList<QStringList>& rows, int field)
{
    QStringList out;
    for (const QStringList& row : rows)
        out << row.value(field);
    return out.join(u',');
}

struct Reader {
    std::function<QString()> command;
    std::function<QString(const DeviceReply&)> read;
};

const std::map<QString, Reader>& readers()
{
    using R = const DeviceReply&;
    static const std::map<QString, Reader> all = {
        {"serial", {[] { return DeviceSerialQuery().command(); },
                    [](R r) { return shown(DeviceSerialQuery().read(r), [](auto a) { return QStringList{a}; }); }}},
        {"versions", {{}, [](R r) { return shown(VersionQuery().read(r), [](auto a) { return QStringList{a.pos, a.protocol}; }); }}},
        {"vat-gr", {[] { return VatTableQuery{kGreek}.command(); }, [](R r) {
             return shown(VatTableQuery{kGreek}.read(r), [](auto a) { QStringList s; for (double v : a) s << num(v); return QStringList{s.join(u' ')}; });
         }}},
        {"vat-en", {{}, [](R r) {
             return shown(VatTableQuery{kEnglish}.read(r), [](auto a) { QStringList s; for (double v : a) s << num(v); return QStringList{s.join(u' ')}; });
         }}},
        {"department", {[] { return DepartmentQuery{12}.command(); },
                        [](R r) { return shown(DepartmentQuery{12}.read(r), [](auto a) { return QStringList{a.description, num(a.vatCategory)}; }); }}},
        {"receipt-gr", {[] { return CurrentReceiptQuery{kGreek}.command(); },
                        [](R r) { return shown(CurrentReceiptQuery{kGreek}.read(r), [](auto a) { return QStringList{num(a.dailyNumber), num(a.amount)}; }); }}},
        {"receipt-en", {{}, [](R r) { return shown(CurrentReceiptQuery{kEnglish}.read(r), [](auto a) { return QStringList{num(a.dailyNumber), num(a.amount)}; }); }}},
        {"counters", {{}, [](R r) {
             return shown(CountersQuery().read(r), [](auto a) { return QStringList{num(a.lastZ), a.receiptCounter ? num(*a.receiptCounter) : "-"}; });
         }}},
        {"table", {[] { return TableContentsQuery{7}.command(); }, [](R r) {
             return shown(TableContentsQuery{7}.read(r), [](auto a) {
                 return QStringList{list(a.items, 0), num(a.amount()), a.lastItemNumber.value_or("-"), a.holdsItems ? "holds" : "empty"};
             });
         }}},
        {"sale-on-table", {{}, [](R r) { return shown(SaleOnTableReply::read(r), [](auto a) { return QStringList{num(a.itemIdentifier), num(a.lineOrder)}; }); }}},
        {"moved", {{}, [](R r) {
             QStringList items;
             for (const TransferReply::MovedItem& m : TransferReply::read(r))
                 items << QStringLiteral("%1-%2>%3-%4").arg(m.sourceIdentifier).arg(m.sourceOrder).arg(m.destinationIdentifier).arg(m.destinationOrder);
             return items.isEmpty() ? QStringLiteral("none") : items.join(u',');
         }}},
        {"card", {[] { return EftOutcomeQuery().command(); }, [](R r) {
             return shown(EftOutcomeQuery().read(r), [](auto a) { return QStringList{num(a.transactions.size()), list(a.transactions, 0), list(a.transactions, 13), a.lastText}; });
         }}},
        {"open", {[] { return OpenDocumentQuery().command(); },
                  [](R r) { return shown(OpenDocumentQuery().read(r), [](bool a) { return QStringList{a ? "open" : "closed"}; }); }}},
        {"z-department", {[] { return zfile::DepartmentTotalsQuery{7}.command(); }, [](R r) {
             return shown(zfile::DepartmentTotalsQuery{7, kEnglish}.read(r), [](auto a) { return QStringList{a.name, num(a.count), num(a.amount), num(a.vatIndex)}; });
         }}},
        {"z-identity", {{}, [](R r) { return shown(zfile::PosIdentityQuery{}.read(r), [](auto a) { return QStringList{a.serial, a.posNumber}; }); }}},
        {"z-last", {{}, [](R r) { return shown(zfile::LastZQuery{}.read(r), [](auto a) { return QStringList{a.text, num(a.number)}; }); }}},
        {"z-day", {{}, [](R r) { return shown(zfile::DayStatusQuery{}.read(r), [](auto a) { return QStringList{a}; }); }}},
        {"z-stamp", {{}, [](R r) { return shown(zfile::ZStampQuery{}.read(r), [](auto a) { return QStringList{a.date, a.time}; }); }}},
    };
    return all;
}

// Rows: reader, reply (or "command" for the command it sends), the answer.
TEST(ReplyReaders, EveryReaderTakesTheFieldsItNamesAndNothingFromARefusalOrAShortReply)
{
    const QStringList rows = DataLines("protocol/reader-answers.txt");
    ASSERT_GT(rows.size(), 50);
    for (const QString& row : rows) {
        const QStringList cell = row.split(u'\t');
        SCOPED_TRACE(row.toStdString());
        ASSERT_EQ(cell.size(), 3);
        ASSERT_TRUE(readers().count(cell[0]));
        const Reader& reader = readers().at(cell[0]);
        EXPECT_EQ(cell[1] == "command" ? reader.command() : reader.read(DeviceReply::decode(cell[1], false)), cell[2]);
    }
    // A reply cut before its closing slash has no last text.
    EXPECT_TRUE(EftOutcomeQuery().read(DeviceReply::fromStatusAndText(0, QStringLiteral("x")))->lastText.isEmpty());
}

// A query reply whose last transaction ends with the terminal's text.
QString replyWith(const QString& text)
{
    return QStringLiteral("00/00/00/1/1/2/3/10.00/VISA/****1234/1/0101/05/42/7/978/ACQ/") + text
        + QStringLiteral("/");
}

TEST(EftOutcome, EveryTerminalTextOfTheTableGivesItsOutcomeExactly)
{
    const QStringList outcomes = {"Approved", "TryAgain", "FinalRefusal", "TerminalBusy", "NoContact"};
    const QStringList rows = DataLines("terminal-texts.txt");
    ASSERT_EQ(rows.size(), 22);
    for (const QString& row : rows) {
        const QString text = row.section(u'\t', 0, 0);
        const auto outcome = EftOutcome(outcomes.indexOf(row.section(u'\t', 1)));
        EXPECT_EQ(ClassifyEftOutcome(replyWith(text)), outcome) << qPrintable(text);
        EXPECT_EQ(ClassifyTerminalText(text), outcome) << qPrintable(text);
    }
}

TEST(EftOutcome, OnlyTheNoContactTextMayHaveMoreBehindItEverythingElseUnknownIsApproved)
{
    EXPECT_EQ(ClassifyTerminalText("SEND:TIMEOUT WHILE SEND DATA TO POS 00:12"), EftOutcome::NoContact);
    for (const char* text : {"SEND:TIMEOUT WHILE SEND DATA TO PO", "MAC ERROR ", "pos is busy", " POS IS BUSY",
                             "APPROVED", ""})
        EXPECT_EQ(ClassifyTerminalText(text), EftOutcome::Approved) << text;
    // The reply's last field but one is the text; a reply too short for one is approved.
    EXPECT_EQ(ClassifyEftOutcome("00/00/00/POS IS BUSY/"), EftOutcome::TerminalBusy);
    for (const char* reply : {"00/00/00/POS IS BUSY/x/", "00", ""})
        EXPECT_EQ(ClassifyEftOutcome(reply), EftOutcome::Approved) << reply;
}

TEST(ZFileQueries, AmountsAreReadAtTwoDecimalsWhicheverMarkAndJunkIsNoAmount)
{
    for (const QLocale& locale : {kGreek, kEnglish}) {
        EXPECT_EQ(zfile::ReadAmountField(" 1234.565 ", locale), 1234.57);
        EXPECT_EQ(zfile::ReadAmountField("12,40", locale), 12.4);
        EXPECT_EQ(zfile::ReadAmountField("-0.004", locale), 0.0);
        EXPECT_EQ(zfile::ReadAmountField("", locale), 0.0);
        EXPECT_FALSE(zfile::ReadAmountField("ΣΦΑΛΜΑ", locale).has_value());
    }
}

} // namespace
