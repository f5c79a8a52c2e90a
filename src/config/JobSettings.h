#pragma once

#include <QString>

// The text settings a job runs with, as param.ini or the command line give
// them. Flags stay text ("true", "fals", "true N", ...): readers compare them.
struct JobSettings {
    QString file;
    QString location;
    QString multiType; // "true": polling way; "fals": one file, then the end
    QString printDesc;
    QString printCode;
    QString comments;
    QString currency;
    QString keybOff;
    QString dirDepa;
    QString quantity;
    QString time;
    QString code;
    QString ecrt;

    bool operator==(const JobSettings&) const = default;
};
