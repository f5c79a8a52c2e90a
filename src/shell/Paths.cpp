#include "shell/Paths.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

QString ProgramDirectory()
{
    const QString home = qEnvironmentVariable("KERBANO_HOME");
    if (!home.isEmpty())
        return home;
    if (QCoreApplication::instance()) {
        const QString exeDir = QCoreApplication::applicationDirPath();
        if (QFileInfo(exeDir).isWritable())
            return exeDir;
    }
    return QDir::currentPath();
}

QString ConfiguredPath(const QString& path)
{
#ifdef Q_OS_WIN
    return path;
#else
    QString out = path;
    out.replace(QLatin1Char('\\'), QLatin1Char('/'));
    return out;
#endif
}

QString ResolveAgainst(const QString& base, const QString& path)
{
    const QString local = ConfiguredPath(path);
    if (local.isEmpty() || QDir::isAbsolutePath(local))
        return local;
    return QDir(base).filePath(local);
}
