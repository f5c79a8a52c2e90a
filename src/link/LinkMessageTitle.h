#pragma once

#include "shell/ModuleVariables.h"

#include <QString>

// Title of the link's message boxes: the register's label, or the program's
// own title while no identification has begun yet.
inline QString LinkMessageTitle(const ModuleVariables& vars)
{
    return vars.DeviceLabel.isEmpty() ? QStringLiteral("Μύνημα Kerbano") : vars.DeviceLabel;
}
