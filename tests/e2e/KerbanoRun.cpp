#include "KerbanoRun.h"

#include <QProcess>

KerbanoRun runKerbanoHeadless(const QString& workDir, const QString& commandLine, int timeoutMs)
{
    QProcess process;
    process.setWorkingDirectory(workDir);
    process.start(QStringLiteral(KERBANO_BIN_DIR "/kerbano"), {QStringLiteral("--headless"), commandLine});
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
