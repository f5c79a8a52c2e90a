// The real TCP transport against a loopback port nobody listens on. Real
// exchanges over sockets and pseudo-terminals are the end-to-end tests' world.
#include "link/DevicePort.h"
#include "link/DeviceSession.h"
#include "link/QtTransportFactory.h"
#include "shell/Clock.h"
#include "shell/CommunicationLog.h"
#include "shell/FormModel.h"
#include "shell/ModuleVariables.h"
#include "shell/ResultSink.h"
#include "ScriptedOperator.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>

#ifdef Q_OS_UNIX
#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

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

// No job runs here: failed commands leave nothing.
struct NoResultFile final : ResultSink {
    void appendResultLine(const QString&) override {}
};

TEST(RealTcpLink, RefusedConnectionIsStatusMinusSix)
{
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

    const int fd = ::socket(AF_INET, SOCK_STREAM, 0); // bound, never listening
    const quint16 free = bindLoopback(fd);
    link.OpenDeviceLink(QStringLiteral("127.0.0.1:%1").arg(free), status, reply, true);
    ::close(fd);
    EXPECT_EQ(status, -6);
    EXPECT_EQ(reply, "Λάθος κατά την σύνδεση με την ταμειακή ");
}

} // namespace

#endif
