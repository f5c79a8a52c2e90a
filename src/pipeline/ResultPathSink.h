#pragma once

#include "shell/FileProcedures.h"
#include "shell/ModuleVariables.h"
#include "shell/ResultSink.h"

// Until the print job owns the result file: each line goes straight to the
// path the print file named (ModuleVariables::ResultPath), faults swallowed.
class ResultPathSink final : public ResultSink {
public:
    explicit ResultPathSink(const ModuleVariables& vars) : vars_(vars) {}

    void appendResultLine(const QString& line) override { mFile::AppendLine(vars_.ResultPath, line); }

private:
    const ModuleVariables& vars_;
};
