#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

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
