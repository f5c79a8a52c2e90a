#pragma once

#include "config/JobSettings.h"
#include "shell/FileProcedures.h"

#include <QString>
#include <optional>

// Timer1's look for a print file. The single-file way waits for the one named
// file; the polling way takes the first ready one of <file>.1 to <file>.10, or
// the first name that matches a wildcard, and asks IsFileReady once more
// before it hands the candidate out.
class FileWatch {
public:
    enum class Way { SingleFile, Polling, Unknown };

    static constexpr int kHighestNumberedFile = 10;

    explicit FileWatch(QString workingDirectory);

    // From [multi type]: "fals" the single-file way, "true" the polling way.
    static Way wayOf(const JobSettings& settings);

    // A new tick: what the last one saw of each file is now the earlier look.
    void beginLook()
    {
        looks_.beginLook();
        recording_ = true;
    }
    // A look between two ticks, when the folder changed: it may use what the
    // ticks saw but records nothing, so a file that can only be judged by its
    // size and time still has to stand still for a whole tick.
    void beginArrivalLook()
    {
        passing_ = looks_;
        recording_ = false;
    }

    // The named file, once it is there and finished.
    std::optional<QString> singleFile(const JobSettings& settings);
    // The file to print in the polling way, if any.
    std::optional<QString> nextFile(const JobSettings& settings);

    // A file that would be the candidate is there but not finished yet (still
    // written, or empty).
    bool hasUnfinishedFile(const JobSettings& settings) const;

    // The folder the print files land in.
    QString folder(const JobSettings& settings) const;

    // A program file stays once printed: "PRG.1" in any case in the
    // single-file way, "prg.1" as it stands in the polling way.
    static bool keptAfterJob(const QString& path, Way way);

    // <location><file>, simply joined, against the working directory.
    QString namedPath(const JobSettings& settings) const;

private:
    QString findCandidate(const JobSettings& settings);
    bool isReady(const QString& path);
    QStringList wildcardMatches(const JobSettings& settings) const;

    QString workingDirectory_;
    FileLookMemory looks_;
    FileLookMemory passing_;
    bool recording_ = true;
};
