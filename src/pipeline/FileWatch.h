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
    void beginLook() { looks_.beginLook(); }

    // The named file, once it is there and finished.
    std::optional<QString> singleFile(const JobSettings& settings);
    // The file to print in the polling way, if any.
    std::optional<QString> nextFile(const JobSettings& settings);

    // A program file stays once printed: "PRG.1" in any case in the
    // single-file way, "prg.1" as it stands in the polling way.
    static bool keptAfterJob(const QString& path, Way way);

    // <location><file>, simply joined, against the working directory.
    QString namedPath(const JobSettings& settings) const;

private:
    QString findCandidate(const JobSettings& settings);
    bool isReady(const QString& path);

    QString workingDirectory_;
    FileLookMemory looks_;
};
