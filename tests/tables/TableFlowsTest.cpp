#include "tables/TableFlows.h"

#include "DataFile.h"
#include "PrintQString.h"
#include "ScriptedLink.h"
#include "ScriptedOperator.h"
#include "TableItem.h"
#include "records/ReceiptState.h"
#include "shell/Clock.h"
#include "shell/FormModel.h"
#include "shell/ModuleVariables.h"
#include "shell/ProgressIndicator.h"
#include "shell/ResultSink.h"
#include "tables/InitTables.h"
#include "tables/OrderStoreRoads.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace {

const QString kSerial = QStringLiteral("ABC12345678");
constexpr qint16 kZ = 42;
const QString kZeroPayment = QStringLiteral("5/1/0.00////");

struct RecordingSink final : ResultSink {
    QStringList lines;
    void appendResultLine(const QString& line) override { lines << line; }
};

clsTable Item(qint16 table, qint32 uid, qint16 order, const QString& desc, double quantity, double price)
{
    return TableItem(table, uid, order, desc, quantity, price, 13);
}

// The commands a flow of the golden file sends, one a line.
QStringList expectedCommands(const QString& flow)
{
    return golden(QStringLiteral("tables/table-flows.txt"), flow);
}

class TableFlowsTest : public ::testing::Test {
protected:
    QTemporaryDir dir;
    ScriptedLink link;
    ScriptedOperator op;
    VirtualClock clock;
    ReceiptState receipt;
    ModuleVariables vars;
    RecordingSink results;
    TableFlows flows{link, op, clock, receipt, vars, results, dir.path()};
    OrderStoreRoads roads{flows};

    void SetUp() override
    {
        receipt.StoreSerial = kSerial;
        receipt.StoreZ = kZ;
    }

    clsItemData store() { return flows.store(); }

    void put(const clsTable& item) { ASSERT_EQ(store().orders_AddRecord(item), 0); }

    // The row the default search finds for desc, price and quantity on table.
    clsTable find(qint16 table, const QString& desc, double quantity, double price)
    {
        return store().orders_FindRecord(Item(table, 0, 0, desc, quantity, price));
    }

    clsTable pendingVoid(qint16 table, const QString& desc, double quantity, double price)
    {
        clsTable item = Item(table, 0, 0, desc, quantity, price);
        item.zNumber = kZ;
        return item;
    }
};

TEST_F(TableFlowsTest, SerialAndNextZComeFromTheRegisterOrTheirFailureMarks)
{
    link.queue = {{0, "00/00/00/12345678/1/ABC/"}, {0, "00/00/00/17/1200/41/1250/"}};
    EXPECT_EQ(flows.ReadSerialNumber(), kSerial);
    EXPECT_EQ(flows.ReadNextZ(), 42);

    link.queue = {{0x11, "refused"}, {0x11, "refused"}};
    EXPECT_EQ(flows.ReadSerialNumber(), QStringLiteral("NO_SERIAL N"));
    EXPECT_EQ(flows.ReadNextZ(), -1);
    EXPECT_EQ(link.commands(), QStringList({"a/", "i/", "a/", "i/"}));
}

TEST_F(TableFlowsTest, PendingVoidsCancelTheirStoredLinesOnceTheTableIsOpenedOnce)
{
    put(Item(4, 101, 1, "ΚΑΦΕΣ ΦΙΛΤΡΟΥ 250Γ", 2, 3.5));
    put(Item(4, 102, 2, "ΝΕΡΟ", 1, 0.5));
    put(Item(4, 103, 3, "ΝΕΡΟ", 1, 0.5));
    receipt.PendingVoids = {pendingVoid(4, "ΝΕΡΟ", 1, 0.5), pendingVoid(4, "ΚΑΦΕΣ ΦΙΛΤΡΟΥ 250Γ", 2, 3.5),
                            pendingVoid(4, "ΤΣΑΙ", 1, 2.0)};

    EXPECT_EQ(flows.ProcessPendingVoids(), 0);

    // Of two equal lines the oldest goes; the unknown tea sends nothing.
    EXPECT_EQ(link.commands(), expectedCommands("pending voids"));
    EXPECT_TRUE(receipt.PendingVoids.isEmpty());
    EXPECT_EQ(find(4, "ΝΕΡΟ", 1, 0.5).itemUID, 103);
    EXPECT_EQ(find(4, "ΚΑΦΕΣ ΦΙΛΤΡΟΥ 250Γ", 2, 3.5).Result, -2);
}

TEST_F(TableFlowsTest, ARefusedCancellationKeepsItsRowAndAnUnmatchedVoidStillWaitsForTheRegister)
{
    put(Item(4, 101, 1, "ΝΕΡΟ", 1, 0.5));
    receipt.PendingVoids = {pendingVoid(4, "ΝΕΡΟ", 1, 0.5)};
    link.responder = [](const QString& command, ScriptedLink::Answer& a) {
        if (!command.startsWith("3/C/"))
            return false;
        a = {0x70, "void refused"};
        return true;
    };
    flows.ProcessPendingVoids();
    EXPECT_EQ(find(4, "ΝΕΡΟ", 1, 0.5).itemUID, 101);
    EXPECT_EQ(link.shownMessages.size(), 1); // the register's refusal is shown

    link.sent.clear();
    receipt.PendingVoids = {pendingVoid(9, "ΝΕΡΟ", 1, 0.5)};
    flows.ProcessPendingVoids();
    EXPECT_EQ(link.commands(), QStringList({kZeroPayment}));
}

TEST_F(TableFlowsTest, VoidingATableCancelsEveryRowWithItsWholeDescriptionAndClosesIt)
{
    put(Item(7, 201, 1, "ΜΟΥΣΑΚΑΣ ΣΠΙΤΙΚΟΣ ΜΕΓΑΛΟΣ", 1, 9));
    put(Item(7, 202, 2, "ΚΡΑΣΙ", 0.5, 8));
    put(Item(8, 301, 1, "ΚΡΑΣΙ", 0.5, 8));
    receipt.setCurrentTable(7);

    EXPECT_EQ(flows.VoidWholeTable(), 0);

    EXPECT_EQ(link.commands(), expectedCommands("void whole table"));
    EXPECT_TRUE(link.sent[2].quiet);
    EXPECT_EQ(find(7, "ΚΡΑΣΙ", 0.5, 8).Result, -2);
    EXPECT_EQ(find(8, "ΚΡΑΣΙ", 0.5, 8).itemUID, 301);

    // A table with no rows sends nothing at all.
    link.sent.clear();
    EXPECT_EQ(flows.VoidWholeTable(), 0);
    EXPECT_TRUE(link.sent.isEmpty());
}

TEST_F(TableFlowsTest, TheOpenTablesListNamesTablesWithItemsWithinTheRange)
{
    link.responder = [](const QString& command, ScriptedLink::Answer& a) {
        a = {0, command == "&/11/3//0/0///////////" ? "00/00/00/1/1|7|ΝΕΡΟ|1.000|0.50|2|13.00/" : "00/00/00/0/"};
        return true;
    };
    QString list;
    flows.getOpenTablesList("002-004", list);
    EXPECT_EQ(link.commands(), expectedCommands("open tables 2 to 4"));
    EXPECT_EQ(list, "3");

    link.sent.clear();
    flows.getOpenTablesList("", list);
    EXPECT_EQ(link.sent.size(), 290);
    EXPECT_EQ(list, "3");

    link.responder = [](const QString& command, ScriptedLink::Answer& a) {
        a = command.startsWith("&/11/2/") ? ScriptedLink::Answer{0x11, "no"} : ScriptedLink::Answer{0, "00/00/00/1/x/"};
        return true;
    };
    flows.getOpenTablesList("001-005", list);
    EXPECT_EQ(list, "-1");
}

TEST_F(TableFlowsTest, PayingATableClosesItWithItsDiscountAndDropsItsRowsOncePaid)
{
    put(Item(5, 1, 1, "ΣΟΥΒΛΑΚΙ", 2, 3.5));
    receipt.setCurrentTable(5);
    receipt.TableMode = 1;
    receipt.setTableDiscount(1.5);
    link.queue = {{0, "00/00/00/"}, {0, ""}, {0, "closing"}, {0xC9, "closure in progress"}};

    flows.bringTableToRegister();
    flows.payTable(3, 10, true);

    EXPECT_EQ(link.commands(), expectedCommands("pay table 5"));
    EXPECT_TRUE(link.sent[2].quiet && link.sent[3].quiet);
    EXPECT_EQ(receipt.tableDiscount(), 0.0);
    EXPECT_EQ(find(5, "ΣΟΥΒΛΑΚΙ", 2, 3.5).Result, -2); // 201 counts as paid

    // A refused payment leaves the rows; the pay tag's road keeps the discount.
    put(Item(5, 2, 2, "ΣΟΥΒΛΑΚΙ", 2, 3.5));
    receipt.setTableDiscount(1.5);
    link.sent.clear();
    link.queue = {{0x2B, "refused"}, {0x2B, "refused"}};
    flows.payTable(1, 0, false);
    EXPECT_EQ(link.commands().last(), "&/3/5//0/1///////0.00/////");
    EXPECT_EQ(receipt.tableDiscount(), 1.5);
    EXPECT_EQ(find(5, "ΣΟΥΒΛΑΚΙ", 2, 3.5).itemUID, 2);
}

TEST_F(TableFlowsTest, AStoreThatCannotBeMadeLeavesTheSaleAndWritesTheDbLine)
{
    TableFlows lost{link, op, clock, receipt, vars, results, dir.filePath("no/such/dir")};
    OrderStoreRoads lostRoads{lost};
    lostRoads.storeSoldItem(Item(5, 77, 1, "ΝΕΡΟ", 1, 0.5), "3/S/ΝΕΡΟ//1.000/0.50/2/13.00/", "00/00/00/77/1/");
    EXPECT_EQ(results.lines, QStringList{"Err = DB-3, [3/S/ΝΕΡΟ//1.000/0.50/2/13.00/, Reply=00/00/00/77/1/] "
                                         "DateTime = 02/01/2026 10:20:30"});
    ASSERT_EQ(op.messages.size(), 1);
    EXPECT_FALSE(op.messages[0].text.isEmpty());
}

TEST_F(TableFlowsTest, AStoreOfRandomBytesIsKeptAsideAndTheSaleStoredInANewOne)
{
    QFile junk(store().storePath());
    ASSERT_TRUE(junk.open(QIODevice::WriteOnly));
    junk.write(QByteArray(4096, '\x5a'));
    junk.close();
    roads.storeSoldItem(Item(5, 77, 1, "ΝΕΡΟ", 1, 0.5), "3/S/", "reply");
    EXPECT_TRUE(results.lines.isEmpty());
    EXPECT_EQ(find(5, "ΝΕΡΟ", 1, 0.5).itemUID, 77);
    ASSERT_EQ(op.messages.size(), 1); // the operator learns where the old file went
    QStringList kept;
    for (const QString& name : QDir(dir.path()).entryList(QDir::Files))
        if (!name.endsWith("-wal") && !name.endsWith("-shm"))
            kept << name;
    EXPECT_EQ(kept.size(), 2) << kept.join(", ").toStdString(); // nothing deleted
}

TEST_F(TableFlowsTest, AnItemMoveFindsItsRowMovesItByIdentifierAndMarksIt)
{
    receipt.TableMode = 2;
    receipt.TableFrom = 3;
    receipt.TableTo = 8;
    put(Item(3, 11, 1, "ΣΑΛΑΤΑ", 1, 6));
    put(Item(3, 12, 2, "ΣΑΛΑΤΑ", 1, 6));

    roads.moveItem(Item(3, 0, 0, "ΣΑΛΑΤΑ", 1, 6));
    roads.moveItem(Item(3, 0, 0, "ΣΑΛΑΤΑ", 1, 6));
    EXPECT_EQ(link.commands(), expectedCommands("two item moves"));

    // Nothing left to move: the line writes the store's result and sends nothing.
    roads.moveItem(Item(3, 0, 0, "ΣΑΛΑΤΑ", 1, 6));
    EXPECT_EQ(link.sent.size(), 2);
    ASSERT_EQ(results.lines.size(), 1);
    EXPECT_TRUE(results.lines[0].startsWith("Err = DB-2, ["));
}

TEST_F(TableFlowsTest, TheZEmptiesTheStoreOfTheRegisterItNames)
{
    put(Item(5, 1, 1, "ΝΕΡΟ", 1, 0.5));
    receipt.StoreZ = 41;
    put(Item(6, 2, 1, "ΝΕΡΟ", 1, 0.5));
    receipt.StoreSerial.clear();
    link.queue = {{0, "00/00/00/12345678/1/ABC/"}, {0, "00/00/00/17/1200/42/1250/"}};
    EXPECT_EQ(roads.clearOrderStore(), 2);
    EXPECT_EQ(link.commands(), QStringList({"a/", "i/"}));

    link.queue = {{0, "00/00/00/12345678/1/ABC/"}, {0, "00/00/00/17/1200/42/1250/"}};
    EXPECT_EQ(roads.clearOrderStore(), -2); // empty: no failure
    EXPECT_TRUE(op.messages.isEmpty());
}

TEST_F(TableFlowsTest, InitTablesTitlesEachTableUntilTheRegisterRefuses)
{
    FormModel form;
    clsind progress{form};
    op.inputs = {QString("3")};
    InitTables(link, op, progress, "Kerbano", "com1");
    EXPECT_EQ(link.commands(), expectedCommands("three table titles"));
    EXPECT_EQ(op.inputPrompts.last(), "Εισάγεται αριθμό τραπεζιών");
    EXPECT_EQ(std::pair(link.opens, link.closes), std::pair(1, 1));
    EXPECT_EQ(progress.Value(), 3);

    link.sent.clear();
    link.queue = {{0, ""}, {0x05, "bad number"}};
    op.inputs = {QString("5")};
    InitTables(link, op, progress, "Kerbano", "com1");
    EXPECT_EQ(link.sent.size(), 2);

    link.sent.clear();
    op.inputs = {std::nullopt, QString("πέντε"), QString("0")};
    for (int i = 0; i < 3; ++i)
        InitTables(link, op, progress, "Kerbano", "com1");
    EXPECT_TRUE(link.sent.isEmpty());
}

} // namespace
