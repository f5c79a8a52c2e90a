#include "pipeline/EngineTimers.h"

#include "pipeline/Engine.h"

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
{
    connect(&timer1_, &QTimer::timeout, &engine_, &Engine::timer1Tick);
    connect(&timer2_, &QTimer::timeout, &engine_, &Engine::timer2Tick);
    connect(&mTimer_, &QTimer::timeout, &engine_, &Engine::mTimerTick);
    connect(&engine_, &Engine::timersChanged, this, &EngineTimers::sync);
    sync();
}

void EngineTimers::sync()
{
    follow(timer1_, engine_.timer1());
    follow(timer2_, engine_.timer2());
    follow(mTimer_, engine_.mTimer());
}
