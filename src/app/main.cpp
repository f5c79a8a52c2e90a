#include "Arguments.h"
#include "GuiLife.h"
#include "HeadlessLife.h"

#include <QCoreApplication>
#include <cstdio>

int main(int argc, char** argv)
{
    if (WantsWindow(argc, argv))
        return runGui(argc, argv);
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("kerbano"));
    QCoreApplication::setApplicationVersion(QStringLiteral(KERBANO_VERSION));

    const Arguments args = parseArguments(QCoreApplication::arguments());
    if (!args.error.isEmpty()) {
        std::fprintf(stderr, "%s\n", args.error.toUtf8().constData());
        return 1;
    }
    if (args.help) {
        std::fputs(usageText(), stdout);
        return 0;
    }
    if (args.version) {
        std::printf("kerbano %s\n", KERBANO_VERSION);
        return 0;
    }
    return runHeadless(args);
}
