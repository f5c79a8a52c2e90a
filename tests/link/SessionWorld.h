#pragma once

#include "FakeTransport.h"
#include "ScriptedOperator.h"

#include "link/DevicePort.h"
#include "link/DeviceSession.h"
#include "shell/Clock.h"
#include "shell/CommunicationLog.h"
#include "shell/FormModel.h"
#include "shell/ModuleVariables.h"
#include "shell/ResultSink.h"

#include <QStringList>
#include <QTemporaryDir>

// The result file's writer as the session sees it: the lines handed over and
// the notes kept for the end of the job.
struct RecordingSink final : ResultSink {
    QStringList lines;
    QStringList notes;
    void appendResultLine(const QString& line) override { lines << line; }
    void noteBeforeExit(const QString& line) override { notes << line; }
};

// A device session over a fake transport on the virtual clock, with all it
// talks to: what the session tests put together, each with its own register.
struct SessionWorld {
    VirtualClock clock;
    ModuleVariables vars;
    QTemporaryDir dir;
    CommunicationLog log{dir.path(), vars};
    ScriptedOperator op;
    FormModel form;
    FakeFactory factory{clock};
    RecordingSink results;
    DevicePort port{vars, clock, op, factory, log};
    DeviceSession link{port, vars, clock, op, form, results, log};
};
