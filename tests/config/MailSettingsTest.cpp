#include "config/MailSettings.h"

#include "PrintQString.h"

#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace {

struct Parsed {
    int status;
    MailSettings settings;
    QString problem;
};

Parsed parse(const QByteArray& text)
{
    Parsed p;
    p.status = ParseMailSettings(text, p.settings, p.problem);
    return p;
}

} // namespace

TEST(MailSettings, ReadsEveryKeyOfTheSmtpSection)
{
    const Parsed p = parse("\xEF\xBB\xBF; mail of the Z file\r\n"
                           "[other]\r\nhost = elsewhere\r\n"
                           "[SMTP]\r\n"
                           "  Host = mail.shop.gr  \r\n"
                           "port=2525\r\n"
                           "security = StartTLS\r\n"
                           "user = kasa@shop.gr\r\n"
                           "password = \" pass;word= \"\r\n"
                           "# a comment\r\n"
                           "from = Κατάστημα <kasa@shop.gr>\r\n"
                           "unknown = ignored\r\n");
    ASSERT_EQ(p.status, 0) << p.problem.toStdString();
    EXPECT_EQ(p.settings, (MailSettings{"mail.shop.gr", 2525, MailSecurity::StartTls, "kasa@shop.gr", " pass;word= ",
                                        "Κατάστημα <kasa@shop.gr>"}));
    EXPECT_TRUE(p.problem.isEmpty());
}

TEST(MailSettings, MissingPortFollowsTheSecurityAndMissingSecurityIsNone)
{
    const struct {
        const char* security;
        MailSecurity expected;
        int port;
    } rows[] = {
        {"", MailSecurity::None, 25},
        {"security = none\n", MailSecurity::None, 25},
        {"security = starttls\n", MailSecurity::StartTls, 587},
        {"security = tls\n", MailSecurity::Tls, 465},
    };
    for (const auto& row : rows) {
        const Parsed p = parse(QByteArray("[smtp]\nhost = h\nfrom = f@x.gr\nport =\n") + row.security);
        ASSERT_EQ(p.status, 0) << row.security;
        EXPECT_EQ(p.settings.security, row.expected) << row.security;
        EXPECT_EQ(p.settings.port, 0) << row.security;
        EXPECT_EQ(p.settings.effectivePort(), row.port) << row.security;
        EXPECT_TRUE(p.settings.user.isEmpty());
    }
}

TEST(MailSettings, UnusableFilesGiveAGreekReason)
{
    const struct {
        const char* text;
        const char* problem;
    } rows[] = {
        {"[smtp]\nhost = h\nfrom = f@x.gr\nthis is no setting\n",
         "Το mail.ini έχει λάθος στη γραμμή 4: εκεί χωράει μόνο [smtp] ή κλειδί = τιμή."},
        {"[smtp\nhost = h\n", "Το mail.ini έχει λάθος στη γραμμή 1: εκεί χωράει μόνο [smtp] ή κλειδί = τιμή."},
        {"host = h\nfrom = f@x.gr\n", "Το mail.ini δεν έχει την ενότητα [smtp]."},
        {"", "Το mail.ini δεν έχει την ενότητα [smtp]."},
        {"[smtp]\nfrom = f@x.gr\n", "Στο mail.ini λείπει ο διακομιστής αλληλογραφίας (host)."},
        {"[smtp]\nhost = h\nfrom =   \n", "Στο mail.ini λείπει η διεύθυνση του αποστολέα (from)."},
        {"[smtp]\nhost = h\nfrom = f@x.gr\nsecurity = ssl\n",
         "Στο mail.ini η τιμή security «ssl» είναι άγνωστη· δεκτές είναι none, starttls, tls."},
        {"[smtp]\nhost = h\nfrom = f@x.gr\nport = 70000\n",
         "Στο mail.ini η θύρα (port) «70000» δεν είναι αριθμός από 1 έως 65535."},
        {"[smtp]\nhost = h\nfrom = f@x.gr\nport = 25x\n",
         "Στο mail.ini η θύρα (port) «25x» δεν είναι αριθμός από 1 έως 65535."},
    };
    for (const auto& row : rows) {
        const Parsed p = parse(row.text);
        EXPECT_EQ(p.status, -1) << row.text;
        EXPECT_EQ(p.problem, QString::fromUtf8(row.problem)) << row.text;
    }
}

TEST(MailSettings, MissingFileIsNamedInTheReason)
{
    QTemporaryDir dir;
    MailSettings settings;
    settings.host = QStringLiteral("stale");
    QString problem;
    EXPECT_EQ(ReadMailSettings(dir.filePath(QStringLiteral("mail.ini")), settings, problem), -1);
    EXPECT_TRUE(problem.startsWith(QStringLiteral("Δεν βρέθηκε το αρχείο ρυθμίσεων email ")));
    EXPECT_TRUE(problem.contains(QStringLiteral("mail.ini")));
    EXPECT_EQ(settings, MailSettings{});
}

TEST(MailSettings, WrittenFileReadsBackTheSameAndOnlyTheOwnerMayReadIt)
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("mail.ini"));
    MailSettings written{"mail.shop.gr", 0, MailSecurity::Tls, "kasa", " #secret; ", "\"Κατάστημα\" <kasa@shop.gr>"};
    ASSERT_EQ(WriteMailSettings(path, written), 0);

    MailSettings read;
    QString problem;
    ASSERT_EQ(ReadMailSettings(path, read, problem), 0) << problem.toStdString();
    EXPECT_EQ(read, written);
    EXPECT_EQ(QFile::permissions(path) & (QFileDevice::ReadGroup | QFileDevice::ReadOther), QFileDevice::Permissions{});

    written = {"mail.shop.gr", 2465, MailSecurity::None, {}, {}, written.from};
    ASSERT_EQ(WriteMailSettings(path, written), 0);
    ASSERT_EQ(ReadMailSettings(path, read, problem), 0);
    EXPECT_EQ(read, written);
}
