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

#include <gtest/gtest.h>

namespace {

const QLocale kGreek(QLocale::Greek, QLocale::Greece);
const QLocale kEnglish(QLocale::English, QLocale::UnitedStates);

DeviceReply answer(const char* text) { return DeviceReply::decode(QString::fromUtf8(text), false); }
const DeviceReply kRefused = DeviceReply::decode(QStringLiteral("06/00/00/"), false);

TEST(RegisterQueries, IdentityVersionsVatTableAndDepartment)
{
    EXPECT_EQ(DeviceSerialQuery().command(), "a/");
    EXPECT_EQ(DeviceSerialQuery().read(answer("00/00/00/123/x/DNT/")), QStringLiteral("DNT123"));
    EXPECT_FALSE(DeviceSerialQuery().read(answer("00/00/00/123/")).has_value()); // too short
    EXPECT_FALSE(DeviceSerialQuery().read(kRefused).has_value());

    const auto versions = VersionQuery().read(answer("00/00/00/POS 2.1/P 7/"));
    ASSERT_TRUE(versions.has_value());
    EXPECT_EQ(QStringList({versions->pos, versions->protocol}), QStringList({"POS 2.1", "P 7"}));

    for (const QLocale& locale : {kGreek, kEnglish}) {
        const VatTableQuery vat{locale};
        EXPECT_EQ(vat.command(), "e/");
        EXPECT_EQ(vat.read(answer("00/00/00/24.00/13.00/ 6.00//0.00/9/")),
                  (QList<double>{24.0, 13.0, 6.0, 0.0, 0.0}));
        EXPECT_FALSE(vat.read(kRefused).has_value());
    }

    const DepartmentQuery department{12};
    EXPECT_EQ(department.command(), "d/12");
    const auto dep = department.read(answer("00/00/00/ ΑΡΤΟΣ /3/"));
    ASSERT_TRUE(dep.has_value());
    EXPECT_EQ(std::pair(dep->description, int(dep->vatCategory)), std::pair(QStringLiteral("ΑΡΤΟΣ"), 3));
}

TEST(DocumentQueries, CurrentReceiptAndCountersReadTheirFieldsOrNothing)
{
    for (const QLocale& locale : {kGreek, kEnglish}) {
        const auto receipt = CurrentReceiptQuery{locale}.read(answer("00/00/00/x/x/x/x/x/42/-18.60/x/"));
        ASSERT_TRUE(receipt.has_value());
        EXPECT_EQ(receipt->dailyNumber, 42);
        EXPECT_DOUBLE_EQ(receipt->amount, -18.6);
    }
    EXPECT_EQ(CurrentReceiptQuery().command(), "9/");
    EXPECT_FALSE(CurrentReceiptQuery().read(answer("00/00/00/")).has_value());
    EXPECT_FALSE(CurrentReceiptQuery().read(answer("00/00/00/x/x/x/x/x/4a/1.00/")).has_value());
    EXPECT_FALSE(CurrentReceiptQuery().read(kRefused).has_value());

    const auto counters = CountersQuery().read(answer("00/00/00/x/x/12/1012/"));
    ASSERT_TRUE(counters.has_value());
    EXPECT_EQ(std::pair(int(counters->lastZ), counters->receiptCounter), std::pair(12, std::optional(1012)));
    const auto noCounter = CountersQuery().read(answer("00/00/00/x/x/12/abc/"));
    ASSERT_TRUE(noCounter.has_value());
    EXPECT_FALSE(noCounter->receiptCounter.has_value());
    EXPECT_FALSE(CountersQuery().read(kRefused).has_value());
}

TEST(TableQueries, ContentsItemsAmountAndLastItemAndTheSaleOnATable)
{
    const TableContentsQuery query{7};
    EXPECT_EQ(query.command(), "&/11/7//0/0///////////");
    const auto two = query.read(answer("00/00/00/7/3|x|x|x|4.50/5|x|x|x|10.25/"));
    ASSERT_TRUE(two.has_value());
    ASSERT_EQ(two->items.size(), 2);
    EXPECT_EQ(two->items[1].value(0), "5");
    EXPECT_DOUBLE_EQ(two->amount(), 14.75);
    EXPECT_EQ(two->lastItemNumber, QStringLiteral("5"));

    // Without items the last field but one is read all the same.
    const auto none = query.read(answer("00/00/00/7/"));
    ASSERT_TRUE(none.has_value());
    EXPECT_TRUE(none->items.isEmpty());
    EXPECT_EQ(none->amount(), 0.0);
    EXPECT_EQ(none->lastItemNumber, QStringLiteral("7"));
    EXPECT_FALSE(query.read(kRefused).has_value());

    const auto sold = SaleOnTableReply::read(answer("00/00/00/1045/3/"));
    ASSERT_TRUE(sold.has_value());
    EXPECT_EQ(std::pair(int(sold->itemIdentifier), int(sold->lineOrder)), std::pair(1045, 3));
    EXPECT_FALSE(SaleOnTableReply::read(kRefused).has_value());
}

TEST(CardQueries, TransactionsAreFourteenFieldsEachAndTheLastTextClosesTheReply)
{
    EXPECT_EQ(EftOutcomeQuery().command(), "5/99/0/ ///1/1/");
    QString reply = QStringLiteral("00/00/00");
    for (int i = 1; i <= 13; ++i)
        reply += QStringLiteral("/A%1").arg(i);
    reply += QStringLiteral("/POS IS BUSY");
    const QString one = reply + u'/';
    for (int i = 1; i <= 13; ++i)
        reply += QStringLiteral("/B%1").arg(i);
    const QString two = reply + QStringLiteral("/DECLINED BY THE HOST/");

    const auto first = EftOutcomeQuery().read(DeviceReply::decode(one, false));
    ASSERT_TRUE(first.has_value());
    ASSERT_EQ(first->transactions.size(), 1);
    EXPECT_EQ(first->transactions[0].value(0), "A1");
    EXPECT_EQ(first->transactions[0].value(13), "POS IS BUSY");
    EXPECT_EQ(first->lastText, "POS IS BUSY");

    const auto second = EftOutcomeQuery().read(DeviceReply::decode(two, false));
    ASSERT_TRUE(second.has_value());
    ASSERT_EQ(second->transactions.size(), 2);
    EXPECT_EQ(second->transactions[1].value(0), "B1");
    EXPECT_EQ(second->lastText, "DECLINED BY THE HOST");

    // Fewer than twelve fields hold no transaction, but the last text is read.
    const auto none = EftOutcomeQuery().read(answer("00/00/00/1/2/3/4/5/6/7/"));
    ASSERT_TRUE(none.has_value());
    EXPECT_TRUE(none->transactions.isEmpty());
    EXPECT_EQ(none->lastText, "7");
    EXPECT_EQ(EftOutcomeQuery().read(answer("00/00/00/1/2/3/4/5/6/7/8/"))->transactions.size(), 1);
    EXPECT_TRUE(EftOutcomeQuery().read(DeviceReply::fromStatusAndText(0, QStringLiteral("x")))->lastText.isEmpty());
    EXPECT_FALSE(EftOutcomeQuery().read(kRefused).has_value());
}

QList<std::tuple<int, int, int, int>> moved(const char* text)
{
    QList<std::tuple<int, int, int, int>> out;
    for (const TransferReply::MovedItem& m : TransferReply::read(answer(text)))
        out << std::tuple(int(m.sourceIdentifier), int(m.sourceOrder), int(m.destinationIdentifier),
                          int(m.destinationOrder));
    return out;
}

TEST(TableReplies, AMoveReplyNamesEachItemBeforeAndAfterUpToTheFirstEmptyField)
{
    EXPECT_EQ(moved("00/00/00/2/11-1|31-4/12-2|32-5/"),
              (QList<std::tuple<int, int, int, int>>{{11, 1, 31, 4}, {12, 2, 32, 5}}));
    EXPECT_EQ(moved("00/00/00/2/11-1|31-4//12-2|32-5/").size(), 1);
    EXPECT_TRUE(moved("00/00/00/").isEmpty());
    EXPECT_TRUE(moved("00/00/00/0/").isEmpty());
    // Garbage, a missing half or a missing order is passed over, not guessed at.
    EXPECT_EQ(moved("00/00/00/4/x|y/12-|32-5/13-3|/14-4|34-9/"),
              (QList<std::tuple<int, int, int, int>>{{14, 4, 34, 9}}));
}

TEST(TableReplies, TheOpenBitAndATablesItems)
{
    const OpenDocumentQuery open;
    EXPECT_EQ(open.command(), "?/");
    EXPECT_EQ(open.read(answer("00/00/10/")), std::optional<bool>(true));
    EXPECT_EQ(open.read(answer("00/00/00/")), std::optional<bool>(false));
    EXPECT_FALSE(open.read(answer("06/00/00/")).has_value());

    const TableContentsQuery contents{3};
    EXPECT_TRUE(contents.read(answer("00/00/00/1/1|7|ΝΕΡΟ|1.000|0.50|2|13.00/"))->holdsItems);
    EXPECT_FALSE(contents.read(answer("00/00/00/0/"))->holdsItems);
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
    EXPECT_EQ(ClassifyTerminalText("SEND:TIMEOUT WHILE SEND DATA TO PO"), EftOutcome::Approved);
    EXPECT_EQ(ClassifyTerminalText("MAC ERROR "), EftOutcome::Approved);
    EXPECT_EQ(ClassifyTerminalText("pos is busy"), EftOutcome::Approved);
    EXPECT_EQ(ClassifyTerminalText(" POS IS BUSY"), EftOutcome::Approved);
    EXPECT_EQ(ClassifyTerminalText("APPROVED"), EftOutcome::Approved);
    EXPECT_EQ(ClassifyTerminalText(""), EftOutcome::Approved);
    // The reply's last field but one is the text; a reply too short for one is approved.
    EXPECT_EQ(ClassifyEftOutcome("00/00/00/POS IS BUSY/"), EftOutcome::TerminalBusy);
    EXPECT_EQ(ClassifyEftOutcome("00/00/00/POS IS BUSY/x/"), EftOutcome::Approved);
    EXPECT_EQ(ClassifyEftOutcome("00"), EftOutcome::Approved);
    EXPECT_EQ(ClassifyEftOutcome(""), EftOutcome::Approved);
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

TEST(ZFileQueries, ReadersWantEveryFieldTheyNameAndNothingFromARefusal)
{
    EXPECT_EQ(zfile::DepartmentTotalsQuery{7}.command(), "d/7/");
    const auto dep = zfile::DepartmentTotalsQuery{7, kEnglish}.read(
        answer("00/00/00/ΑΝΑΨΥΚΤΙΚΑ ΚΑΙ ΧΥΜΟΙ ΦΡΕΣΚΟΙ/2/1/0.00/0/-3/-7.50/"));
    ASSERT_TRUE(dep.has_value()); // the name cut to 20
    EXPECT_EQ(std::tuple(dep->name, int(dep->count), double(dep->amount), int(dep->vatIndex)),
              std::tuple(QStringLiteral("ΑΝΑΨΥΚΤΙΚΑ ΚΑΙ ΧΥΜΟΙ"), -3, -7.5, 2));
    // The slash that closes a reply is no field: field 9 is missing here.
    EXPECT_FALSE(zfile::DepartmentTotalsQuery{7}.read(answer("00/00/00/Α/2/1/0.00/0/3/")).has_value());
    EXPECT_FALSE(zfile::DepartmentTotalsQuery{7}.read(kRefused).has_value());

    const auto id = zfile::PosIdentityQuery{}.read(answer("00/00/00/12345678/1/TEC/"));
    ASSERT_TRUE(id.has_value());
    EXPECT_EQ(QStringList({id->serial, id->posNumber}), QStringList({"TEC12345678", "1"}));

    const auto z = zfile::LastZQuery{}.read(answer("00/00/00/5/120/ 42/125/"));
    ASSERT_TRUE(z.has_value());
    EXPECT_EQ(std::pair(z->text, int(z->number)), std::pair(QStringLiteral("42"), 42));
    EXPECT_FALSE(zfile::LastZQuery{}.read(answer("00/00/00/5/120/-1/125/")).has_value());

    EXPECT_EQ(zfile::DayStatusQuery{}.read(answer("00/00/00/0/0/7/0/125/0.00/0/TEC1/9/")), QStringLiteral("TEC1"));
    EXPECT_FALSE(zfile::ZStampQuery{}.read(answer("00/00/00/03-01-2026/")).has_value());
}

} // namespace
