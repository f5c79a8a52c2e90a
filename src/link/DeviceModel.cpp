#include "link/DeviceModel.h"

#include <array>

const DeviceModel* DeviceModel::find(const QString& prefix)
{
    static const std::array<DeviceModel, 9> models = {{
        {"DCX", QStringLiteral("infoCarina i57I"), {}},
        {"FFH", QStringLiteral("infoCarina Net+"), {}},
        {"FFP", QStringLiteral("Arcadia Net"), {}},
        {"CCQ", QStringLiteral("Mirka"), {}},
        {"DLG", QStringLiteral("infoCarina i57II"), {}},
        {"DMB", QStringLiteral("Mirka Plus"), {}},
        {"DNK", QStringLiteral("Mirka III"), QStringLiteral("MirkaIII Rest")},
        {"DNH", QStringLiteral("i57 III"), QStringLiteral("i57 IIIRest")},
        {"DNT", QStringLiteral("Delta"), QStringLiteral("Delta Rest")},
    }};
    for (const DeviceModel& model : models) {
        if (prefix == QLatin1String(model.prefix))
            return &model;
    }
    return nullptr;
}
