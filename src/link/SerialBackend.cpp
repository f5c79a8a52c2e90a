#include "link/SerialBackend.h"

#include "link/SerialExchange.h"
#include "link/SerialFrame.h"
#include "shell/Operator.h"

SerialBackend::SerialBackend(std::unique_ptr<Transport> comHandle, Clock& clock,
                             CommunicationLog& log, Operator& op)
    : comHandle_(std::move(comHandle))
    , clock_(clock)
    , log_(log)
    , op_(op)
{
}

LinkBackend::Exchanged SerialBackend::exchange(const QString& command, qint16& timeoutSeconds,
                                               bool ignoreOperatorBusy, bool sendOnce,
                                               int maxSends)
{
    bool invalid = false;
    const QString frame = FrameCommand(command, &invalid);
    if (invalid)
        op_.message(QStringLiteral("Μύνημα Φορ. Εκτυπωτή"), QStringLiteral("INVALID CHARACTERS"),
                    Operator::Icon::Information);
    if (!comHandle_) {
        if (timeoutSeconds == 0)
            timeoutSeconds = SerialExchange::kDefaultEnqWaitSeconds;
        return {SerialExchange::noEnqAnswer(), frame};
    }
    return {SerialExchange(*comHandle_, clock_, log_)
                .run(frame, timeoutSeconds, ignoreOperatorBusy, maxSends, sendOnce),
            frame};
}

void SerialBackend::dropStaleInput(int quietMs)
{
    if (!comHandle_)
        return;
    SerialExchange exchange(*comHandle_, clock_, log_);
    while (comHandle_->waitForData(quietMs))
        exchange.DrainLink();
}

void SerialBackend::close()
{
    if (!comHandle_)
        return;
    comHandle_->close();
    comHandle_.reset();
}
