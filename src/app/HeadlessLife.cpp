#include "HeadlessLife.h"

#include "Arguments.h"
#include "ParamFileWait.h"
#include "PortLock.h"
#include "ProcessSignals.h"
#include "StopOnSignal.h"
#include "config/ParamFileReader.h"
#include "link/QtTransportFactory.h"
#include "pipeline/ActionRun.h"
#include "pipeline/CommandLine.h"
#include "pipeline/Driver.h"
#include "pipeline/EngineTimers.h"
#include "shell/Clock.h"
#include "shell/ConsoleLine.h"
#include "shell/FormModel.h"
#include "shell/HeadlessOperator.h"
#include "shell/Paths.h"

#include <QCoreApplication>
#include <QDir>
#include <QTemporaryFile>
#include <QTimer>
#include <cstdio>

namespace {
using console::Level;

void printLine(const QString& text)
{
    std::printf("%s\n", text.toUtf8().constData());
    std::fflush(stdout);
}

// The port the life starts on: the command line's, or param.ini's.
// The engine's exit code, or what a stop made of it.
int exitCodeOf(int engineCode, const ModuleVariables& vars, int waitLimitSeconds)
{
    switch (vars.Stop) {
    case StopCause::None:
        return engineCode;
    case StopCause::Signal:
        console::say(Level::Notice, QStringLiteral("Τερματισμός μετά από σήμα"));
        return engineCode;
    case StopCause::WaitLimit:
        console::say(Level::Error,
                     QStringLiteral("Η ταμειακή έμεινε απασχολημένη πάνω από %1 δευτερόλεπτα· "
                                    "η εργασία διακόπηκε")
                         .arg(waitLimitSeconds));
        return engineCode == 0 ? headless::kExitWaitLimit : engineCode;
    }
    return engineCode;
}
// Result files named relative to the working directory, and the program's
// files when it is also the program's directory, cannot be written there:
// said once at the start, before any job finds it out.
void warnWhenReadOnly(const QString& directory)
{
    QTemporaryFile probe(QDir(directory).filePath(QStringLiteral(".kerbano-XXXXXX")));
    if (probe.open())
        return;
    console::say(Level::Warning,
                 QStringLiteral("Ο κατάλογος εργασίας %1 δεν δέχεται εγγραφή: τα αρχεία "
                                "αποτελεσμάτων που ορίζονται σε αυτόν δεν θα γραφτούν")
                     .arg(QDir::toNativeSeparators(directory)));
}
} // namespace

// The [port] the life will open: the command line's, else param.ini's.
static QString startPort(const Arguments& args)
{
    if (!args.commandLine.isEmpty())
        return readcoman(args.commandLine).port;
    ParamSettings settings;
    if (!readParamFile(QDir::current().filePath(QStringLiteral("param.ini")), ParamReader::Start,
                       settings))
        return {};
    return settings.port;
}

bool takePortOfLife(const Arguments& args, PortLock& lock)
{
    const QString port = startPort(args);
    if (lock.take(port))
        return true;
    console::say(Level::Error, QStringLiteral("Η θύρα %1 χρησιμοποιείται ήδη από άλλο kerbano (%2)")
                                   .arg(port.trimmed())
                                   .arg(lock.holder()));
    return false;
}

int runHeadless(const Arguments& args)
{
    PortLock portLock;
    if (!takePortOfLife(args, portLock))
        return headless::kExitPortTaken;

    RealClock clock;
    HeadlessOperator person(args.answers);
    FormModel form;
    QObject::connect(&form, &FormModel::statusLineChanged, &printLine);

    const bool oneAction = !args.run.isEmpty();
    QtTransportFactory transports;
    Driver driver(clock, person, form, transports,
                  DriverOptions{QDir::currentPath(), ProgramDirectory(), args.commandLine, !oneAction});
    Engine& engine = driver.engine();
    ModuleVariables& vars = engine.moduleVariables();
    vars.DebugEnabled = args.log;
    if (engine.commandLineLife())
        vars.WaitLimitMs = qint64(args.waitLimitSeconds) * 1000;
    EngineTimers timers(engine);
    ActionRun actionRun(engine, driver.actions(), args.run);
    ProcessSignals processSignals;
    StopOnSignal stopOnSignal(engine, processSignals);
    // A resident life begun without param.ini stays up and waits for it.
    ParamFileWait paramWait(engine, QDir::current().filePath(QStringLiteral("param.ini")),
                            [&] { return takePortOfLife(args, portLock); },
                            headless::kExitPortTaken);
    QObject::connect(&processSignals, &ProcessSignals::reloadAsked, &paramWait, &ParamFileWait::look);
    warnWhenReadOnly(QDir::currentPath());

    QObject::connect(&engine, &Engine::ended, QCoreApplication::instance(), [&](int code) {
        QCoreApplication::exit(exitCodeOf(code, vars, args.waitLimitSeconds));
    });
    QTimer::singleShot(0, &engine, [&] {
        if (!oneAction) {
            engine.Form_Load();
            paramWait.beginIfMissing();
            return;
        }
        // One action with no param.ini: nobody is there to fix it; end.
        if (actionRun.start() && !engine.hasEnded() && !engine.parametersRead())
            QCoreApplication::exit(headless::kExitNoParamFile);
    });
    const int code = QCoreApplication::exec();
    // A Z file's mail still on its way is told before the life ends.
    driver.zMail().waitForOutcomes();
    return code;
}
