#include "CommandTable.h"

#include "DeviceCode.h"

QString CommandTable::keyOf(const QStringList& fields)
{
    const QString code = fields.value(0);
    const bool withSubCode =
        code == QLatin1String("&") || code == QLatin1String(",") || code == QLatin1String("\\");
    return withSubCode ? code + QLatin1Char('/') + fields.value(1) : code;
}

void CommandTable::add(std::initializer_list<const char*> forms, Handler handler)
{
    QString key;
    QSet<int> counts;
    for (const char* form : forms) {
        const QStringList fields = QString::fromUtf8(form).split(QLatin1Char('/'));
        Q_ASSERT(key.isEmpty() || key == keyOf(fields));
        key = keyOf(fields);
        counts.insert(static_cast<int>(fields.size()));
    }
    Q_ASSERT(!entries_.contains(key));
    entries_.insert(key, Entry{counts, std::move(handler)});
}

Reply CommandTable::run(Command& command) const
{
    if (command.field(0).isEmpty())
        return Reply::refuse(devicecode::kWrongCommand);
    const auto it = entries_.constFind(keyOf(command.fields));
    if (it == entries_.constEnd())
        return Reply::refuse(devicecode::kWrongCommand);
    if (!it->fieldCounts.contains(command.fieldCount()))
        return Reply::refuse(devicecode::kWrongFieldCount);
    return it->handler(command);
}
