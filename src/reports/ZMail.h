#pragma once

#include "reports/MailSender.h"
#include "reports/SendMail.h"

#include <QLocale>
#include <QObject>
#include <QString>
#include <functional>

class Clock;
class Operator;
struct ModuleVariables;

// What the operator sees when the Z file could not be mailed.
inline const QString kZMailFailedText = QStringLiteral("Λάθος κατά την αποστολή το email...");

// Zfiles/Z<number as 0000>.out in the program's directory.
QString ZMailAttachmentPath(const QString& programDirectory, const QString& zNumber);

// The mail of the Z file: body and subject each stamped with its own
// reading of the clock, in the system's short date and time format; the Z
// number in the body as the register gave it.
MailRequest BuildZMail(const QString& address, const QString& zNumber, const QString& programDirectory,
                       const Clock& clock, const QLocale& locale = QLocale::system());

// The mail step of the action Zfile, after a Z file was written. The send
// runs on threads of its own; a failure reaches the operator, with its
// reason under the message, once the outcome is back on this object's
// thread. The Z file is never touched, so running Zfile again repeats the mail.
class ZMail : public QObject {
    Q_OBJECT
public:
    // send: how one mail goes out; by default with mail.ini of the working directory.
    ZMail(Operator& op, const Clock& clock, const ModuleVariables& vars, const QString& programDirectory,
          MailSender::SendFunction send = {}, QObject* parent = nullptr);

    // False when the trimmed address is empty: no mail and no message.
    bool send(const QString& address, const QString& zNumber);

    // Runs this thread's event loop until every mail started has told its
    // outcome, so a life that ends after a Z does not leave a failure unseen.
    void waitForOutcomes();

    // Each failure also goes here with its reason (the communication log).
    void setFailureLog(std::function<void(const QString&)> log) { failureLog_ = std::move(log); }

signals:
    // After the operator has been told of a failure.
    void finished(int status);

private:
    void onFinished(int status, const QString& failure);

    Operator& operator_;
    const Clock& clock_;
    const ModuleVariables& vars_;
    QString programDirectory_;
    std::function<void(const QString&)> failureLog_;
    MailSender sender_;
};
