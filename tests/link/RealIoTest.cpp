#include "link/DevicePort.h"
#include "link/DeviceSession.h"
#include "link/QtTransportFactory.h"
#include "link/SerialExchange.h"
#include "link/SerialFrame.h"
#include "link/SerialTransport.h"
#include "shell/Clock.h"
#include "shell/CommunicationLog.h"
#include "shell/FormModel.h"
#include "shell/ModuleVariables.h"
#include "shell/ResultSink.h"
#include "ScriptedOperator.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>

// Pseudo-terminals and a register on raw sockets: POSIX only.
#ifdef Q_OS_UNIX
#include <arpa/inet.h>
#include <netinet/in.h>
#include <pty.h>
#include <sys/socket.h>
#include <termios.h>
#include <thread>
#include <unistd.h>

namespace {

// Reads from fd until the collected bytes end with `last`.
QByteArray readUntil(int fd, char last)
{
    QByteArray got;
    char c;
    while (::read(fd, &c, 1) == 1) {
        got += c;
        if (c == last)
            break;
    }
    return got;
}

TEST(RealSerialLine, ExchangeOverAPseudoTerminal)
{
    int master = -1, slave = -1;
    char name[128] = {};
    ASSERT_EQ(openpty(&master, &slave, name, nullptr, nullptr), 0);
    termios raw{};
    tcgetattr(slave, &raw);
    cfmakeraw(&raw);
    tcsetattr(slave, TCSANOW, &raw);

    SerialTransport port;
    ASSERT_EQ(port.open(QString::fromLatin1(name), "9600"), 0);
    std::thread device([master] {
        const QByteArray enq = readUntil(master, 0x05);
        ::write(master, "\x06", 1);
        const QByteArray frame = readUntil(master, 0x03);
        if (frame.endsWith("\x02?/10\x03"))
            ::write(master, "\x02" "00/", 4), ::usleep(5000), ::write(master, "00/00/\x03", 7);
        readUntil(master, 0x06);
    });
    RealClock clock;
    ModuleVariables vars;
    QTemporaryDir dir;
    CommunicationLog log(dir.path(), vars);
    qint16 status = 99, timeout = 0;
    QString reply;
    const DeviceReply answer = SerialExchange(port, clock, log).run(FrameCommand("?/"), timeout, false);
    status = answer.status();
    reply = answer.text();
    device.join();
    EXPECT_EQ(status, 0);
    EXPECT_EQ(reply, "00/00/00/");
    // A quiet line: the read gives up empty.
    EXPECT_TRUE(port.read(255).isEmpty());
    port.close();
    ::close(slave);
    ::close(master);
}

// Binds fd to a free loopback port below 32768, the highest the link opens.
quint16 bindLoopback(int fd)
{
    sockaddr_in a{};
    a.sin_family = AF_INET;
    a.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    for (int p = 20000 + ::getpid() % 10000; p < 32767; ++p) {
        a.sin_port = htons(quint16(p));
        if (::bind(fd, reinterpret_cast<sockaddr*>(&a), sizeof a) == 0)
            return quint16(p);
    }
    return 0;
}

// A one-connection register on the loopback: answers each command with the
// next reply, then closes the connection.
class LoopbackRegister {
public:
    explicit LoopbackRegister(QList<QByteArray> replies)
    {
        port_ = bindLoopback(listener_);
        ::listen(listener_, 1);
        thread_ = std::thread([this, replies] {
            const int fd = ::accept(listener_, nullptr, nullptr);
            char buf[256];
            for (const QByteArray& r : replies)
                if (::read(fd, buf, sizeof buf) <= 0 || ::write(fd, r.constData(), r.size()) < 0)
                    break;
            ::read(fd, buf, sizeof buf);
            ::close(fd);
        });
    }
    ~LoopbackRegister()
    {
        thread_.join();
        ::close(listener_);
    }
    QString port() const { return QStringLiteral("127.0.0.1:%1").arg(port_); }

private:
    int listener_ = ::socket(AF_INET, SOCK_STREAM, 0);
    quint16 port_ = 0;
    std::thread thread_;
};

// No job runs here: failed commands leave nothing.
struct NoResultFile final : ResultSink {
    void appendResultLine(const QString&) override {}
};

class RealTcpLink : public ::testing::Test {
protected:
    RealClock clock;
    ModuleVariables vars;
    QTemporaryDir dir;
    CommunicationLog log{dir.path(), vars};
    ScriptedOperator op;
    FormModel form;
    QtTransportFactory factory;
    NoResultFile results;
    DevicePort port{vars, clock, op, factory, log};
    DeviceSession link{port, vars, clock, op, form, results, log};
    qint16 status = 99;
    QString reply;
};

TEST_F(RealTcpLink, OpensIdentifiesExchangesAndSeesTheRegisterHangUp)
{
    LoopbackRegister reg({"00/00/00/55/x/FFP/", "00/00/00/7/"});
    link.OpenDeviceLink(reg.port(), status, reply, false);
    ASSERT_EQ(status, 0);
    EXPECT_EQ(form.label2(), "Arcadia Net [FFP55]");
    link.SendCommand("i/", status, reply, true);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(reply, "00/00/00/7/");
    // The register hangs up on the next command: no reply, at once.
    const qint64 start = clock.monotonicMs();
    link.SendCommand("?/", status, reply, true, 1);
    EXPECT_EQ(status, -4);
    EXPECT_LT(clock.monotonicMs() - start, 5000);
    link.CloseDeviceLink();
}

TEST_F(RealTcpLink, RefusedConnectionIsStatusMinusSix)
{
    const int fd = ::socket(AF_INET, SOCK_STREAM, 0); // bound, never listening
    const quint16 port = bindLoopback(fd);
    link.OpenDeviceLink(QStringLiteral("127.0.0.1:%1").arg(port), status, reply, true);
    ::close(fd);
    EXPECT_EQ(status, -6);
    EXPECT_EQ(reply, "Λάθος κατά την σύνδεση με την ταμειακή ");
}

} // namespace

#endif
