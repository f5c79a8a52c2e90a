#include "StateStore.h"

#include <QBuffer>
#include <QDir>
#include <QFile>

#include <fcntl.h>
#include <unistd.h>

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

bool saveImage(const QString& dir, const QByteArray& bytes, QString* error)
{
    QDir().mkpath(dir);
    const QByteArray finalPath = QFile::encodeName(filePath(dir));
    const QByteArray tmpPath = finalPath + ".tmp";
    const int fd = ::open(tmpPath.constData(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    if (fd < 0) {
        if (error)
            *error = QStringLiteral("cannot write %1").arg(QString::fromLocal8Bit(tmpPath));
        return false;
    }
    qint64 done = 0;
    while (done < bytes.size()) {
        const ssize_t n = ::write(fd, bytes.constData() + done, static_cast<size_t>(bytes.size() - done));
        if (n <= 0) {
            ::close(fd);
            if (error)
                *error = QStringLiteral("write failed");
            return false;
        }
        done += n;
    }
    const bool synced = ::fsync(fd) == 0;
    ::close(fd);
    if (!synced || ::rename(tmpPath.constData(), finalPath.constData()) != 0) {
        if (error)
            *error = QStringLiteral("cannot replace %1").arg(QString::fromLocal8Bit(finalPath));
        return false;
    }
    const int dirFd = ::open(QFile::encodeName(dir).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (dirFd >= 0) {
        ::fsync(dirFd);
        ::close(dirFd);
    }
    return true;
}

} // namespace statestore
