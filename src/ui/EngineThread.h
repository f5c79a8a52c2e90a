#pragma once

#include "pipeline/Driver.h"
#include "ui/ParamWindow.h"

#include <QThread>
#include <atomic>
#include <functional>

class EftTerminalChoice;
class LogLineQueue;
class MainWindow;
class Operator;
class PaymentMapWindow;
class TaxServerWindow;
class TransportFactory;

// The engine's own thread. The whole driver is built on it and lives there
// to the end; the window only sees FormState values coming out and names of
// menu actions going in, and the person is reached through the Operator.
class EngineThread : public QThread {
    Q_OBJECT
public:
    struct Setup {
        DriverOptions driver;
        QString runAction;  // kerbano --run NAME; empty for the usual life
        // Opens the link's pipes on the engine thread; the real ones when empty.
        std::function<std::unique_ptr<TransportFactory>()> transports;
    };

    EngineThread(Operator& person, Setup setup, MainWindow& window, LogLineQueue& log,
                 QObject* parent = nullptr);
    ~EngineThread() override;

    // The windows of the menu entries that talk to the register while they
    // stand (frmEFT, frmEFTSelect, frmsvr); set before start.
    struct Windows {
        PaymentMapWindow* paymentMap = nullptr;
        EftTerminalChoice* eftSelect = nullptr;
        TaxServerWindow* taxServer = nullptr;
    };
    void setWindows(Windows windows) { windows_ = windows; }

    // From the GUI thread: runs on the engine thread, in its event loop.
    void post(std::function<void(Driver&)> work);

    // The communication log goes off (frmDebug closed by its own close box).
    void debugOff();
    void setFileLog(bool on);

signals:
    // The engine has ended; the process ends with this code.
    void ended(int exitCode);
    // Window-side menu actions, after the engine has done its part.
    void settingsRequested(const StartOnlySettings& startOnly, bool rescue);
    void helpTextRequested();
    void aboutRequested();
    void debugWindowRequested(bool open);

protected:
    void run() override;

private:
    void wire(Driver& driver, FormModel& form);
    void wireWindowActions(Driver& driver, FormModel& form);
    void startLife(Driver& driver);

    Operator& person_;
    Setup setup_;
    MainWindow& window_;
    LogLineQueue& log_;
    Windows windows_;
    std::atomic<QObject*> context_{nullptr};
    Driver* driver_ = nullptr;
};
