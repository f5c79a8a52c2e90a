#include "GuiLife.h"

#include "Arguments.h"
#include "GuiStopOnSignal.h"
#include "HeadlessLife.h"
#include "PortLock.h"
#include "ProcessSignals.h"
#include "shell/Paths.h"
#include "ui/KerbanoGui.h"

#include <QApplication>
#include <QDir>
#include <cstdio>
#include <cstring>

bool WantsWindow(int argc, char** argv)
{
    for (int i = 1; i < argc; ++i) {
        for (const char* option : {"--headless", "--help", "--version"}) {
            if (std::strcmp(argv[i], option) == 0)
                return false;
        }
    }
    return true;
}

int runGui(int argc, char** argv)
{
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("kerbano"));
    QApplication::setApplicationVersion(QStringLiteral(KERBANO_VERSION));
    // Hidden to the tray is not the end: only the menu entry end ends.
    QApplication::setQuitOnLastWindowClosed(false);

    const Arguments args = parseArguments(QApplication::arguments());
    if (!args.error.isEmpty()) {
        std::fprintf(stderr, "%s\n", args.error.toUtf8().constData());
        return 1;
    }
    PortLock portLock;
    if (!takePortOfLife(args, portLock))
        return headless::kExitPortTaken;
    EngineThread::Setup setup;
    setup.driver = DriverOptions{QDir::currentPath(), ProgramDirectory(), args.commandLine,
                                 args.run.isEmpty()};
    setup.runAction = args.run;
    KerbanoGui gui(std::move(setup));
    ProcessSignals processSignals;
    GuiStopOnSignal stopOnSignal(gui.engine(), processSignals);
    QObject::connect(&gui, &KerbanoGui::ended, &app, [](int code) { QApplication::exit(code); });
    gui.start();
    const int code = QApplication::exec();
    gui.stop();
    return code;
}
