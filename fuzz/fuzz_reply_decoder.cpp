// Any reply text through DecodeReply, the way the link reads every reply.
#include "protocol/ReplyDecoder.h"
#include "shell/CodePage.h"

#include "support/FuzzScratch.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const QString text = codepage::fromWin1253(fuzzing::bytesOf(data, size));
    for (const bool ignoreOperatorBusy : {false, true}) {
        QString reply = StripControlBytes(text);
        const qint16 status = DecodeReply(reply, ignoreOperatorBusy);
        DeviceCodeText(status);
        ByteToBits(static_cast<quint32>(status));
    }
    return 0;
}
