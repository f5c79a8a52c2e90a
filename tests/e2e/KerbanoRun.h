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

// One kerbano --headless with its own home, watched while it runs and
// signalled at will; killed when it goes, whatever the test did.
struct KerbanoProcessOptions {
    bool windowLife = false;
    // Runs in the child before kerbano starts (a change of user, say).
    std::function<void()> inChild;
};

class KerbanoProcess {
public:
    static constexpr int kStartMs = 5000;
    static constexpr int kEventMs = 20000;

    KerbanoProcess(const QString& workDir, const QStringList& arguments, const KerbanoProcessOptions& options = {})
    {
        process_.setWorkingDirectory(workDir);
        // Its own home too, so that runs side by side share no log or order store.
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("KERBANO_HOME"), workDir);
        if (options.windowLife)
            environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
        process_.setProcessEnvironment(environment);
        if (options.inChild)
            process_.setChildProcessModifier(options.inChild);
        const QStringList life = options.windowLife ? QStringList{} : QStringList{QStringLiteral("--headless")};
        process_.start(QStringLiteral(KERBANO_BIN_DIR "/kerbano"), life + arguments);
        started_ = process_.waitForStarted(kStartMs);
    }
    ~KerbanoProcess()
    {
        if (process_.state() != QProcess::NotRunning) {
            process_.kill();
            process_.waitForFinished(kStartMs);
        }
    }

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
    // True when it ended in time.
    bool waitEnd(int timeoutMs = kEventMs)
    {
        const bool ended = process_.waitForFinished(timeoutMs);
        take();
        return ended;
    }
    void signal([[maybe_unused]] int number)
    {
#ifdef Q_OS_UNIX
        ::kill(pid_t(process_.processId()), number);
#endif
    }
    // Signals it and waits: true when it then ended in time with status 0.
    bool endsCleanlyOn(int number)
    {
        signal(number);
        return waitEnd() && exitCode() == 0;
    }
    bool running() const { return process_.state() == QProcess::Running; }
    // The exit code, or -1 for a death by signal.
    int exitCode() const { return process_.exitStatus() == QProcess::NormalExit ? process_.exitCode() : -1; }
    QByteArray out() const { return out_; }
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

// One command-line life of kerbano --headless, as an application would start it.
struct KerbanoRun {
    bool finished = false;
    int exitCode = -1;
    QByteArray out;
    QByteArray err;
};

// kerbano --headless with the given arguments behind it, run to its end.
inline KerbanoRun runKerbanoHeadless(const QString& workDir, const QStringList& arguments, int timeoutMs)
{
    KerbanoProcess kerbano(workDir, arguments);
    KerbanoRun run;
    run.finished = kerbano.waitEnd(timeoutMs);
    run.exitCode = run.finished ? kerbano.exitCode() : -1;
    run.out = kerbano.out();
    run.err = kerbano.err().toUtf8();
    return run;
}

inline KerbanoRun runKerbanoHeadless(const QString& workDir, const QString& commandLine, int timeoutMs)
{
    return runKerbanoHeadless(workDir, QStringList{commandLine}, timeoutMs);
}
