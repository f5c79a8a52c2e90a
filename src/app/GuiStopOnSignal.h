#pragma once

#include <QObject>

class EngineThread;
class ProcessSignals;

// The process's signals in the window's life, where the engine lives on a
// thread of its own: each is handed to the engine's thread and does there
// what it does in the headless life (StopOnSignal): SIGTERM and SIGINT let the
// job in hand reach its line boundary, close the result file and the link and
// end with 0; SIGHUP reads param.ini again.
class GuiStopOnSignal : public QObject {
    Q_OBJECT
public:
    GuiStopOnSignal(EngineThread& engine, ProcessSignals& processSignals, QObject* parent = nullptr);
};
