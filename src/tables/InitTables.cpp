#include "tables/InitTables.h"

#include "link/DeviceLink.h"
#include "protocol/DeviceCommands.h"
#include "shell/Operator.h"
#include "shell/ProgressIndicator.h"

#include <optional>

namespace {
const QString kCountPrompt = QStringLiteral("Εισάγεται αριθμό τραπεζιών");
const QString kTitlePrefix = QStringLiteral("ΤΡΑΠΕΖΙ-");
constexpr int kMostTables = 290;
} // namespace

void InitTables(DeviceLink& link, Operator& op, clsind& progress, const QString& caption,
                const QString& port)
{
    const std::optional<QString> answer = op.input(caption, kCountPrompt, QStringLiteral("0"));
    if (!answer)
        return;
    bool numeric = false;
    const double value = answer->trimmed().toDouble(&numeric);
    if (!numeric)
        return;
    // The register has no more tables than these; a larger count stops there.
    const int count = qBound(0, static_cast<int>(value), kMostTables);

    qint16 status = 0;
    QString reply;
    if (!link.isConnected())
        link.OpenDeviceLink(port, status, reply, false);
    progress.setMax(static_cast<qint16>(count));
    progress.setValue(0);
    for (int table = 1; table <= count; ++table) {
        progress.setValue(static_cast<qint16>(table));
        link.SendCommand(DeviceCommands::TableTitle(table, kTitlePrefix + QString::number(table), QString()),
                         status, reply);
        if (status != 0)
            break;
    }
    if (link.isConnected())
        link.CloseDeviceLink();
}
