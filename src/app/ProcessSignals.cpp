#include "ProcessSignals.h"

#include "shell/Platform.h"

#include <QSocketNotifier>

#if KERBANO_POSIX
#include <atomic>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace {

// A signal handler reaches nothing but process-wide state: the pipe and the
// count of stop signals live here, set once by the one ProcessSignals.
int g_pipe[2] = {-1, -1};
std::atomic<int> g_stopSignals{0};
static_assert(std::atomic<int>::is_always_lock_free, "used inside a signal handler");

constexpr int kHandled[] = {SIGTERM, SIGINT, SIGHUP};

extern "C" void onSignal(int number)
{
    if (number != SIGHUP && g_stopSignals.fetch_add(1) > 0) {
        // The second stop: no more waiting for a line boundary.
        std::signal(number, SIG_DFL);
        std::raise(number);
        return;
    }
    const int saved = errno;
    const unsigned char byte = static_cast<unsigned char>(number);
    [[maybe_unused]] const ssize_t written = ::write(g_pipe[1], &byte, 1);
    errno = saved;
}

bool makePipe()
{
    if (::pipe(g_pipe) != 0)
        return false;
    for (int fd : g_pipe) {
        ::fcntl(fd, F_SETFD, FD_CLOEXEC);
        ::fcntl(fd, F_SETFL, ::fcntl(fd, F_GETFL) | O_NONBLOCK);
    }
    return true;
}

} // namespace

ProcessSignals::ProcessSignals(QObject* parent)
    : QObject(parent)
{
    if (g_pipe[0] >= 0 || !makePipe())
        return;
    notifier_ = std::make_unique<QSocketNotifier>(g_pipe[0], QSocketNotifier::Read);
    connect(notifier_.get(), &QSocketNotifier::activated, this, &ProcessSignals::readPipe);
    struct sigaction action {};
    action.sa_handler = onSignal;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    for (int number : kHandled)
        ::sigaction(number, &action, nullptr);
}

ProcessSignals::~ProcessSignals()
{
    if (!notifier_)
        return;
    for (int number : kHandled)
        std::signal(number, SIG_DFL);
    notifier_.reset();
    for (int& fd : g_pipe) {
        ::close(fd);
        fd = -1;
    }
}

void ProcessSignals::readPipe()
{
    unsigned char byte = 0;
    while (::read(g_pipe[0], &byte, 1) == 1) {
        if (byte == SIGHUP)
            emit reloadAsked();
        else
            emit stopAsked();
    }
}

#else // no such signals: nothing to install

ProcessSignals::ProcessSignals(QObject* parent)
    : QObject(parent)
{
}

ProcessSignals::~ProcessSignals() = default;

void ProcessSignals::readPipe() {}

#endif
