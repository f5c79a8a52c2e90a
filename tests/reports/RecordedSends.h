#pragma once

#include "reports/MailSender.h"

#include <mutex>

// A mail send that records each request (from the sender's thread) and gives
// the answer set here.
struct RecordedSends {
    std::mutex mutex;
    QList<MailRequest> requests;
    MailOutcome answer;

    MailSender::SendFunction function()
    {
        return [this](const MailRequest& request) {
            const std::lock_guard lock(mutex);
            requests.append(request);
            return answer;
        };
    }
};
