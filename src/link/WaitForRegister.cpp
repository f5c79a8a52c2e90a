#include "link/WaitForRegister.h"

#include "link/DeviceLink.h"
#include "protocol/DeviceCommands.h"
#include "shell/Clock.h"
#include "shell/Operator.h"

namespace {
constexpr qint64 kRetryDelayMs = 1000;
constexpr qint16 kStatusNoOpenReceipt = 70;
} // namespace

qint16 WaitForRegister(DeviceLink& link, Operator& op, Clock& clock)
{
    const SendOptions probe{.quiet = true, .logMode = SendOptions::kLogModeProbe};
    const SendOptions release{.quiet = false, .logMode = SendOptions::kLogModeProbe};
    const qint64 waitSinceMs = clock.monotonicMs();
    bool shown = false;
    qint16 status = 0;
    for (;;) {
        const DeviceReply zero = link.send(DeviceCommands::ZeroPayment(), probe);
        status = zero.status();
        if (status == kStatusNoOpenReceipt) {
            qint16 last = 0;
            for (const QString& command : DeviceCommands::ReleaseSequence())
                last = link.send(command, release).status();
            if (last == 0)
                status = 0;
        }
        if (status == 0)
            break;

        const QString stateLine = QStringLiteral("Status [%1]").arg(status);
        if (!shown) {
            op.openWaitWindow(QStringLiteral("Μήνυμα Ταμειακής (Αναμονή ολοκλήρωσης ταμειακής)"),
                              stateLine, zero.text());
            shown = true;
        } else {
            op.updateWaitWindow(stateLine, zero.text());
        }
        if (op.waitWindowClosedByOperator())
            break;
        if (!link.pauseBeforeAskingAgain(clock, kRetryDelayMs, waitSinceMs))
            break;
    }
    if (shown)
        op.closeWaitWindow();
    return status;
}
