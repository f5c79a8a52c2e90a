#include "GuiStopOnSignal.h"

#include "ProcessSignals.h"
#include "StopOnSignal.h"
#include "pipeline/Driver.h"
#include "ui/EngineThread.h"

GuiStopOnSignal::GuiStopOnSignal(EngineThread& engine, ProcessSignals& processSignals,
                                 QObject* parent)
    : QObject(parent)
{
    connect(&processSignals, &ProcessSignals::stopAsked, this, [&engine] {
        engine.post([](Driver& driver) { StopEngineOnSignal(driver.engine()); });
    });
    connect(&processSignals, &ProcessSignals::reloadAsked, this, [&engine] {
        engine.post([](Driver& driver) { driver.engine().rereadSettings(); });
    });
}
