#include "KerbanoRun.h"

#include <QDeadlineTimer>
#include <QProcessEnvironment>

#ifdef Q_OS_UNIX
#include <csignal>
#endif

KerbanoProcess::KerbanoProcess(const QString& workDir, const QStringList& arguments,
                               const KerbanoProcessOptions& options)
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

KerbanoProcess::~KerbanoProcess()
{
    if (process_.state() != QProcess::NotRunning) {
        process_.kill();
        process_.waitForFinished(kStartMs);
    }
}

bool KerbanoProcess::waitFor(const QString& text, int timeoutMs)
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

bool KerbanoProcess::waitEnd(int timeoutMs)
{
    const bool ended = process_.waitForFinished(timeoutMs);
    take();
    return ended;
}

void KerbanoProcess::signal(int number)
{
#ifdef Q_OS_UNIX
    ::kill(pid_t(process_.processId()), number);
#else
    Q_UNUSED(number);
#endif
}

int KerbanoProcess::exitCode() const
{
    return process_.exitStatus() == QProcess::NormalExit ? process_.exitCode() : -1;
}

void KerbanoProcess::take()
{
    out_ += process_.readAllStandardOutput();
    err_ += process_.readAllStandardError();
}

KerbanoRun runKerbanoHeadless(const QString& workDir, const QString& commandLine, int timeoutMs)
{
    return runKerbanoHeadless(workDir, QStringList{commandLine}, timeoutMs);
}

KerbanoRun runKerbanoHeadless(const QString& workDir, const QStringList& arguments, int timeoutMs)
{
    KerbanoProcess kerbano(workDir, arguments);
    KerbanoRun run;
    run.finished = kerbano.waitEnd(timeoutMs);
    run.exitCode = run.finished ? kerbano.exitCode() : -1;
    run.out = kerbano.out();
    run.err = kerbano.err().toUtf8();
    return run;
}
