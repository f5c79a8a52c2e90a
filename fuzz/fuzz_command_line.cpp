// The system's own command line, port,baud,file,time,ecrt,flags, as the
// process receives it.
#include "pipeline/CommandLine.h"

#include "support/FuzzScratch.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const QString line = QString::fromUtf8(fuzzing::bytesOf(data, size));
    const CommandLineFields fields = readcoman(line);
    if (commandLineUsable(fields))
        commandLineSettings(fields);
    commandLineStartsBatch(line);
    return 0;
}
