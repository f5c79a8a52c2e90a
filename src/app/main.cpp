#include "pipeline/Engine.h"
#include "pipeline/EngineTimers.h"
#include "link/QtTransportFactory.h"
#include "pipeline/Driver.h"
#include "shell/Paths.h"
#include "shell/Clock.h"
#include "shell/FormModel.h"
#include "shell/HeadlessOperator.h"

#include <QCoreApplication>
#include <QDir>
#include <QStringList>
#include <QTimer>
#include <cstdio>

namespace {

const char kUsage[] =
    "Χρήση: kerbano [--headless] [port,baud,file,time,ecrt,flags]\n"
    "\n"
    "  (χωρίς όρισμα)   διαβάζει το param.ini του τρέχοντος καταλόγου και περιμένει\n"
    "                   αρχεία εκτύπωσης\n"
    "  --headless       η ίδια λειτουργία χωρίς παράθυρο· η γραμμή κατάστασης\n"
    "                   τυπώνεται στην έξοδο\n"
    "  port,baud,file,time,ecrt,flags\n"
    "                   τυπώνει ένα αρχείο και τερματίζει (π.χ. com1,9600,print.txt,0,TECFP,1111111)\n"
    "  --help           αυτό το κείμενο\n"
    "  --version        η έκδοση\n";

struct Arguments {
    bool headless = false;
    bool help = false;
    bool version = false;
    QString commandLine;
};

// Options starting with "--" come out first; what stays is the system's own
// command line, split later at "," or blank.
Arguments parseArguments(const QStringList& args)
{
    Arguments out;
    QStringList rest;
    for (qsizetype i = 1; i < args.size(); ++i) {
        const QString& a = args.at(i);
        if (a == QLatin1String("--headless"))
            out.headless = true;
        else if (a == QLatin1String("--help"))
            out.help = true;
        else if (a == QLatin1String("--version"))
            out.version = true;
        else if (!a.startsWith(QLatin1String("--")))
            rest << a;
    }
    out.commandLine = rest.join(QLatin1Char(' '));
    return out;
}

void printLine(const QString& text)
{
    std::printf("%s\n", text.toUtf8().constData());
    std::fflush(stdout);
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("kerbano"));
    QCoreApplication::setApplicationVersion(QStringLiteral(KERBANO_VERSION));

    const Arguments args = parseArguments(QCoreApplication::arguments());
    if (args.help) {
        std::fputs(kUsage, stdout);
        return 0;
    }
    if (args.version) {
        std::printf("kerbano %s\n", KERBANO_VERSION);
        return 0;
    }

    // The window comes with the ui library; until then every life runs headless.
    RealClock clock;
    HeadlessOperator person;
    FormModel form;
    QObject::connect(&form, &FormModel::statusLineChanged, &printLine);

    QtTransportFactory transports;
    Driver driver(clock, person, form, transports,
                  DriverOptions{QDir::currentPath(), ProgramDirectory(), args.commandLine});
    Engine& engine = driver.engine();
    EngineTimers timers(engine);

    QObject::connect(&engine, &Engine::ended, &app, [](int code) { QCoreApplication::exit(code); });
    QTimer::singleShot(0, &engine, [&engine] {
        engine.Form_Load();
        // With no param.ini and no window there is nobody to fix it: end.
        if (!engine.hasEnded() && !engine.commandLineLife() && !engine.parametersRead())
            QCoreApplication::exit(1);
    });
    return app.exec();
}
