// A fault script of any text, then the commands behind a NUL byte (one a
// line) asked for their effects in turn, as the wire asks for each command.
#include "FaultScript.h"

#include "support/FuzzScratch.h"

namespace {
constexpr int kMaxCommands = 64;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const QByteArray bytes = fuzzing::bytesOf(data, size);
    const qsizetype nul = bytes.indexOf('\0');
    FaultScript script;
    QString error;
    if (!script.parse(QString::fromUtf8(nul < 0 ? bytes : bytes.left(nul)), &error))
        return 0;
    const QByteArray commands = nul < 0 ? QByteArrayLiteral("?/\n3/S/X//1.000/1.00/1/24.00/\n5/1/0.00/")
                                        : bytes.mid(nul + 1);
    int n = 0;
    for (const QByteArray& command : commands.split('\n')) {
        if (++n > kMaxCommands)
            break;
        const QString text = QString::fromUtf8(command);
        script.swallowEnq(n, text);
        script.effectFor(n, text);
    }
    return 0;
}
