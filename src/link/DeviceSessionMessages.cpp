// What the operator sees of a device status: the message box, or the
// device-wait window (frmErr) that polls the register until it clears.
#include "link/DeviceSession.h"
#include "link/LinkLogStamp.h"
#include "link/LinkMessageTitle.h"
#include "link/SerialExchange.h"
#include "protocol/DeviceCommands.h"
#include "protocol/DeviceStatusClass.h"
#include "shell/Clock.h"
#include "shell/CommunicationLog.h"
#include "shell/ModuleVariables.h"
#include "shell/Operator.h"

namespace {

bool isEftStatus(qint16 status)
{
    return status == 193 || status == 200 || status == 207;
}

QString pollStateLine(qint16 status)
{
    if (status == SerialExchange::kStatusNoEnqAnswer)
        return QStringLiteral("Περιμένετε [%1]").arg(status);
    if (isEftStatus(status))
        return QStringLiteral("Αναμονή EFTPOS[%1]").arg(status);
    return QStringLiteral("Status [%1]").arg(status);
}

} // namespace

void DeviceSession::ShowDeviceMessage(qint16 status, const QString& reply)
{
    showStatus(status, reply, clock_.monotonicMs());
}

DeviceSession::WaitEnd DeviceSession::showStatus(qint16 status, const QString& reply,
                                                 qint64 waitSinceMs)
{
    const Conversation conversation(*this);
    if (conversation.refused())
        return WaitEnd::Cleared;
    if (!IsWaitStatus(status)) {
        const QString shown = reply.left(kMessageWidth).leftJustified(kMessageWidth, u' ');
        op_.message(LinkMessageTitle(vars_),
                    QStringLiteral("Λάθος : ") + QString::number(status) + u'\r' + shown,
                    Operator::Icon::Critical, Operator::Buttons::Ok);
        return WaitEnd::Cleared;
    }
    // A second window is refused silently: the caller goes on as if it had closed.
    if (waitFormOpen_)
        return WaitEnd::Cleared;
    return runWaitWindow(status, reply, waitSinceMs);
}

DeviceSession::WaitEnd DeviceSession::runWaitWindow(qint16 status, const QString& reply,
                                                    qint64 waitSinceMs)
{
    const QString caption = QStringLiteral("Μήνυμα Ταμειακής (%1)").arg(vars_.DeviceLabel);
    const QString stateLine = status == 193 ? QStringLiteral("Αναμονή EFTPOS[%1]").arg(status)
                                            : QStringLiteral("Status [%1]").arg(status);
    op_.openWaitWindow(caption, stateLine, reply);
    waitFormOpen_ = true;

    // One poll at a time: the next tick comes only after the last has ended.
    WaitEnd end = WaitEnd::GivenUp;
    while (!waitGivenUp(waitSinceMs)) {
        WaitPumping(kPollIntervalMs);
        if (op_.waitWindowClosedByOperator()) {
            end = WaitEnd::Cleared;
            break;
        }
        // Asked to end while the window was up: no poll more.
        if (waitGivenUp(waitSinceMs))
            break;
        const DeviceReply poll =
            send(DeviceCommands::StatusProbe(),
                 {.quiet = true,
                  .timeoutSeconds = vars_.EftBusy ? kPollWaitSecondsEft : kPollWaitSeconds,
                  .logMode = SendOptions::kLogModeProbe});
        if (poll.ok()) {
            end = WaitEnd::Cleared;
            break;
        }
        if (poll.status() == kStatusOperatorBusy) {
            log_.PrintCombine(LinkLogStamp(clock_) + QStringLiteral(" open Receipt, wait 10s"));
            WaitPumping(kOperatorBusyPauseMs);
            continue;
        }
        op_.updateWaitWindow(pollStateLine(poll.status()), poll.text());
    }
    op_.closeWaitWindow();
    waitFormOpen_ = false;
    return end;
}

// A card payment is waited out whatever happens: a charge is never left unknown.
bool DeviceSession::waitGivenUp(qint64 waitSinceMs)
{
    if (vars_.EftBusy)
        return false;
    if (vars_.Stop != StopCause::None)
        return true;
    if (vars_.WaitLimitMs > 0 && clock_.monotonicMs() - waitSinceMs >= vars_.WaitLimitMs) {
        vars_.Stop = StopCause::WaitLimit;
        return true;
    }
    return false;
}

bool DeviceSession::pauseBeforeAskingAgain(Clock& /*clock*/, qint64 ms, qint64 waitSinceMs)
{
    if (waitGivenUp(waitSinceMs))
        return false;
    WaitPumping(ms);
    return !waitGivenUp(waitSinceMs);
}
