// Who the register is: the model shown on the main form and used as the title
// of the link's messages, and the edition probe of the models that have two.
#include "link/DeviceModel.h"
#include "link/LinkMessageTitle.h"
#include "link/PortLink.h"
#include "link/WaitForRegister.h"
#include "operations/LinkCommands.h"
#include "shell/FormModel.h"
#include "shell/ModuleVariables.h"
#include "shell/Operator.h"

#include <QStringList>

namespace {
// Fields 5 and 3 of the "a/" reply make the identification text.
constexpr int kModelField = 5;
constexpr int kNumberField = 3;
constexpr int kVersionPosField = 3;
constexpr int kVersionProtocolField = 4;
} // namespace

void PortLink::IdentifyDevice(qint16& status, QString& reply, bool quiet)
{
    vars_.DeviceLabel = form_.label2();
    qint16 timeoutSeconds = 0;
    SendCommand(linkcmd::SerialQuery(), status, reply, quiet, timeoutSeconds, kLogModeResultFile);
    if (status != 0)
        return;

    const QStringList fields = reply.split(u'/');
    // A reply too short to name the register leaves the labels as they were.
    if (fields.size() <= kModelField)
        return;
    const QString identification = fields.at(kModelField) + fields.at(kNumberField);
    status = 0;
    reply.clear();

    const DeviceModel* model = DeviceModel::find(identification.left(3));
    QString name;
    if (!model) {
        name = QStringLiteral("Ταμειακή");
    } else if (!model->hasEditions()) {
        name = model->name;
        vars_.spRet = true;
    } else {
        form_.setLabel2(model->name);
        vars_.spRet = ProbeRestEdition();
        name = vars_.spRet ? model->name : model->restName;
    }
    form_.setLabel2(name + QStringLiteral(" [") + identification + u']');
    vars_.DeviceLabel = form_.label2();
}

bool PortLink::ProbeRestEdition()
{
    qint16 status = 0;
    QString reply;
    qint16 timeoutSeconds = 0;
    SendCommand(linkcmd::ProbeTableTitle(), status, reply, true, timeoutSeconds, kLogModeProbe);
    if (status != 0)
        return true;
    timeoutSeconds = 0;
    SendCommand(linkcmd::OpenTable(linkcmd::kProbeTable), status, reply, false, timeoutSeconds,
                kLogModeResultFile);
    if (status != 0)
        return true;
    WaitForRegister(*this, op_, clock_);
    return false;
}

void PortLink::Ver()
{
    if (!isConnected()) {
        qint16 openStatus = 0;
        QString openReply;
        OpenDeviceLink(vars_.port, openStatus, openReply, false);
    }
    qint16 status = 0;
    QString reply;
    qint16 timeoutSeconds = 0;
    SendCommand(linkcmd::VersionQuery(), status, reply, false, timeoutSeconds, kLogModeResultFile);
    if (isConnected())
        CloseDeviceLink();
    if (status != 0)
        return;
    const QStringList fields = reply.split(u'/');
    op_.message(LinkMessageTitle(vars_),
                QStringLiteral("Version POS                : ") + fields.value(kVersionPosField)
                    + u'\r' + QStringLiteral("Version Πρωτοκόλλου : ")
                    + fields.value(kVersionProtocolField),
                Operator::Icon::Information);
}
