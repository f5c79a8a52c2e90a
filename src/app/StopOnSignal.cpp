#include "StopOnSignal.h"

#include "ProcessSignals.h"
#include "pipeline/Engine.h"

StopOnSignal::StopOnSignal(Engine& engine, ProcessSignals& processSignals, QObject* parent)
    : QObject(parent)
    , engine_(engine)
{
    connect(&processSignals, &ProcessSignals::stopAsked, this, [this] {
        QMetaObject::invokeMethod(&engine_, [this] { StopEngineOnSignal(engine_); });
    });
    connect(&processSignals, &ProcessSignals::reloadAsked, this, [this] {
        QMetaObject::invokeMethod(&engine_, [this] { reload(); });
    });
}

void StopEngineOnSignal(Engine& engine)
{
    ModuleVariables& vars = engine.moduleVariables();
    if (vars.Stop == StopCause::None)
        vars.Stop = StopCause::Signal;
    if (!engine.busy()) {
        engine.unload(0);
        return;
    }
    // Whatever runs now reaches its end first; the engine is free after it.
    QObject::connect(&engine, &Engine::freed, &engine, [&engine] { engine.unload(0); },
                     Qt::SingleShotConnection);
}

void StopOnSignal::reload()
{
    engine_.rereadSettings();
}
