#include "SessionWorld.h"
#include "ScriptedOperator.h"

#include "link/DevicePort.h"
#include "link/DeviceSession.h"
#include "shell/CommunicationLog.h"
#include "shell/FormModel.h"
#include "shell/ModuleVariables.h"
#include "shell/ResultSink.h"

#include <QTemporaryDir>
#include <deque>
#include <functional>
#include <gtest/gtest.h>
#include <map>

namespace {

// A register over TCP that answers each command from its own queue (the last
// reply repeats) and lets a test act as a command arrives: a signal that
// comes in while the wait window polls, say.
class WaitWindowEndTest : public ::testing::Test, protected SessionWorld {
protected:
    WaitWindowEndTest()
    {
        factory.script = [this](FakeTransport& t) {
            t.onWrite = [this, &t](const QByteArray& w) {
                const QString command = QString::fromLatin1(w);
                sent << command;
                if (onCommand)
                    onCommand(command, sent.count(command));
                auto& q = replies[command];
                const QString answer = q.empty() ? "00/00/00/" : q.front();
                if (q.size() > 1)
                    q.pop_front();
                t.deliver(answer.toLatin1(), 5);
            };
        };
        link.OpenDeviceLink("127.0.0.1:9101", status, reply, false);
        sent.clear();
    }
    void send(const QString& command)
    {
        link.SendCommand(command, status, reply);
    }
    int countOf(ScriptedOperator::WaitEvent::Kind kind) const
    {
        int n = 0;
        for (const auto& e : op.waitEvents)
            n += e.kind == kind;
        return n;
    }

    std::map<QString, std::deque<QString>> replies;
    std::function<void(const QString& command, qsizetype timesSent)> onCommand;
    QStringList sent;
    qint16 status = 99;
    QString reply;
};

const QString kPlu = QStringLiteral("3/S/A//1.000/1.00/1/24.00/");

TEST_F(WaitWindowEndTest, AStopDuringTheWaitEndsItWithoutSendingTheCommandAgain)
{
    replies[kPlu] = {"2C/00/00/", "00/00/00/"};
    replies["?/"] = {"2C/00/00/"};
    onCommand = [this](const QString& command, qsizetype n) {
        if (command == "?/" && n == 3)
            vars.Stop = StopCause::Signal;
    };
    send(kPlu);

    EXPECT_EQ(status, 44);
    EXPECT_EQ(sent, QStringList({kPlu, "?/", "?/", "?/"})) << "no poll after the stop, and no resend";
    EXPECT_EQ(countOf(ScriptedOperator::WaitEvent::Open), 1);
    EXPECT_EQ(op.waitEvents.back().kind, ScriptedOperator::WaitEvent::Close);
    EXPECT_FALSE(link.WaitFormOpen());
    ASSERT_EQ(results.lines.size(), 1);
    EXPECT_TRUE(results.lines[0].startsWith("Err = 44, [" + kPlu + "]"));
    EXPECT_EQ(vars.Stop, StopCause::Signal);

    // Once the process is ending, a wait status ends its window at once.
    sent.clear();
    replies[kPlu] = {"1A/00/00/"};
    send(kPlu);
    EXPECT_EQ(status, 26);
    EXPECT_EQ(sent, QStringList({kPlu}));
    EXPECT_EQ(countOf(ScriptedOperator::WaitEvent::Open), 2);
    EXPECT_EQ(countOf(ScriptedOperator::WaitEvent::Close), 2);
}

TEST_F(WaitWindowEndTest, TheWaitLimitCountsOverTheResendsOfOneCommandOnTheClock)
{
    vars.WaitLimitMs = 300000;
    // Paper end on the command, a clear poll, paper end again: each window
    // alone is short, the command as a whole waits for ever.
    replies[kPlu] = {"2C/00/00/"};
    replies["?/"] = {"00/00/00/"};
    send(kPlu);

    EXPECT_EQ(status, 44);
    EXPECT_EQ(vars.Stop, StopCause::WaitLimit);
    EXPECT_GE(clock.monotonicMs(), vars.WaitLimitMs);
    EXPECT_LT(clock.monotonicMs(), vars.WaitLimitMs + 2 * DeviceSession::kPollIntervalMs + 1000);
    EXPECT_EQ(sent.count(kPlu), sent.count("?/") + 1) << "the last window sends nothing again";
    EXPECT_EQ(countOf(ScriptedOperator::WaitEvent::Open), countOf(ScriptedOperator::WaitEvent::Close));
    ASSERT_EQ(results.lines.size(), 1);
    EXPECT_TRUE(results.lines[0].startsWith("Err = 44, "));
}

TEST_F(WaitWindowEndTest, WithoutALimitTheWindowWaitsUntilTheRegisterClears)
{
    replies[kPlu] = {"2C/00/00/", "00/00/00/"};
    std::deque<QString> polls(400, "2C/00/00/"); // 800 s of paper end
    polls.push_back("00/00/00/");
    replies["?/"] = polls;
    send(kPlu);

    EXPECT_EQ(status, 0);
    EXPECT_EQ(vars.Stop, StopCause::None);
    EXPECT_EQ(sent.count("?/"), 401);
    EXPECT_EQ(sent.back(), kPlu);
}

TEST_F(WaitWindowEndTest, ACardPaymentIsWaitedOutWhateverTheStop)
{
    vars.EftBusy = true;
    vars.WaitLimitMs = 10000;
    const QString card = QStringLiteral("5/3/9.00///1/1/");
    replies[card] = {"C1/00/00/"};
    replies["?/"] = {"C1/00/00/", "C1/00/00/", "C1/00/00/", "C1/00/00/", "C1/00/00/", "C1/00/00/",
                     "C1/00/00/", "00/00/00/"};
    onCommand = [this](const QString& command, qsizetype n) {
        if (command == "?/" && n == 1)
            vars.Stop = StopCause::Signal;
        if (command == "?/" && n == 8)
            vars.EftBusy = false; // the payment's outcome is in
    };
    send(card);

    EXPECT_EQ(sent.count("?/"), 8) << "polled until the terminal answered";
    EXPECT_EQ(sent.count(card), 1);
    EXPECT_EQ(vars.Stop, StopCause::Signal);
}

} // namespace
