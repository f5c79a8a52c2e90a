// The queries of the Z file, answered from the day the register recorded.
#include "SimTestSupport.h"

#include <functional>

namespace {

using Send = std::function<QString(const QString&)>;

// The day of tests/data/sim/day-of-three-receipts.txt.
void recordTheDay(const Send& send) { replay(QStringLiteral("day-of-three-receipts.txt"), send); }

QStringList fieldsOf(const Send& send, const QString& command) { return send(command).split(QLatin1Char('/')); }

QStringList lastZData(const Send& send) { return fieldsOf(send, "0/").mid(3, 21); }

const QStringList kDayZData = {
    "9.70", "0.00", "1.08", "12.00", "0.00",             // gross A to E
    "22.78", "3", "4",                                    // total, receipts, progressive at the end
    "3.00", "0.50", "3.50",                               // voids, returns, corrections
    "12.50", "3.78", "0.00", "6.50", "0.00", "0.00", "0.00", "0.00", "0.00", "0.00", // payments 1 to 10
};

class ZFileQueries : public ::testing::Test {
protected:
    RegisterMemory memory = RegisterMemory::factory();
    EcrModel model{memory};
    QDateTime now = QDateTime(QDate(2026, 11, 19), QTime(23, 45, 10));
    Send send = [this](const QString& command) { return model.execute(command, now).reply.text(); };
};

TEST_F(ZFileQueries, TheZKeepsTheDaysFiguresByCategoryDepartmentAndPayment)
{
    recordTheDay(send);
    const QStringList day = fieldsOf(send, "s/");
    EXPECT_EQ(day.mid(3, 7), QStringList({"1", "0", "0", "4", "4", "22.78", "3"})); // the open day so far

    now = QDateTime(QDate(2026, 11, 20), QTime(0, 5, 59));
    ASSERT_EQ(send("x/7///"), "00/00/00/");

    // in the order the Z file asks
    EXPECT_EQ(fieldsOf(send, "e/").mid(3, 5), QStringList({"24.00", "13.00", "6.00", "17.00", "9.00"}));
    EXPECT_EQ(lastZData(send), kDayZData);
    EXPECT_EQ(fieldsOf(send, "i/").value(5), "1");
    EXPECT_EQ(fieldsOf(send, "t/").mid(3, 2), QStringList({"20-11-2026", "000559"}));
    const QStringList dep1 = fieldsOf(send, "d/1/");
    EXPECT_EQ((QStringList{dep1.value(3), dep1.value(4), dep1.value(8), dep1.value(9)}),
              QStringList({"ΤΜΗΜΑ 1", "1", "3", "9.70"}));
    EXPECT_EQ(fieldsOf(send, "d/2/").mid(8, 2), QStringList({"0", "0.00"})); // sold once, returned once
    EXPECT_EQ(fieldsOf(send, "d/3/").mid(8, 2), QStringList({"1", "1.08"}));
    EXPECT_EQ(fieldsOf(send, "d/4/").mid(8, 2), QStringList({"1", "12.00"}));
    for (int d = 1; d <= 20; ++d) {
        const QStringList dep = fieldsOf(send, QStringLiteral("d/%1/").arg(d));
        EXPECT_EQ(dep.value(0), "00") << d;
        EXPECT_GE(dep.size(), 10) << d;
    }
    const QStringList id = fieldsOf(send, "a/");
    EXPECT_EQ(id.value(5) + id.value(3), "DNT00012345");
    EXPECT_EQ(id.value(4), "1");
    EXPECT_EQ(fieldsOf(send, "s/").value(10), "DNT00012345");

    // the new day starts from nothing; the Z stays readable
    EXPECT_EQ(fieldsOf(send, "s/").mid(3, 7), QStringList({"0", "0", "1", "0", "4", "0.00", "0"}));
    EXPECT_EQ(fieldsOf(send, "i/").mid(3, 4), QStringList({"0", "4", "1", "5"}));
    EXPECT_EQ(lastZData(send), kDayZData);
}

TEST_F(ZFileQueries, TheNextZCarriesOnlyItsOwnDay)
{
    recordTheDay(send);
    ASSERT_EQ(send("x/7///"), "00/00/00/");
    send("3/S/ΝΕΡΟ//3.000/0.50/2/13.00/");
    send("5/3/1.50///////");
    now = now.addDays(1);
    ASSERT_EQ(send("x/7///"), "00/00/00/");

    EXPECT_EQ(lastZData(send), QStringList({"0.00", "1.50", "0.00", "0.00", "0.00", "1.50", "1", "5", "0.00", "0.00",
                                            "0.00", "0.00", "0.00", "1.50", "0.00", "0.00", "0.00", "0.00", "0.00",
                                            "0.00", "0.00"}));
    EXPECT_EQ(fieldsOf(send, "i/").value(5), "2");
    EXPECT_EQ(fieldsOf(send, "t/").value(3), "20-11-2026");
    EXPECT_EQ(fieldsOf(send, "d/1/").mid(8, 2), QStringList({"0", "0.00"}));
    EXPECT_EQ(fieldsOf(send, "d/2/").mid(8, 2), QStringList({"3", "1.50"}));

    // a Z on a day without sales is a Z of zeros
    ASSERT_EQ(send("x/7///"), "00/00/00/");
    EXPECT_EQ(lastZData(send).mid(0, 11), QStringList({"0.00", "0.00", "0.00", "0.00", "0.00", "0.00", "0", "5",
                                                       "0.00", "0.00", "0.00"}));
    EXPECT_EQ(fieldsOf(send, "i/").value(5), "3");
}

TEST(ZFileQueriesOnDisk, TheZsFiguresSurviveARestart)
{
    QTemporaryDir dir;
    VirtualClock clock;
    const SimRegister::Options options{dir.path(), {}, {}, {}, {}};
    {
        SimRegister reg(options, clock);
        recordTheDay([&](const QString& c) { return sendTo(reg, c); });
        ASSERT_EQ(reg.handle("x/7///").reply, QByteArray("00/00/00/"));
    }
    SimRegister reg(options, clock);
    const Send send = [&](const QString& c) { return sendTo(reg, c); };
    EXPECT_EQ(lastZData(send), kDayZData);
    EXPECT_EQ(fieldsOf(send, "i/").value(5), "1");
    EXPECT_EQ(fieldsOf(send, "d/1/").mid(8, 2), QStringList({"3", "9.70"}));
    EXPECT_EQ(fieldsOf(send, "t/").value(3), clock.now().toString("dd-MM-yyyy"));
}

} // namespace
