#pragma once

#include <QObject>

class Engine;
class ProcessSignals;

// What the process's signals do to the engine, in any life. SIGTERM and
// SIGINT: no new job starts, the job in hand stops at its next line (a
// device-wait ends without the command going out again; a card payment is
// waited out), its result file closes, the link closes and the engine ends
// with 0. SIGHUP: param.ini is read again, as the next tick would read it.
// The engine may live on another thread: everything runs on its own.
class StopOnSignal : public QObject {
    Q_OBJECT
public:
    StopOnSignal(Engine& engine, ProcessSignals& processSignals, QObject* parent = nullptr);

private:
    void reload();

    Engine& engine_;
};

// The stop itself, run on the engine's own thread: marks the process as
// ending and unloads the engine now, or once whatever runs has reached its end.
void StopEngineOnSignal(Engine& engine);
