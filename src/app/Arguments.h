#pragma once

#include <QString>
#include <QStringList>

// kerbano's arguments. Options beginning with "--" come out first (with the
// value that --run and --answer take from the argument behind them); what
// stays is the system's own command line, split later at "," or blank.
struct Arguments {
    static constexpr int kDefaultWaitLimitSeconds = 300;

    bool headless = false;
    bool help = false;
    bool version = false;
    bool log = false;          // the communication log on from the start
    // How long the command-line life lets one command wait on a busy
    // register; 0: as long as it takes.
    int waitLimitSeconds = kDefaultWaitLimitSeconds;
    QString run;         // the menu action to run, by name
    QStringList answers; // for that action's questions, in order
    QString commandLine;
    QString error;       // set when the arguments can't be used
};

Arguments parseArguments(const QStringList& args);

// The text of --help.
const char* usageText();
