#include "WireServer.h"

#include "SimRegister.h"
#include "shell/Clock.h"

#include <QFile>

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
constexpr int kBitsPerByte = 10; // start, eight data, stop

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
    baud_ = baud;
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

void WireServer::queue(std::deque<Pending>& q, const std::vector<WireChunk>& chunks, int baud)
{
    const qint64 now = clock_.monotonicMs();
    for (const WireChunk& c : chunks) {
        if (baud <= 0 || c.bytes.size() <= 1) {
            q.push_back({now + c.afterMs, c.bytes, c.dropAfter});
            continue;
        }
        // Paced at the line speed: each byte leaves when the last has gone.
        for (int i = 0; i < c.bytes.size(); ++i) {
            const qint64 due = now + c.afterMs + (static_cast<qint64>(i) * kBitsPerByte * 1000) / baud;
            q.push_back({due, c.bytes.mid(i, 1), c.dropAfter && i == c.bytes.size() - 1});
        }
    }
}

void WireServer::closeClient()
{
    if (clientFd_ >= 0)
        ::close(clientFd_);
    clientFd_ = -1;
    tcpBuffer_.clear();
    tcpOut_.clear();
}

void WireServer::flush(std::deque<Pending>& q, int fd, bool tcp)
{
    const qint64 now = clock_.monotonicMs();
    while (!q.empty() && q.front().dueMs <= now) {
        const Pending p = q.front();
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

        const qint64 now = clock_.monotonicMs();
        qint64 timeout = -1;
        auto consider = [&](qint64 due) {
            const qint64 wait = qMax<qint64>(0, due - now);
            timeout = timeout < 0 ? wait : qMin(timeout, wait);
        };
        if (!serialOut_.empty())
            consider(serialOut_.front().dueMs);
        if (!tcpOut_.empty())
            consider(tcpOut_.front().dueMs);
        if (!tcpBuffer_.isEmpty())
            consider(tcpLastByteMs_ + TcpWire::kQuietMs);

        const int ready = ::poll(fds.data(), fds.size(), static_cast<int>(timeout));
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
            if (p.fd == ptyMaster_) {
                if (n > 0)
                    queue(serialOut_, serial_.receive(QByteArray(buf, static_cast<int>(n))), baud_);
                continue;
            }
            if (n <= 0) { // the client went away
                closeClient();
                continue;
            }
            tcpBuffer_.append(buf, static_cast<int>(n));
            tcpLastByteMs_ = clock_.monotonicMs();
        }
        if (!tcpBuffer_.isEmpty() && clock_.monotonicMs() >= tcpLastByteMs_ + TcpWire::kQuietMs) {
            const QByteArray command = tcpBuffer_;
            tcpBuffer_.clear();
            queue(tcpOut_, tcp_.command(command), 0);
        }
        flush(serialOut_, ptyMaster_, false);
        flush(tcpOut_, clientFd_, true);
    }
}
