// The card transactions reply ("5/99/0/ ///1/1/") turned into result lines.
#include "pipeline/JobClosing.h"
#include "shell/CodePage.h"

#include "support/FuzzScratch.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    CardPaymentLinesOfReply(codepage::fromWin1253(fuzzing::bytesOf(data, size)));
    return 0;
}
