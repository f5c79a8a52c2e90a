#pragma once

#include <QString>
#include <functional>

class DeviceLink;
class FPrinter;
class FormModel;
struct ModuleVariables;
struct ReceiptState;

// The report runs of the menu: show that a report runs, open the link if it
// is closed, have the register print it, leave the ready text on its
// display, close the link and say so. The register prints; the driver only
// starts it and reports the status.
class ReportRun {
public:
    ReportRun(DeviceLink& link, FPrinter& printer, ReceiptState& receipt, ModuleVariables& vars,
              FormModel& form);

    void financialX();  // xrep0
    void statisticsX(); // xrep5
    void dailyZ();      // zrep021, then the Z file when one follows every Z
    void tablesSummary();
    void tablesDetail();

    // What follows a daily Z when [ZeMail  ] is 1 or a receiver is set: the
    // action Zfile, which opens the link again.
    void setAfterDailyZ(std::function<void()> action) { afterDailyZ_ = std::move(action); }

private:
    struct Texts {
        QString running;
        QString finished;
        QString readyTitle;
    };
    void runOperation(const QString& op, const Texts& texts);
    void runTableReport(const QString& command, const Texts& texts);
    void begin(const Texts& texts);
    void end(const Texts& texts);

    DeviceLink& link_;
    FPrinter& printer_;
    ReceiptState& receipt_;
    ModuleVariables& vars_;
    FormModel& form_;
    std::function<void()> afterDailyZ_;
};

// A Z file follows every Z: [ZeMail  ] is 1, or a receiver of the mail is set.
bool ZFileFollowsZ(const ModuleVariables& vars);
