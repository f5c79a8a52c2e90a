#include "pipeline/ActionRegistry.h"

#include "pipeline/EngineActivity.h"
#include "shell/FormModel.h"
#include "shell/ModuleVariables.h"
#include "shell/Operator.h"

#include <QScopedValueRollback>

namespace {
const QString kTitleBeforeDevice = QStringLiteral("Μύνημα Kerbano");
} // namespace

ActionRegistry::ActionRegistry(FormModel& form, Operator& person, const ModuleVariables& vars,
                               EngineActivity& activity, QObject* parent)
    : QObject(parent)
    , form_(form)
    , person_(person)
    , vars_(vars)
    , activity_(activity)
{
    recheck_.setSingleShot(true);
    recheck_.setInterval(kBusyRecheckMs);
    connect(&recheck_, &QTimer::timeout, this, &ActionRegistry::runWaiting);
}

const QList<MenuEntry>& ActionRegistry::entries() const
{
    return MenuEntries();
}

const MenuEntry* ActionRegistry::find(const QString& name) const
{
    for (const MenuEntry& entry : entries()) {
        if (entry.name == name)
            return &entry;
    }
    return nullptr;
}

QStringList ActionRegistry::actionNames() const
{
    QStringList names;
    for (const MenuEntry& entry : entries()) {
        if (entry.kind == MenuEntry::Kind::Action)
            names << entry.name;
    }
    return names;
}

void ActionRegistry::setHandler(const QString& name, Handler handler)
{
    Q_ASSERT(find(name) && find(name)->kind == MenuEntry::Kind::Action);
    handlers_.insert(name, std::move(handler));
}

bool ActionRegistry::isBuilt(const QString& name) const
{
    return handlers_.contains(name);
}

ActionRegistry::Outcome ActionRegistry::trigger(const QString& name)
{
    const MenuEntry* entry = find(name);
    if (!entry || entry->kind != MenuEntry::Kind::Action) {
        tell(QStringLiteral("Άγνωστη λειτουργία : ") + name);
        return settle(name, Outcome::Unknown);
    }
    if (!isBuilt(name)) {
        tell(QStringLiteral("Η λειτουργία %1 δεν είναι ακόμη διαθέσιμη.").arg(entry->caption));
        return settle(name, Outcome::NotBuilt);
    }
    if (busy() || !queue_.empty()) {
        queue_.push_back(name);
        recheck_.start();
        return Outcome::Queued;
    }
    const Outcome outcome = settle(name, run(*entry));
    if (!queue_.empty()) // what came in while it ran
        QTimer::singleShot(0, this, &ActionRegistry::runWaiting);
    return outcome;
}

void ActionRegistry::runWaiting()
{
    while (!queue_.empty()) {
        if (busy()) {
            recheck_.start();
            return;
        }
        const QString name = queue_.front();
        queue_.pop_front();
        settle(name, run(*find(name)));
    }
}

bool ActionRegistry::busy() const
{
    return running_ || activity_.jobInProgress() || activity_.inConversation();
}

ActionRegistry::Outcome ActionRegistry::run(const MenuEntry& entry)
{
    if (!(form_.state().menus.*entry.enabledBy).enabled) {
        tell(QStringLiteral("Η λειτουργία %1 δεν είναι διαθέσιμη αυτή τη στιγμή.").arg(entry.caption));
        return Outcome::Disabled;
    }
    const QScopedValueRollback<bool> running(running_, true);
    handlers_.value(entry.name)();
    return Outcome::Ran;
}

ActionRegistry::Outcome ActionRegistry::settle(const QString& name, Outcome outcome)
{
    emit finished(name, outcome);
    return outcome;
}

void ActionRegistry::tell(const QString& text)
{
    person_.message(vars_.DeviceLabel.isEmpty() ? kTitleBeforeDevice : vars_.DeviceLabel, text,
                    Operator::Icon::Information);
}
