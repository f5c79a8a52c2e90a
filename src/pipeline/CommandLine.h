#pragma once

#include "config/JobSettings.h"

#include <QString>

// The system's own command line: port,baud,file,time,ecrt,flags.
struct CommandLineFields {
    QString port;
    QString baud;
    QString file;
    QString time;
    QString ecrt;
    QString flags;
};

// Splits at "," or " "; the first five separators mark the fields and flags
// is everything behind the fifth. A field that came out empty becomes "e";
// fields never reached stay empty.
CommandLineFields readcoman(const QString& commandLine);

// The checks of the start: every field there and seven flag characters.
bool commandLineUsable(const CommandLineFields& fields);

// The job settings the command line stands for.
JobSettings commandLineSettings(const CommandLineFields& fields);

// A command line ending in "`" also starts the site's batch file.
bool commandLineStartsBatch(const QString& commandLine);
