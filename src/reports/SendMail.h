#pragma once

#include "config/MailSettings.h"

#include <QString>
#include <QStringList>
#include <chrono>

// A mail to send: receiver(s), subject, body and the paths of the files it carries.
struct MailRequest {
    QString address; // one address, or several split by ";" or ","
    QString subject;
    QString body;
    QStringList attachments;
};

// 0 sent, -1 not sent; then failure says why, in Greek, for the log.
struct MailOutcome {
    int status = 0;
    QString failure;
};

// The whole conversation with the server, login and upload included, ends
// within this time; a server that stops answering cannot hold a send longer.
inline constexpr std::chrono::seconds kMailTimeLimit{30};

// The mail with the settings of mail.ini in the working directory: 0 on
// success, -1 on any failure, with the reason in failure when given.
int SendMail(const QString& address, const QString& subject, const QString& body,
             const QStringList& attachments, QString* failure = nullptr);

// The same with settings read from the given mail.ini.
MailOutcome SendMailWithFile(const QString& mailIniPath, const MailRequest& request,
                             std::chrono::milliseconds timeLimit = kMailTimeLimit);

// The same with settings in hand. Runs the SMTP conversation through
// libcurl on the calling thread and blocks it until the end or the time limit.
MailOutcome SendMailWith(const MailSettings& settings, const MailRequest& request,
                         std::chrono::milliseconds timeLimit = kMailTimeLimit);

// The receivers of an address field: split at ";" and ",", blanks dropped.
QStringList MailReceivers(const QString& address);
