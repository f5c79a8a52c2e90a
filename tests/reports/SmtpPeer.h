#pragma once

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QStringList>
#include <QTemporaryDir>

// The loopback SMTP server of tests/reports/smtp_peer.py, on a port it picks
// itself; stopped when the object goes.
class SmtpPeer {
public:
    // mode and its arguments as smtp_peer.py takes them; the saving mode gets
    // its folder here.
    explicit SmtpPeer(const QString& mode, const QStringList& extra = {})
    {
        QStringList args{QStringLiteral(KERBANO_SOURCE_DIR "/tests/reports/smtp_peer.py"), mode};
        if (mode == QLatin1String("accept"))
            args << saved_.path();
        args << extra;
        process_.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        process_.start(python(), args);
        if (!process_.waitForStarted(kStartMs))
            return;
        while (port_ == 0 && process_.waitForReadyRead(kStartMs)) {
            if (!process_.canReadLine())
                continue;
            const QByteArray line = process_.readLine().trimmed();
            if (line.startsWith("PORT "))
                port_ = line.mid(5).toInt();
        }
    }
    ~SmtpPeer()
    {
        process_.terminate();
        if (!process_.waitForFinished(kStopMs)) {
            process_.kill();
            process_.waitForFinished(kStopMs);
        }
    }
    SmtpPeer(const SmtpPeer&) = delete;
    SmtpPeer& operator=(const SmtpPeer&) = delete;

    // 0 when the server did not come up.
    int port() const { return port_; }

    // Mail n (from 1) as the server received it, and its envelope.
    QByteArray message(int n) const { return readFile(QStringLiteral("%1.eml").arg(n)); }
    QJsonObject envelope(int n) const
    {
        return QJsonDocument::fromJson(readFile(QStringLiteral("%1.json").arg(n))).object();
    }
    int received() const
    {
        return static_cast<int>(QDir(saved_.path()).entryList({QStringLiteral("*.eml")}).size());
    }

private:
    static constexpr int kStartMs = 10000;
    static constexpr int kStopMs = 5000;

    // The Debian interpreter carries python3-aiosmtpd even when another
    // python3 comes first on PATH.
    static QString python()
    {
        for (const QString& candidate : {QStringLiteral("/usr/bin/python3"), QStringLiteral("python3")}) {
            QProcess probe;
            probe.start(candidate, {QStringLiteral("-c"), QStringLiteral("import aiosmtpd")});
            if (probe.waitForFinished(kStartMs) && probe.exitStatus() == QProcess::NormalExit
                && probe.exitCode() == 0)
                return candidate;
        }
        return QStringLiteral("python3");
    }

    QByteArray readFile(const QString& name) const
    {
        QFile file(QDir(saved_.path()).filePath(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    QTemporaryDir saved_;
    QProcess process_;
    int port_ = 0;
};
