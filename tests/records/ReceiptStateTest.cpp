#include "records/ReceiptState.h"

#include <gtest/gtest.h>

TEST(ReceiptState, CurrentTableSetterKeepsLastTable)
{
    ReceiptState r;
    r.setCurrentTable(5);
    r.setCurrentTable(-1);
    EXPECT_EQ(r.lastTable(), 5);
    r.setCurrentTable(-1);
    EXPECT_EQ(r.lastTable(), 5);
    r.setCurrentTable(7);
    EXPECT_EQ(r.lastTable(), -1);
    EXPECT_EQ(r.currentTable(), 7);
}
