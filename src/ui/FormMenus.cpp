#include "ui/FormMenus.h"

#include "pipeline/MenuEntry.h"

#include <QMenu>
#include <QMenuBar>

namespace {
// The entries that carry a check mark.
bool checkable(const QString& name)
{
    return name == QLatin1String("wndDebug") || name == QLatin1String("pStart")
        || name == QLatin1String("pStop");
}
} // namespace

FormMenus::FormMenus(QMenuBar* bar, QObject* parent)
    : QObject(parent)
    , bar_(bar)
    , tray_(new QMenu(TrayMenuCaption()))
{
    tray_->setObjectName(QStringLiteral("sysMenu"));
    QHash<QString, QMenu*> submenus;
    QMenu* lastTop = nullptr; // entries at the top of the main menu stand in the menu before them
    for (const MenuEntry& e : MenuEntries()) {
        QMenu* into = nullptr;
        if (e.menu == MenuEntry::Menu::Tray)
            into = tray_;
        else if (!e.parent.isEmpty())
            into = submenus.value(e.parent);
        else if (e.kind != MenuEntry::Kind::Submenu)
            into = lastTop;

        if (e.kind == MenuEntry::Kind::Separator) {
            if (into)
                into->addSeparator()->setObjectName(e.name);
            continue;
        }
        if (e.kind == MenuEntry::Kind::Submenu) {
            QMenu* sub = into ? into->addMenu(e.caption) : bar_->addMenu(e.caption);
            sub->setObjectName(e.name);
            sub->menuAction()->setObjectName(e.name);
            actions_.insert(e.name, sub->menuAction());
            submenus.insert(e.name, sub);
            if (!into)
                lastTop = sub;
            continue;
        }
        if (into)
            add(into, e.name, e.caption);
    }
}

FormMenus::~FormMenus()
{
    delete tray_; // a popup of its own, parented to no window
}

QAction* FormMenus::add(QMenu* menu, const QString& name, const QString& caption)
{
    QAction* a = menu->addAction(caption);
    a->setObjectName(name);
    a->setCheckable(checkable(name));
    // The mark is the engine's to set: a click only asks.
    connect(a, &QAction::triggered, this, [this, a, name] {
        if (a->isCheckable())
            a->setChecked(!a->isChecked());
        emit chosen(name);
    });
    actions_.insert(name, a);
    return a;
}

void FormMenus::apply(const MenuStates& states)
{
    for (const MenuEntry& e : MenuEntries()) {
        QAction* a = actions_.value(e.name);
        if (!a || !e.state)
            continue;
        const MenuEntryState& s = states.*(e.state);
        a->setEnabled(s.enabled);
        a->setVisible(s.visible);
        if (a->isCheckable())
            a->setChecked(s.checked);
    }
}
