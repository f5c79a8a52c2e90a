// The readers of the job's end (receipt totals, progressive base, the table's
// amount and last item) against whatever the register replies. The first byte
// is the table, as a digit ("0": no table); the replies follow.
#include "tables/MDocData.h"

#include "support/FuzzScratch.h"
#include "support/ReplyScript.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size == 0)
        return 0;
    const qint16 table = static_cast<qint16>(data[0] - '0');
    ScriptedLink link;
    ReplyScript replies(fuzzing::bytesOf(data + 1, size - 1));
    replies.answer(link);
    mDocData(link).BuildDocData(table);
    return 0;
}
