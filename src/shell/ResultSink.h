#pragma once

#include <QString>

// The job's result file as the parts below the job see it: they hand lines to
// the one writer, which knows where the file is and whether a job is running.
class ResultSink {
public:
    virtual ~ResultSink() = default;
    // One line, written behind those before it; a sink with no job in hand drops it.
    virtual void appendResultLine(const QString& line) = 0;
    // A line that says why the job did not end as its print file asked; the
    // writer puts it just before "exitcode = 0" and the job's exit status follows it.
    virtual void noteBeforeExit(const QString& line) { appendResultLine(line); }
};
