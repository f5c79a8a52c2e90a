#pragma once

#include <QByteArray>
#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>
#include <QString>
#include <QTemporaryDir>
#include <cstddef>
#include <cstdint>

// Plumbing shared by the fuzz targets: one application object and one scratch
// folder per fuzzing process. The folder lies in memory (/dev/shm) where the
// machine has it, so the many small files of a run never reach a disk.
namespace fuzzing {

inline QByteArray bytesOf(const uint8_t* data, size_t size)
{
    return QByteArray(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
}

// Qt's plugins (the SQLite driver) and timers want an application object.
inline void startApplication()
{
    static int argc = 1;
    static char name[] = "kerbano-fuzz";
    static char* argv[] = {name, nullptr};
    static QCoreApplication app(argc, argv);
}

inline const QTemporaryDir& scratchDir()
{
    static const QTemporaryDir dir = [] {
        const QString shm = QStringLiteral("/dev/shm");
        const QString base = QFileInfo(shm).isWritable() ? shm : QDir::tempPath();
        return QTemporaryDir(base + QStringLiteral("/kerbano-fuzz-XXXXXX"));
    }();
    return dir;
}

inline QString scratchPath(const QString& name)
{
    return scratchDir().filePath(name);
}

// The file name under the scratch folder, holding exactly bytes.
inline QString writeScratchFile(const QString& name, const QByteArray& bytes)
{
    const QString path = scratchPath(name);
    QFile file(path);
    if (file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        file.write(bytes);
    return path;
}

} // namespace fuzzing
