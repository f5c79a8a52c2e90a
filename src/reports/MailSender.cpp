#include "reports/MailSender.h"

#include "config/MailSettings.h"

#include <QMetaObject>

namespace {
MailOutcome SendWithWorkingDirectorySettings(const MailRequest& request)
{
    return SendMailWithFile(MailSettingsPath(), request);
}
} // namespace

MailSender::MailSender(QObject* parent)
    : MailSender(SendFunction{}, parent)
{
}

MailSender::MailSender(SendFunction send, QObject* parent)
    : QObject(parent)
    , send_(send ? std::move(send) : SendFunction(SendWithWorkingDirectorySettings))
{
}

MailSender::~MailSender()
{
    // Outcomes posted meanwhile die with this object, unseen.
    for (auto& [id, worker] : workers_)
        worker.join();
}

void MailSender::start(const MailRequest& request)
{
    const int id = nextId_++;
    workers_.emplace(id, std::thread([this, id, request, send = send_] {
        const MailOutcome outcome = send(request);
        QMetaObject::invokeMethod(this, [this, id, outcome] { deliver(id, outcome); }, Qt::QueuedConnection);
    }));
}

void MailSender::deliver(int id, const MailOutcome& outcome)
{
    // The worker has nothing left to do but return.
    if (auto it = workers_.find(id); it != workers_.end()) {
        it->second.join();
        workers_.erase(it);
    }
    emit finished(outcome.status, outcome.failure);
}
