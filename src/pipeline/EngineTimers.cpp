#include "pipeline/EngineTimers.h"

#include "pipeline/Engine.h"

#include <QFileInfo>

namespace {
void follow(QTimer& timer, const Engine::TimerState& state)
{
    if (!state.armed) {
        timer.stop();
        return;
    }
    if (!timer.isActive() || timer.interval() != state.intervalMs)
        timer.start(state.intervalMs);
}
} // namespace

EngineTimers::EngineTimers(Engine& engine, QObject* parent)
    : QObject(parent)
    , engine_(engine)
    , arrivals_(engine)
{
    // Coarse timers may fire up to 5% late: a 3-second tick keeps its time.
    timer1_.setTimerType(Qt::PreciseTimer);
    arrivalLook_.setSingleShot(true);
    connect(&timer1_, &QTimer::timeout, &engine_, &Engine::timer1Tick);
    connect(&timer2_, &QTimer::timeout, &engine_, &Engine::timer2Tick);
    connect(&mTimer_, &QTimer::timeout, &engine_, &Engine::mTimerTick);
    connect(&engine_, &Engine::timersChanged, this, &EngineTimers::sync);
    connect(&engine_, &Engine::freed, this, &EngineTimers::followFolder);
    connect(&folderWatch_, &QFileSystemWatcher::directoryChanged, this, &EngineTimers::folderChanged);
    connect(&arrivalLook_, &QTimer::timeout, this, &EngineTimers::look);
    sync();
    followFolder();
}

void EngineTimers::sync()
{
    follow(timer1_, engine_.timer1());
    follow(timer2_, engine_.timer2());
    follow(mTimer_, engine_.mTimer());
}

// After every start, tick and job: the folder may have changed with param.ini,
// or gone and come back. A look owed while the engine was busy is run now.
void EngineTimers::followFolder()
{
    const QString wanted = arrivals_.folder();
    const QStringList watched = folderWatch_.directories();
    if (watched != QStringList{wanted}) {
        if (!watched.isEmpty())
            folderWatch_.removePaths(watched);
        if (!wanted.isEmpty() && QFileInfo(wanted).isDir())
            folderWatch_.addPath(wanted);
    }
    if (arrivals_.due())
        lookSoon(0);
}

void EngineTimers::folderChanged()
{
    arrivals_.folderChanged();
    lookSoon(0);
}

void EngineTimers::lookSoon(int ms)
{
    // An earlier look already set stays.
    if (arrivalLook_.isActive() && arrivalLook_.remainingTime() <= ms)
        return;
    arrivalLook_.start(ms);
}

void EngineTimers::look()
{
    if (const std::optional<int> next = arrivals_.look())
        lookSoon(*next);
}
