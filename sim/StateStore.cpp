#include "StateStore.h"

#include <QBuffer>
#include <QDir>
#include <QFile>
#include <QSaveFile>

#ifdef Q_OS_UNIX
#include <fcntl.h>
#include <unistd.h>
#endif

namespace statestore {

QString filePath(const QString& dir) { return QDir(dir).filePath(QStringLiteral("register.state")); }

bool load(const QString& dir, RegisterMemory& memory, QString* error)
{
    QFile f(filePath(dir));
    if (!f.exists())
        return false;
    if (!f.open(QIODevice::ReadOnly)) {
        if (error)
            *error = f.errorString();
        return false;
    }
    QDataStream s(&f);
    s.setVersion(QDataStream::Qt_6_0);
    RegisterMemory loaded;
    s >> loaded;
    if (s.status() != QDataStream::Ok) {
        if (error)
            *error = QStringLiteral("unreadable memory file %1").arg(f.fileName());
        return false;
    }
    memory = loaded;
    return true;
}

QByteArray image(const RegisterMemory& memory)
{
    QByteArray bytes;
    QBuffer buf(&bytes);
    buf.open(QIODevice::WriteOnly);
    QDataStream s(&buf);
    s.setVersion(QDataStream::Qt_6_0);
    s << memory;
    return bytes;
}

bool save(const QString& dir, const RegisterMemory& memory, QString* error)
{
    return saveImage(dir, image(memory), error);
}

// QSaveFile writes a temporary file beside the memory, syncs it to disk and
// renames it over the old one: a torn write never leaves a broken memory.
bool saveImage(const QString& dir, const QByteArray& bytes, QString* error)
{
    QDir().mkpath(dir);
    QSaveFile file(filePath(dir));
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size() || !file.commit()) {
        if (error)
            *error = QStringLiteral("cannot replace %1: %2").arg(file.fileName(), file.errorString());
        return false;
    }
#ifdef Q_OS_UNIX
    // The rename itself reaches the disk with the directory.
    const int dirFd = ::open(QFile::encodeName(dir).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (dirFd >= 0) {
        ::fsync(dirFd);
        ::close(dirFd);
    }
#endif
    return true;
}

} // namespace statestore
