#pragma once

#include "config/JobSettings.h"
#include "records/ReceiptState.h"
#include "pipeline/EngineHooks.h"
#include "shell/FileProcedures.h"
#include "shell/ModuleVariables.h"
#include "shell/ProgressIndicator.h"

#include <QObject>
#include <QString>

class Clock;
class DeviceLink;
class FPrinter;
class FormModel;
class Operator;

struct EngineOptions {
    // Where param.ini lies and relative paths start; empty: the process's.
    QString workingDirectory;
    // The system's own command line; empty for the param.ini life.
    QString commandLine;
};

// The main form's logic: start, the device search, polling for print files,
// the frame of a job, and the states the form shows. Runs on one thread; its
// timers are plain state that real QTimers (EngineTimers) or tests drive.
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
    static constexpr int kSearchesBeforeOffLine = 3;
    static constexpr int kDocumentSettleMs = 500;
    // The command-line life asks the register this often, this far apart, and
    // for no longer than this, before it gives up: the file stays unprinted
    // for the next run and the process ends with kExitRegisterSilent.
    static constexpr int kCommandLineInitializeAttempts = 5;
    static constexpr int kCommandLineInitializePauseMs = 1000;
    static constexpr qint64 kCommandLineInitializeGiveUpMs = 60000;
    static constexpr int kExitRegisterSilent = 2;

    Engine(Clock& clock, Operator& person, FormModel& form, EngineOptions options,
           QObject* parent = nullptr);

    // The link and FPrinterWrite are built from this engine's variables, so
    // they come in after construction.
    void attach(DeviceLink& link, FPrinter& printer);
    void setHooks(EngineHooks hooks);

    ModuleVariables& moduleVariables() { return vars_; }
    ReceiptState& receiptState() { return state_; }
    clsind& progress() { return progress_; }
    FormModel& form() { return form_; }

    void Form_Load();
    void timer1Tick();
    void timer2Tick();
    void mTimerTick();
    void command1();
    void command2();
    // The menu entry end: closes the link and ends the process.
    void unload();

    // One job from the print file at path.
    void getdata(const QString& path, const JobSettings& settings);

    TimerState timer1() const { return timer1_; }
    TimerState timer2() const { return timer2_; }
    TimerState mTimer() const { return mTimer_; }
    int searchFailures() const { return timer2Tag_; }

    bool AutoStart() const { return autoStart_; }
    int DeviceType() const { return deviceType_; }
    bool commandLineLife() const { return !options_.commandLine.isEmpty(); }
    bool parametersRead() const { return parametersRead_; }
    JobSettings lastSettings() const { return settings_; }

    bool hasEnded() const { return ended_; }
    int exitCode() const { return exitCode_; }

signals:
    void timersChanged();
    // The process is to end with this code.
    void ended(int exitCode);

private:
    QString workPath(const QString& configured) const;
    QString paramPath() const;
    void readStartSettings();
    bool readTickSettings();
    void showSettings();
    void setTimer(TimerState& timer, bool armed, int intervalMs);
    void setTimer(TimerState& timer, bool armed);
    void end(int code);

    void enterLinkFailed(qint16 status, const QString& reply);
    void enterReady();
    void showWaiting();
    void commandLineJob();

    void singleFileTick();
    void pollingTick();
    QString findCandidate();
    bool isReady(const QString& path);

    bool writeResultLine(const QString& line);
    void walkLines(const QStringList& lines, const JobSettings& settings);
    void closeJob();
    QString messageTitle() const;

    Clock& clock_;
    Operator& person_;
    FormModel& form_;
    EngineOptions options_;
    DeviceLink* link_ = nullptr;
    FPrinter* printer_ = nullptr;
    EngineHooks hooks_;

    ModuleVariables vars_;
    ReceiptState state_;
    clsind progress_;
    FileLookMemory looks_;

    JobSettings settings_;
    bool parametersRead_ = false;
    bool autoStart_ = false;
    int deviceType_ = 0;
    int timer2Tag_ = 0;
    TimerState timer1_{false, kTimer1DesignedMs};
    TimerState timer2_{false, kTimer2Ms};
    TimerState mTimer_{false, kMTimerMs};
    bool inJob_ = false;
    bool resultWriteFailed_ = false;
    bool ended_ = false;
    int exitCode_ = 0;
};
