// A card command must never reach the register twice while its terminal may
// still be working: one send with the whole card wait on either wire, and the
// device-wait window polling with the card's long wait while EftBusy is set.
#include "SessionWorld.h"
#include "PrintQString.h"
#include "ScriptedOperator.h"

#include "link/DevicePort.h"
#include "link/DeviceSession.h"
#include "shell/CommunicationLog.h"
#include "shell/FormModel.h"
#include "shell/ModuleVariables.h"
#include "shell/ResultSink.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace {

const QString kCard = QStringLiteral("5/3/9.00////2/1/");
const SendOptions kCardOptions{.timeoutSeconds = 301, .logMode = SendOptions::kLogModeCard,
                               .sendOnce = true};

// A register whose terminal answers a card payment cardAnswerMs after it came
// (never when negative), and answers every ENQ after enqAnswerMs.
class CardSendOnceTest : public ::testing::Test, protected SessionWorld {
protected:
    CardSendOnceTest()
    {
        vars.baud = "9600";
        factory.script = [this](FakeTransport& t) {
            t.onWrite = [this, &t](const QByteArray& w) {
                if (w == "\x05") {
                    t.deliver("\x06", enqAnswerMs);
                    return;
                }
                if (w == "\x06") // the driver's ACK of a reply
                    return;
                const bool framed = w.startsWith('\x02');
                const QString command = QString::fromLatin1(framed ? w.mid(1, w.size() - 4) : w);
                sent << command;
                const QByteArray end = framed ? "\x03" : "";
                if (command == u"?/")
                    t.deliver("00/00/00/" + end, 5);
                else if (command != kCard)
                    t.deliver("00/00/00/" + end, 5);
                else if (cardAnswerMs >= 0)
                    t.deliver(cardReply + end, cardAnswerMs);
            };
        };
    }
    void open(const QString& port)
    {
        qint16 status = 0;
        QString reply;
        link.OpenDeviceLink(port, status, reply, true);
        ASSERT_EQ(status, 0);
        sent.clear();
    }

    QStringList sent;
    qint64 cardAnswerMs = 40000;
    qint64 enqAnswerMs = 5;
    QByteArray cardReply = "00/00/00/";
};

TEST_F(CardSendOnceTest, OnTcpASlowTerminalIsAwaitedOnceAndASilentOneIsNeverAskedTwice)
{
    open("127.0.0.1:9101");
    EXPECT_TRUE(link.send(kCard, kCardOptions).ok());
    EXPECT_EQ(sent.count(kCard), 1);

    sent.clear();
    cardAnswerMs = -1;
    const qint64 start = clock.monotonicMs();
    const DeviceReply lost = link.send(kCard, kCardOptions);
    EXPECT_EQ(lost.status(), -4);
    EXPECT_EQ(lost.outcome(), ReplyOutcome::NoReply);
    EXPECT_EQ(sent.count(kCard), 1);
    EXPECT_NEAR(double(clock.monotonicMs() - start), 301000.0, 1500.0);
}

TEST_F(CardSendOnceTest, OnASerialLineTheOneFrameWaitsForTheTerminal)
{
    open("com1");
    EXPECT_TRUE(link.send(kCard, kCardOptions).ok());
    EXPECT_EQ(sent.count(kCard), 1);

    sent.clear();
    cardAnswerMs = -1;
    EXPECT_EQ(link.send(kCard, kCardOptions).status(), -4);
    EXPECT_EQ(sent.count(kCard), 1);
}

TEST_F(CardSendOnceTest, WhileACardPaymentRunsTheWaitWindowPollsWithTheLongWait)
{
    open("com1");
    cardAnswerMs = 5;
    cardReply = "C1/00/00/"; // 193: the terminal is still at work
    enqAnswerMs = 100000;     // the register answers nothing else meanwhile
    vars.EftBusy = true;
    const DeviceReply reply = link.send(kCard, kCardOptions);
    EXPECT_EQ(reply.status(), 193);
    EXPECT_EQ(sent, (QStringList{kCard, "?/"}));
    ASSERT_FALSE(op.waitEvents.isEmpty());
    EXPECT_EQ(op.waitEvents.first().stateLine, "Αναμονή EFTPOS[193]");
    EXPECT_EQ(op.waitEvents.last().kind, ScriptedOperator::WaitEvent::Close);
    EXPECT_EQ(op.waitEvents.size(), 2); // no unanswered poll in between
}

} // namespace
