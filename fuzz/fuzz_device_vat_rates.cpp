// The register's answer to "e/" written into vats.dat at start.
#include "operations/DeviceVatRates.h"

#include "support/FuzzScratch.h"
#include "support/ReplyScript.h"

#include <QLocale>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    ScriptedLink link;
    ReplyScript replies(fuzzing::bytesOf(data, size));
    replies.answer(link);
    ReadDeviceVatRates(link, fuzzing::scratchPath(QStringLiteral("vats.dat")), QLocale::c());
    return 0;
}
