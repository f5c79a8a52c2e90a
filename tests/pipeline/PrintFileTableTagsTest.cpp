#include "operations/FPrinterOperations.h"
#include "payments/PaymentMap.h"
#include "payments/EftCardRoads.h"
#include "pipeline/PrintFileInterpreter.h"
#include "records/ReceiptState.h"
#include "shell/Clock.h"
#include "shell/FormModel.h"
#include "shell/ModuleVariables.h"
#include "shell/ProgressIndicator.h"
#include "shell/ResultSink.h"
#include "tables/OrderStoreRoads.h"
#include "tables/TableFlows.h"

#include "ScriptedLink.h"
#include "ScriptedOperator.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace {

const QString kZeroPayment = QStringLiteral("5/1/0.00////");
const QString kWrongTable = QStringLiteral("Λάθος Αριθμός Τραπεζιού");

QString pluLine(const QString& description, const QString& quantity, const QString& price)
{
    QString line = QStringLiteral(" PLU 5201234567890 ");
    line += description.leftJustified(28, QLatin1Char(' '));
    line += quantity.rightJustified(7, QLatin1Char(' '));
    line += QStringLiteral("  ") + price.rightJustified(9, QLatin1Char(' '));
    line += QStringLiteral("   ") + QStringLiteral("13.00") + QStringLiteral("  2");
    return line;
}

class PrintFileTableTagsTest : public ::testing::Test {
protected:
    QTemporaryDir dir;
    VirtualClock clock;
    ScriptedOperator person;
    FormModel form;
    ScriptedLink link;
    ReceiptState receipt;
    ModuleVariables vars;
    clsind progress{form};
    EftCardRoads cards{link, vars, person, clock};
    struct : ResultSink {
        QStringList lines;
        void appendResultLine(const QString& line) override { lines << line; }
    } results;
    TableFlows flows{link, person, clock, receipt, vars, results, dir.path()};
    OrderStoreRoads roads{flows};
    // A register enough for the tags: sales answer identifier and order,
    // refusals come from refuse (by the start of the command).
    int nextUid = 100;
    QMap<QString, qint16> refuse;
    QString moveReply = QStringLiteral("00/00/00/0/");

    void SetUp() override
    {
        link.responder = [this](const QString& command, ScriptedLink::Answer& a) {
            for (auto it = refuse.cbegin(); it != refuse.cend(); ++it) {
                if (command.startsWith(it.key())) {
                    a = {it.value(), QStringLiteral("refused")};
                    return true;
                }
            }
            if (command == "a/")
                a = {0, "00/00/00/12345678/1/ABC/"};
            else if (command == "i/")
                a = {0, "00/00/00/17/1200/41/1250/"};
            else if (command.startsWith("3/S/")) {
                ++nextUid;
                a = {0, QStringLiteral("00/00/00/%1/%2/").arg(nextUid).arg(nextUid - 100)};
            } else if (command.startsWith("&/4/") || command.startsWith("&/9/"))
                a = {0, moveReply};
            else
                a = {0, "00/00/00/"};
            return true;
        };
    }

    QStringList run(const QStringList& lines)
    {
        JobSettings settings;
        settings.printDesc = settings.quantity = settings.dirDepa = settings.comments = QStringLiteral("true");
        settings.currency = QStringLiteral("0");
        FPrinterOperations printer(link, receipt, vars, person, form, progress, dir.filePath("payeft.dat"));
        printer.setTableRoads(roads);
        InterpreterContext context{receipt, vars, printer, link,     person, clock,
                                   cards,   results, dir.path(), {}, &flows};
        PrintFileInterpreter(std::move(context), settings).run(lines);
        return link.commands();
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
    const QStringList sent = run({QStringLiteral(" TBO  012 ΚΗΠΟΣ~ΠΑΡΕΑ ΓΙΑΝΝΗ"),
                                  pluLine("ΣΟΥΒΛΑΚΙ", "2", "3.50"), pluLine("ΝΕΡΟ", "1", "0.50"),
                                  pluLine("ΝΕΡΟ", "-1", "0.50"), QStringLiteral(" TBC 1")});
    EXPECT_EQ(sent, (QStringList{
                        "\"/0/12/1/               ΚΗΠΟΣ/                    ΠΑΡΕΑ ΓΙΑΝΝΗ/",
                        "&/0/12//////////////",
                        "a/",
                        "i/",
                        "3/S/ΣΟΥΒΛΑΚΙ//2.000/3.50/2/13.00/",
                        "3/S/ΝΕΡΟ//1.000/0.50/2/13.00/",
                        kZeroPayment,
                        "&/0/12//////////////",
                        "&/5/12/2/////////////",
                        "3/C/ΝΕΡΟ/         /1.000/0.50/2/13.00/",
                        kZeroPayment,
                    }));
    EXPECT_EQ(receipt.TableMode, 0);
    EXPECT_EQ(receipt.lastTable(), 12);
    EXPECT_EQ(std::pair(receipt.StoreSerial, receipt.StoreZ), std::pair(QStringLiteral("ABC12345678"), qint16(42)));
    EXPECT_EQ(find(12, "ΣΟΥΒΛΑΚΙ", 2, 3.5).itemUID, 101);
    EXPECT_EQ(find(12, "ΝΕΡΟ", 1, 0.5).Result, -2);
    EXPECT_TRUE(results.lines.isEmpty());
}

TEST_F(PrintFileTableTagsTest, WrongTableNumbersEndTheWalkAsEachTagSays)
{
    // TBO and TBC: a message box, nothing in the result file.
    for (const QString& line : {QStringLiteral(" TBO  abc ΤΙΤΛΟΣ"), QStringLiteral(" TBC x")}) {
        link.sent.clear();
        EXPECT_TRUE(run({line, QStringLiteral(" com  ΜΕΤΑ")}).isEmpty()) << line.toStdString();
        ASSERT_FALSE(person.messages.isEmpty());
        EXPECT_EQ(person.messages.last().text, kWrongTable);
    }
    EXPECT_TRUE(results.lines.isEmpty());

    // TBT, TPT, TBS: the -255 line and the device message path with 64.
    for (const QString& line : {QStringLiteral(" TBT  1a  005"), QStringLiteral(" TPT  003 zz"),
                                QStringLiteral(" TBS  ")}) {
        link.sent.clear();
        link.shownMessages.clear();
        results.lines.clear();
        EXPECT_TRUE(run({line, QStringLiteral(" com  ΜΕΤΑ")}).isEmpty()) << line.toStdString();
        EXPECT_EQ(results.lines, QStringList{"Err = -255, (Wrong Table Number) DateTime end = 02/01/2026 10:20:30"});
        ASSERT_EQ(link.shownMessages.size(), 1);
        EXPECT_EQ(link.shownMessages[0], qMakePair(qint16(64), kWrongTable));
    }
}

TEST_F(PrintFileTableTagsTest, ARefusedTableLeavesAPlainReceiptAndTbcWithNoTableDoesNothing)
{
    refuse["&/0/"] = 0x14;
    const QStringList sent = run({QStringLiteral(" TBO  7   ΤΙΤΛΟΣ"), pluLine("ΝΕΡΟ", "1", "0.50"),
                                  QStringLiteral(" TBC 7"), QStringLiteral(" voi")});
    EXPECT_EQ(sent.mid(1), (QStringList{"&/0/7//////////////", "3/S/ΝΕΡΟ//1.000/0.50/2/13.00/", "+/"}));
    EXPECT_EQ(find(7, "ΝΕΡΟ", 1, 0.5).Result, -3); // nothing was stored, not even a store
}

TEST_F(PrintFileTableTagsTest, AWholeTableMoveRewritesTheStoreRowsAndARefusedMoveEndsTheWalk)
{
    run({QStringLiteral(" TBO  3"), pluLine("ΣΑΛΑΤΑ", "1", "6.00"), QStringLiteral(" TBC 3")});
    link.sent.clear();
    moveReply = "00/00/00/1/101-1|150-4/";
    EXPECT_EQ(run({QStringLiteral(" TBT  003 009")}),
              (QStringList{"&/4/3/9/0/1///////////", "a/", "i/", kZeroPayment}));
    EXPECT_TRUE(link.sent[0].quiet);
    EXPECT_EQ(link.sent[0].timeoutSeconds, 120);
    const clsTable moved = find(9, "ΣΑΛΑΤΑ", 1, 6);
    EXPECT_EQ(std::tuple(moved.itemUID, moved.tableORDER), std::tuple(150, 4));

    link.sent.clear();
    refuse["&/4/"] = 0xCA;
    EXPECT_EQ(run({QStringLiteral(" TBT  009 010"), QStringLiteral(" com  ΜΕΤΑ")}),
              QStringList{"&/4/9/10/0/1///////////"});
    EXPECT_TRUE(link.shownMessages.isEmpty()); // quiet
}

TEST_F(PrintFileTableTagsTest, SettlingInPartsMovesItemsToTable290AndPaysThem)
{
    run({QStringLiteral(" TBO  3"), pluLine("ΣΑΛΑΤΑ", "1", "6.00"), pluLine("ΜΠΥΡΑ", "2", "4.35"),
         QStringLiteral(" TBC 3")});
    link.sent.clear();
    moveReply = "00/00/00/1/102-2|160-1/";
    const QStringList sent = run({QStringLiteral(" TBS  003"), pluLine("ΜΠΥΡΑ", "2", "4.35"),
                                  QStringLiteral(" pay  01")});
    EXPECT_EQ(sent, (QStringList{
                        "\"/0/290/1/ΜΕΡ.ΕΞΟΦΛ #3/ /",
                        "&/4/3/290/1/1///////////",
                        "a/",
                        "i/",
                        "&/9/3/290/102////////////",
                        "?/",
                        "&/9/3/290/0////////////",
                        "&/1/290//0////////0.00/////", // no discount: an empty flag, 0.00
                        "&/3/290//0/1///////0.00/////",
                    }));
    EXPECT_EQ(find(290, "ΜΠΥΡΑ", 2, 4.35).Result, -2); // paid and gone
    EXPECT_EQ(find(3, "ΣΑΛΑΤΑ", 1, 6).itemUID, 101);  // stays on its table
}

TEST_F(PrintFileTableTagsTest, ATitleStaysProgrammedWhenTheMoveIsRefused)
{
    refuse["&/4/"] = 0xCE;
    EXPECT_EQ(run({QStringLiteral(" TBS  5"), pluLine("ΝΕΡΟ", "1", "0.50")}),
              (QStringList{"\"/0/290/1/ΜΕΡ.ΕΞΟΦΛ #5/ /", "&/4/5/290/1/1///////////"}));
    EXPECT_EQ(receipt.TableMode, 0);
}

TEST_F(PrintFileTableTagsTest, VoidingAnOpenTableCancelsItsStoredItemsAndMode2VoiDoesNothing)
{
    run({QStringLiteral(" TBO  4"), pluLine("ΚΡΑΣΙ", "1", "8.00"), QStringLiteral(" TBC 4")});
    link.sent.clear();
    EXPECT_EQ(run({QStringLiteral(" TBO  4"), QStringLiteral(" voi")}),
              (QStringList{"\"/0/4/1/ / /", "&/0/4//////////////", "a/", "i/", "a/", "i/", kZeroPayment,
                           "&/0/4//////////////", "&/5/4/1/////////////", "3/C/ΚΡΑΣΙ//1.000/8.00/2/13.00/",
                           kZeroPayment, "&/1/4//0////////////", "&/3/4//0/1///////0.01/////"}));
    EXPECT_EQ(receipt.TableMode, 0);
    EXPECT_EQ(find(4, "ΚΡΑΣΙ", 1, 8).Result, -2);

    link.sent.clear();
    EXPECT_EQ(run({QStringLiteral(" TPT  004 005"), QStringLiteral(" voi")}),
              (QStringList{"&/4/4/5/1/1///////////", "a/", "i/"}));
}

TEST_F(PrintFileTableTagsTest, LtbListsTheTablesWithItemsInTheResultFile)
{
    link.responder = [](const QString& command, ScriptedLink::Answer& a) {
        a = {0, command.startsWith("&/11/2/") || command.startsWith("&/11/4/") ? "00/00/00/1/1|5|X|1.000|1.00|1|13.00/"
                                                                            : "00/00/00/0/"};
        return true;
    };
    run({QStringLiteral(" ltb  001-005")});
    EXPECT_EQ(link.sent.size(), 5);
    EXPECT_EQ(results.lines, QStringList{"tblList   = 2, 4"});
}

TEST_F(PrintFileTableTagsTest, ATablePaidByCardTakesTheTableCardRoadAndLeavesTheStoreOnlyWhenPaid)
{
    PayEftRecord card;
    card.payId = 4;
    card.ecrPayment = 3;
    card.ecrEft = 2;
    card.active = -1;
    ASSERT_EQ(WritePayEftRecord(dir.filePath("payeft.dat"), card), 0);
    const auto queryAnswers = [this](const QString& terminalText) {
        const auto sale = link.responder;
        link.responder = [sale, terminalText](const QString& command, ScriptedLink::Answer& a) {
            if (command != QLatin1String("5/99/0/ ///1/1/"))
                return sale(command, a);
            a = {0, QStringLiteral("00/00/00/1/1/2/3/0.00/VISA/****1234/123456/0101/05/42/7/978/ACQ/")
                        + terminalText + QStringLiteral("/")};
            return true;
        };
    };

    queryAnswers(QStringLiteral("DECLINED BY THE TERMINAL"));
    run({QStringLiteral(" TBO  7"), pluLine("ΚΑΦΕΣ", "1", "2.00"), QStringLiteral(" pay  04")});
    EXPECT_TRUE(link.commands().contains("&/3/7//0/3///////0.00///2/1/"));
    EXPECT_EQ(find(7, "ΚΑΦΕΣ", 1, 2).Result, 0); // a declined card keeps the table's rows

    link.sent.clear();
    queryAnswers(QStringLiteral("APPROVED"));
    const QStringList sent = run({QStringLiteral(" TBO  7"), QStringLiteral(" pay  04")});
    EXPECT_TRUE(sent.contains("&/1/7//0////////0.00/////"));
    EXPECT_TRUE(sent.contains("&/3/7//0/3///////0.00///2/1/"));
    EXPECT_FALSE(sent.contains("&/3/7//0/4///////0.00/////")); // no plain payment behind the card
    EXPECT_EQ(find(7, "ΚΑΦΕΣ", 1, 2).Result, -2);
}
