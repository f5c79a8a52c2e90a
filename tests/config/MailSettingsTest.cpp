#include "config/MailSettings.h"

#include "DataFile.h"
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
    const QStringList lines = golden(QStringLiteral("config/mail-ini.txt"), QStringLiteral("every key"));
    const Parsed p = parse("\xEF\xBB\xBF" + (lines.join(QStringLiteral("\r\n")) + QStringLiteral("\r\n")).toUtf8());
    ASSERT_EQ(p.status, 0) << p.problem.toStdString();
    EXPECT_EQ(p.settings, (MailSettings{"mail.shop.gr", 2525, MailSecurity::StartTls, "kasa@shop.gr", " pass;word= ",
                                        "Κατάστημα <kasa@shop.gr>"}));
    EXPECT_TRUE(p.problem.isEmpty());
}

TEST(MailSettings, MissingPortFollowsTheSecurityAndMissingSecurityIsNone)
{
    const QStringList securities = {"None", "StartTls", "Tls"};
    const QStringList rows = golden(QStringLiteral("config/mail-ini.txt"), QStringLiteral("missing port"));
    ASSERT_EQ(rows.size(), 5);
    for (const QString& row : rows.mid(1)) {
        const QStringList cell = row.split(u'\t');
        const Parsed p = parse(("[smtp]\nhost = h\nfrom = f@x.gr\nport =\n" + cell[0] + "\n").toUtf8());
        EXPECT_EQ(std::tuple(p.status, p.settings.security, p.settings.port, p.settings.effectivePort(), p.settings.user),
                  std::tuple(0, MailSecurity(securities.indexOf(cell[1])), 0, cell[2].toInt(), QString()))
            << row.toStdString();
    }
}

TEST(MailSettings, UnusableFilesGiveAGreekReason)
{
    int rows = 0;
    for (const QString& line : golden(QStringLiteral("config/mail-ini.txt"), QStringLiteral("unusable"))) {
        if (line.startsWith(u'#'))
            continue;
        const QString text = line.section(u'\t', 0, 0).replace(QStringLiteral("\\n"), QStringLiteral("\n"));
        const Parsed p = parse(text.toUtf8());
        EXPECT_EQ(std::tuple(p.status, p.problem), std::tuple(-1, line.section(u'\t', 1))) << text.toStdString();
        ++rows;
    }
    EXPECT_EQ(rows, 9);
}

TEST(MailSettings, WrittenFileReadsBackTheSameOnlyTheOwnerMayReadItAndAMissingOneIsNamed)
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("mail.ini"));
    MailSettings read;
    read.host = QStringLiteral("stale");
    QString problem;
    EXPECT_EQ(ReadMailSettings(path, read, problem), -1);
    EXPECT_TRUE(problem.startsWith(QStringLiteral("Δεν βρέθηκε το αρχείο ρυθμίσεων email ")));
    EXPECT_TRUE(problem.contains(QStringLiteral("mail.ini")));
    EXPECT_EQ(read, MailSettings{});

    MailSettings written{"mail.shop.gr", 0, MailSecurity::Tls, "kasa", " #secret; ", "\"Κατάστημα\" <kasa@shop.gr>"};
    ASSERT_EQ(WriteMailSettings(path, written), 0);
    ASSERT_EQ(ReadMailSettings(path, read, problem), 0) << problem.toStdString();
    EXPECT_EQ(read, written);
    EXPECT_EQ(QFile::permissions(path) & (QFileDevice::ReadGroup | QFileDevice::ReadOther), QFileDevice::Permissions{});

    written = {"mail.shop.gr", 2465, MailSecurity::None, {}, {}, written.from};
    ASSERT_EQ(WriteMailSettings(path, written), 0);
    ASSERT_EQ(ReadMailSettings(path, read, problem), 0);
    EXPECT_EQ(read, written);
}
