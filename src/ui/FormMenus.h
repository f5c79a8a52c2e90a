#pragma once

#include "shell/FormState.h"

#include <QHash>
#include <QObject>
#include <QString>

class QAction;
class QMenu;
class QMenuBar;

// The main menu and the tray menu sysMenu, built from the menu entries in
// their order and captions. Choosing an entry only names it: what it does
// runs on the engine's thread, through the action registry.
class FormMenus : public QObject {
    Q_OBJECT
public:
    explicit FormMenus(QMenuBar* bar, QObject* parent = nullptr);
    ~FormMenus() override;

    QMenu* trayMenu() const { return tray_; }
    // The entry by its menu name (submenus by their menu action); null if none.
    QAction* action(const QString& name) const { return actions_.value(name); }

    // Enabled, checked and shown as the form's state says.
    void apply(const MenuStates& states);

signals:
    void chosen(const QString& name);

private:
    QAction* add(QMenu* menu, const QString& name, const QString& caption);

    QMenuBar* bar_;
    QMenu* tray_;
    QHash<QString, QAction*> actions_;
};
