#pragma once

#include "shell/Clock.h"

// The minute and second in front of each exchange line of the log.
inline QString LinkLogStamp(const Clock& clock)
{
    return clock.now().toString(QStringLiteral("mm:ss"));
}
