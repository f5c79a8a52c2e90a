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
class WaitForRegisterStopTest : public ::testing::Test, protected SessionWorld {
protected:
    WaitForRegisterStopTest()
    {
        factory.script = [this](FakeTransport& t) {
            t.onWrite = [this, &t](const QByteArray& w) {
                const QString command = QString::fromLatin1(w);
                tries += command == kZeroPayment;
                const bool busy = command == kZeroPayment && tries < kTriesBeforeClearing;
                t.deliver(busy ? "2C/00/00/" : "00/00/00/", 5);
            };
        };
        qint16 status = 0;
        QString reply;
        link.OpenDeviceLink("127.0.0.1:9101", status, reply, true);
        tries = 0;
    }

    int tries = 0;
};

TEST_F(WaitForRegisterStopTest, AStopPostedToTheEventLoopEndsTheWaitAtTheNextPause)
{
    // The signal's stop arrives as an event, as StopOnSignal posts it.
    QTimer::singleShot(0, [this] { vars.Stop = StopCause::Signal; });

    EXPECT_EQ(WaitForRegister(link, op, clock), 44);
    EXPECT_EQ(tries, 1) << "asked again after the stop";
    EXPECT_EQ(windowEvents(), QStringList({"open Status [44]", "close"}));
}

TEST_F(WaitForRegisterStopTest, TheWaitLimitEndsItOnTheClockAndACardPaymentIsWaitedOut)
{
    vars.WaitLimitMs = 10000;
    EXPECT_EQ(WaitForRegister(link, op, clock), 44);
    EXPECT_EQ(vars.Stop, StopCause::WaitLimit);
    EXPECT_GE(clock.monotonicMs(), vars.WaitLimitMs);
    EXPECT_LT(tries, kTriesBeforeClearing);

    // While a card payment runs nothing gives the wait up.
    tries = 0;
    vars.EftBusy = true;
    EXPECT_EQ(WaitForRegister(link, op, clock), 0);
    EXPECT_EQ(tries, kTriesBeforeClearing);
}

} // namespace
