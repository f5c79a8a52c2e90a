#pragma once

#include "config/JobSettings.h"

#include <QString>

// Everything param.ini can say. Values are cut out by fixed column and length
// and kept as text; a missing key leaves its value empty.
struct ParamSettings {
    JobSettings job;
    QString port;
    QString baud;
    // Read at start only.
    QString spRet;
    QString cpDOS;
    QString eMail;
    QString ZeMail;
    bool autoStart = false;

    bool operator==(const ParamSettings&) const = default;

    // "[spRet   ]" and "[cpDOS   ]" as flags, "[ZeMail  ]" as a whole number.
    static bool flagValue(const QString& text);
    static int wholeNumberValue(const QString& text);
};

// The start reads every key; a poll reads all but [spRet   ], [cpDOS   ],
// [eMail   ], [ZeMail  ] and [AutoStar], which count from the next start only.
enum class ParamReader { Start, Tick };

ParamSettings readParamText(const QString& text, ParamReader reader);

// False when the file cannot be read; settings are then all empty.
bool readParamFile(const QString& path, ParamReader reader, ParamSettings& settings);
