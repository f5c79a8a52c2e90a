#pragma once

#include <QMetaType>
#include <QString>
#include <QtGlobal>

// One entry of the main or the tray menu as the form shows it.
struct MenuEntryState {
    bool enabled = true;
    bool checked = false;
    bool visible = true;

    bool operator==(const MenuEntryState&) const = default;
};

// Every entry of the two menus that can be enabled, checked or hidden, by its
// menu name. Separators have no state.
struct MenuStates {
    MenuEntryState Settings;
    MenuEntryState param;
    MenuEntryState m_eftpos;
    MenuEntryState paramEFT;
    MenuEntryState s8;
    MenuEntryState help;
    MenuEntryState help_text;
    MenuEntryState basic_programming;
    MenuEntryState initTables;
    MenuEntryState wndDebug;
    MenuEntryState reports;
    MenuEntryState xreports;
    MenuEntryState xrep0;
    MenuEntryState xrep5{false}; // as designed, the menu offers no statistics X
    MenuEntryState zreports;
    MenuEntryState zrep021;
    MenuEntryState zrep521{false}; // nor a period Z
    MenuEntryState xrep_open_tables;
    MenuEntryState xrep_table_summary;
    MenuEntryState xrep_table_detail;
    MenuEntryState Zfile;
    MenuEntryState exit;
    MenuEntryState end;
    MenuEntryState about;
    MenuEntryState Ver;
    MenuEntryState fShow;
    MenuEntryState fHide;
    MenuEntryState pStart;
    MenuEntryState pStop;
    MenuEntryState mZREp;

    bool operator==(const MenuStates&) const = default;
};

// Everything the main form and the tray icon show, as one value: the engine
// changes it, and a window on another thread or a headless printer mirrors
// the copy it is handed.
struct FormState {
    QString caption;
    QString comstattxt;
    QString label2 = QStringLiteral("...");
    QString lblreceipt;
    QString lblProgr;
    QString trayTip;

    // The settings the form shows.
    QString serialtxt;
    QString baudtxt;
    QString filetxt;
    QString ecrtxt;
    QString desctxt;
    QString commentstxt;
    QString currtxt;
    bool baudShown = true; // baudlbl and baudtxt; hidden while the link is TCP

    bool command1Enabled = true;
    bool command2Enabled = true;
    bool formShown = true;

    // The progress indicator behind lblProgr.
    qint16 progressValue = 0;
    qint16 progressMax = 0;

    MenuStates menus;

    bool operator==(const FormState&) const = default;
};

Q_DECLARE_METATYPE(FormState)
