#include "shell/ConsoleLine.h"
#include "shell/Platform.h"

#include <QByteArray>
#include <cstdio>

#if KERBANO_POSIX
#include <sys/stat.h>
#endif

namespace console {

QString levelPrefix(Level level, bool toJournal)
{
    if (toJournal)
        return QStringLiteral("<%1>").arg(static_cast<int>(level));
    switch (level) {
    case Level::Error: return QStringLiteral("error: ");
    case Level::Warning: return QStringLiteral("warning: ");
    case Level::Notice: return QStringLiteral("notice: ");
    case Level::Info: break;
    }
    return QStringLiteral("info: ");
}

// systemd names the journal's stream in JOURNAL_STREAM as "device:inode".
bool stderrIsJournal()
{
#if KERBANO_POSIX
    const QByteArray stream = qgetenv("JOURNAL_STREAM");
    if (stream.isEmpty())
        return false;
    struct stat st {};
    if (::fstat(2, &st) != 0)
        return false;
    return stream == QByteArray::number(quint64(st.st_dev)) + ':' + QByteArray::number(quint64(st.st_ino));
#else
    return false;
#endif
}

void say(Level level, const QString& text)
{
    static const bool toJournal = stderrIsJournal();
    const QByteArray line = (levelPrefix(level, toJournal) + text).toUtf8() + '\n';
    std::fwrite(line.constData(), 1, size_t(line.size()), stderr);
    std::fflush(stderr);
}

} // namespace console
