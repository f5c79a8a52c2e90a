#include "config/MailSettings.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QStringList>

namespace {

const QString kFileName = QStringLiteral("mail.ini");
const QString kSection = QStringLiteral("smtp");
constexpr int kHighestPort = 65535;

struct SecurityName {
    MailSecurity security;
    const char* name;
};
const SecurityName kSecurityNames[] = {
    {MailSecurity::None, "none"},
    {MailSecurity::StartTls, "starttls"},
    {MailSecurity::Tls, "tls"},
};

bool securityFromName(const QString& text, MailSecurity& security)
{
    if (text.isEmpty()) {
        security = MailSecurity::None;
        return true;
    }
    for (const SecurityName& s : kSecurityNames) {
        if (text.compare(QLatin1String(s.name), Qt::CaseInsensitive) == 0) {
            security = s.security;
            return true;
        }
    }
    return false;
}

// A value may be quoted to keep blanks at its ends or a leading ";" or "#".
QString unquoted(const QString& value)
{
    if (value.size() >= 2 && value.startsWith(QLatin1Char('"')) && value.endsWith(QLatin1Char('"')))
        return value.mid(1, value.size() - 2);
    return value;
}

QString quotedWhenNeeded(QString value)
{
    value.remove(QLatin1Char('\r'));
    value.remove(QLatin1Char('\n'));
    const bool needs = !value.isEmpty()
        && (value != value.trimmed() || value.startsWith(QLatin1Char('"'))
            || value.startsWith(QLatin1Char(';')) || value.startsWith(QLatin1Char('#')));
    return needs ? QLatin1Char('"') + value + QLatin1Char('"') : value;
}

bool parsePort(const QString& text, int& port)
{
    if (text.isEmpty()) {
        port = 0;
        return true;
    }
    bool ok = false;
    const int value = text.toInt(&ok);
    if (!ok || value < 1 || value > kHighestPort)
        return false;
    port = value;
    return true;
}

struct RawSettings {
    bool sawSection = false;
    QString host, port, security, user, password, from;
};

struct KeyField {
    const char* key;
    QString RawSettings::*field;
};
const KeyField kKeys[] = {
    {"host", &RawSettings::host},
    {"port", &RawSettings::port},
    {"security", &RawSettings::security},
    {"user", &RawSettings::user},
    {"password", &RawSettings::password},
    {"from", &RawSettings::from},
};

// Keys of no meaning here are passed over.
void assign(RawSettings& raw, const QString& key, const QString& value)
{
    for (const KeyField& k : kKeys) {
        if (key.compare(QLatin1String(k.key), Qt::CaseInsensitive) == 0)
            raw.*k.field = value;
    }
}

// Reads lines into raw; 0, or the 1-based number of the first line that is
// neither blank, a comment, a [section] nor key = value.
int readLines(const QString& text, RawSettings& raw)
{
    const QStringList lines = text.split(QLatin1Char('\n'));
    bool inSection = false;
    for (int i = 0; i < lines.size(); ++i) {
        const QString line = lines[i].trimmed();
        if (line.isEmpty() || line.startsWith(QLatin1Char(';')) || line.startsWith(QLatin1Char('#')))
            continue;
        if (line.startsWith(QLatin1Char('['))) {
            if (!line.endsWith(QLatin1Char(']')))
                return i + 1;
            inSection = line.mid(1, line.size() - 2).trimmed().compare(kSection, Qt::CaseInsensitive) == 0;
            raw.sawSection = raw.sawSection || inSection;
            continue;
        }
        const qsizetype eq = line.indexOf(QLatin1Char('='));
        if (eq <= 0)
            return i + 1;
        if (inSection)
            assign(raw, line.left(eq).trimmed(), unquoted(line.mid(eq + 1).trimmed()));
    }
    return 0;
}

} // namespace

int MailSettings::effectivePort() const
{
    return port != 0 ? port : DefaultMailPort(security);
}

QString MailSecurityName(MailSecurity security)
{
    for (const SecurityName& s : kSecurityNames) {
        if (s.security == security)
            return QLatin1String(s.name);
    }
    return {};
}

int DefaultMailPort(MailSecurity security)
{
    switch (security) {
    case MailSecurity::StartTls:
        return kSubmissionPort;
    case MailSecurity::Tls:
        return kSmtpsPort;
    case MailSecurity::None:
        break;
    }
    return kSmtpPort;
}

QString MailSettingsPath()
{
    return QDir::current().filePath(kFileName);
}

int ParseMailSettings(const QByteArray& text, MailSettings& settings, QString& problem)
{
    settings = MailSettings{};
    RawSettings raw;
    QString decoded = QString::fromUtf8(text);
    if (decoded.startsWith(QChar(0xFEFF)))
        decoded.remove(0, 1);
    if (const int badLine = readLines(decoded, raw); badLine != 0) {
        problem = QStringLiteral("Το mail.ini έχει λάθος στη γραμμή %1: εκεί χωράει μόνο [smtp] ή κλειδί = τιμή.")
                      .arg(badLine);
        return -1;
    }
    if (!raw.sawSection) {
        problem = QStringLiteral("Το mail.ini δεν έχει την ενότητα [smtp].");
        return -1;
    }
    if (!securityFromName(raw.security, settings.security)) {
        problem = QStringLiteral("Στο mail.ini η τιμή security «%1» είναι άγνωστη· δεκτές είναι none, starttls, tls.")
                      .arg(raw.security);
        return -1;
    }
    if (!parsePort(raw.port, settings.port)) {
        problem = QStringLiteral("Στο mail.ini η θύρα (port) «%1» δεν είναι αριθμός από 1 έως %2.")
                      .arg(raw.port)
                      .arg(kHighestPort);
        return -1;
    }
    settings.host = raw.host;
    settings.user = raw.user;
    settings.password = raw.password;
    settings.from = raw.from;
    problem = MailSettingsProblem(settings);
    return problem.isEmpty() ? 0 : -1;
}

int ReadMailSettings(const QString& path, MailSettings& settings, QString& problem)
{
    settings = MailSettings{};
    QFile file(path);
    if (!file.exists()) {
        problem = QStringLiteral("Δεν βρέθηκε το αρχείο ρυθμίσεων email %1.")
                      .arg(QDir::toNativeSeparators(QFileInfo(path).absoluteFilePath()));
        return -1;
    }
    if (!file.open(QIODevice::ReadOnly)) {
        problem = QStringLiteral("Το αρχείο ρυθμίσεων email %1 δεν διαβάζεται.")
                      .arg(QDir::toNativeSeparators(QFileInfo(path).absoluteFilePath()));
        return -1;
    }
    return ParseMailSettings(file.readAll(), settings, problem);
}

QString MailSettingsProblem(const MailSettings& settings)
{
    if (settings.host.trimmed().isEmpty())
        return QStringLiteral("Στο mail.ini λείπει ο διακομιστής αλληλογραφίας (host).");
    if (settings.from.trimmed().isEmpty())
        return QStringLiteral("Στο mail.ini λείπει η διεύθυνση του αποστολέα (from).");
    if (settings.port < 0 || settings.port > kHighestPort)
        return QStringLiteral("Στο mail.ini η θύρα (port) %1 δεν είναι αριθμός από 1 έως %2.")
            .arg(settings.port)
            .arg(kHighestPort);
    return {};
}

QByteArray WriteMailSettingsText(const MailSettings& settings)
{
    QString text;
    text += QStringLiteral("; Mail of the Z file. security: none, starttls or tls.\n");
    text += QStringLiteral("; Without port: 25 for none, 587 for starttls, 465 for tls. Empty user: no login.\n");
    text += QStringLiteral("[smtp]\n");
    text += QStringLiteral("host = %1\n").arg(quotedWhenNeeded(settings.host));
    if (settings.port != 0)
        text += QStringLiteral("port = %1\n").arg(settings.port);
    text += QStringLiteral("security = %1\n").arg(MailSecurityName(settings.security));
    text += QStringLiteral("user = %1\n").arg(quotedWhenNeeded(settings.user));
    text += QStringLiteral("password = %1\n").arg(quotedWhenNeeded(settings.password));
    text += QStringLiteral("from = %1\n").arg(quotedWhenNeeded(settings.from));
    return text.toUtf8();
}

int WriteMailSettings(const QString& path, const MailSettings& settings)
{
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return -1;
    file.setPermissions(QFileDevice::ReadOwner | QFileDevice::WriteOwner);
    const QByteArray text = WriteMailSettingsText(settings);
    if (file.write(text) != text.size())
        return -1;
    return file.commit() ? 0 : -1;
}
