#include "pipeline/ActionRun.h"

#include "pipeline/Engine.h"

#include <QTimer>

ActionRun::ActionRun(Engine& engine, ActionRegistry& actions, QString name, QObject* parent)
    : QObject(parent)
    , engine_(engine)
    , actions_(actions)
    , name_(std::move(name))
{
}

bool ActionRun::start()
{
    connect(&actions_, &ActionRegistry::finished, this, &ActionRun::finished);
    // A name that runs nothing is told before the register is troubled.
    if (!actions_.isBuilt(name_)) {
        triggered_ = true;
        actions_.trigger(name_);
        return false;
    }
    connect(&engine_, &Engine::stateEntered, this, &ActionRun::stateEntered);
    engine_.Form_Load();
    return true;
}

void ActionRun::stateEntered(EngineState state)
{
    switch (state) {
    case EngineState::Ready:
        // Entered inside the search's tick: the action waits until it is over.
        if (!triggered_) {
            triggered_ = true;
            actions_.trigger(name_);
        }
        break;
    case EngineState::LinkFailed:
    case EngineState::OffLine:
        if (!triggered_)
            endLater(kExitRegisterNotFound);
        break;
    default:
        break;
    }
}

void ActionRun::finished(const QString& name, ActionRegistry::Outcome outcome)
{
    if (name == name_)
        endLater(exitCodeOf(outcome));
}

int ActionRun::exitCodeOf(ActionRegistry::Outcome outcome)
{
    switch (outcome) {
    case ActionRegistry::Outcome::Ran:
    case ActionRegistry::Outcome::Queued:
        return kExitRan;
    case ActionRegistry::Outcome::Unknown:
        return kExitUnknownAction;
    case ActionRegistry::Outcome::NotBuilt:
        return kExitNotBuilt;
    case ActionRegistry::Outcome::Disabled:
        return kExitNotNow;
    }
    return kExitNotNow;
}

// Out of whatever tick or action is on the stack first.
void ActionRun::endLater(int code)
{
    QTimer::singleShot(0, &engine_, [this, code] { engine_.unload(code); });
}
