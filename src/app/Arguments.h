#pragma once

#include <QString>
#include <QStringList>

// kerbano's arguments. Options beginning with "--" come out first (with the
// value that --run and --answer take from the argument behind them); what
// stays is the system's own command line, split later at "," or blank.
struct Arguments {
    bool headless = false;
    bool help = false;
    bool version = false;
    QString run;         // the menu action to run, by name
    QStringList answers; // for that action's questions, in order
    QString commandLine;
    QString error;       // set when the arguments can't be used
};

Arguments parseArguments(const QStringList& args);

// The text of --help.
const char* usageText();
