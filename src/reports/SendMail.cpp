#include "reports/SendMail.h"

#include "reports/MimeMessage.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QSysInfo>
#include <QUrl>

#include <curl/curl.h>

#include <algorithm>
#include <cstring>
#include <memory>

namespace {

// libcurl wants its global set-up once per process, before any handle.
void EnsureCurlLibrary()
{
    struct CurlLibrary {
        CurlLibrary() { curl_global_init(CURL_GLOBAL_DEFAULT); }
        ~CurlLibrary() { curl_global_cleanup(); }
        CurlLibrary(const CurlLibrary&) = delete;
        CurlLibrary& operator=(const CurlLibrary&) = delete;
    };
    static const CurlLibrary library;
}

struct EasyCleanup {
    void operator()(CURL* curl) const { curl_easy_cleanup(curl); }
};
struct ListCleanup {
    void operator()(curl_slist* list) const { curl_slist_free_all(list); }
};
using EasyHandle = std::unique_ptr<CURL, EasyCleanup>;
using StringList = std::unique_ptr<curl_slist, ListCleanup>;

struct Upload {
    QByteArray data;
    qsizetype sent = 0;
};

size_t ReadUpload(char* buffer, size_t size, size_t count, void* user)
{
    auto* upload = static_cast<Upload*>(user);
    const qsizetype left = upload->data.size() - upload->sent;
    const qsizetype chunk = std::min<qsizetype>(left, static_cast<qsizetype>(size * count));
    std::memcpy(buffer, upload->data.constData() + upload->sent, static_cast<size_t>(chunk));
    upload->sent += chunk;
    return static_cast<size_t>(chunk);
}

MailOutcome Failed(const QString& why)
{
    return {-1, why};
}

QString ServerName(const MailSettings& s)
{
    return QStringLiteral("%1:%2").arg(s.host.trimmed()).arg(s.effectivePort());
}

QByteArray ServerUrl(const MailSettings& s)
{
    QString host = s.host.trimmed();
    if (host.contains(QLatin1Char(':')) && !host.startsWith(QLatin1Char('[')))
        host = QLatin1Char('[') + host + QLatin1Char(']');
    const QString scheme = s.security == MailSecurity::Tls ? QStringLiteral("smtps") : QStringLiteral("smtp");
    // The path is the name the client gives in its greeting (EHLO).
    const QString greeting = QString::fromLatin1(QUrl::toAce(QSysInfo::machineHostName()));
    return QStringLiteral("%1://%2:%3/%4").arg(scheme, host).arg(s.effectivePort()).arg(greeting).toUtf8();
}

QString SecondsText(std::chrono::milliseconds limit)
{
    return QString::number(static_cast<double>(limit.count()) / 1000.0);
}

QString CurlFailure(CURLcode code, const char* detailBuffer, const MailSettings& s,
                    std::chrono::milliseconds limit)
{
    const QString detail = QString::fromUtf8(*detailBuffer ? detailBuffer : curl_easy_strerror(code));
    const QString server = ServerName(s);
    QString why;
    switch (code) {
    case CURLE_OPERATION_TIMEDOUT:
        why = QStringLiteral("Ο διακομιστής αλληλογραφίας %1 δεν απάντησε μέσα σε %2 δευτερόλεπτα.")
                  .arg(server, SecondsText(limit));
        break;
    case CURLE_LOGIN_DENIED:
        why = QStringLiteral("Ο διακομιστής αλληλογραφίας %1 δεν δέχτηκε τη σύνδεση του χρήστη %2 "
                             "(user και password του mail.ini).")
                  .arg(server, s.user);
        break;
    case CURLE_COULDNT_RESOLVE_HOST:
        why = QStringLiteral("Δεν βρέθηκε ο διακομιστής αλληλογραφίας %1.").arg(s.host.trimmed());
        break;
    case CURLE_COULDNT_CONNECT:
        why = QStringLiteral("Δεν έγινε σύνδεση με τον διακομιστή αλληλογραφίας %1.").arg(server);
        break;
    case CURLE_USE_SSL_FAILED:
        why = QStringLiteral("Ο διακομιστής αλληλογραφίας %1 δεν προσφέρει STARTTLS.").arg(server);
        break;
    case CURLE_SSL_CONNECT_ERROR:
    case CURLE_PEER_FAILED_VERIFICATION:
    case CURLE_SSL_CACERT_BADFILE:
    case CURLE_SSL_CERTPROBLEM:
        why = QStringLiteral("Η ασφαλής σύνδεση (TLS) με τον διακομιστή αλληλογραφίας %1 απέτυχε.").arg(server);
        break;
    case CURLE_SEND_ERROR:
    case CURLE_RECV_ERROR:
    case CURLE_GOT_NOTHING:
    case CURLE_PARTIAL_FILE:
        if (detail.startsWith(QLatin1String("RCPT failed")))
            why = QStringLiteral("Ο διακομιστής αλληλογραφίας %1 δεν δέχτηκε τον παραλήπτη.").arg(server);
        else if (detail.startsWith(QLatin1String("MAIL failed")))
            why = QStringLiteral("Ο διακομιστής αλληλογραφίας %1 δεν δέχτηκε τον αποστολέα (from του mail.ini).")
                      .arg(server);
        else
            why = QStringLiteral("Η σύνδεση με τον διακομιστή αλληλογραφίας %1 διακόπηκε πριν σταλεί το email.")
                      .arg(server);
        break;
    default:
        why = QStringLiteral("Ο διακομιστής αλληλογραφίας %1 δεν δέχτηκε το email.").arg(server);
        break;
    }
    return why + QStringLiteral(" [") + detail + QLatin1Char(']');
}

bool ReadAttachments(const QStringList& paths, QList<MimeAttachment>& attachments, QString& failure)
{
    for (const QString& path : paths) {
        QFile file(path);
        if (!file.open(QIODevice::ReadOnly)) {
            failure = QStringLiteral("Δεν βρέθηκε το συνημμένο αρχείο %1.").arg(QDir::toNativeSeparators(path));
            return false;
        }
        attachments.append({QFileInfo(path).fileName(), file.readAll()});
    }
    return true;
}

} // namespace

QStringList MailReceivers(const QString& address)
{
    static const QRegularExpression separators(QStringLiteral("[;,]"));
    QStringList receivers;
    for (const QString& part : address.split(separators)) {
        const QString receiver = MailAddressOf(part);
        if (!receiver.isEmpty())
            receivers.append(receiver);
    }
    return receivers;
}

MailOutcome SendMailWith(const MailSettings& settings, const MailRequest& request,
                         std::chrono::milliseconds timeLimit)
{
    if (const QString problem = MailSettingsProblem(settings); !problem.isEmpty())
        return Failed(problem);
    const QStringList receivers = MailReceivers(request.address);
    if (receivers.isEmpty())
        return Failed(QStringLiteral("Δεν δόθηκε διεύθυνση παραλήπτη για το email."));

    MimeMail mail;
    mail.from = settings.from;
    mail.to = receivers;
    mail.subject = request.subject;
    mail.body = request.body;
    mail.date = QDateTime::currentDateTime();
    mail.messageId = NewMessageId(MailAddressOf(settings.from));
    mail.boundary = NewMimeBoundary();
    if (QString failure; !ReadAttachments(request.attachments, mail.attachments, failure))
        return Failed(failure);

    EnsureCurlLibrary();
    const EasyHandle curl(curl_easy_init());
    if (!curl)
        return Failed(QStringLiteral("Η βιβλιοθήκη αποστολής email (libcurl) δεν ξεκίνησε."));

    StringList rcpt;
    for (const QString& receiver : receivers) {
        curl_slist* grown = curl_slist_append(rcpt.get(), receiver.toUtf8().constData());
        if (!grown)
            return Failed(QStringLiteral("Δεν υπάρχει μνήμη για τη λίστα παραληπτών."));
        static_cast<void>(rcpt.release());
        rcpt.reset(grown);
    }

    Upload upload{BuildMimeMessage(mail)};
    char detail[CURL_ERROR_SIZE] = {};
    const QByteArray url = ServerUrl(settings);
    const QByteArray from = '<' + MailAddressOf(settings.from).toUtf8() + '>';
    const QByteArray user = settings.user.toUtf8();
    const QByteArray password = settings.password.toUtf8();

    CURL* h = curl.get();
    curl_easy_setopt(h, CURLOPT_ERRORBUFFER, detail);
    curl_easy_setopt(h, CURLOPT_URL, url.constData());
    curl_easy_setopt(h, CURLOPT_MAIL_FROM, from.constData());
    curl_easy_setopt(h, CURLOPT_MAIL_RCPT, rcpt.get());
    curl_easy_setopt(h, CURLOPT_UPLOAD, 1L);
    curl_easy_setopt(h, CURLOPT_READFUNCTION, ReadUpload);
    curl_easy_setopt(h, CURLOPT_READDATA, &upload);
    curl_easy_setopt(h, CURLOPT_TIMEOUT_MS, static_cast<long>(timeLimit.count()));
    // Off the main thread a timeout must not rely on signals.
    curl_easy_setopt(h, CURLOPT_NOSIGNAL, 1L);
    if (settings.security == MailSecurity::StartTls)
        curl_easy_setopt(h, CURLOPT_USE_SSL, static_cast<long>(CURLUSESSL_ALL));
    if (!settings.user.isEmpty()) {
        curl_easy_setopt(h, CURLOPT_USERNAME, user.constData());
        curl_easy_setopt(h, CURLOPT_PASSWORD, password.constData());
    }

    const CURLcode code = curl_easy_perform(h);
    if (code != CURLE_OK)
        return Failed(CurlFailure(code, detail, settings, timeLimit));
    return {};
}

MailOutcome SendMailWithFile(const QString& mailIniPath, const MailRequest& request,
                             std::chrono::milliseconds timeLimit)
{
    MailSettings settings;
    QString problem;
    if (ReadMailSettings(mailIniPath, settings, problem) != 0)
        return Failed(problem);
    return SendMailWith(settings, request, timeLimit);
}

int SendMail(const QString& address, const QString& subject, const QString& body,
             const QStringList& attachments, QString* failure)
{
    const MailOutcome outcome = SendMailWithFile(MailSettingsPath(), {address, subject, body, attachments});
    if (failure)
        *failure = outcome.failure;
    return outcome.status;
}
