#pragma once

#include "pipeline/MenuEntry.h"

#include <QHash>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QTimer>
#include <deque>
#include <functional>

class EngineActivity;
class FormModel;
class Operator;
struct ModuleVariables;

// The entries of the main and the tray menu, by name, with what each does.
// The window, the tray and the command line all run actions through here,
// on the engine's thread. An action never enters the middle of a job or of a
// conversation with the register: it waits in line and runs once the engine
// is free.
class ActionRegistry : public QObject {
    Q_OBJECT
public:
    enum class Outcome {
        Ran,      // the action ran to its end
        Queued,   // it waits for the engine; finished() tells the rest
        Unknown,  // no menu entry runs by that name
        NotBuilt, // the entry is there, its action not yet
        Disabled, // the menu has the entry closed in the present state
    };
    Q_ENUM(Outcome)

    using Handler = std::function<void()>;

    // While the engine stays busy, a waiting action looks again this often,
    // in case no freed() comes (a conversation outside any job).
    static constexpr int kBusyRecheckMs = 250;

    ActionRegistry(FormModel& form, Operator& person, const ModuleVariables& vars,
                   EngineActivity& activity, QObject* parent = nullptr);

    const QList<MenuEntry>& entries() const;
    const MenuEntry* find(const QString& name) const;
    // The names that run something, in menu order.
    QStringList actionNames() const;

    void setHandler(const QString& name, Handler handler);
    bool isBuilt(const QString& name) const;

    // Runs the action by name, now or once the engine is free. Whatever the
    // outcome, apart from Queued, finished() tells it too.
    Outcome trigger(const QString& name);
    qsizetype waiting() const { return queue_.size(); }

public slots:
    // The engine has become free: runs what waits, in order.
    void runWaiting();

signals:
    void finished(const QString& name, ActionRegistry::Outcome outcome);

private:
    bool busy() const;
    Outcome run(const MenuEntry& entry);
    Outcome settle(const QString& name, Outcome outcome);
    void tell(const QString& text);

    FormModel& form_;
    Operator& person_;
    const ModuleVariables& vars_;
    EngineActivity& activity_;
    QHash<QString, Handler> handlers_;
    std::deque<QString> queue_;
    QTimer recheck_;
    bool running_ = false;
};
