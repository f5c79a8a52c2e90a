// The zero payment's wait (WaitForRegister) ends as the device-wait window
// does: a stop that comes through the event loop, as a signal's does, or the
// command-line life's wait limit ends it without another try.
#include "SessionWorld.h"

#include "link/WaitForRegister.h"

#include <QTimer>
#include <gtest/gtest.h>

namespace {

const QString kZeroPayment = QStringLiteral("5/1/0.00////");
// Enough tries to tell "gave up" from "went on"; the register clears after them.
constexpr int kTriesBeforeClearing = 40;

// A register over TCP that answers the zero payment with paper end (44)
// until it has been asked kTriesBeforeClearing times.
class WaitForRegisterStopTest : public QueuedRegisterTest {
protected:
    void SetUp() override
    {
        open();
        replies[kZeroPayment] = std::deque<QString>(kTriesBeforeClearing - 1, "2C/00/00/");
        replies[kZeroPayment].push_back("00/00/00/");
    }
    qsizetype tries() const { return sent.count(kZeroPayment); }
};

TEST_F(WaitForRegisterStopTest, AStopPostedToTheEventLoopEndsTheWaitAtTheNextPause)
{
    // The signal's stop arrives as an event, as StopOnSignal posts it.
    QTimer::singleShot(0, [this] { vars.Stop = StopCause::Signal; });

    EXPECT_EQ(WaitForRegister(link, op, clock), 44);
    EXPECT_EQ(tries(), 1) << "asked again after the stop";
    EXPECT_EQ(windowEvents(), QStringList({"open Status [44]", "close"}));
}

TEST_F(WaitForRegisterStopTest, TheWaitLimitEndsItOnTheClockAndACardPaymentIsWaitedOut)
{
    vars.WaitLimitMs = 10000;
    EXPECT_EQ(WaitForRegister(link, op, clock), 44);
    EXPECT_EQ(vars.Stop, StopCause::WaitLimit);
    EXPECT_GE(clock.monotonicMs(), vars.WaitLimitMs);
    EXPECT_LT(tries(), kTriesBeforeClearing);

    // While a card payment runs nothing gives the wait up.
    vars.EftBusy = true;
    EXPECT_EQ(WaitForRegister(link, op, clock), 0);
    EXPECT_EQ(tries(), kTriesBeforeClearing);
}

} // namespace
