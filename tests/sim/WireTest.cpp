#include "FaultScript.h"
#include "LineTiming.h"
#include "SerialWire.h"
#include "SimRegister.h"
#include "SimTransport.h"
#include "TcpWire.h"
#include "shell/Clock.h"
#include "shell/CodePage.h"

#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>


namespace {

// A register with its memory in RAM, on the virtual clock.
class SimWire : public ::testing::Test {
protected:
    VirtualClock clock;
    SimRegister reg{{}, clock};
};

// Frames carry the byte sum of their text kept to a byte, then modulo 100,
// outer blanks not summed: "?/" 10, the Greek sale in Windows-1253 23 (2071).
TEST_F(SimWire, SerialAnswersEnqFramesAndNacksWrongDigitsAmidNoise)
{
    EXPECT_EQ(SerialWire::checkDigits(" ?/ "), 10);
    SimTransport t(reg, SimTransport::Wire::Serial, clock);
    t.write("\x05");
    EXPECT_EQ(t.read(255), QByteArray("\x06"));
    t.write(QByteArray("\x00\x00garbage", 9) + "\x02?/10\x03");
    EXPECT_EQ(t.read(255), QByteArray("\x02" "00/00/00/" "\x03"));
    t.write("\x06\x05");
    t.read(255);
    t.write("\x02?/11\x03");
    EXPECT_EQ(t.read(255), QByteArray("\x15"));
    t.write(QByteArray(10000, 'A'));
    t.read(255);
    EXPECT_EQ(reg.commandsReceived(), 1); // the bad frame and the flood executed nothing
    t.write("\x02" + codepage::toWin1253("3/S/ΨΩΜΙ//1.000/1.00/1/24.00/") + "23\x03");
    EXPECT_EQ(t.read(255), QByteArray("\x02" "00/00/10/" "\x03"));
}

TEST_F(SimWire, TcpKnowsAWholeCommandByTheLongestFormOfItsCodeClosedByItsSlash)
{
    for (const char* whole : {"?/", "a/", "d/3/", "3/S/ΚΑΦΕΣ//1.000/2.00/1/24.00/", "5/1/6.50/ΜΕΤΡΗΤΑ//////",
                              "x/1/1/99999/", "&/11/4//0/0///////////"})
        EXPECT_TRUE(reg.isWholeCommand(codepage::toWin1253(QString::fromUtf8(whole)))) << whole;
    for (const char* open : {"d/3", "I/0/0", "I/0/", "5/1/0.00////", "x/2/1/", "3/S/ΚΑΦΕΣ//1.000/2.00/1/", "?/?/",
                             "Q/", "&/11/4//0/0//////////"})
        EXPECT_FALSE(reg.isWholeCommand(codepage::toWin1253(QString::fromUtf8(open)))) << open;
}

TEST_F(SimWire, TcpAnswersAWholeCommandAtOnceAndWaitsForQuietOnlyWhereItCannotTell)
{
    TcpWire wire(reg);
    auto receive = [&](const QString& text) { return wire.receive(codepage::toWin1253(text), clock.monotonicMs()); };

    std::vector<WireChunk> out = receive("a/");
    ASSERT_EQ(out.size(), 1u);
    EXPECT_EQ(out[0].afterMs, 0);
    EXPECT_EQ(out[0].bytes, QByteArray("00/00/00/00012345/1/DNT/"));
    EXPECT_EQ(wire.quietDeadlineMs(), -1); // nothing held, no quiet to wait for
    EXPECT_EQ(receive("?/\r\n").size(), 1u); // as a terminal user types it

    // a command in two segments is answered with its last slash
    EXPECT_TRUE(receive("3/S/ΚΑΦΕΣ//1.000/2.").empty());
    EXPECT_EQ(wire.quietDeadlineMs(), clock.monotonicMs() + TcpWire::kQuietMs);
    clock.advance(5);
    out = receive("00/1/24.00/");
    ASSERT_EQ(out.size(), 1u);
    EXPECT_EQ(out[0].bytes, QByteArray("00/00/10/"));
    EXPECT_EQ(clock.monotonicMs(), 5);

    // "d/3" could still become "d/31/": the quiet decides
    EXPECT_TRUE(receive("d/3").empty());
    clock.advance(TcpWire::kQuietMs - 1);
    EXPECT_TRUE(wire.whenQuiet(clock.monotonicMs()).empty());
    clock.advance(1);
    out = wire.whenQuiet(clock.monotonicMs());
    ASSERT_EQ(out.size(), 1u);
    EXPECT_EQ(codepage::fromWin1253(out[0].bytes).split('/').value(3), "ΤΜΗΜΑ 3");
    EXPECT_EQ(wire.quietDeadlineMs(), -1);
}

TEST(LineTimingTest, AtTheLineSpeedARepliesLastByteLandsWhenACableWouldHaveCarriedFrameAndReply)
{
    LineTiming line(9600); // 1041.7 us a byte
    EXPECT_EQ(line.wireUs(6), 6250);

    const std::vector<TimedBytes> ack = line.schedule(0, 1, {{0, "\x06", false, 1}});
    ASSERT_EQ(ack.size(), 1u);
    EXPECT_EQ(ack[0].dueMs, 3); // the ENQ in and the ACK out: 2.08 ms

    // the "?/" frame, 6 bytes written at 50 ms, and its 11-byte reply: 17 bytes on the cable
    const QByteArray reply("\x02" "00/00/00/" "\x03");
    const std::vector<TimedBytes> out = line.schedule(50, 6, {{0, reply, false, 6}});
    ASSERT_EQ(out.size(), 11u);
    EXPECT_EQ(out.front().dueMs, 58); // 50 + 6.25 + 1.04
    EXPECT_EQ(out.back().dueMs, 68);  // 50 + 17.71
    QByteArray joined;
    for (const TimedBytes& b : out)
        joined += b.bytes;
    EXPECT_EQ(joined, reply);

    // a frame written in two pieces at once queues on the line as one; a late reply
    // (fault) counts from the frame's landing, its second half waits for the first
    LineTiming split(9600);
    EXPECT_TRUE(split.schedule(100, 3, {}).empty());
    const std::vector<TimedBytes> late = split.schedule(100, 3, {{500, "AB", false, 3}, {501, "C", false, 3}});
    ASSERT_EQ(late.size(), 3u);
    EXPECT_EQ(late[0].dueMs, 608); // 100 + 6.25 + 500 + 1.04
    EXPECT_EQ(late[1].dueMs, 609);
    EXPECT_EQ(late[2].dueMs, 610); // not 609: the line is still busy with "B"

    // without a line speed an answer goes whole, after its own delay
    LineTiming instant;
    const std::vector<TimedBytes> whole = instant.schedule(100, 6, {{20, reply, false, 6}});
    ASSERT_EQ(whole.size(), 1u);
    EXPECT_EQ(whole[0].dueMs, 120);
    EXPECT_EQ(whole[0].bytes, reply);
}

TEST_F(SimWire, ScriptedFaultsShapeTheRepliesOverAnIdleClock)
{
    QString error;
    ASSERT_TRUE(reg.loadFaults("# demo\n"
                               "1: paperend\n"
                               "2: silent\n"
                               "/^9\\// x1: split 500\n"
                               "4: drop\n"
                               "5: code 1A\n"
                               "card POS IS BUSY\n",
                               &error))
        << qPrintable(error);
    SimTransport t(reg, SimTransport::Wire::Tcp, clock);
    EXPECT_TRUE(t.read(255).isEmpty()); // an idle read runs the clock on
    EXPECT_EQ(clock.monotonicMs(), SimTransport::kIdleReadMs);
    t.write("?/");
    EXPECT_EQ(t.read(2048), QByteArray("00/04/00/"));
    t.write("?/");
    EXPECT_FALSE(t.waitForData(10000));
    t.write("9/");
    const QByteArray first = t.read(2048);
    EXPECT_FALSE(first.isEmpty());
    EXPECT_FALSE(t.waitForData(100));
    EXPECT_TRUE(t.waitForData(1000));
    EXPECT_EQ(first + t.read(2048), QByteArray("00/00/00/0/0/0.00/0.00/0.00/0/0.00/0/"));
    t.write("?/");
    EXPECT_TRUE(t.waitForData(0));
    EXPECT_TRUE(t.read(2048).isEmpty());
    EXPECT_TRUE(t.peerClosed());

    SimTransport again(reg, SimTransport::Wire::Tcp, clock);
    again.write("?/");
    EXPECT_EQ(again.read(2048), QByteArray("1A/00/00/"));
    again.write(codepage::toWin1253("3/S/ΨΩΜΙ//1.000/4.00/1/24.00/"));
    again.read(2048);
    again.write("5/2/4.00////1/1/");
    again.read(2048);
    again.write("5/99/0/ ///1/1/");
    EXPECT_TRUE(again.read(2048).endsWith("/POS IS BUSY/"));

    FaultScript bad;
    EXPECT_FALSE(bad.parse("3: explode\n", &error));
    EXPECT_FALSE(bad.parse("/unterminated: nack\n", &error));
}

TEST_F(SimWire, ScriptedStatusBitsJoinTheOpenDocumentBitWhileScriptedCodesCarryNone)
{
    ASSERT_TRUE(reg.loadFaults("2: operator\n3: code 1A\n"));
    EXPECT_EQ(reg.handle(codepage::toWin1253("3/S/ΨΩΜΙ//1.000/1.00/1/24.00/")).reply, QByteArray("00/00/10/"));
    EXPECT_EQ(reg.handle("?/").reply, QByteArray("00/00/14/"));
    EXPECT_EQ(reg.handle("?/").reply, QByteArray("1A/00/00/"));
    EXPECT_EQ(reg.handle("?/" + QByteArray(4096, ' ')).reply, QByteArray("02/00/00/")); // too long: not executed
    EXPECT_EQ(reg.handle("?/").reply, QByteArray("00/00/10/"));
}

TEST(StateTest, MemorySurvivesARestartAndAnOpenReceiptStaysOpen)
{
    QTemporaryDir dir;
    VirtualClock clock;
    {
        SimRegister reg({dir.path(), {}, {}, {}, {}}, clock);
        reg.handle(codepage::toWin1253("3/S/ΨΩΜΙ//1.000/1.00/1/24.00/"));
        reg.handle("5/1/1.00///////");
        reg.handle(codepage::toWin1253("&/0/12//////////////"));
        reg.handle(codepage::toWin1253("3/S/ΚΑΦΕΣ//1.000/2.00/1/24.00/"));
    }
    SimRegister reg({dir.path(), {}, {}, {}, QStringLiteral("777")}, clock);
    EXPECT_EQ(reg.memory().progressive, 1);
    EXPECT_EQ(reg.memory().tables[12].items.size(), 1);
    EXPECT_EQ(reg.handle("a/").reply, QByteArray("00/00/10/777/1/DNT/"));
    // a torn write leaves a temporary file behind, never a broken memory
    QFile torn(dir.filePath("register.state.tmp"));
    ASSERT_TRUE(torn.open(QIODevice::WriteOnly));
    torn.write("half");
    torn.close();
    SimRegister after({dir.path(), {}, {}, {}, {}}, clock);
    EXPECT_EQ(after.memory().tables[12].items.size(), 1);
}

} // namespace
