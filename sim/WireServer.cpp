#include "WireServer.h"

#include "SimRegister.h"
#include "shell/Clock.h"

#include <QFile>

// The wire is POSIX throughout: a pseudo-terminal for the serial line, BSD
// sockets and poll() for TCP. Elsewhere the register has no wire and says so.
#ifdef Q_OS_UNIX
#include <arpa/inet.h>
#include <cerrno>
#include <fcntl.h>
#include <netinet/in.h>
#include <poll.h>
#include <pty.h>
#include <sys/socket.h>
#include <termios.h>
#include <unistd.h>

namespace {
constexpr int kReadChunk = 4096;

void setNonBlocking(int fd) { ::fcntl(fd, F_SETFL, ::fcntl(fd, F_GETFL) | O_NONBLOCK); }
} // namespace

WireServer::WireServer(SimRegister& reg, Clock& clock)
    : reg_(reg)
    , clock_(clock)
    , serial_(reg)
    , tcp_(reg)
{
}

WireServer::~WireServer()
{
    closeClient();
    for (int fd : {ptyMaster_, ptySlave_, listenFd_})
        if (fd >= 0)
            ::close(fd);
    if (!ptyLink_.isEmpty())
        QFile::remove(ptyLink_);
}

bool WireServer::openPty(const QString& linkPath, int baud, QString* error)
{
    char name[256] = {};
    if (::openpty(&ptyMaster_, &ptySlave_, name, nullptr, nullptr) != 0) {
        *error = QStringLiteral("openpty: %1").arg(QString::fromLocal8Bit(strerror(errno)));
        return false;
    }
    termios tio{};
    ::tcgetattr(ptySlave_, &tio);
    ::cfmakeraw(&tio);
    ::tcsetattr(ptySlave_, TCSANOW, &tio);
    setNonBlocking(ptyMaster_);
    // The slave stays open here too, so the master never sees a hang-up
    // while the driver closes and reopens its port between jobs.
    QFile::remove(linkPath);
    if (::symlink(name, QFile::encodeName(linkPath).constData()) != 0) {
        *error = QStringLiteral("cannot link %1 to %2").arg(linkPath, QString::fromLocal8Bit(name));
        return false;
    }
    ptyLink_ = linkPath;
    serialLine_ = LineTiming(baud);
    return true;
}

bool WireServer::listenTcp(const QString& host, quint16 port, QString* error)
{
    listenFd_ = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const int one = 1;
    ::setsockopt(listenFd_, SOL_SOCKET, SO_REUSEADDR, &one, sizeof one);
    sockaddr_in addr{};
    addr.sin_family = AF_INET;
    addr.sin_port = htons(port);
    if (::inet_pton(AF_INET, host.toLatin1().constData(), &addr.sin_addr) != 1) {
        *error = QStringLiteral("not an address: %1").arg(host);
        return false;
    }
    if (::bind(listenFd_, reinterpret_cast<sockaddr*>(&addr), sizeof addr) != 0 || ::listen(listenFd_, 8) != 0) {
        *error = QStringLiteral("cannot listen on %1:%2: %3").arg(host).arg(port).arg(QString::fromLocal8Bit(strerror(errno)));
        return false;
    }
    return true;
}

void WireServer::queue(Pending& q, const std::vector<TimedBytes>& timed)
{
    q.insert(q.end(), timed.begin(), timed.end());
}

void WireServer::closeClient()
{
    if (clientFd_ >= 0)
        ::close(clientFd_);
    clientFd_ = -1;
    tcp_.clear();
    tcpOut_.clear();
}

void WireServer::flush(Pending& q, int fd, bool tcp)
{
    const qint64 now = clock_.monotonicMs();
    while (!q.empty() && q.front().dueMs <= now) {
        const TimedBytes p = q.front();
        q.pop_front();
        if (!p.bytes.isEmpty() && fd >= 0) {
            qint64 done = 0;
            while (done < p.bytes.size()) {
                const ssize_t n = ::send(fd, p.bytes.constData() + done, p.bytes.size() - done,
                                         tcp ? MSG_NOSIGNAL : 0);
                if (n < 0 && !tcp && errno == ENOTSOCK) {
                    const ssize_t w = ::write(fd, p.bytes.constData() + done, p.bytes.size() - done);
                    if (w <= 0)
                        break;
                    done += w;
                    continue;
                }
                if (n <= 0)
                    break;
                done += n;
            }
        }
        if (tcp && p.dropAfter) {
            closeClient();
            return;
        }
    }
}

qint64 WireServer::pollTimeoutMs() const
{
    const qint64 now = clock_.monotonicMs();
    qint64 timeout = -1;
    auto consider = [&](qint64 due) {
        if (due < 0)
            return;
        const qint64 wait = qMax<qint64>(0, due - now);
        timeout = timeout < 0 ? wait : qMin(timeout, wait);
    };
    if (!serialOut_.empty())
        consider(serialOut_.front().dueMs);
    if (!tcpOut_.empty())
        consider(tcpOut_.front().dueMs);
    consider(tcp_.quietDeadlineMs());
    return timeout;
}

void WireServer::run()
{
    for (;;) {
        std::vector<pollfd> fds;
        if (ptyMaster_ >= 0)
            fds.push_back({ptyMaster_, POLLIN, 0});
        if (clientFd_ >= 0)
            fds.push_back({clientFd_, POLLIN, 0});
        else if (listenFd_ >= 0)
            fds.push_back({listenFd_, POLLIN, 0});

        const int ready = ::poll(fds.data(), fds.size(), static_cast<int>(pollTimeoutMs()));
        if (ready < 0 && errno != EINTR)
            return;
        for (const pollfd& p : fds) {
            if (!(p.revents & (POLLIN | POLLHUP | POLLERR)))
                continue;
            if (p.fd == listenFd_) {
                clientFd_ = ::accept4(listenFd_, nullptr, nullptr, SOCK_CLOEXEC);
                continue;
            }
            char buf[kReadChunk];
            const ssize_t n = ::read(p.fd, buf, sizeof buf);
            const qint64 now = clock_.monotonicMs();
            if (p.fd == ptyMaster_) {
                if (n > 0) {
                    const QByteArray bytes(buf, static_cast<int>(n));
                    queue(serialOut_, serialLine_.schedule(now, bytes.size(), serial_.receive(bytes)));
                }
                continue;
            }
            if (n <= 0) { // the client went away
                closeClient();
                continue;
            }
            const QByteArray bytes(buf, static_cast<int>(n));
            queue(tcpOut_, tcpLine_.schedule(now, bytes.size(), tcp_.receive(bytes, now)));
        }
        const qint64 now = clock_.monotonicMs();
        queue(tcpOut_, tcpLine_.schedule(now, 0, tcp_.whenQuiet(now)));
        flush(serialOut_, ptyMaster_, false);
        flush(tcpOut_, clientFd_, true);
    }
}

#else // no POSIX wire on this system

namespace {
const QString kNoWire = QStringLiteral("the virtual register's wire needs a POSIX system");
} // namespace

WireServer::WireServer(SimRegister& reg, Clock& clock)
    : reg_(reg)
    , clock_(clock)
    , serial_(reg)
    , tcp_(reg)
{
}

WireServer::~WireServer() = default;

bool WireServer::openPty(const QString&, int, QString* error)
{
    *error = kNoWire;
    return false;
}

bool WireServer::listenTcp(const QString&, quint16, QString* error)
{
    *error = kNoWire;
    return false;
}

void WireServer::run() {}

#endif
