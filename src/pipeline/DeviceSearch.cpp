#include "pipeline/DeviceSearch.h"

#include "link/DeviceLink.h"
#include "operations/FPrinter.h"
#include "records/ReceiptState.h"
#include "shell/FormModel.h"
#include "shell/ModuleVariables.h"

namespace {
const QString kStatusSearching = QStringLiteral("Εύρεση Φορολογικής Ταμειακής !!! ");
} // namespace

DeviceSearch::DeviceSearch(FormModel& form, ModuleVariables& vars, ReceiptState& receipt)
    : form_(form)
    , vars_(vars)
    , receipt_(receipt)
{
}

void DeviceSearch::attach(DeviceLink& link, FPrinter& printer)
{
    link_ = &link;
    printer_ = &printer;
}

DeviceSearch::Outcome DeviceSearch::tick()
{
    if (tag_ >= kSearchesBeforeOffLine)
        return Outcome::OffLine;
    if (!link_->isConnected()) {
        qint16 status = 0;
        QString reply;
        link_->OpenDeviceLink(vars_.port, status, reply, false);
        form_.setComstattxt(reply);
        if (status != 0 || !link_->isConnected()) {
            ++tag_;
            return Outcome::LinkFailed;
        }
    }
    form_.setBaudShown(!link_->tcpPort());
    form_.setMenuEnabled(&MenuStates::reports, false);
    form_.setCommand1Enabled(false);
    form_.setComstattxt(kStatusSearching);

    printer_->FPrinterWrite(QString(), QStringLiteral("initialize"));
    if (receipt_.LastStatus == 0)
        return Outcome::Answered;
    ++tag_;
    return Outcome::Silent;
}
