// CPU cost of the link's longest waits on the real clock: a TCP exchange with a
// register that never answers (four sends, ten seconds each) and a serial
// exchange whose ENQ stays unanswered. Both must block in the OS, not spin.
#include "link/SerialExchange.h"
#include "link/SerialFrame.h"
#include "link/SerialTransport.h"
#include "link/QtTransportFactory.h"
#include "link/TcpExchange.h"
#include "link/clsNet_TCP.h"
#include "shell/Clock.h"
#include "shell/CommunicationLog.h"
#include "shell/HeadlessOperator.h"
#include "shell/ModuleVariables.h"

#include <QCoreApplication>
#include <QDir>
#include <cstdio>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <pty.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <termios.h>
#include <unistd.h>

namespace {

double cpuSeconds()
{
    rusage u{};
    getrusage(RUSAGE_SELF, &u);
    return u.ru_utime.tv_sec + u.ru_stime.tv_sec + (u.ru_utime.tv_usec + u.ru_stime.tv_usec) / 1e6;
}

void report(const char* what, double wall, double cpu)
{
    std::printf("%-34s wall %7.2f s  cpu %6.3f s  (%.2f%%)\n", what, wall, cpu,
                100.0 * cpu / wall);
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    const int enqSeconds = argc > 1 ? std::atoi(argv[1]) : 10;
    RealClock clock;
    ModuleVariables vars;
    CommunicationLog log(QDir::tempPath(), vars);
    HeadlessOperator op;

    // A silent peer on the loopback that accepts and never answers.
    const int listener = ::socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in a{};
    a.sin_family = AF_INET;
    a.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    quint16 port = 0;
    for (int p = 21000; port == 0 && p < 32767; ++p) {
        a.sin_port = htons(quint16(p));
        if (::bind(listener, reinterpret_cast<sockaddr*>(&a), sizeof a) == 0)
            port = quint16(p);
    }
    ::listen(listener, 1);

    QtTransportFactory factory;
    clsNet_TCP net(factory, log, clock, op, vars);
    net.RemoteHostIP = "127.0.0.1";
    net.RemotePort = port;
    if (net.OpenConnection() != 0)
        return 1;
    double cpu0 = cpuSeconds();
    qint64 t0 = clock.monotonicMs();
    TcpExchange(net, clock, log).run("?/", false);
    report("TCP, no reply (4 x 10 s)", (clock.monotonicMs() - t0) / 1000.0, cpuSeconds() - cpu0);
    net.ShutdownConnection();
    ::close(listener);

    int master = -1, slave = -1;
    char name[128] = {};
    if (openpty(&master, &slave, name, nullptr, nullptr) != 0)
        return 1;
    SerialTransport serial;
    if (serial.open(QString::fromLatin1(name), "9600") != 0)
        return 1;
    qint16 timeout = qint16(enqSeconds);
    cpu0 = cpuSeconds();
    t0 = clock.monotonicMs();
    const qint16 status = SerialExchange(serial, clock, log).run(FrameCommand("?/"), timeout, false).status();
    report("serial, ENQ unanswered", (clock.monotonicMs() - t0) / 1000.0, cpuSeconds() - cpu0);
    ::close(slave);
    ::close(master);
    return status == -207 ? 0 : 1;
}
