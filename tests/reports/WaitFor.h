#pragma once

#include <QEventLoop>
#include <QObject>
#include <QTimer>

// Runs the event loop until the signal comes, for at most ten seconds.
template <typename Sender, typename Signal>
bool waitFor(Sender* sender, Signal signal)
{
    QEventLoop loop;
    bool came = false;
    QObject::connect(sender, signal, &loop, [&] {
        came = true;
        loop.quit();
    });
    QTimer::singleShot(10000, &loop, &QEventLoop::quit);
    loop.exec();
    return came;
}
