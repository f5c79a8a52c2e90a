#include "StopOnSignal.h"

#include "ProcessSignals.h"
#include "pipeline/Engine.h"

StopOnSignal::StopOnSignal(Engine& engine, ProcessSignals& processSignals, QObject* parent)
    : QObject(parent)
    , engine_(engine)
{
    connect(&processSignals, &ProcessSignals::stopAsked, this, [this] {
        QMetaObject::invokeMethod(&engine_, [this] { stop(); });
    });
    connect(&processSignals, &ProcessSignals::reloadAsked, this, [this] {
        QMetaObject::invokeMethod(&engine_, [this] { reload(); });
    });
}

void StopOnSignal::stop()
{
    ModuleVariables& vars = engine_.moduleVariables();
    if (vars.Stop == StopCause::None)
        vars.Stop = StopCause::Signal;
    if (!engine_.busy()) {
        engine_.unload(0);
        return;
    }
    // Whatever runs now reaches its end first; the engine is free after it.
    connect(&engine_, &Engine::freed, this, [this] { engine_.unload(0); },
            Qt::SingleShotConnection);
}

void StopOnSignal::reload()
{
    engine_.rereadSettings();
}
