#pragma once

#include <QDateTime>
#include <QHash>
#include <QString>

// What IsFileReady remembers of the files it looked at, for file systems where
// the open-file test is not available: a file counts as finished once its size
// and modification time have stood still from one look to the next. The
// engine starts a new look at each poll.
class FileLookMemory {
public:
    void beginLook() { ++generation_; }
    // True when path had this size and time at an earlier look.
    bool unchangedSinceLastLook(const QString& path, qint64 size, const QDateTime& modified);

private:
    struct Seen {
        qint64 size = -1;
        QDateTime modified;
        quint64 generation = 0;
    };
    QHash<QString, Seen> seen_;
    quint64 generation_ = 1;
};

// mFile: the small file procedures of the print job. Files are Windows-1253.
class QFile;

namespace mFile {

// The file exists, is not empty and nobody else holds it open for writing.
bool IsFileReady(const QString& path, FileLookMemory* memory = nullptr);

// Opens the file for append with other writers shut out and closes it again.
// Off Windows: the append open must succeed and no other process may hold the
// file open (a write lease is granted only then); where leases are not
// available, size and modification time unchanged since the last look.
bool CanOpenForAppend(const QString& path, FileLookMemory* memory = nullptr);

// Opens a data file (vats.dat, payeft.dat) for reading; a missing one is
// first made, empty, as the first access of such a file does.
bool OpenCreatingForRead(QFile& file);

// Deletes the file; a fault is passed over.
void DeleteFile(const QString& path);

// The whole content, or an empty text when the file is missing or unreadable.
QString ReadWholeFile(const QString& path);

// Appends line and CR LF, creating the file when missing. Faults are swallowed;
// the answer only says whether the line landed, for whoever wants to know.
bool AppendLine(const QString& path, const QString& line);

// The path after "resFile:" (two characters skipped) up to the next CR LF;
// "Result" when there is none.
QString ReadResultPathLine(const QString& text);

// The value after "tag:" (two characters skipped) up to the next CR LF;
// "Unknown" when there is none.
QString ReadTagLine(const QString& text);

} // namespace mFile
