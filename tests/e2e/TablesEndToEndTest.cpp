// Restaurant tables printed by the real kerbano --headless on the real
// virtual register, one print file a job: after every job the order store's
// rows and what the register holds on each table touched are the same items.

#include "PrintFileLines.h"
#include "SimWorld.h"
#include "TableSides.h"

namespace {

class TablesEndToEnd : public SimWorld {
protected:
    void SetUp() override { startRegister(); }

    // One print file a job; its result file.
    QString print(const QStringList& lines)
    {
        QFile::remove(path(u"result.txt"_s));
        SimWorld::print(codepage::toWin1253(u"resFile:  result.txt\r\ntag:  T1\r\n"_s + lines.join(u"\r\n"_s)
                                            + u"\r\n"_s));
        return codepage::fromWin1253(readBytes(path(u"result.txt"_s)));
    }

    std::set<TableItemKey> registerItems(int table) { return registerTableItems(sim.portField(), table); }
    std::set<TableItemKey> storeItems(int table) { return storeTableItems(dir.path(), table); }

    void expectInStep(std::initializer_list<int> tables, const char* after)
    {
        for (const int table : tables)
            EXPECT_EQ(storeItems(table), registerItems(table)) << "table " << table << " after " << after;
    }
};

} // namespace

TEST_F(TablesEndToEnd, OpenedFilledMovedAndSettledInPartsOverThreeFiles)
{
    const QString first = print({u" TBO  005 ΚΗΠΟΣ~ΠΑΡΕΑ"_s, pluLine("ΣΟΥΒΛΑΚΙ", "2", "3.50"),
                                 pluLine("ΝΕΡΟ", "1", "0.50"), pluLine("ΝΕΡΟ", "1", "0.50"),
                                 pluLine("ΜΠΥΡΑ", "2", "4.35"), pluLine("ΝΕΡΟ", "-1", "0.50"),
                                 u" TBC 5"_s});
    EXPECT_FALSE(first.contains("Err = ")) << first.toStdString();
    EXPECT_EQ(registerItems(5).size(), 3u);
    expectInStep({5}, "the first visit");

    const QString second = print({u" TBO  005"_s, pluLine("ΣΑΛΑΤΑ", "1", "6.00"), u" TBC 5"_s, u" TBT  005 007"_s});
    EXPECT_FALSE(second.contains("Err = ")) << second.toStdString();
    EXPECT_TRUE(registerItems(5).empty());
    EXPECT_EQ(registerItems(7).size(), 4u);
    expectInStep({5, 7}, "the move");

    const QString third = print({u" TBS  007"_s, pluLine("ΜΠΥΡΑ", "2", "4.35"),
                                 pluLine("ΣΑΛΑΤΑ", "1", "6.00"), u" pay  01"_s,
                                 u" ltb  001-010"_s});
    EXPECT_FALSE(third.contains("Err = ")) << third.toStdString();
    EXPECT_TRUE(third.contains("tblList   = 7\r\n")) << third.toStdString();
    EXPECT_EQ(registerItems(7).size(), 2u);
    expectInStep({5, 7, 290}, "the settlement in parts");
    EXPECT_TRUE(storeItems(290).empty());
}

TEST_F(TablesEndToEnd, AVoidedTableAndAPaidTableLeaveNothingOverTwoFiles)
{
    print({u" TBO  003"_s, pluLine("ΚΡΑΣΙ", "1", "8.00"), pluLine("ΨΩΜΙ", "1", "1.00"),
           u" TBC 3"_s, u" TBO  004"_s, pluLine("ΚΡΑΣΙ", "1", "8.00"),
           u" TBC 4"_s});
    expectInStep({3, 4}, "the visits");
    EXPECT_EQ(storeItems(3).size(), 2u);

    const QString second = print({u" TBO  003"_s, u" voi"_s, u" TBO  004"_s, u" tot   1       8.00ΜΕΤΡΗΤΑ"_s});
    EXPECT_FALSE(second.contains("Err = ")) << second.toStdString();
    expectInStep({3, 4}, "the void and the payment");
    EXPECT_TRUE(storeItems(3).empty());
    EXPECT_TRUE(storeItems(4).empty());
}
