#pragma once

#include "shell/FormModel.h"

#include <QList>
#include <QString>

// One entry of the main menu or of the tray menu.
struct MenuEntry {
    enum class Menu { Main, Tray };
    enum class Kind { Action, Submenu, Separator };

    QString name;
    QString caption; // as the menu shows it; empty for a separator
    Menu menu = Menu::Main;
    QString parent; // the submenu it stands under; empty at the top of its menu
    Kind kind = Kind::Action;
    // Its own state on the form; none for a separator.
    FormModel::Entry state = nullptr;
    // The state that decides whether it may run now: its own, or that of the
    // menu the engine opens and closes around it (reports, help, Settings).
    FormModel::Entry enabledBy = nullptr;
};

// Every entry of the main menu, then of the tray menu sysMenu, in menu order.
const QList<MenuEntry>& MenuEntries();

// The caption of the tray menu, which shows only as a popup.
QString TrayMenuCaption();
