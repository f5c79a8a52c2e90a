// param.ini of any bytes, read by the start and by a poll, and its flag and
// number values read as the driver reads them.
#include "config/ParamFileReader.h"

#include "support/FuzzScratch.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const QString path =
        fuzzing::writeScratchFile(QStringLiteral("param.ini"), fuzzing::bytesOf(data, size));
    ParamSettings start;
    readParamFile(path, ParamReader::Start, start);
    ParamSettings tick;
    readParamFile(path, ParamReader::Tick, tick);
    ParamSettings::flagValue(start.spRet);
    ParamSettings::flagValue(start.cpDOS);
    ParamSettings::wholeNumberValue(start.ZeMail);
    ParamSettings::wholeNumberValue(start.job.time);
    return 0;
}
