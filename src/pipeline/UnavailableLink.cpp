#include "pipeline/UnavailableLink.h"

#include "shell/ModuleVariables.h"
#include "shell/Operator.h"

namespace {
constexpr qint16 kPortFailure = -1;
constexpr qint16 kNoReply = -4;
}

UnavailableLink::UnavailableLink(Operator& person, const ModuleVariables& vars)
    : person_(person)
    , vars_(vars)
{
}

void UnavailableLink::SendCommand(const QString&, qint16& status, QString& reply, bool quiet,
                                  qint16& timeoutSeconds, int)
{
    if (timeoutSeconds == 0)
        timeoutSeconds = 3;
    status = kNoReply;
    reply = QStringLiteral("Ο Φορολ. Μηχανισμός δεν Απαντά σε εντολή !");
    if (!quiet)
        ShowDeviceMessage(status, reply);
}

void UnavailableLink::ShowDeviceMessage(qint16, const QString& reply)
{
    const QString title = vars_.DeviceLabel.isEmpty() ? QStringLiteral("Μύνημα Kerbano") : vars_.DeviceLabel;
    person_.message(title, reply, Operator::Icon::Critical);
}

void UnavailableLink::OpenDeviceLink(const QString& port, qint16& status, QString& reply, bool quiet)
{
    status = kPortFailure;
    reply = QStringLiteral("Πρόβλημα στην Θύρα :") + port;
    if (!quiet)
        ShowDeviceMessage(status, reply);
}
