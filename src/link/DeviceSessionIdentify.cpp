// Who the register is: the model shown on the main form and used as the title
// of the link's messages, and the edition probe of the models that have two.
#include "link/DeviceModel.h"
#include "link/DeviceSession.h"
#include "link/LinkMessageTitle.h"
#include "link/WaitForRegister.h"
#include "protocol/DeviceCommands.h"
#include "protocol/DeviceSerialQuery.h"
#include "protocol/VersionQuery.h"
#include "shell/FormModel.h"
#include "shell/ModuleVariables.h"
#include "shell/Operator.h"

namespace {
constexpr int kModelPrefixLength = 3;
} // namespace

void DeviceSession::IdentifyDevice(qint16& status, QString& reply, bool quiet)
{
    const Conversation conversation(*this);
    if (conversation.refused())
        return;
    vars_.DeviceLabel = form_.label2();
    const DeviceSerialQuery query;
    const DeviceReply answer = send(query.command(), {.quiet = quiet});
    status = answer.status();
    reply = answer.text();
    if (!answer.ok())
        return;
    // A reply too short to name the register leaves the labels as they were.
    const std::optional<QString> identification = query.read(answer);
    if (!identification)
        return;
    status = 0;
    reply.clear();

    const DeviceModel* model = DeviceModel::find(identification->left(kModelPrefixLength));
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
    form_.setLabel2(name + QStringLiteral(" [") + *identification + u']');
    vars_.DeviceLabel = form_.label2();
}

bool DeviceSession::ProbeRestEdition()
{
    const Conversation conversation(*this);
    if (conversation.refused())
        return true;
    const SendOptions probe{.quiet = true, .logMode = SendOptions::kLogModeProbe};
    if (!send(DeviceCommands::EditionProbeTitle(), probe).ok())
        return true;
    if (!send(DeviceCommands::OpenTable(DeviceCommands::kProbeTable)).ok())
        return true;
    WaitForRegister(*this, op_, clock_);
    return false;
}

void DeviceSession::Ver()
{
    const Conversation conversation(*this);
    if (conversation.refused())
        return;
    if (!isConnected()) {
        qint16 openStatus = 0;
        QString openReply;
        OpenDeviceLink(vars_.port, openStatus, openReply, false);
    }
    const std::optional<VersionQuery::Answer> versions = ask(VersionQuery{});
    if (isConnected())
        CloseDeviceLink();
    if (!versions)
        return;
    op_.message(LinkMessageTitle(vars_),
                QStringLiteral("Version POS                : ") + versions->pos + u'\r'
                    + QStringLiteral("Version Πρωτοκόλλου : ") + versions->protocol,
                Operator::Icon::Information);
}
