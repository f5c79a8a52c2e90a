#pragma once

#include "pipeline/ActionRegistry.h"
#include "pipeline/EngineState.h"

#include <QObject>
#include <QString>

class Engine;

// kerbano --run NAME: the usual start, the device search, then, once the
// register has answered, that one menu action, then the end. The process
// ends with one of the codes below.
class ActionRun : public QObject {
    Q_OBJECT
public:
    static constexpr int kExitRan = 0;
    static constexpr int kExitUnknownAction = 1;
    static constexpr int kExitRegisterNotFound = 2;
    static constexpr int kExitNotBuilt = 3;
    static constexpr int kExitNotNow = 4;

    ActionRun(Engine& engine, ActionRegistry& actions, QString name, QObject* parent = nullptr);

    // In place of a bare Form_Load. False when the name runs nothing: that is
    // told at once, and the end follows without a start.
    bool start();

    static int exitCodeOf(ActionRegistry::Outcome outcome);

private:
    void stateEntered(EngineState state);
    void finished(const QString& name, ActionRegistry::Outcome outcome);
    void endLater(int code);

    Engine& engine_;
    ActionRegistry& actions_;
    QString name_;
    bool triggered_ = false;
};
