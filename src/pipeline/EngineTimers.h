#pragma once

#include "pipeline/ArrivalWatch.h"

#include <QFileSystemWatcher>
#include <QObject>
#include <QTimer>

class Engine;

// Real timers for the engine: Timer1, Timer2 and mTimer follow the engine's
// armed state and interval and call its ticks on the engine's thread. The
// print-file folder is watched as well, so a file is printed as it lands;
// Timer1 stays the fallback.
class EngineTimers : public QObject {
    Q_OBJECT
public:
    explicit EngineTimers(Engine& engine, QObject* parent = nullptr);

    const ArrivalWatch& arrivals() const { return arrivals_; }

private:
    void sync();
    void followFolder();
    void folderChanged();
    void lookSoon(int ms);
    void look();

    Engine& engine_;
    QTimer timer1_;
    QTimer timer2_;
    QTimer mTimer_;
    ArrivalWatch arrivals_;
    QFileSystemWatcher folderWatch_;
    QTimer arrivalLook_;
};
