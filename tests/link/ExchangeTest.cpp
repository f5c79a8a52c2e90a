#include "SessionWorld.h"

#include "link/SerialExchange.h"
#include "link/SerialFrame.h"
#include "link/TcpExchange.h"
#include "link/clsNet_TCP.h"

namespace {

const QByteArray kEnq(1, 0x05);
const QByteArray kAck(1, 0x06);

class ExchangeTest : public ::testing::Test, protected SessionWorld {
protected:
    ExchangeTest() { vars.DebugEnabled = true; }
    // The status, the outcome and the reply text of a run as one value.
    static QString seen(const DeviceReply& answer)
    {
        static const QStringList outcomes = {"Success", "Refused", "Busy", "LinkLost", "NoReply"};
        return QStringLiteral("%1 %2 %3").arg(answer.status()).arg(outcomes.value(int(answer.outcome())), answer.text());
    }
};

class SerialExchangeTest : public ExchangeTest {
protected:
    QString run(const QString& command)
    {
        return seen(SerialExchange(line, clock, log).run(FrameCommand(command), timeout, false));
    }

    FakeTransport line{clock};
    qint16 timeout = 0;
};

TEST_F(SerialExchangeTest, StatusPollGoesOutFramedIsAcknowledgedAndLogged)
{
    line.onWrite = [this](const QByteArray& w) {
        if (w == kEnq) {
            line.deliver(kAck, 5);
        } else if (w.startsWith('\x02')) {
            line.deliver("\x02" "00/00/00/" "\x03", 30);
            line.deliver(kAck + "Z", 60); // leftovers are drained into the log
        }
    };
    EXPECT_EQ(run("?/"), "0 Success 00/00/00/");
    ASSERT_GE(line.writes.size(), 3);
    EXPECT_EQ(line.writes[0].bytes, kEnq);
    EXPECT_EQ(line.writes[1].bytes, QByteArray("\x02?/10\x03"));
    // 50 ms after ENQ, then one read that ends after 20 ms of silence.
    EXPECT_EQ(line.writes[1].atMs - line.writes[0].atMs, 50 + 20);
    EXPECT_EQ(line.writes[2].bytes, kAck);
    EXPECT_EQ(timeout, 3);
    // The log keeps STX and ETX as bytes, each line with its mm:ss stamp.
    const QByteArray logged = logBytes();
    EXPECT_TRUE(logged.contains("20:30 send:     \x02?/10\x03\r\n"));
    EXPECT_TRUE(logged.contains("20:30 reply     00/00/00/\r\n"));
    EXPECT_TRUE(logged.contains("20:30 exres     00/00/00/\r\n20:30 -----------\r\n"));
    EXPECT_TRUE(logged.contains(" Buf       <ACK>Z\r\n"));
}

TEST_F(SerialExchangeTest, SilentLineGivesNoEnqAnswerAfterTheEnqWaitAndNoFrame)
{
    // Deadline and drain: past the wait, and no more than the last read's 256 ms later.
    for (const auto& [wait, notBefore, notAfter] :
         {std::tuple<qint16, qint64, qint64>{0, 3000, 3500 + 256}, {301, 301000, 302000}}) {
        const qint64 start = clock.monotonicMs();
        timeout = wait;
        EXPECT_EQ(run("5/3/1.00////1/1/"), "-207 LinkLost Αναμονή Απόκρισης Ταμειακής...");
        EXPECT_GT(clock.monotonicMs() - start, notBefore) << wait;
        EXPECT_LT(clock.monotonicMs() - start, notAfter) << wait;
    }
    for (const auto& w : line.writes)
        EXPECT_EQ(w.bytes, kEnq);
}

class TcpExchangeTest : public ExchangeTest {
protected:
    TcpExchangeTest()
    {
        net.RemoteHostIP = "127.0.0.1";
        net.RemotePort = 9101;
    }
    FakeTransport& open()
    {
        EXPECT_EQ(net.OpenConnection(), 0);
        return *factory.made.back();
    }
    QString run(const QString& command) { return seen(TcpExchange(net, clock, log).run(command, false)); }

    clsNet_TCP net{factory, log, clock, op, vars};
};

TEST_F(TcpExchangeTest, PlainCommandAndReplyPaymentsWait200MsAndNothingBeyond2049BytesIsTaken)
{
    FakeTransport& t = open();
    t.onWrite = [&t](const QByteArray&) { t.deliver("\x02" "00/00/00/\x03", 5); };
    EXPECT_EQ(run("?/"), "0 Success 00/00/00/");
    ASSERT_EQ(t.writes.size(), 1);
    EXPECT_EQ(t.writes[0].bytes, QByteArray("?/"));
    EXPECT_EQ(t.writes[0].atMs, 10);

    // With a register that answers at once, a payment takes 200 ms longer.
    t.onWrite = [&t](const QByteArray&) { t.deliver("00/00/00/"); };
    qint64 start = clock.monotonicMs();
    run("?/");
    const qint64 poll = clock.monotonicMs() - start;
    start = clock.monotonicMs();
    run("5/1/0.00////");
    EXPECT_EQ(clock.monotonicMs() - start, poll + 200);

    t.onWrite = [&t](const QByteArray&) { t.deliver("00/00/00/" + QByteArray(3000, 'x'), 5); };
    EXPECT_EQ(run("?/"), "0 Success 00/00/00/" + QString(2040, u'x'));
}

TEST_F(TcpExchangeTest, AReplyCutByTheNetworkIsOneReplyAndStaleBytesAreDroppedBeforeTheNextCommand)
{
    FakeTransport& t = open();
    // The tail of an unclosed field is waited for; a closed reply takes what
    // follows within the serial read's silence.
    t.deliver("00/0", 20);
    t.deliver("0/00/", 700);
    t.deliver("1/2/", 710);
    EXPECT_EQ(run("9/"), "0 Success 00/00/00/1/2/");

    // A late answer lies in the socket when the next command goes out: it is
    // dropped and logged, and the next command reads its own reply.
    t.deliver("06/00/00/");
    clock.advance(100);
    t.onWrite = [&t](const QByteArray&) { t.deliver("00/00/00/", 5); };
    EXPECT_EQ(run("?/"), "0 Success 00/00/00/");
    EXPECT_TRUE(logBytes().contains(" Buf       06/00/00/\r\n"));
}

TEST_F(TcpExchangeTest, NoReplyFourSendsAboutFortySecondsButAClosingPeerEndsAtOnce)
{
    FakeTransport& t = open();
    EXPECT_EQ(run("?/"), "-4 NoReply Ο Φορολ. Μηχανισμός δεν Απαντά σε εντολή !");
    EXPECT_EQ(t.writes.size(), 4);
    EXPECT_NEAR(double(clock.monotonicMs()), 40000.0, 2100.0);

    FakeTransport& closing = open();
    closing.closeAtMs = clock.monotonicMs() + 1000;
    EXPECT_TRUE(run("?/").startsWith("-4 LinkLost ")) << "a closing peer";
    EXPECT_EQ(closing.writes.size(), 1);
    EXPECT_LT(clock.monotonicMs(), closing.closeAtMs + 100);
}

TEST_F(TcpExchangeTest, AFailedSendReopensTheConnectionAndFourFailedSendsTellTheOperator)
{
    open().failWrites = true;
    factory.script = [](FakeTransport& t) {
        t.onWrite = [&t](const QByteArray&) { t.deliver("00/00/00/"); };
    };
    EXPECT_EQ(run("?/"), "0 Success 00/00/00/");
    EXPECT_EQ(factory.tcpConnects, 2);
    EXPECT_TRUE(op.messages.isEmpty());
    EXPECT_TRUE(logBytes().contains(" reOpen TCP: 0\r\n"));

    factory.made.back()->failWrites = true;
    factory.nextStatus = -6;
    vars.DeviceLabel = "Delta [DNT1]";
    EXPECT_TRUE(run("?/").startsWith("-4 LinkLost "));
    EXPECT_EQ(factory.tcpConnects, 2 + 4 * 4);
    ASSERT_EQ(op.messages.size(), 4);
    EXPECT_EQ(op.messages[0].title, "Delta [DNT1]");
    EXPECT_EQ(op.messages[0].text, "Λάθος κατά την αποστολή δεδομένων στην θύρα (Ethernet)");
}

} // namespace
