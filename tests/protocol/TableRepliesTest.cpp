#include "protocol/OpenDocumentQuery.h"
#include "protocol/TableContentsQuery.h"
#include "protocol/TransferReply.h"

#include "PrintQString.h"

#include <gtest/gtest.h>

namespace {

DeviceReply answer(const char* text) { return DeviceReply::decode(QString::fromUtf8(text), false); }

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

} // namespace
