#pragma once

#include <QtGlobal>

// What a job amounted to, as the register tells it at the end of the job.
// The defaults are the "not read" values.
struct DocumentFigures {
    double amount = 0.0;
    qint32 recNumberProgr = -1;
    qint16 recNumberDaily = -1;
    qint16 ordNumber = -1;
};
