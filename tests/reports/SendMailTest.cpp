#include "reports/SendMail.h"

#include "MailText.h"
#include "PrintQString.h"
#include "SmtpPeer.h"

#include <QElapsedTimer>
#include <QJsonArray>
#include <QTcpServer>
#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace std::chrono_literals;

namespace {

MailSettings loopback(int port)
{
    MailSettings s;
    s.host = QStringLiteral("127.0.0.1");
    s.port = port;
    s.from = QStringLiteral("Κατάστημα <shop@example.gr>");
    return s;
}

QString writeFile(const QTemporaryDir& dir, const QString& name, const QByteArray& content)
{
    const QString path = dir.filePath(name);
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(content);
    return path;
}

// A port where nobody listens, for the moment.
int closedPort()
{
    QTcpServer probe;
    probe.listen(QHostAddress::LocalHost, 0);
    return probe.serverPort();
}

} // namespace

TEST(SendMail, GreekMailWithAttachmentReachesEveryReceiverWithoutLogin)
{
    SmtpPeer peer(QStringLiteral("accept"));
    ASSERT_NE(peer.port(), 0);
    QTemporaryDir dir;
    QByteArray content;
    for (int i = 0; i < 3000; ++i)
        content += static_cast<char>(i * 7 % 256);
    const MailRequest request{QStringLiteral("z@acct.gr; copy@acct.gr"),
                              QStringLiteral("Αρχείο 'Ζ' 02/01/2026 10:20"),
                              QStringLiteral("Βρείτε συνυμμένο το αρχείο του 'Ζ' με αριθμό 123"),
                              {writeFile(dir, QStringLiteral("Z0123.out"), content)}};

    const MailOutcome outcome = SendMailWith(loopback(peer.port()), request);

    ASSERT_EQ(outcome.status, 0) << outcome.failure.toStdString();
    EXPECT_TRUE(outcome.failure.isEmpty());
    ASSERT_EQ(peer.received(), 1);
    const QJsonObject envelope = peer.envelope(1);
    EXPECT_EQ(envelope[QStringLiteral("from")].toString(), QStringLiteral("shop@example.gr"));
    EXPECT_EQ(envelope[QStringLiteral("to")].toArray().toVariantList(),
              (QVariantList{QStringLiteral("z@acct.gr"), QStringLiteral("copy@acct.gr")}));
    EXPECT_TRUE(envelope[QStringLiteral("login")].isNull());
    const QByteArray message = peer.message(1);
    const qsizetype subject = message.indexOf("\r\nSubject: ");
    EXPECT_EQ(decodeHeaderWords(message.mid(subject, message.indexOf("\r\nMessage-ID:") - subject)), request.subject);
    EXPECT_EQ(QString::fromUtf8(QByteArray::fromBase64(partPayload(message, "text/plain; charset=UTF-8"))), request.body);
    EXPECT_EQ(QByteArray::fromBase64(partPayload(message, "filename=\"Z0123.out\"")), content);
}

TEST(SendMail, LogsInOnlyWhenMailIniNamesAUser)
{
    SmtpPeer peer(QStringLiteral("accept"), {QStringLiteral("--login"), QStringLiteral("kasa:μυστικό")});
    ASSERT_NE(peer.port(), 0);
    MailSettings settings = loopback(peer.port());
    settings.user = QStringLiteral("kasa");
    settings.password = QStringLiteral("μυστικό");

    const MailOutcome outcome = SendMailWith(settings, {QStringLiteral("z@acct.gr"), QStringLiteral("s"),
                                                        QStringLiteral("b"), {}});

    ASSERT_EQ(outcome.status, 0) << outcome.failure.toStdString();
    EXPECT_EQ(peer.envelope(1)[QStringLiteral("login")].toString(), QStringLiteral("kasa"));
}

TEST(SendMail, ServerFailuresAndAMissingAttachmentOrReceiverEndInMinusOneWithAGreekReason)
{
    const MailRequest request{QStringLiteral("z@acct.gr"), QStringLiteral("s"), QStringLiteral("b"), {}};
    for (const auto& [mode, reason] : {std::pair("refuse-login", "δεν δέχτηκε τη σύνδεση του χρήστη kasa"),
                                       std::pair("drop", "διακόπηκε πριν σταλεί το email")}) {
        SmtpPeer peer(QString::fromLatin1(mode));
        ASSERT_NE(peer.port(), 0);
        MailSettings settings = loopback(peer.port());
        if (QLatin1String(mode) == QLatin1String("refuse-login")) {
            settings.user = QStringLiteral("kasa");
            settings.password = QStringLiteral("wrong");
        }
        const MailOutcome outcome = SendMailWith(settings, request);
        EXPECT_EQ(outcome.status, -1);
        EXPECT_TRUE(outcome.failure.contains(QString::fromUtf8(reason))) << outcome.failure.toStdString();
    }
    {
        const int port = closedPort();
        const MailOutcome outcome = SendMailWith(loopback(port), request);
        EXPECT_EQ(outcome.status, -1);
        EXPECT_EQ(outcome.failure.left(outcome.failure.indexOf(QLatin1Char('['))),
                  QStringLiteral("Δεν έγινε σύνδεση με τον διακομιστή αλληλογραφίας 127.0.0.1:%1. ").arg(port));
    }
    {
        // A plain server: starttls must insist on it, tls must speak TLS from the start.
        SmtpPeer peer(QStringLiteral("accept"));
        ASSERT_NE(peer.port(), 0);
        MailSettings settings = loopback(peer.port());
        settings.security = MailSecurity::StartTls;
        MailOutcome outcome = SendMailWith(settings, request, 5s);
        EXPECT_TRUE(outcome.failure.contains(QStringLiteral("δεν προσφέρει STARTTLS"))) << outcome.failure.toStdString();
        settings.security = MailSecurity::Tls;
        outcome = SendMailWith(settings, request, 5s);
        EXPECT_EQ(outcome.status, -1);
        EXPECT_TRUE(outcome.failure.contains(QStringLiteral("ασφαλής σύνδεση (TLS)"))) << outcome.failure.toStdString();

        // Nothing goes out without its attachment or a receiver.
        QTemporaryDir dir;
        const QString missing = dir.filePath(QStringLiteral("Zfiles/Z0001.out"));
        outcome = SendMailWith(loopback(peer.port()), {request.address, request.subject, request.body, {missing}});
        EXPECT_EQ(std::tuple(outcome.status, outcome.failure),
                  std::tuple(-1, QStringLiteral("Δεν βρέθηκε το συνημμένο αρχείο %1.").arg(QDir::toNativeSeparators(missing))));
        outcome = SendMailWith(loopback(peer.port()), {QStringLiteral(" ; "), request.subject, request.body, {}});
        EXPECT_EQ(std::tuple(outcome.status, outcome.failure),
                  std::tuple(-1, QStringLiteral("Δεν δόθηκε διεύθυνση παραλήπτη για το email.")));
        EXPECT_EQ(peer.received(), 0);
    }
}

TEST(SendMail, SilentServerIsLeftAtTheTimeLimit)
{
    // Accepted by the kernel's backlog, never a greeting.
    QTcpServer silent;
    ASSERT_TRUE(silent.listen(QHostAddress::LocalHost, 0));
    QElapsedTimer elapsed;
    elapsed.start();

    const MailOutcome outcome = SendMailWith(loopback(silent.serverPort()),
                                             {QStringLiteral("z@acct.gr"), QStringLiteral("s"), QStringLiteral("b"), {}},
                                             300ms);

    EXPECT_LT(elapsed.elapsed(), 10000);
    EXPECT_EQ(outcome.status, -1);
    EXPECT_TRUE(outcome.failure.startsWith(
        QStringLiteral("Ο διακομιστής αλληλογραφίας 127.0.0.1:%1 δεν απάντησε μέσα σε 0.3 δευτερόλεπτα.")
            .arg(silent.serverPort())))
        << outcome.failure.toStdString();
}

TEST(SendMail, FourArgumentFormReadsMailIniOfTheWorkingDirectory)
{
    SmtpPeer peer(QStringLiteral("accept"));
    ASSERT_NE(peer.port(), 0);
    QTemporaryDir dir;
    writeFile(dir, QStringLiteral("mail.ini"),
              QStringLiteral("[smtp]\nhost = 127.0.0.1\nport = %1\nfrom = shop@example.gr\n").arg(peer.port()).toUtf8());
    const QString before = QDir::currentPath();
    ASSERT_TRUE(QDir::setCurrent(dir.path()));

    QString failure = QStringLiteral("unchanged");
    const int sent = SendMail(QStringLiteral("z@acct.gr"), QStringLiteral("s"), QStringLiteral("b"), {}, &failure);
    QFile::remove(dir.filePath(QStringLiteral("mail.ini")));
    const int notSent = SendMail(QStringLiteral("z@acct.gr"), QStringLiteral("s"), QStringLiteral("b"), {}, &failure);
    QDir::setCurrent(before);

    EXPECT_EQ(sent, 0);
    EXPECT_EQ(notSent, -1);
    EXPECT_TRUE(failure.startsWith(QStringLiteral("Δεν βρέθηκε το αρχείο ρυθμίσεων email "))) << failure.toStdString();
    EXPECT_EQ(peer.received(), 1);
}
