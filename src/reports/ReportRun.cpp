#include "reports/ReportRun.h"

#include "link/DeviceLink.h"
#include "protocol/DeviceCommands.h"
#include "operations/FPrinter.h"
#include "records/ReceiptState.h"
#include "shell/FormModel.h"
#include "shell/ModuleVariables.h"

namespace {

// The X runs and the Z run carry their texts with different accents.
const QString kXRunning = QStringLiteral("Εκτελεση Ισοζυγιου!!! Παρακαλω περιμενετε για την ολοκληρωση του");
const QString kXFinished = QStringLiteral("Το Ισοζυγειο ολοκληρωθηκε");
const QString kXReady = QStringLiteral("Kerbano- Ετοιμο");
const QString kZRunning = QStringLiteral("Εκτέλεση Ισοζυγίου!!! Παρακαλω περιμενετε για την ολοκληρωση του");
const QString kZFinished = QStringLiteral("Το Ισοζύγιο ολοκληρώθηκε");
const QString kZReady = QStringLiteral("Kerbano- Έτοιμο");

} // namespace

ReportRun::ReportRun(DeviceLink& link, FPrinter& printer, ReceiptState& receipt,
                     ModuleVariables& vars, FormModel& form)
    : link_(link)
    , printer_(printer)
    , receipt_(receipt)
    , vars_(vars)
    , form_(form)
{
}

void ReportRun::financialX()
{
    runOperation(QStringLiteral("0X"), {kXRunning, kXFinished, kXReady});
}

void ReportRun::statisticsX()
{
    runOperation(QStringLiteral("6X"), {kXRunning, kXFinished, kXReady});
}

bool ZFileFollowsZ(const ModuleVariables& vars)
{
    return vars.ZeMail == 1 || !vars.eMail.trimmed().isEmpty();
}

void ReportRun::dailyZ()
{
    runOperation(QStringLiteral("0Z"), {kZRunning, kZFinished, kZReady});
    if (afterDailyZ_ && ZFileFollowsZ(vars_))
        afterDailyZ_();
}

void ReportRun::tablesSummary()
{
    runTableReport(DeviceCommands::TablesSummaryReport(), {kXRunning, kXFinished, kXReady});
}

void ReportRun::tablesDetail()
{
    runTableReport(DeviceCommands::TablesDetailReport(), {kXRunning, kXFinished, kXReady});
}

void ReportRun::begin(const Texts& texts)
{
    form_.setCommand1Enabled(false);
    form_.setComstattxt(texts.running);
    if (!link_.isConnected())
        link_.OpenDeviceLink(vars_.port, receipt_.LastStatus, receipt_.LastReply, false);
    // A failed open is shown, and the run goes on: its commands fail by themselves.
    if (receipt_.LastStatus != 0)
        form_.setComstattxt(QStringLiteral("Λάθος :%1 - %2").arg(receipt_.LastStatus).arg(receipt_.LastReply));
}

void ReportRun::end(const Texts& texts)
{
    if (link_.isConnected())
        link_.CloseDeviceLink();
    form_.setCommand1Enabled(true);
    form_.setComstattxt(texts.finished);
    form_.setCaption(texts.readyTitle);
}

void ReportRun::runOperation(const QString& op, const Texts& texts)
{
    begin(texts);
    printer_.FPrinterWrite(QString(), op);
    qint16 status = 0;
    QString reply;
    link_.SendCommand(DeviceCommands::ReportDisplayAmount(), status, reply, true);
    link_.SendCommand(DeviceCommands::ReportDisplayReady(), status, reply, true);
    end(texts);
}

void ReportRun::runTableReport(const QString& command, const Texts& texts)
{
    begin(texts);
    link_.SendCommand(command, receipt_.LastStatus, receipt_.LastReply, true);
    end(texts);
}
