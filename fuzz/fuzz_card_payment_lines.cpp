// The register's card transactions of the receipt ("5/99/0/ ///1/1/") turned
// into the result file's ccPay lines. The input is the reply.
#include "pipeline/JobClosing.h"
#include "records/ReceiptState.h"

#include "support/FuzzScratch.h"
#include "support/ReplyScript.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    ScriptedLink link;
    ReplyScript replies(fuzzing::bytesOf(data, size));
    replies.answer(link);
    ReceiptState receipt;
    CardPaymentLines(link, receipt);
    return 0;
}
