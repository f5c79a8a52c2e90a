#include "pipeline/MenuEntry.h"

namespace {

using Kind = MenuEntry::Kind;
using Menu = MenuEntry::Menu;

struct Row {
    const char* name;
    const char* caption;
    const char* parent;
    Kind kind;
    FormModel::Entry state;
    FormModel::Entry enabledBy;
};

// The main menu, in order. The report entries run only while the engine has
// the reports menu open, the help entries while help is, param while Settings is.
const Row kMainMenu[] = {
    {"Settings", "Επιλογές", "", Kind::Submenu, &MenuStates::Settings, &MenuStates::Settings},
    {"param", "Παράμετροι", "", Kind::Action, &MenuStates::param, &MenuStates::Settings},
    {"s9", "", "", Kind::Separator, nullptr, nullptr},
    {"m_eftpos", "EFTPOS", "", Kind::Submenu, &MenuStates::m_eftpos, &MenuStates::m_eftpos},
    {"paramEFT", "Παράμετροι Πιστ. Καρτών EFTPOS", "m_eftpos", Kind::Action, &MenuStates::paramEFT, &MenuStates::paramEFT},
    {"s6", "", "m_eftpos", Kind::Separator, nullptr, nullptr},
    {"s8", "Πακέτο Συναλλαγών EFTPOS", "m_eftpos", Kind::Action, &MenuStates::s8, &MenuStates::s8},
    {"s5", "", "", Kind::Separator, nullptr, nullptr},
    {"help", "Bοήθεια", "", Kind::Submenu, &MenuStates::help, &MenuStates::help},
    {"help_text", "Ρυθμίσεις", "help", Kind::Action, &MenuStates::help_text, &MenuStates::help},
    {"basic_programming", "server ΑΑΔΕ", "help", Kind::Action, &MenuStates::basic_programming, &MenuStates::help},
    {"s15", "", "help", Kind::Separator, nullptr, nullptr},
    {"initTables", "Αρχικοποίηση Τραπεζιών", "help", Kind::Action, &MenuStates::initTables, &MenuStates::help},
    {"s17", "", "help", Kind::Separator, nullptr, nullptr},
    {"wndDebug", "Debug Επικοινωνίας", "help", Kind::Action, &MenuStates::wndDebug, &MenuStates::help},
    {"reports", "Ισοζύγια", "", Kind::Submenu, &MenuStates::reports, &MenuStates::reports},
    {"xreports", "Ισοζύγια 'X'", "reports", Kind::Submenu, &MenuStates::xreports, &MenuStates::xreports},
    {"xrep0", "Iσοζ. Χ (Οικονομικό)", "xreports", Kind::Action, &MenuStates::xrep0, &MenuStates::reports},
    {"xrep5", "Iσοζ. Χ (Στατιστικών)", "xreports", Kind::Action, &MenuStates::xrep5, &MenuStates::reports},
    {"s4", "", "reports", Kind::Separator, nullptr, nullptr},
    {"zreports", "Ισοζύγια 'Z'", "reports", Kind::Submenu, &MenuStates::zreports, &MenuStates::zreports},
    {"zrep021", "Iσοζ. Z (Οικονομικό-Hμερήσιο)", "zreports", Kind::Action, &MenuStates::zrep021, &MenuStates::reports},
    {"zrep521", "Iσοζ. Z (Περιόδου)", "zreports", Kind::Action, &MenuStates::zrep521, &MenuStates::reports},
    {"s7", "", "reports", Kind::Separator, nullptr, nullptr},
    {"xrep_open_tables", "Λίστα ανοικτών τραπεζιών", "reports", Kind::Submenu, &MenuStates::xrep_open_tables, &MenuStates::xrep_open_tables},
    {"xrep_table_summary", "Συνοπτική", "xrep_open_tables", Kind::Action, &MenuStates::xrep_table_summary, &MenuStates::reports},
    {"xrep_table_detail", "Αναλυτική", "xrep_open_tables", Kind::Action, &MenuStates::xrep_table_detail, &MenuStates::reports},
    {"s", "", "reports", Kind::Separator, nullptr, nullptr},
    {"Zfile", "Αρχείο 'Ζ'", "reports", Kind::Action, &MenuStates::Zfile, &MenuStates::reports},
    {"exit", "Έξοδος", "", Kind::Submenu, &MenuStates::exit, &MenuStates::exit},
    {"end", "Τερματισμός Kerbano", "exit", Kind::Action, &MenuStates::end, &MenuStates::end},
    {"about", "Περι Kerbano", "exit", Kind::Action, &MenuStates::about, &MenuStates::about},
    {"Ver", "Version Info", "exit", Kind::Action, &MenuStates::Ver, &MenuStates::Ver},
};

// The tray menu sysMenu, in order.
const Row kTrayMenu[] = {
    {"fShow", "Εμφάνιση Kerbano", "", Kind::Action, &MenuStates::fShow, &MenuStates::fShow},
    {"fHide", "Απόκρυψη Kerbano", "", Kind::Action, &MenuStates::fHide, &MenuStates::fHide},
    {"s2", "", "", Kind::Separator, nullptr, nullptr},
    {"pStart", "Έναρξη Εκτυπώσεων", "", Kind::Action, &MenuStates::pStart, &MenuStates::pStart},
    {"pStop", "Διακοπή Εκτυπώσεων", "", Kind::Action, &MenuStates::pStop, &MenuStates::pStop},
    {"s3", "", "", Kind::Separator, nullptr, nullptr},
    {"mZREp", "Εκτέλεση Ισοζ. 'Ζ'", "", Kind::Action, &MenuStates::mZREp, &MenuStates::mZREp},
};

template <std::size_t N>
void append(QList<MenuEntry>& out, const Row (&rows)[N], Menu menu)
{
    for (const Row& r : rows) {
        out.append({QString::fromUtf8(r.name), QString::fromUtf8(r.caption), menu,
                    QString::fromUtf8(r.parent), r.kind, r.state, r.enabledBy});
    }
}

QList<MenuEntry> buildEntries()
{
    QList<MenuEntry> out;
    append(out, kMainMenu, Menu::Main);
    append(out, kTrayMenu, Menu::Tray);
    return out;
}

} // namespace

const QList<MenuEntry>& MenuEntries()
{
    static const QList<MenuEntry> entries = buildEntries();
    return entries;
}

QString TrayMenuCaption()
{
    return QStringLiteral("sysTray Menu");
}
