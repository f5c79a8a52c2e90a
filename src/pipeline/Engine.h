#pragma once

#include "config/JobSettings.h"
#include "records/ReceiptState.h"
#include "pipeline/DeviceSearch.h"
#include "pipeline/EngineState.h"
#include "pipeline/FileWatch.h"
#include "pipeline/PrintJob.h"
#include "shell/ModuleVariables.h"
#include "shell/ProgressIndicator.h"

#include <QObject>
#include <QString>

class Clock;
class DeviceLink;
class FPrinter;
class FormModel;
class JobParts;
class JobRecovery;
class Operator;
class ResultSink;
class StartParts;

struct EngineOptions {
    // Where param.ini lies and relative paths start; empty: the process's.
    QString workingDirectory;
    // The system's own command line; empty for the param.ini life.
    QString commandLine;
    // [AutoStar]=yes starts polling once the register answers; a life that
    // only runs one menu action leaves polling alone.
    bool honourAutoStart = true;
};

// The main form's state machine: the start, the device search's outcome,
// Timer1's ticks, the two buttons, the command-line life and the end. The
// print job, the file watch and the device search do the work; the engine
// decides when and shows the states. Runs on one thread; its timers are plain
// state that real QTimers (EngineTimers) or tests drive.
class Engine : public QObject {
    Q_OBJECT
public:
    struct TimerState {
        bool armed = false;
        int intervalMs = 0;
    };

    static constexpr int kTimer1DesignedMs = 3000;
    static constexpr int kTimer1CommandLineMs = 1000;
    static constexpr int kTimer2Ms = 1000;
    static constexpr int kMTimerMs = 1000;
    // The tray tip holds the caption up to this length.
    static constexpr int kTrayTipLength = 63;
    // The command-line life asks the register this often, this far apart, and
    // for no longer than this, before it gives up: the file stays unprinted
    // for the next run and the process ends with kExitRegisterSilent.
    static constexpr int kCommandLineInitializeAttempts = 5;
    static constexpr int kCommandLineInitializePauseMs = 1000;
    static constexpr qint64 kCommandLineInitializeGiveUpMs = 60000;
    static constexpr int kExitWrongCommandLine = 1;
    static constexpr int kExitRegisterSilent = 2;

    Engine(Clock& clock, Operator& person, FormModel& form, EngineOptions options,
           QObject* parent = nullptr);

    // The link, FPrinterWrite and the job's parts are built from this
    // engine's variables, so they come in after construction.
    void attach(DeviceLink& link, FPrinter& printer, JobParts& jobParts, StartParts& startParts);
    // An unfinished job of an earlier life is reconciled through this before
    // the next job and once the register answers; none by default.
    void attachRecovery(JobRecovery& recovery) { recovery_ = &recovery; }
    PrintJob& printJob() { return job_; }

    ModuleVariables& moduleVariables() { return vars_; }
    ReceiptState& receiptState() { return state_; }
    clsind& progress() { return progress_; }
    FormModel& form() { return form_; }
    // Where the parts below the job hand their result-file lines.
    ResultSink& resultSink() { return job_; }

    // What a look on arrival came to; the watch decides from it when to look again.
    enum class ArrivalLook {
        NotNow,  // not polling: Timer1 is off, or the life is over
        Busy,    // a start, a tick or a job is running: look once it is free
        Nothing, // no print file
        Waiting, // a print file is there but not finished
        Printed, // one job ran and its file is gone: more may wait
        Kept,    // one job ran and its file stayed (a program file)
    };

    void Form_Load();
    void timer1Tick();
    // The print-file folder changed: the same look as Timer1's tick, at once,
    // except that finding nothing leaves the link as it is, for the file that
    // is about to land. Only Timer1's ticks let the port go.
    ArrivalLook lookOnArrival();
    // The folder the print files land in; empty in the command-line life.
    QString printFolder() const;
    void timer2Tick();
    void mTimerTick();
    void command1();
    void command2();
    // The settings window opened: a device search stops while it is open.
    void stopDeviceSearch();
    // The menu entry end: closes the link and ends the process with exitCode.
    void unload(int exitCode = 0);

    // param.ini read now, as the next tick would read it (SIGHUP). Nothing
    // while a start, a tick or a job is running: the next tick reads it.
    void rereadSettings();
    // The process is to end (ModuleVariables::Stop): no new job starts.
    bool stopRequested() const { return vars_.Stop != StopCause::None; }

    // One job from the print file at path.
    void getdata(const QString& path, const JobSettings& settings);

    TimerState timer1() const { return timer1_; }
    TimerState timer2() const { return timer2_; }
    TimerState mTimer() const { return mTimer_; }
    int searchFailures() const { return search_.failures(); }

    EngineState state() const { return engineState_; }
    // A start, a tick or a job is running: the engine is not to be entered now.
    bool busy() const { return workDepth_ > 0; }
    bool jobInHand() const { return job_.inHand(); }

    bool AutoStart() const { return autoStart_; }
    int DeviceType() const { return deviceType_; }
    bool commandLineLife() const { return !options_.commandLine.isEmpty(); }
    bool parametersRead() const { return parametersRead_; }
    JobSettings lastSettings() const { return settings_; }

    bool hasEnded() const { return ended_; }
    int exitCode() const { return exitCode_; }

signals:
    void timersChanged();
    void stateEntered(EngineState state);
    // The engine has left its last start, tick or job and may be entered.
    void freed();
    // The process is to end with this code.
    void ended(int exitCode);

private:
    class Work;

    QString paramPath() const;
    void readStartSettings();
    bool readTickSettings();
    void showSettings();
    void setTimer(TimerState& timer, bool armed, int intervalMs);
    void setTimer(TimerState& timer, bool armed);
    void enter(EngineState state);
    void end(int code);

    void enterLinkFailed(qint16 status, const QString& reply);
    void enterReady();
    void enterOffLine();
    void showWaiting();
    void commandLineJob();
    bool initializeForCommandLine();
    void startBatchFileWhenAsked();

    enum class TickKind { Timer1, Arrival };
    ArrivalLook tick(TickKind kind);
    ArrivalLook singleFileTick();
    ArrivalLook pollingTick(TickKind kind);
    void openLinkIfClosed();
    void closeLinkIfOpen();
    // What the job on path is to do after the journal's unfinished job, if
    // any, was reconciled: true to run it.
    enum class BeforeJob { Run, Skip, Hold };
    BeforeJob reconcile(const QString& path);
    QString messageTitle() const;

    Clock& clock_;
    Operator& person_;
    FormModel& form_;
    EngineOptions options_;
    DeviceLink* link_ = nullptr;
    FPrinter* printer_ = nullptr;
    StartParts* startParts_ = nullptr;
    JobRecovery* recovery_ = nullptr;

    ModuleVariables vars_;
    ReceiptState state_;
    clsind progress_;
    PrintJob job_;
    FileWatch watch_;
    DeviceSearch search_;

    JobSettings settings_;
    bool parametersRead_ = false;
    bool autoStart_ = false;
    int deviceType_ = 0;
    TimerState timer1_{false, kTimer1DesignedMs};
    TimerState timer2_{false, kTimer2Ms};
    TimerState mTimer_{false, kMTimerMs};
    EngineState engineState_ = EngineState::Starting;
    int workDepth_ = 0;
    qint64 startMs_ = 0; // Form_Load's, on the clock
    bool inJob_ = false;
    bool ended_ = false;
    int exitCode_ = 0;
};
