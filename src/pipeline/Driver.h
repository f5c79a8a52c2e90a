#pragma once

#include "link/DevicePort.h"
#include "link/DeviceSession.h"
#include "operations/FPrinterOperations.h"
#include "payments/UnavailableCardRoads.h"
#include "pipeline/Engine.h"
#include "pipeline/ResultPathSink.h"
#include "reports/ReportRun.h"
#include "shell/CommunicationLog.h"

#include <QString>

class Clock;
class FormModel;
class Operator;
class TransportFactory;

struct DriverOptions {
    QString workingDirectory; // param.ini, vats.dat, payeft.dat and relative paths
    QString programDirectory; // kerbanoLog.txt
    QString commandLine;      // the system's own command line; empty for the param.ini life
};

// The whole driver put together: the engine with its link to the register,
// FPrinterWrite, the print-file interpreter and the report runs. The window,
// the headless life and the tests each build one and drive its engine.
class Driver {
public:
    Driver(Clock& clock, Operator& person, FormModel& form, TransportFactory& transports,
           DriverOptions options);
    Q_DISABLE_COPY_MOVE(Driver)

    Engine& engine() { return engine_; }
    DeviceSession& link() { return link_; }
    FPrinterOperations& printer() { return printer_; }
    ReportRun& reports() { return reports_; }
    CommunicationLog& log() { return log_; }

private:
    EngineHooks makeHooks();
    QString workFile(const QString& name) const;

    Clock& clock_;
    Operator& person_;
    DriverOptions options_;
    Engine engine_;
    CommunicationLog log_;
    ResultPathSink results_;
    DevicePort port_;
    DeviceSession link_;
    UnavailableCardRoads cards_;
    FPrinterOperations printer_;
    ReportRun reports_;
};
