#include "payments/EftBatch.h"

#include "link/DeviceLink.h"
#include "link/LinkMessageTitle.h"
#include "payments/RegisterPaymentLists.h"
#include "protocol/DeviceCommands.h"
#include "shell/ModuleVariables.h"
#include "shell/Operator.h"

#include <QStringList>

namespace {
const QString kSelectTitle = QStringLiteral("Πακέτο συναλλαγών EFTPOS...");
const QString kSelectPrompt = QStringLiteral("Επιλέξτε απο την λίστα την συσκευή EFTPOS");
const QString kSent = QStringLiteral("Η αποστολή εντολής στο EFTPOS ολοκληρώθηκε...");
const QString kNotSent = QStringLiteral("Δεν έγινε αποστολή της εντολής στο EFTPOS...");
constexpr int kTerminalSlots = 12;
constexpr int kAccepted = -1;
} // namespace

int SendEftBatchCommand(DeviceLink& link, Operator& op)
{
    QStringList rows;
    QList<int> rowSlots;
    for (int slot = 1; slot <= kTerminalSlots; ++slot) {
        clsEFT terminal;
        if (ReadEftDevice(link, slot, terminal) != 0 || !terminal.EFT_active)
            continue;
        rows << QStringLiteral("#%1 - %2").arg(slot).arg(terminal.EFT_Name);
        rowSlots << slot;
    }
    // The row stores its slot: a row's position and its slot differ when an
    // earlier slot is inactive.
    const std::optional<int> chosen = op.choose(kSelectTitle, kSelectPrompt, rows);
    const int idSelected = chosen && *chosen >= 0 && *chosen < rowSlots.size() ? rowSlots.at(*chosen) : -1;
    if (idSelected < 1)
        return 0;
    return link.send(DeviceCommands::EftBatch(idSelected)).ok() ? kAccepted : 0;
}

void RunEftBatch(DeviceLink& link, Operator& op, const ModuleVariables& vars)
{
    if (!link.isConnected()) {
        qint16 status = 0;
        QString reply;
        link.OpenDeviceLink(vars.port, status, reply, false);
    }
    if (SendEftBatchCommand(link, op) == kAccepted)
        op.message(LinkMessageTitle(vars), kSent, Operator::Icon::Information);
    else
        op.message(LinkMessageTitle(vars), kNotSent, Operator::Icon::Warning);
    if (link.isConnected())
        link.CloseDeviceLink();
}
