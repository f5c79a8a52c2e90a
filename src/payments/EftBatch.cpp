#include "payments/EftBatch.h"

#include "link/DeviceLink.h"
#include "link/LinkMessageTitle.h"
#include "payments/RegisterPaymentLists.h"
#include "protocol/DeviceCommands.h"
#include "shell/ModuleVariables.h"
#include "shell/Operator.h"

#include <QStringList>

namespace {
const QString kSent = QStringLiteral("Η αποστολή εντολής στο EFTPOS ολοκληρώθηκε...");
const QString kNotSent = QStringLiteral("Δεν έγινε αποστολή της εντολής στο EFTPOS...");
constexpr int kTerminalSlots = 12;
constexpr int kAccepted = -1;
constexpr qint16 kCancelled = -1;

// The list as a question of the Operator; the row's stored slot is the answer.
class OperatorEftTerminalChoice final : public EftTerminalChoice {
public:
    explicit OperatorEftTerminalChoice(Operator& op)
        : op_(op)
    {
    }
    void showReading() override {}
    qint16 idSelected(const QList<ListRow>& rows) override
    {
        QStringList texts;
        for (const ListRow& row : rows)
            texts << row.text;
        const std::optional<int> chosen = op_.choose(kEftSelectTitle, kEftSelectPrompt, texts);
        return chosen && *chosen >= 0 && *chosen < rows.size() ? rows.at(*chosen).value : kCancelled;
    }

private:
    Operator& op_;
};
} // namespace

int SendEftBatchCommand(DeviceLink& link, EftTerminalChoice& choice)
{
    choice.showReading();
    QList<ListRow> rows;
    for (int slot = 1; slot <= kTerminalSlots; ++slot) {
        clsEFT terminal;
        if (ReadEftDevice(link, slot, terminal) != 0 || !terminal.EFT_active)
            continue;
        rows.append({QStringLiteral("#%1 - %2").arg(slot).arg(terminal.EFT_Name), static_cast<qint16>(slot)});
    }
    // The row stores its slot: a row's position and its slot differ when an
    // earlier slot is inactive.
    const qint16 idSelected = choice.idSelected(rows);
    if (idSelected < 1)
        return 0;
    return link.send(DeviceCommands::EftBatch(idSelected)).ok() ? kAccepted : 0;
}

int SendEftBatchCommand(DeviceLink& link, Operator& op)
{
    OperatorEftTerminalChoice choice(op);
    return SendEftBatchCommand(link, choice);
}

void RunEftBatch(DeviceLink& link, Operator& op, const ModuleVariables& vars, EftTerminalChoice* window)
{
    if (!link.isConnected()) {
        qint16 status = 0;
        QString reply;
        link.OpenDeviceLink(vars.port, status, reply, false);
    }
    const int result = window ? SendEftBatchCommand(link, *window) : SendEftBatchCommand(link, op);
    if (result == kAccepted)
        op.message(LinkMessageTitle(vars), kSent, Operator::Icon::Information);
    else
        op.message(LinkMessageTitle(vars), kNotSent, Operator::Icon::Warning);
    if (link.isConnected())
        link.CloseDeviceLink();
}
