#include "reports/ZMail.h"

#include "link/LinkMessageTitle.h"
#include "shell/Clock.h"
#include "shell/ModuleVariables.h"
#include "shell/Operator.h"

#include <QDir>
#include <QEventLoop>

namespace {
const QString kBodyBeforeNumber = QStringLiteral("Βρείτε συνυμμένο το αρχείο του 'Ζ' με αριθμό ");
const QString kBodyBeforeDate = QStringLiteral(" της ταμειακής μου για την ημερομηνία : ");
const QString kSubjectBeforeDate = QStringLiteral("Αρχείο 'Ζ' ");
constexpr int kZNumberWidth = 4;

QString PresentDateTime(const Clock& clock, const QLocale& locale)
{
    return locale.toString(clock.now(), QLocale::ShortFormat);
}
} // namespace

QString ZMailAttachmentPath(const QString& programDirectory, const QString& zNumber)
{
    const QString name = QStringLiteral("Z%1.out").arg(zNumber.trimmed().toInt(), kZNumberWidth, 10, QLatin1Char('0'));
    return QDir(programDirectory).filePath(QStringLiteral("Zfiles/") + name);
}

MailRequest BuildZMail(const QString& address, const QString& zNumber, const QString& programDirectory,
                       const Clock& clock, const QLocale& locale)
{
    MailRequest mail;
    mail.address = address.trimmed();
    mail.attachments = {ZMailAttachmentPath(programDirectory, zNumber)};
    mail.body = kBodyBeforeNumber + zNumber + kBodyBeforeDate + PresentDateTime(clock, locale);
    mail.subject = kSubjectBeforeDate + PresentDateTime(clock, locale);
    return mail;
}

ZMail::ZMail(Operator& op, const Clock& clock, const ModuleVariables& vars, const QString& programDirectory,
             MailSender::SendFunction send, QObject* parent)
    : QObject(parent)
    , operator_(op)
    , clock_(clock)
    , vars_(vars)
    , programDirectory_(programDirectory)
    , sender_(std::move(send))
{
    connect(&sender_, &MailSender::finished, this, &ZMail::onFinished);
}

bool ZMail::send(const QString& address, const QString& zNumber)
{
    if (address.trimmed().isEmpty())
        return false;
    sender_.start(BuildZMail(address, zNumber, programDirectory_, clock_));
    return true;
}

void ZMail::waitForOutcomes()
{
    // Outcomes arrive through this thread's events, so pending() cannot
    // change between the look and the wait.
    while (sender_.pending() > 0) {
        QEventLoop loop;
        connect(&sender_, &MailSender::finished, &loop, &QEventLoop::quit);
        loop.exec();
    }
}

void ZMail::onFinished(int status, const QString& failure)
{
    if (status < 0) {
        if (failureLog_)
            failureLog_(failure);
        const QString text = failure.isEmpty() ? kZMailFailedText : kZMailFailedText + QLatin1Char('\n') + failure;
        operator_.message(LinkMessageTitle(vars_), text, Operator::Icon::Warning);
    }
    emit finished(status);
}
