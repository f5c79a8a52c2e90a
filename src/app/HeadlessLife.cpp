#include "HeadlessLife.h"

#include "Arguments.h"
#include "link/QtTransportFactory.h"
#include "pipeline/ActionRun.h"
#include "pipeline/Driver.h"
#include "pipeline/EngineTimers.h"
#include "shell/Clock.h"
#include "shell/FormModel.h"
#include "shell/HeadlessOperator.h"
#include "shell/Paths.h"

#include <QCoreApplication>
#include <QDir>
#include <QTimer>
#include <cstdio>

namespace {
constexpr int kExitNoParamFile = 1;

void printLine(const QString& text)
{
    std::printf("%s\n", text.toUtf8().constData());
    std::fflush(stdout);
}
} // namespace

int runHeadless(const Arguments& args)
{
    RealClock clock;
    HeadlessOperator person(args.answers);
    FormModel form;
    QObject::connect(&form, &FormModel::statusLineChanged, &printLine);

    const bool oneAction = !args.run.isEmpty();
    QtTransportFactory transports;
    Driver driver(clock, person, form, transports,
                  DriverOptions{QDir::currentPath(), ProgramDirectory(), args.commandLine, !oneAction});
    Engine& engine = driver.engine();
    EngineTimers timers(engine);
    ActionRun actionRun(engine, driver.actions(), args.run);

    QObject::connect(&engine, &Engine::ended, QCoreApplication::instance(),
                     [](int code) { QCoreApplication::exit(code); });
    QTimer::singleShot(0, &engine, [&] {
        bool started = true;
        if (oneAction)
            started = actionRun.start();
        else
            engine.Form_Load();
        // With no param.ini and no window there is nobody to fix it: end.
        if (started && !engine.hasEnded() && !engine.commandLineLife() && !engine.parametersRead())
            QCoreApplication::exit(kExitNoParamFile);
    });
    const int code = QCoreApplication::exec();
    // A Z file's mail still on its way is told before the life ends.
    driver.zMail().waitForOutcomes();
    return code;
}
