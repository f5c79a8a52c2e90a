#pragma once

#include <functional>

#include <QByteArray>
#include <QProcess>
#include <QString>
#include <QStringList>

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

    KerbanoProcess(const QString& workDir, const QStringList& arguments, const KerbanoProcessOptions& options = {});
    ~KerbanoProcess();

    bool started() const { return started_; }
    // Waits until stdout or stderr holds text; false when it never came.
    bool waitFor(const QString& text, int timeoutMs = kEventMs);
    // True when it ended in time.
    bool waitEnd(int timeoutMs = kEventMs);
    void signal(int number);
    // Signals it and waits: true when it then ended in time with status 0.
    bool endsCleanlyOn(int number)
    {
        signal(number);
        return waitEnd() && exitCode() == 0;
    }
    bool running() const { return process_.state() == QProcess::Running; }
    // The exit code, or -1 for a death by signal.
    int exitCode() const;
    QByteArray out() const { return out_; }
    QString said() const { return QString::fromUtf8(out_ + err_); }
    QString err() const { return QString::fromUtf8(err_); }

private:
    void take();

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

KerbanoRun runKerbanoHeadless(const QString& workDir, const QString& commandLine, int timeoutMs);

// kerbano --headless with the given arguments behind it.
KerbanoRun runKerbanoHeadless(const QString& workDir, const QStringList& arguments, int timeoutMs);
