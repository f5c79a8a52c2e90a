#include "KerbanoRun.h"

#include <QProcess>
#include <QProcessEnvironment>

using namespace Qt::Literals::StringLiterals;

KerbanoRun runKerbanoHeadless(const QString& workDir, const QString& commandLine, int timeoutMs)
{
    return runKerbanoHeadless(workDir, QStringList{commandLine}, timeoutMs);
}

KerbanoRun runKerbanoHeadless(const QString& workDir, const QStringList& arguments, int timeoutMs)
{
    QProcess process;
    process.setWorkingDirectory(workDir);
    // Its own home too, so that runs side by side share no log or order store.
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"KERBANO_HOME"_s, workDir);
    process.setProcessEnvironment(environment);
    process.start(QStringLiteral(KERBANO_BIN_DIR "/kerbano"), QStringList{u"--headless"_s} + arguments);
    KerbanoRun run;
    run.finished = process.waitForFinished(timeoutMs);
    if (!run.finished) {
        process.kill();
        process.waitForFinished();
    }
    run.exitCode = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    run.out = process.readAllStandardOutput();
    run.err = process.readAllStandardError();
    return run;
}
