#pragma once

#include <QByteArray>
#include <QString>

// mail.ini: how the Z file reaches its receiver. A small INI file in the
// working directory, UTF-8, section [smtp] with host, port, security
// (none, starttls, tls), user, password and from. An empty user means the
// server is used without a login.
enum class MailSecurity { None, StartTls, Tls };

inline constexpr int kSmtpPort = 25;       // security none
inline constexpr int kSubmissionPort = 587; // starttls
inline constexpr int kSmtpsPort = 465;      // tls

struct MailSettings {
    QString host;
    int port = 0; // 0: the usual port of the security
    MailSecurity security = MailSecurity::None;
    QString user;
    QString password;
    QString from;

    bool operator==(const MailSettings&) const = default;

    int effectivePort() const;
};

QString MailSecurityName(MailSecurity security);
int DefaultMailPort(MailSecurity security);

// mail.ini in the working directory.
QString MailSettingsPath();

// 0 when the text holds usable settings; -1 with the reason, in Greek, in problem.
int ParseMailSettings(const QByteArray& text, MailSettings& settings, QString& problem);
// The same for the file; a missing or unreadable file is a failure too.
int ReadMailSettings(const QString& path, MailSettings& settings, QString& problem);

// Empty when host, from and port make a usable server; otherwise what is wrong.
QString MailSettingsProblem(const MailSettings& settings);

// The whole file as the settings window writes it.
QByteArray WriteMailSettingsText(const MailSettings& settings);
// Writes it in one go, readable by the owner only (it holds a password); 0 or -1.
int WriteMailSettings(const QString& path, const MailSettings& settings);
