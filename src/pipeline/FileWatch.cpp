#include "pipeline/FileWatch.h"

#include "shell/Paths.h"

#include <QDir>
#include <QFileInfo>

FileWatch::FileWatch(QString workingDirectory)
    : workingDirectory_(std::move(workingDirectory))
{
}

FileWatch::Way FileWatch::wayOf(const JobSettings& settings)
{
    if (settings.multiType == QLatin1String("fals"))
        return Way::SingleFile;
    if (settings.multiType == QLatin1String("true"))
        return Way::Polling;
    return Way::Unknown;
}

QString FileWatch::namedPath(const JobSettings& settings) const
{
    return ResolveAgainst(workingDirectory_, settings.location + settings.file);
}

std::optional<QString> FileWatch::singleFile(const JobSettings& settings)
{
    const QString path = namedPath(settings);
    if (!isReady(path))
        return std::nullopt;
    return path;
}

std::optional<QString> FileWatch::nextFile(const JobSettings& settings)
{
    const QString candidate = findCandidate(settings);
    if (candidate.isEmpty() || !isReady(candidate))
        return std::nullopt;
    return candidate;
}

bool FileWatch::keptAfterJob(const QString& path, Way way)
{
    if (way == Way::SingleFile)
        return path.toUpper().endsWith(QLatin1String("PRG.1"));
    return path.endsWith(QLatin1String("prg.1"));
}

bool FileWatch::hasUnfinishedFile(const JobSettings& settings) const
{
    if (wayOf(settings) == Way::SingleFile)
        return QFileInfo::exists(namedPath(settings));
    if (settings.file.contains(QLatin1Char('*')))
        return !wildcardMatches(settings).isEmpty();
    const QString stem = namedPath(settings);
    for (int n = 1; n <= kHighestNumberedFile; ++n) {
        if (QFileInfo::exists(stem + QLatin1Char('.') + QString::number(n)))
            return true;
    }
    return false;
}

QString FileWatch::folder(const JobSettings& settings) const
{
    return QFileInfo(namedPath(settings)).absolutePath();
}

QStringList FileWatch::wildcardMatches(const JobSettings& settings) const
{
    const QFileInfo pattern(namedPath(settings));
    QDir::Filters filters = QDir::Files;
#ifndef Q_OS_WIN
    filters |= QDir::CaseSensitive;
#endif
    return pattern.dir().entryList({pattern.fileName()}, filters, QDir::Unsorted);
}

QString FileWatch::findCandidate(const JobSettings& settings)
{
    const QString stem = namedPath(settings);
    if (settings.file.contains(QLatin1Char('*'))) {
        const QStringList names = wildcardMatches(settings);
        return names.isEmpty() ? QString() : QFileInfo(stem).dir().filePath(names.first());
    }
    for (int n = 1; n <= kHighestNumberedFile; ++n) {
        const QString numbered = stem + QLatin1Char('.') + QString::number(n);
        if (isReady(numbered))
            return numbered;
    }
    return QString();
}

bool FileWatch::isReady(const QString& path)
{
    return mFile::IsFileReady(path, recording_ ? &looks_ : &passing_);
}
