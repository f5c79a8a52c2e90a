// The queries of the Z file, answered from the day the register recorded
// (tests/data/sim/day-of-three-receipts.txt); the replies are in the z-*.txt
// conversations.
#include "SimTestSupport.h"

namespace {

class ZFileQueries : public ModelTest {
protected:
    void SetUp() override
    {
        now = QDateTime(QDate(2026, 11, 19), QTime(23, 45, 10));
        play("day-of-three-receipts.txt");
    }
};

TEST_F(ZFileQueries, TheZKeepsTheDaysFiguresByCategoryDepartmentAndPayment)
{
    play("z-of-the-day.txt");
}

TEST_F(ZFileQueries, TheNextZCarriesOnlyItsOwnDay)
{
    play("z-of-the-next-day.txt");
}

TEST_F(DiskRegisterTest, TheZsFiguresSurviveARestart)
{
    play("day-of-three-receipts.txt");
    play("z-after-a-restart.txt");
}

} // namespace
