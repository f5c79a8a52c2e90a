#pragma once

#include "reports/SendMail.h"

#include <QObject>
#include <functional>
#include <map>
#include <thread>

// Sends mail on threads of its own, so that a slow or silent mail server
// never holds the conversation with the register. The outcome comes back on
// the thread that owns the sender, through its event loop.
class MailSender : public QObject {
    Q_OBJECT
public:
    using SendFunction = std::function<MailOutcome(const MailRequest&)>;

    // Without a send function each mail goes out with the settings of
    // mail.ini in the working directory, read when it is sent.
    explicit MailSender(QObject* parent = nullptr);
    explicit MailSender(SendFunction send, QObject* parent = nullptr);
    // Waits for mails still on their way: a send is never cut off.
    ~MailSender() override;

    MailSender(const MailSender&) = delete;
    MailSender& operator=(const MailSender&) = delete;

    void start(const MailRequest& request);
    // Mails started whose outcome has not been delivered yet.
    int pending() const { return static_cast<int>(workers_.size()); }

signals:
    void finished(int status, const QString& failure);

private:
    void deliver(int id, const MailOutcome& outcome);

    SendFunction send_;
    int nextId_ = 0;
    std::map<int, std::thread> workers_;
};
