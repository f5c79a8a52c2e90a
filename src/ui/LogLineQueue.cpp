#include "ui/LogLineQueue.h"

#include <QMutexLocker>

void LogLineQueue::push(const QString& line)
{
    const QMutexLocker lock(&mutex_);
    lines_.append(line);
}

QStringList LogLineQueue::take()
{
    const QMutexLocker lock(&mutex_);
    QStringList out;
    out.swap(lines_);
    return out;
}
