#include "shell/Clock.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QThread>
#include <QTimer>

QString Clock::stamp() const
{
    return now().toString(QStringLiteral("dd/MM/yyyy hh:mm:ss"));
}

namespace {
qint64 steadyNs()
{
    return std::chrono::duration_cast<std::chrono::nanoseconds>(
               std::chrono::steady_clock::now().time_since_epoch())
        .count();
}
} // namespace

RealClock::RealClock()
    : startNs_(steadyNs())
{
}

qint64 RealClock::monotonicMs() const
{
    return (steadyNs() - startNs_) / 1000000;
}

void RealClock::sleepMs(qint64 ms)
{
    if (ms > 0)
        QThread::msleep(static_cast<unsigned long>(ms));
}

void RealClock::pumpFor(qint64 ms)
{
    if (ms <= 0) {
        QCoreApplication::processEvents();
        return;
    }
    // A local loop that wakes for events and for the deadline: no spinning.
    QEventLoop loop;
    QTimer::singleShot(ms, Qt::PreciseTimer, &loop, &QEventLoop::quit);
    loop.exec();
}

QDateTime RealClock::now() const
{
    return QDateTime::currentDateTime();
}

VirtualClock::VirtualClock(QDateTime wallStart)
    : wallStart_(std::move(wallStart))
{
}

void VirtualClock::pumpFor(qint64 ms)
{
    QCoreApplication::processEvents();
    advance(ms);
}

void VirtualClock::advance(qint64 ms)
{
    if (ms > 0)
        nowMs_ += ms;
}
