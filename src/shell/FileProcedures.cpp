#include "shell/FileProcedures.h"

#include "shell/CodePage.h"
#include "shell/Platform.h"

#include <QFile>
#include <QFileInfo>

#ifdef Q_OS_WIN
#include <windows.h>
#elif KERBANO_POSIX
#include <cerrno>
#include <fcntl.h>
#include <unistd.h>
#endif

bool FileLookMemory::unchangedSinceLastLook(const QString& path, qint64 size,
                                            const QDateTime& modified)
{
    auto it = seen_.find(path);
    if (it == seen_.end() || it->size != size || it->modified != modified) {
        seen_.insert(path, Seen{size, modified, generation_});
        return false;
    }
    return it->generation < generation_;
}

namespace mFile {
namespace {

enum class OthersHoldIt { No, Yes, CannotTell };

#ifdef Q_OS_WIN
bool openForAppendDenyingWriters(const QString& path)
{
    HANDLE h = CreateFileW(reinterpret_cast<LPCWSTR>(path.utf16()), FILE_APPEND_DATA,
                           FILE_SHARE_READ, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (h == INVALID_HANDLE_VALUE)
        return false;
    CloseHandle(h);
    return true;
}
#elif KERBANO_POSIX
// A write lease is granted only while no other descriptor has the file open.
OthersHoldIt probeWithLease(const QString& path)
{
    const QByteArray native = QFile::encodeName(path);
    const int fd = ::open(native.constData(), O_RDONLY | O_CLOEXEC);
    if (fd < 0)
        return OthersHoldIt::Yes;
    OthersHoldIt answer = OthersHoldIt::No;
    if (::fcntl(fd, F_SETLEASE, F_WRLCK) == 0) {
        ::fcntl(fd, F_SETLEASE, F_UNLCK);
    } else {
        answer = (errno == EAGAIN || errno == EBUSY) ? OthersHoldIt::Yes : OthersHoldIt::CannotTell;
    }
    ::close(fd);
    return answer;
}
#else
// No lease to ask for: only the file's look from tick to tick can tell.
OthersHoldIt probeWithLease(const QString&)
{
    return OthersHoldIt::CannotTell;
}
#endif

QString lineAfterMarker(const QString& text, const QString& marker, int skip, const QString& otherwise)
{
    const qsizetype p = text.indexOf(marker);
    if (p < 0)
        return otherwise;
    const qsizetype e = text.indexOf(QStringLiteral("\r\n"), p);
    if (e < 0)
        return otherwise;
    const qsizetype start = p + skip;
    if (start >= e)
        return QString();
    return text.mid(start, e - start);
}

} // namespace

bool CanOpenForAppend(const QString& path, FileLookMemory* memory)
{
#ifdef Q_OS_WIN
    Q_UNUSED(memory);
    return openForAppendDenyingWriters(path);
#else
    {
        QFile file(path);
        if (!file.open(QIODevice::WriteOnly | QIODevice::Append))
            return false;
    }
    switch (probeWithLease(path)) {
    case OthersHoldIt::No:
        return true;
    case OthersHoldIt::Yes:
        return false;
    case OthersHoldIt::CannotTell:
        break;
    }
    if (!memory)
        return true;
    const QFileInfo info(path);
    return memory->unchangedSinceLastLook(path, info.size(), info.lastModified());
#endif
}

bool IsFileReady(const QString& path, FileLookMemory* memory)
{
    const QFileInfo info(path);
    if (!info.exists() || !info.isFile() || info.size() == 0)
        return false;
    return CanOpenForAppend(path, memory);
}

void DeleteFile(const QString& path)
{
    QFile::remove(path);
}

QString ReadWholeFile(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return QString();
    return codepage::fromWin1253(file.readAll());
}

bool AppendLine(const QString& path, const QString& line)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Append))
        return false;
    QByteArray bytes = codepage::toWin1253(line);
    bytes.append("\r\n");
    return file.write(bytes) == bytes.size();
}

QString ReadResultPathLine(const QString& text)
{
    return lineAfterMarker(text, QStringLiteral("resFile:"), 10, QStringLiteral("Result"));
}

QString ReadTagLine(const QString& text)
{
    return lineAfterMarker(text, QStringLiteral("tag:"), 6, QStringLiteral("Unknown"));
}

bool OpenCreatingForRead(QFile& file)
{
    if (!file.exists() && !file.open(QIODevice::WriteOnly))
        return false;
    file.close();
    return file.open(QIODevice::ReadOnly);
}

} // namespace mFile
