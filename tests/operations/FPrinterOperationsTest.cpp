#include "operations/FPrinterOperations.h"

#include "DataFile.h"
#include "PrintQString.h"
#include "ScriptedLink.h"
#include "ScriptedOperator.h"
#include "records/ReceiptState.h"
#include "payments/PaymentMap.h"
#include "shell/FormModel.h"
#include "shell/ModuleVariables.h"
#include "shell/ProgressIndicator.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace Qt::Literals::StringLiterals;

namespace {

struct RecordingTables final : TableRoads {
    QList<clsTable> stored, moved;
    QList<QPair<double, qint16>> settled;
    qint32 clearResult = 0;
    int clears = 0;
    void storeSoldItem(const clsTable& item, const QString&, const QString&) override { stored << item; }
    void removeReturnedItem(const clsTable&, const QString&, const QString&) override {}
    void moveItem(const clsTable& item) override { moved << item; }
    int broughtToRegister = 0;
    void bringTableToRegister() override { ++broughtToRegister; }
    void payTable(double amount, qint16 payment) override { settled.append({amount, payment}); }
    qint32 clearOrderStore() override { return ++clears, clearResult; }
};

struct RecordingCards final : CardRoads {
    QList<PayEftRecord> records;
    QStringList tags;
    void payInReceipt(const PayEftRecord& record, double, const QString&, const QString& tag) override
    {
        records << record;
        tags << tag;
    }
};

class FPrinterOperationsTest : public ::testing::Test {
protected:
    QTemporaryDir dir;
    ScriptedLink link;
    ScriptedOperator op;
    ReceiptState state;
    ModuleVariables vars;
    FormModel form;
    clsind progress{form};
    RecordingTables tables;
    RecordingCards cards;
    FPrinterOperations printer{link, state, vars, op, form, progress, dir.filePath("payeft.dat")};

    void SetUp() override
    {
        printer.setTableRoads(tables);
        printer.setCardRoads(cards);
    }

    void write(const QString& text, const QString& operation, QVariant a = {}, QVariant b = {}, QVariant c = {})
    {
        printer.FPrinterWrite(text, a, b, c, operation);
    }

    void sell(const QString& description, double price, double qty, double vat = 13, int dep = 1)
    {
        state.ItemPrice = price;
        state.ItemQty = qty;
        write(description, "plu", price, vat, dep);
    }
};

TEST_F(FPrinterOperationsTest, OperationsWithoutArgumentsSendTheirCommand)
{
    const QStringList rows = DataLines(u"operations/plain-operations.txt"_s);
    ASSERT_EQ(rows.size(), 22);
    for (const QString& row : rows) {
        link.sent.clear();
        write("ignored", row.section(u' ', 0, 0));
        EXPECT_EQ(link.commands(), row.section(u' ', 1).split(u" ; "_s, Qt::SkipEmptyParts)) << row.toStdString();
    }
    EXPECT_TRUE(op.messages.isEmpty());
}

TEST_F(FPrinterOperationsTest, RawCommandsGoOutUntouchedAndOnlyPrgRawIsQuiet)
{
    write("x/abc/De/", "prg");
    write("d/3/", "prgRaw");
    EXPECT_EQ(link.commands(), QStringList({"x/abc/De/", "d/3/"}));
    EXPECT_FALSE(link.sent[0].quiet);
    EXPECT_TRUE(link.sent[1].quiet);
}

TEST_F(FPrinterOperationsTest, SaleDescriptionsAreSplitCappedAndCleaned)
{
    sell("coffee/tea", 2.5, 1);
    sell("ABCDEFGHIJKLMNOPQRST", 1, 1);           // 20: the second stays empty
    sell("ABCDEFGHIJKLMNOPQRSTU", 1, 1);          // 21: the second starts at 16
    sell(QString(60, 'x'), 1, 1);
    sell("", 0, 0, 0, 3);
    EXPECT_EQ(link.commands(), QStringList({
                                   "3/S/COFFEE-TEA//1.000/2.50/1/13.00/",
                                   "3/S/ABCDEFGHIJKLMNO//1.000/1.00/1/13.00/",
                                   "3/S/ABCDEFGHIJKLMNO/PQRSTU/1.000/1.00/1/13.00/",
                                   "3/S/XXXXXXXXXXXXXXX/" + QString(30, 'X') + "/1.000/1.00/1/13.00/",
                                   "3/S///0.000/0.00/3/0.00/",
                               }));
    EXPECT_TRUE(tables.stored.isEmpty()); // no table in hand
}

TEST_F(FPrinterOperationsTest, ASaleOnATableIsStoredWithTheRegistersIdentifierAndOrder)
{
    state.setCurrentTable(12);
    state.TableMode = 1;
    link.queue.push_back({0, "0/00/00/4711/3/"});
    sell("Souvlaki", 3.5, 2, 13, 4);
    ASSERT_EQ(tables.stored.size(), 1);
    const clsTable& item = tables.stored[0];
    EXPECT_EQ(item.itemDesc(), u"SOUVLAKI"_s.leftJustified(24));
    EXPECT_EQ(std::tuple(item.itemUID, item.tableORDER, item.TableNUM, item.itemDep), std::tuple(4711, 3, 12, 4));
    EXPECT_EQ(std::tuple(item.itemQuantity, item.itemVatRate), std::tuple(2.0, 13.0));

    link.queue.push_back({44, "paper"});
    sell("Souvlaki", 3.5, 2);
    EXPECT_EQ(tables.stored.size(), 1); // a refused sale is not stored
}

TEST_F(FPrinterOperationsTest, NegativeLinesReturnOrWaitAccordingToTheTableMode)
{
    sell("milk", -1.2, 2);
    EXPECT_EQ(link.commands(), QStringList({"3/R/MILK//2.000/1.20/1/13.00/"}));
    sell("milk", 1.2, -2);
    EXPECT_EQ(link.commands().last(), "3/R/MILK//2.000/1.20/1/13.00/");
    EXPECT_DOUBLE_EQ(state.ItemQty, 2); // overwritten with its absolute value

    link.sent.clear();
    state.TableMode = 1;
    state.setCurrentTable(4);
    state.StoreZ = 88;
    sell("wine", -7, 1, 24, 2);
    EXPECT_TRUE(link.sent.isEmpty());
    ASSERT_EQ(state.PendingVoids.size(), 1);
    const clsTable& pending = state.PendingVoids[0];
    EXPECT_EQ(std::tuple(pending.itemPrice, pending.zNumber, pending.TableNUM), std::tuple(7.0, qint16(88), qint16(4)));

    state.TableMode = 2;
    state.TableFrom = 4;
    sell("wine", -7, 1);
    sell("wine", 7, 1);
    EXPECT_TRUE(link.sent.isEmpty());
    ASSERT_EQ(tables.moved.size(), 1);
    EXPECT_EQ(tables.moved[0].TableNUM, 4);
}

TEST_F(FPrinterOperationsTest, DiscountSignDecidesTheTypeAndOverwritesTheCallersValues)
{
    state.DiscountScope = 1;
    QVariant a = -5, b = 1, c = 1;
    printer.FPrinterWrite("member discount card", a, b, c, "dis");
    EXPECT_EQ(link.commands(), QStringList({"4/5.00//MEMBER DISCOUNT/0/1/1/"}));
    EXPECT_EQ(a.toDouble(), 5.0);
    EXPECT_EQ(b.toInt(), 0);

    a = 2.5;
    b = 1;
    c = 0;
    state.DiscountScope = 0;
    printer.FPrinterWrite("extra", a, b, c, "dis");
    EXPECT_EQ(link.commands().last(), "4/2.50//EXTRA/1/0/0/");

    link.sent.clear();
    state.TableMode = 1;
    write("table discount", "dis", -3.5, 0, 1);
    EXPECT_TRUE(link.sent.isEmpty());
    EXPECT_DOUBLE_EQ(state.tableDiscount(), 3.5);
}

TEST_F(FPrinterOperationsTest, OrdinaryPaymentClosesTheReceiptWithItsOwnText)
{
    vars.EftBusy = true;
    QVariant a = 12.345, b = 2, c = QString("A/17");
    printer.FPrinterWrite("Cash/Μετρητά", a, b, c, "tot");
    EXPECT_EQ(link.commands(), QStringList({"5/2/12.35/Cash-Μετρητά//////"}));
    EXPECT_EQ(c.toString(), "A-17");
    EXPECT_TRUE(state.PaymentDone);
    EXPECT_FALSE(vars.EftBusy);
    EXPECT_TRUE(op.messages.isEmpty()); // a missing map is an empty one
    EXPECT_TRUE(cards.records.isEmpty());

    // On a table the table flow settles it.
    link.sent.clear();
    state.TableMode = 2;
    write("cash", "tot", 20.0, 1, QString("T"));
    EXPECT_TRUE(link.sent.isEmpty());
    EXPECT_EQ(tables.settled, (QList<QPair<double, qint16>>{{20.0, 1}}));
    EXPECT_EQ(tables.broughtToRegister, 1);
}

TEST_F(FPrinterOperationsTest, CardPaymentsTakeTheCardRoadAndUnreadableMapsPayPlainly)
{
    PayEftRecord card;
    card.payId = 3;
    card.ecrPayment = 5;
    card.ecrEft = 1;
    card.active = -1;
    ASSERT_EQ(WritePayEftRecord(dir.filePath("payeft.dat"), card), 0);
    write("VISA", "tot", 10.0, 3, QString("T1"));
    EXPECT_TRUE(link.sent.isEmpty());
    ASSERT_EQ(cards.records.size(), 1);
    EXPECT_EQ(std::tuple(cards.records[0].ecrPayment, cards.tags), std::tuple(qint16(5), QStringList{"T1"}));

    write("cash", "tot", 10.0, 0, QString("T1")); // payment number 0 cannot be read
    ASSERT_EQ(op.messages.size(), 1);
    EXPECT_EQ(std::tuple(op.messages[0].title, op.messages[0].text),
              std::tuple(QString("Μύνημα Kerbano"), QString("Αδυναμία ανάγνωσης παραμέτρων πληρωμών")));
    EXPECT_EQ(link.commands(), QStringList({"5/0/10.00/cash//////"}));
}

TEST_F(FPrinterOperationsTest, CommentsSkipBlanksTakeAStyleAndMarkCommentsAfterTheTotal)
{
    write("   ", "com");
    write("   ", "comItem", {}, {}, 2);
    EXPECT_TRUE(link.sent.isEmpty());

    write("thank you", "com", {}, {}, 3);
    write("x", "comItem", {}, {}, 7);
    write("y", "comItem", {}, {}, QString("abc"));
    EXPECT_EQ(link.commands(), QStringList({"7/1/3/THANK YOU/", "7/1/1/X/", "7/1/1/Y/"}));
    EXPECT_FALSE(state.CommentAfterTotal);

    state.PaymentDone = true;
    write("   ", "comItemmoError", {}, {}, 2);
    EXPECT_EQ(link.sent.last().command, "7/1/2/   /");
    EXPECT_TRUE(link.sent.last().quiet);
    EXPECT_FALSE(state.CommentAfterTotal);

    write("after", "comItem");
    EXPECT_TRUE(state.CommentAfterTotal);
}

TEST_F(FPrinterOperationsTest, FooterIsCutIntoFourLinesOfThirtyTwoAndTrailerFeedsOnlyAfterALateComment)
{
    write(QString(32, 'a') + "ευχαριστούμε/πολύ", "foo");
    write("", "foo");
    write("", "frt");
    state.CommentAfterTotal = true;
    write("", "frt");
    EXPECT_EQ(link.commands(), QStringList({"j/" + QString(32, 'A') + "/ΕΥΧΑΡΙΣΤΟΥΜΕ-ΠΟΛΥ/././////", "j/././././////",
                                            "w/1/8/", "w/1/8/", "w/1/8/"}));
}

TEST_F(FPrinterOperationsTest, DailyZPollsUntilTheFlashTransferEndsThenClearsTheStore)
{
    for (qint16 refusal : {qint16(70), qint16(195)}) { // these stop it at once
        link.queue.push_back({refusal, "no"});
        write("", "0Z");
        EXPECT_EQ(state.LastStatus, refusal);
    }
    EXPECT_EQ(link.commands(), QStringList({"x/7///", "x/7///"}));
    EXPECT_EQ(tables.clears, 0);

    link.sent.clear();
    link.queue.push_back({79, "busy"}); // any other refusal still goes on to the polls
    link.queue.push_back({0, ""});
    tables.clearResult = -2; // no rows: no failure
    write("", "0Z");
    EXPECT_EQ(link.commands(), QStringList({"x/7///", "?/"}));
    EXPECT_TRUE(link.sent[1].quiet);
    EXPECT_EQ(progress.Value(), 21);
    EXPECT_EQ(form.lblProgr(), " Ολοκληρώθηκε το 100%");
    EXPECT_EQ(tables.clears, 1);
    EXPECT_EQ(form.comstattxt(), "Αναμονή για μεταφορά σε flash ");

    tables.clearResult = -3;
    write("", "0Z");
    EXPECT_EQ(form.comstattxt(), "Πρόβλημα στην διαγραφή των τραπεζιών!");
}

TEST_F(FPrinterOperationsTest, DailyZGivesUpAfterThirtyOnePollsAndLeavesTheStore)
{
    link.responder = [](const QString& command, ScriptedLink::Answer& answer) {
        if (command != "?/")
            return false;
        answer = {-4, "silent"};
        return true;
    };
    write("", "0Z");
    ASSERT_EQ(link.sent.size(), 32);
    for (int i = 1; i < 31; ++i)
        EXPECT_TRUE(link.sent[i].quiet);
    EXPECT_FALSE(link.sent[31].quiet);
    EXPECT_EQ(std::tuple(link.shownMessages.size(), state.LastStatus, tables.clears, progress.Value()),
              std::tuple(1, qint16(-4), 0, 0));
}

// Short of its end until the register answers.
TEST_F(FPrinterOperationsTest, DailyZEachUnansweredPollMovesTheIndicatorAndTheAnswerFillsIt)
{
    QList<qint16> seen;
    QObject::connect(&form, &FormModel::stateChanged, [&](const FormState& s) {
        if (seen.isEmpty() || seen.last() != s.progressValue)
            seen << s.progressValue;
    });
    int polls = 0;
    link.responder = [&](const QString& command, ScriptedLink::Answer& a) {
        a = command == "?/" ? ScriptedLink::Answer{qint16(++polls < 20 ? -4 : 0), ""} : ScriptedLink::Answer{0, "00/00/00/"};
        return true;
    };
    write("", "0Z");
    ASSERT_EQ(polls, 20);
    ASSERT_GE(seen.size(), 3);
    EXPECT_EQ(std::tuple(seen.first(), seen.last()), std::tuple(qint16(0), qint16(21)));
    for (qsizetype i = 1; i < seen.size(); ++i)
        EXPECT_GT(seen[i], seen[i - 1]);
    EXPECT_LT(seen[seen.size() - 2], 21);
}

TEST_F(FPrinterOperationsTest, RefusedReportsOnlyTellTheOperator)
{
    vars.DeviceLabel = "ΑΒ 123";
    state.LastStatus = 9;
    for (const char* name : {"2Z", "8Z", "6Z", "5Z", "0ZP", "2ZP", "8ZP", "6ZP"})
        write("", name);
    EXPECT_TRUE(link.sent.isEmpty());
    ASSERT_EQ(op.messages.size(), 8);
    EXPECT_EQ(op.messages[0].text, "Αδύνατο Ισοζύγειο!!");
    EXPECT_EQ(op.messages[0].title, "Μήνυμα Ταμειακής (ΑΒ 123)");
    EXPECT_EQ(state.LastStatus, 9);
}

} // namespace
