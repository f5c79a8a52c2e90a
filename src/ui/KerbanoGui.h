#pragma once

#include "ui/AboutBox.h"
#include "ui/EngineThread.h"
#include "ui/GuiOperator.h"
#include "ui/LogLineQueue.h"
#include "ui/frmEFT.h"
#include "ui/frmEFTSelect.h"
#include "ui/frmsvr.h"

#include <QObject>
#include <QPointer>
#include <memory>

class DebugWindow;
class MainWindow;
class ParamWindow;

// The GUI life put together: the main form and its tray, the person's
// dialogs, the log window, and the engine on its own thread. The windows of
// the menu entries open here when the engine asks for them.
class KerbanoGui : public QObject {
    Q_OBJECT
public:
    explicit KerbanoGui(EngineThread::Setup setup, QObject* parent = nullptr);
    ~KerbanoGui() override;

    void start();
    // Lets the engine finish and waits for its thread: questions still open
    // are answered as cancelled.
    void stop();

    MainWindow& window() const { return *window_; }
    GuiOperator& person() { return person_; }
    EngineThread& engine() { return *engine_; }
    DebugWindow* debugWindow() const { return debug_.get(); }
    ParamWindow* paramWindow() const { return param_.data(); }
    AboutBox* aboutBox() const { return about_.data(); }
    // frmEFT, frmEFTSelect and frmsvr while they stand.
    frmEFT* paymentMapWindow() const { return paymentMap_.form(); }
    frmEFTSelect* eftSelectWindow() const { return eftSelect_.dialog(); }
    frmsvr* taxServerWindow() const { return taxServer_.form(); }

signals:
    // The program is to end with this code.
    void ended(int exitCode);

private:
    void openSettings(const StartOnlySettings& startOnly, bool rescue);
    void openHelpText();
    void openAbout();
    void showDebugWindow(bool open);

    EngineThread::Setup setup_;
    GuiOperator person_;
    LogLineQueue log_;
    std::unique_ptr<MainWindow> window_;
    std::unique_ptr<DebugWindow> debug_;
    QPointer<ParamWindow> param_;
    QPointer<AboutBox> about_;
    PaymentMapWindowOnGui paymentMap_{person_};
    EftSelectWindowOnGui eftSelect_{person_};
    TaxServerWindowOnGui taxServer_{person_};
    std::unique_ptr<EngineThread> engine_;
};
