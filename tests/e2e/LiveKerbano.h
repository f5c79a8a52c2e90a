#pragma once

#include <QByteArray>
#include <QDeadlineTimer>
#include <QProcess>
#include <QProcessEnvironment>
#include <QString>
#include <QStringList>
#include <functional>

#ifdef Q_OS_UNIX
#include <csignal>
#endif

struct LiveKerbanoOptions {
    bool windowLife = false;
    // Runs in the child before kerbano starts (a change of user, say).
    std::function<void()> inChild;
};

// One kerbano --headless (or the window's life, with windowLife), watched
// while it runs and signalled at will; killed when the guard goes.
class LiveKerbano {
public:
    static constexpr int kStartMs = 5000;
    static constexpr int kEventMs = 20000;

    LiveKerbano(const QString& workDir, const QStringList& arguments,
                const LiveKerbanoOptions& options = {})
    {
        process_.setWorkingDirectory(workDir);
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("KERBANO_HOME"), workDir);
        process_.setProcessEnvironment(environment);
        if (options.inChild)
            process_.setChildProcessModifier(options.inChild);
        const QStringList life = options.windowLife ? QStringList{} : QStringList{QStringLiteral("--headless")};
        process_.start(QStringLiteral(KERBANO_BIN_DIR "/kerbano"), life + arguments);
        started_ = process_.waitForStarted(kStartMs);
    }
    ~LiveKerbano()
    {
        if (process_.state() != QProcess::NotRunning) {
            process_.kill();
            process_.waitForFinished(kStartMs);
        }
    }
    LiveKerbano(const LiveKerbano&) = delete;
    LiveKerbano& operator=(const LiveKerbano&) = delete;

    bool started() const { return started_; }
    // Waits until stdout or stderr holds text; false when it never came.
    bool waitFor(const QString& text, int timeoutMs = kEventMs)
    {
        const QDeadlineTimer deadline(timeoutMs);
        while (!said().contains(text)) {
            if (process_.state() == QProcess::NotRunning || deadline.hasExpired())
                return false;
            process_.waitForReadyRead(100);
            take();
        }
        return true;
    }
#ifdef Q_OS_UNIX
    void signal(int number) { ::kill(pid_t(process_.processId()), number); }
#endif
    bool running() { return process_.state() == QProcess::Running; }
    // True when it ended in time; the exit code, or -1 for a death by signal.
    bool waitEnd(int timeoutMs = kEventMs)
    {
        const bool ended = process_.waitForFinished(timeoutMs);
        take();
        return ended;
    }
    int exitCode() const
    {
        return process_.exitStatus() == QProcess::NormalExit ? process_.exitCode() : -1;
    }
    QString said() const { return QString::fromUtf8(out_ + err_); }
    QString err() const { return QString::fromUtf8(err_); }

private:
    void take()
    {
        out_ += process_.readAllStandardOutput();
        err_ += process_.readAllStandardError();
    }

    QProcess process_;
    bool started_ = false;
    QByteArray out_;
    QByteArray err_;
};
