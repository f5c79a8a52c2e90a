#include "ParamFileWait.h"

#include "config/ParamFileReader.h"
#include "pipeline/Engine.h"
#include "shell/ConsoleLine.h"

#include <QDir>

using console::Level;

ParamFileWait::ParamFileWait(Engine& engine, QString paramPath, std::function<bool()> beforeStart,
                             int refusedExitCode, QObject* parent)
    : QObject(parent)
    , engine_(engine)
    , paramPath_(std::move(paramPath))
    , beforeStart_(std::move(beforeStart))
    , refusedExitCode_(refusedExitCode)
{
    timer_.setInterval(Engine::kTimer1DesignedMs);
    connect(&timer_, &QTimer::timeout, this, &ParamFileWait::look);
}

void ParamFileWait::beginIfMissing()
{
    if (engine_.hasEnded() || engine_.commandLineLife() || engine_.parametersRead())
        return;
    console::say(Level::Notice, QStringLiteral("Αναμονή για το αρχείο παραμέτρων %1· "
                                               "η εκκίνηση συνεχίζεται μόλις διαβαστεί")
                                    .arg(QDir::toNativeSeparators(paramPath_)));
    timer_.start();
}

void ParamFileWait::look()
{
    if (!waiting())
        return;
    if (engine_.hasEnded() || engine_.stopRequested()) {
        timer_.stop();
        return;
    }
    ParamSettings settings;
    if (engine_.busy() || !readParamFile(paramPath_, ParamReader::Start, settings))
        return;
    timer_.stop();
    if (beforeStart_ && !beforeStart_()) {
        engine_.unload(refusedExitCode_);
        return;
    }
    console::say(Level::Notice, QStringLiteral("Βρέθηκε το αρχείο παραμέτρων %1· εκκίνηση")
                                    .arg(QDir::toNativeSeparators(paramPath_)));
    engine_.Form_Load();
}
