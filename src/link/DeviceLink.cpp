#include "link/DeviceLink.h"

#include "link/SerialExchange.h"
#include "shell/Clock.h"

void DeviceLink::SendCommand(const QString& command, qint16& status, QString& reply, bool quiet,
                             qint16& timeoutSeconds, int logMode)
{
    const DeviceReply answer = send(command, SendOptions{quiet, timeoutSeconds, logMode});
    if (timeoutSeconds == 0)
        timeoutSeconds = SerialExchange::kDefaultEnqWaitSeconds;
    status = answer.status();
    reply = answer.text();
}

void DeviceLink::SendCommand(const QString& command, qint16& status, QString& reply, bool quiet,
                             int logMode)
{
    qint16 timeoutSeconds = 0;
    SendCommand(command, status, reply, quiet, timeoutSeconds, logMode);
}

bool DeviceLink::pauseBeforeAskingAgain(Clock& clock, qint64 ms, qint64 /*waitSinceMs*/)
{
    clock.sleepMs(ms);
    return true;
}
