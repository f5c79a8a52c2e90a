#include "DataFile.h"
#include "InterpreterFixture.h"

namespace {

const QString kZeroPayment = u"5/1/0.00////"_s;
const QString kWrongTable = u"Λάθος Αριθμός Τραπεζιού"_s;

class PrintFileTableTagsTest : public InterpreterTest {
protected:
    // A register enough for the tags: sales answer identifier and order,
    // refusals come from refuse (by the start of the command).
    int nextUid = 100;
    QMap<QString, qint16> refuse;
    QString moveReply = u"00/00/00/0/"_s;

    void SetUp() override
    {
        withTables = true;
        settings.printDesc = settings.quantity = settings.dirDepa = settings.comments = u"true"_s;
        settings.currency = u"0"_s;
        link.responder = [this](const QString& command, ScriptedLink::Answer& a) {
            for (auto it = refuse.cbegin(); it != refuse.cend(); ++it) {
                if (command.startsWith(it.key())) {
                    a = {it.value(), u"refused"_s};
                    return true;
                }
            }
            if (command == "a/")
                a = {0, "00/00/00/12345678/1/ABC/"};
            else if (command == "i/")
                a = {0, "00/00/00/17/1200/41/1250/"};
            else if (command.startsWith("3/S/")) {
                ++nextUid;
                a = {0, u"00/00/00/%1/%2/"_s.arg(nextUid).arg(nextUid - 100)};
            } else if (command.startsWith("&/4/") || command.startsWith("&/9/"))
                a = {0, moveReply};
            else
                a = {0, "00/00/00/"};
            return true;
        };
    }

    clsTable find(qint16 table, const QString& desc, double quantity, double price)
    {
        clsTable item;
        item.TableNUM = table;
        item.setItemDesc(desc);
        item.itemQuantity = quantity;
        item.itemPrice = price;
        return flows.store().orders_FindRecord(item);
    }
};

} // namespace

TEST_F(PrintFileTableTagsTest, AVisitOpensSellsOntoTheTableAndCancelsItsNegativeLinesAtTheClose)
{
    const QStringList sent = run({u" TBO  012 ΚΗΠΟΣ~ΠΑΡΕΑ ΓΙΑΝΝΗ"_s,
                                  pluLine("ΣΟΥΒΛΑΚΙ", "2", "3.50"), pluLine("ΝΕΡΟ", "1", "0.50"),
                                  pluLine("ΝΕΡΟ", "-1", "0.50"), u" TBC 1"_s});
    EXPECT_EQ(sent, golden(u"pipeline/table-tags.txt"_s, u"visit"_s));
    EXPECT_EQ(receipt.TableMode, 0);
    EXPECT_EQ(receipt.lastTable(), 12);
    EXPECT_EQ(std::pair(receipt.StoreSerial, receipt.StoreZ), std::pair(u"ABC12345678"_s, qint16(42)));
    EXPECT_EQ(find(12, "ΣΟΥΒΛΑΚΙ", 2, 3.5).itemUID, 101);
    EXPECT_EQ(find(12, "ΝΕΡΟ", 1, 0.5).Result, -2);
    EXPECT_TRUE(results.lines.isEmpty());
}

TEST_F(PrintFileTableTagsTest, WrongTableNumbersEndTheWalkAsEachTagSays)
{
    // TBO and TBC: a message box, nothing in the result file.
    for (const QString& line : {u" TBO  abc ΤΙΤΛΟΣ"_s, u" TBC x"_s}) {
        link.sent.clear();
        EXPECT_TRUE(run({line, u" com  ΜΕΤΑ"_s}).isEmpty()) << line.toStdString();
        ASSERT_FALSE(person.messages.isEmpty());
        EXPECT_EQ(person.messages.last().text, kWrongTable);
    }
    EXPECT_TRUE(results.lines.isEmpty());

    // TBT, TPT, TBS: the -255 line and the device message path with 64.
    for (const QString& line : {u" TBT  1a  005"_s, u" TPT  003 zz"_s, u" TBS  "_s}) {
        link.sent.clear();
        link.shownMessages.clear();
        results.lines.clear();
        EXPECT_TRUE(run({line, u" com  ΜΕΤΑ"_s}).isEmpty()) << line.toStdString();
        EXPECT_EQ(results.lines, QStringList{"Err = -255, (Wrong Table Number) DateTime end = 02/01/2026 10:20:30"});
        ASSERT_EQ(link.shownMessages.size(), 1);
        EXPECT_EQ(link.shownMessages[0], qMakePair(qint16(64), kWrongTable));
    }
}

TEST_F(PrintFileTableTagsTest, ARefusedTableLeavesAPlainReceiptAndTbcWithNoTableDoesNothing)
{
    refuse["&/0/"] = 0x14;
    const QStringList sent = run({u" TBO  7   ΤΙΤΛΟΣ"_s, pluLine("ΝΕΡΟ", "1", "0.50"), u" TBC 7"_s, u" voi"_s});
    EXPECT_EQ(sent.mid(1), (QStringList{"&/0/7//////////////", "3/S/ΝΕΡΟ//1.000/0.50/2/13.00/", "+/"}));
    EXPECT_EQ(find(7, "ΝΕΡΟ", 1, 0.5).Result, -3); // nothing was stored, not even a store
}

TEST_F(PrintFileTableTagsTest, AWholeTableMoveRewritesTheStoreRowsAndARefusedMoveEndsTheWalk)
{
    run({u" TBO  3"_s, pluLine("ΣΑΛΑΤΑ", "1", "6.00"), u" TBC 3"_s});
    moveReply = "00/00/00/1/101-1|150-4/";
    EXPECT_EQ(runAfresh({u" TBT  003 009"_s}),
              (QStringList{"&/4/3/9/0/1///////////", "a/", "i/", kZeroPayment}));
    EXPECT_TRUE(link.sent[0].quiet);
    EXPECT_EQ(link.sent[0].timeoutSeconds, 120);
    const clsTable moved = find(9, "ΣΑΛΑΤΑ", 1, 6);
    EXPECT_EQ(std::tuple(moved.itemUID, moved.tableORDER), std::tuple(150, 4));

    refuse["&/4/"] = 0xCA;
    EXPECT_EQ(runAfresh({u" TBT  009 010"_s, u" com  ΜΕΤΑ"_s}),
              QStringList{"&/4/9/10/0/1///////////"});
    EXPECT_TRUE(link.shownMessages.isEmpty()); // quiet
}

TEST_F(PrintFileTableTagsTest, SettlingInPartsMovesItemsToTable290AndPaysThem)
{
    run({u" TBO  3"_s, pluLine("ΣΑΛΑΤΑ", "1", "6.00"), pluLine("ΜΠΥΡΑ", "2", "4.35"), u" TBC 3"_s});
    moveReply = "00/00/00/1/102-2|160-1/";
    const QStringList sent = runAfresh({u" TBS  003"_s, pluLine("ΜΠΥΡΑ", "2", "4.35"), u" pay  01"_s});
    EXPECT_EQ(sent, golden(u"pipeline/table-tags.txt"_s, u"settle in parts"_s));
    EXPECT_EQ(find(290, "ΜΠΥΡΑ", 2, 4.35).Result, -2); // paid and gone
    EXPECT_EQ(find(3, "ΣΑΛΑΤΑ", 1, 6).itemUID, 101);  // stays on its table
}

TEST_F(PrintFileTableTagsTest, ATitleStaysProgrammedWhenTheMoveIsRefused)
{
    refuse["&/4/"] = 0xCE;
    EXPECT_EQ(run({u" TBS  5"_s, pluLine("ΝΕΡΟ", "1", "0.50")}),
              (QStringList{"\"/0/290/1/ΜΕΡ.ΕΞΟΦΛ #5/ /", "&/4/5/290/1/1///////////"}));
    EXPECT_EQ(receipt.TableMode, 0);
}

TEST_F(PrintFileTableTagsTest, VoidingAnOpenTableCancelsItsStoredItemsAndMode2VoiDoesNothing)
{
    run({u" TBO  4"_s, pluLine("ΚΡΑΣΙ", "1", "8.00"), u" TBC 4"_s});
    EXPECT_EQ(runAfresh({u" TBO  4"_s, u" voi"_s}), golden(u"pipeline/table-tags.txt"_s, u"void an open table"_s));
    EXPECT_EQ(receipt.TableMode, 0);
    EXPECT_EQ(find(4, "ΚΡΑΣΙ", 1, 8).Result, -2);

    EXPECT_EQ(runAfresh({u" TPT  004 005"_s, u" voi"_s}),
              (QStringList{"&/4/4/5/1/1///////////", "a/", "i/"}));
}

TEST_F(PrintFileTableTagsTest, LtbListsTheTablesWithItemsInTheResultFile)
{
    link.responder = [](const QString& command, ScriptedLink::Answer& a) {
        a = {0, command.startsWith("&/11/2/") || command.startsWith("&/11/4/") ? "00/00/00/1/1|5|X|1.000|1.00|1|13.00/"
                                                                            : "00/00/00/0/"};
        return true;
    };
    run({u" ltb  001-005"_s});
    EXPECT_EQ(link.sent.size(), 5);
    EXPECT_EQ(results.lines, QStringList{"tblList   = 2, 4"});
}

TEST_F(PrintFileTableTagsTest, ATablePaidByCardTakesTheTableCardRoadAndLeavesTheStoreOnlyWhenPaid)
{
    ASSERT_EQ(WritePayEftRecord(dir.filePath("payeft.dat"), cardRecord(4, 2)), 0);
    const auto queryAnswers = [this](const QString& terminalText) {
        const auto sale = link.responder;
        link.responder = [sale, terminalText](const QString& command, ScriptedLink::Answer& a) {
            if (command != QLatin1String("5/99/0/ ///1/1/"))
                return sale(command, a);
            a = {0, u"00/00/00/1/1/2/3/0.00/VISA/****1234/123456/0101/05/42/7/978/ACQ/"_s + terminalText + u"/"_s};
            return true;
        };
    };

    queryAnswers(u"DECLINED BY THE TERMINAL"_s);
    run({u" TBO  7"_s, pluLine("ΚΑΦΕΣ", "1", "2.00"), u" pay  04"_s});
    EXPECT_TRUE(link.commands().contains("&/3/7//0/3///////0.00///2/1/"));
    EXPECT_EQ(find(7, "ΚΑΦΕΣ", 1, 2).Result, 0); // a declined card keeps the table's rows

    queryAnswers(u"APPROVED"_s);
    const QStringList sent = runAfresh({u" TBO  7"_s, u" pay  04"_s});
    EXPECT_TRUE(sent.contains("&/1/7//0////////0.00/////"));
    EXPECT_TRUE(sent.contains("&/3/7//0/3///////0.00///2/1/"));
    EXPECT_FALSE(sent.contains("&/3/7//0/4///////0.00/////")); // no plain payment behind the card
    EXPECT_EQ(find(7, "ΚΑΦΕΣ", 1, 2).Result, -2);
}
