#pragma once

#include "config/JobSettings.h"
#include "pipeline/DocumentFigures.h"
#include "shell/ResultSink.h"

#include <QString>
#include <QStringList>
#include <functional>

class Clock;
class FormModel;
class JobJournal;
class JobParts;
class Operator;
class clsind;
struct ModuleVariables;
struct ReceiptState;

// getdata's frame around one print file: reads it, takes resFile: and tag:
// from it, opens the result file with its first lines, walks the lines and
// closes the result file with the document's figures and "exitcode = 0".
// It is the one writer of the result file: whatever a job adds to it comes
// here, and a line with no job in hand is dropped.
class PrintJob final : public ResultSink {
public:
    static constexpr int kDocumentSettleMs = 500;
    static constexpr int kMaxProgress = 32767;

    PrintJob(Clock& clock, Operator& person, FormModel& form, ModuleVariables& vars,
             ReceiptState& receipt, clsind& progress, QString workingDirectory);

    void attach(JobParts& parts) { parts_ = &parts; }
    // Where each job leaves its trace for the next life; none by default.
    void attachJournal(JobJournal& journal) { journal_ = &journal; }

    // One job from the print file at path.
    void run(const QString& path, const JobSettings& settings);
    bool inHand() const { return inHand_; }
    // The print file of the last job is gone (or kept, as a program file is):
    // the journal marks the job ended.
    void printFileSettled();
    // The next job runs a print file again after an earlier life left it
    // unfinished: this line goes before its "exitcode = 0", exit status 0.
    void carryNote(const QString& line) { carriedNote_ = line; }
    // Asked behind the last line, before the closing reads: a note when the
    // receipt in hand had to be voided (the job then reports no receipt).
    void setEndCheck(std::function<QString()> check) { endCheck_ = std::move(check); }
    // The closing lines of a job an earlier life left unfinished, with the
    // register's figures and a line saying how it was recovered.
    void closeRecovered(const QString& resultPath, const DocumentFigures& figures, const QString& note);

    void appendResultLine(const QString& line) override;
    void noteBeforeExit(const QString& line) override;

    // The exit status of the command-line life after the last job: 0 printed
    // as asked (or recovered), kExitNotAsAsked when a note says otherwise,
    // kExitBadPrintFile when the print file could not be read as one.
    static constexpr int kExitNotAsAsked = 3;
    static constexpr int kExitBadPrintFile = 4;
    static constexpr int kExitResultUnwritten = 5;
    int exitStatus() const { return exitStatus_; }

private:
    void open(const QString& text);
    void walkLines(const QStringList& lines, const JobSettings& settings);
    void close();
    void writeClosingLines(const DocumentFigures& figures);
    QString messageTitle() const;

    Clock& clock_;
    Operator& person_;
    FormModel& form_;
    ModuleVariables& vars_;
    ReceiptState& receipt_;
    clsind& progress_;
    QString workingDirectory_;
    JobParts* parts_ = nullptr;
    JobJournal* journal_ = nullptr;
    QString carriedNote_;
    std::function<QString()> endCheck_;
    DocumentFigures lastFigures_;
    bool inHand_ = false;
    bool writeFailed_ = false;
    QStringList notes_;
    int exitStatus_ = 0;
};
