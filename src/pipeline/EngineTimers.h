#pragma once

#include <QObject>
#include <QTimer>

class Engine;

// Real timers for the engine: Timer1, Timer2 and mTimer follow the engine's
// armed state and interval and call its ticks on the engine's thread.
class EngineTimers : public QObject {
    Q_OBJECT
public:
    explicit EngineTimers(Engine& engine, QObject* parent = nullptr);

private:
    void sync();

    Engine& engine_;
    QTimer timer1_;
    QTimer timer2_;
    QTimer mTimer_;
};
