// The virtual register's model fed one command a line (LF), in its own code
// page, starting from a register fresh from the factory. A line beginning
// with "~" queues the rest as the card terminal's next answer instead.
#include "EcrModel.h"
#include "Win1253.h"

#include "support/FuzzScratch.h"

namespace {
constexpr int kMaxCommands = 400;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    RegisterMemory memory = RegisterMemory::factory();
    EcrModel model(memory);
    const QDateTime now(QDate(2026, 11, 19), QTime(10, 15));
    int commands = 0;
    for (const QByteArray& line : fuzzing::bytesOf(data, size).split('\n')) {
        if (++commands > kMaxCommands)
            break;
        if (line.startsWith('~'))
            model.queueCardOutcome(win1253::decode(line.mid(1)));
        else
            win1253::encode(model.execute(win1253::decode(line), now).reply.text());
    }
    return 0;
}
