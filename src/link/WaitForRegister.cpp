#include "link/WaitForRegister.h"

#include "link/DeviceLink.h"
#include "operations/LinkCommands.h"
#include "shell/Clock.h"
#include "shell/Operator.h"

namespace {
constexpr qint64 kRetryDelayMs = 1000;
constexpr qint16 kStatusNoOpenReceipt = 70;
constexpr int kLogModeProbe = 1;
} // namespace

qint16 WaitForRegister(DeviceLink& link, Operator& op, Clock& clock)
{
    bool shown = false;
    qint16 status = 0;
    for (;;) {
        QString reply;
        qint16 timeoutSeconds = 0;
        link.SendCommand(linkcmd::ZeroPayment(), status, reply, true, timeoutSeconds,
                         kLogModeProbe);
        if (status == kStatusNoOpenReceipt) {
            qint16 last = 0;
            for (const QString& command : linkcmd::ReleaseSequence()) {
                QString releaseReply;
                timeoutSeconds = 0;
                link.SendCommand(command, last, releaseReply, false, timeoutSeconds,
                                 kLogModeProbe);
            }
            if (last == 0)
                status = 0;
        }
        if (status == 0)
            break;

        const QString stateLine = QStringLiteral("Status [%1]").arg(status);
        if (!shown) {
            op.openWaitWindow(QStringLiteral("Μήνυμα Ταμειακής (Αναμονή ολοκλήρωσης ταμειακής)"),
                              stateLine, reply);
            shown = true;
        } else {
            op.updateWaitWindow(stateLine, reply);
        }
        if (op.waitWindowClosedByOperator())
            break;
        clock.sleepMs(kRetryDelayMs);
    }
    if (shown)
        op.closeWaitWindow();
    return status;
}
