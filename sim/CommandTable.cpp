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
    int longest = 0;
    bool longestClosed = false;
    for (const char* form : forms) {
        const QString text = QString::fromUtf8(form);
        const QStringList fields = text.split(QLatin1Char('/'));
        Q_ASSERT(key.isEmpty() || key == keyOf(fields));
        key = keyOf(fields);
        const int count = static_cast<int>(fields.size());
        counts.insert(count);
        if (count > longest) {
            longest = count;
            longestClosed = text.endsWith(QLatin1Char('/'));
        }
    }
    Q_ASSERT(!entries_.contains(key));
    entries_.insert(key, Entry{counts, longestClosed ? longest : 0, std::move(handler)});
}

bool CommandTable::isWhole(const QString& text) const
{
    if (!text.endsWith(QLatin1Char('/')))
        return false;
    const QStringList fields = text.split(QLatin1Char('/'));
    const auto it = entries_.constFind(keyOf(fields));
    return it != entries_.constEnd() && it->closedLongest == fields.size();
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
