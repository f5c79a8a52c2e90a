#pragma once

#include "link/DevicePort.h"
#include "link/DeviceSession.h"
#include "operations/FPrinterOperations.h"
#include "payments/EftBatch.h"
#include "payments/EftCardRoads.h"
#include "payments/PaymentMapDialog.h"
#include "pipeline/ActionRegistry.h"
#include "pipeline/Engine.h"
#include "pipeline/EngineActivity.h"
#include "pipeline/JobJournal.h"
#include "pipeline/JobParts.h"
#include "pipeline/JobRecovery.h"
#include "pipeline/StartParts.h"
#include "reports/ReportRun.h"
#include "reports/TaxServerSetup.h"
#include "reports/ZFileRun.h"
#include "reports/ZMail.h"
#include "shell/CommunicationLog.h"
#include "tables/OrderStoreRoads.h"
#include "tables/TableFlows.h"

#include <QString>

class Clock;
class FormModel;
class Operator;
class TransportFactory;

struct DriverOptions {
    QString workingDirectory; // param.ini, vats.dat, payeft.dat and relative paths
    QString programDirectory; // kerbanoLog.txt
    QString commandLine;      // the system's own command line; empty for the param.ini life
    bool honourAutoStart = true; // false when the life only runs one menu action
};

// The whole driver put together: the engine with its link to the register,
// FPrinterWrite, the print-file interpreter, the report runs and the menu
// actions. It supplies the parts of a job that live below the pipeline. The
// window, the headless life and the tests each build one and drive its engine.
class Driver final : private JobParts, private StartParts, private EngineActivity {
public:
    Driver(Clock& clock, Operator& person, FormModel& form, TransportFactory& transports,
           DriverOptions options);
    Q_DISABLE_COPY_MOVE(Driver)

    Engine& engine() { return engine_; }
    DeviceSession& link() { return link_; }
    FPrinterOperations& printer() { return printer_; }
    ReportRun& reports() { return reports_; }
    ZFileRun& zFile() { return zFile_; }
    ZMail& zMail() { return zMail_; }
    // The window frmsvr of the GUI; without one the tax server setup asks
    // through the Operator. It is called on the engine's thread.
    void setTaxServerWindow(TaxServerWindow* window) { taxServerWindow_ = window; }
    // frmEFT and frmEFTSelect of the GUI, the same way.
    void setPaymentMapWindow(PaymentMapWindow* window) { paymentMapWindow_ = window; }
    void setEftSelectWindow(EftTerminalChoice* window) { eftSelectWindow_ = window; }
    CommunicationLog& log() { return log_; }
    ActionRegistry& actions() { return actions_; }
    TableFlows& tables() { return tables_; }

private:
    // JobParts
    void interpretLines(const QStringList& lines, const JobSettings& settings,
                        const LineReached& lineReached) override;
    void finishCardPayment() override { cards_.PrintPendingPaymentNotice(); }
    QStringList cardPaymentLines() override;
    DocumentFigures documentFigures() override;
    bool isOperatorBusy() override;
    // StartParts
    void readDeviceVatRates() override;
    void startBatchFile(const QString& path) override;
    // EngineActivity
    bool jobInProgress() const override;
    bool inConversation() const override;

    void wireMenuActions();
    QString workFile(const QString& name) const;

    Clock& clock_;
    Operator& person_;
    FormModel& form_;
    DriverOptions options_;
    Engine engine_;
    CommunicationLog log_;
    DevicePort port_;
    DeviceSession link_;
    EftCardRoads cards_;
    TableFlows tables_;
    OrderStoreRoads tableRoads_;
    FPrinterOperations printer_;
    ReportRun reports_;
    ZMail zMail_;
    ZFileRun zFile_;
    TaxServerSetup taxServer_;
    TaxServerWindow* taxServerWindow_ = nullptr;
    PaymentMapWindow* paymentMapWindow_ = nullptr;
    EftTerminalChoice* eftSelectWindow_ = nullptr;
    ActionRegistry actions_;
    JobJournal journal_;
    JobRecovery recovery_;
};
