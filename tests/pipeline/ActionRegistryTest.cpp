#include "ActionFixture.h"

#include "PrintQString.h"
#include "pipeline/MenuEntry.h"

namespace {

struct Row {
    const char* name;
    const char* parent;
    const char* caption;
};

// The main menu and the tray menu, entry by entry, as the operator sees them.
const Row kMainMenu[] = {
    {"Settings", "", "Επιλογές"},
    {"param", "", "Παράμετροι"},
    {"s9", "", ""},
    {"m_eftpos", "", "EFTPOS"},
    {"paramEFT", "m_eftpos", "Παράμετροι Πιστ. Καρτών EFTPOS"},
    {"s6", "m_eftpos", ""},
    {"s8", "m_eftpos", "Πακέτο Συναλλαγών EFTPOS"},
    {"s5", "", ""},
    {"help", "", "Bοήθεια"},
    {"help_text", "help", "Ρυθμίσεις"},
    {"basic_programming", "help", "server ΑΑΔΕ"},
    {"s15", "help", ""},
    {"initTables", "help", "Αρχικοποίηση Τραπεζιών"},
    {"s17", "help", ""},
    {"wndDebug", "help", "Debug Επικοινωνίας"},
    {"reports", "", "Ισοζύγια"},
    {"xreports", "reports", "Ισοζύγια 'X'"},
    {"xrep0", "xreports", "Iσοζ. Χ (Οικονομικό)"},
    {"xrep5", "xreports", "Iσοζ. Χ (Στατιστικών)"},
    {"s4", "reports", ""},
    {"zreports", "reports", "Ισοζύγια 'Z'"},
    {"zrep021", "zreports", "Iσοζ. Z (Οικονομικό-Hμερήσιο)"},
    {"zrep521", "zreports", "Iσοζ. Z (Περιόδου)"},
    {"s7", "reports", ""},
    {"xrep_open_tables", "reports", "Λίστα ανοικτών τραπεζιών"},
    {"xrep_table_summary", "xrep_open_tables", "Συνοπτική"},
    {"xrep_table_detail", "xrep_open_tables", "Αναλυτική"},
    {"s", "reports", ""},
    {"Zfile", "reports", "Αρχείο 'Ζ'"},
    {"exit", "", "Έξοδος"},
    {"end", "exit", "Τερματισμός Kerbano"},
    {"about", "exit", "Περι Kerbano"},
    {"Ver", "exit", "Version Info"},
};
const Row kTrayMenu[] = {
    {"fShow", "", "Εμφάνιση Kerbano"},
    {"fHide", "", "Απόκρυψη Kerbano"},
    {"s2", "", ""},
    {"pStart", "", "Έναρξη Εκτυπώσεων"},
    {"pStop", "", "Διακοπή Εκτυπώσεων"},
    {"s3", "", ""},
    {"mZREp", "", "Εκτέλεση Ισοζ. 'Ζ'"},
};

} // namespace

TEST_F(ActionTest, EveryEntryOfBothMenusIsThereByNameInMenuOrderWithItsCaption)
{
    start();
    buildActions();
    const QList<MenuEntry>& entries = actions->entries();
    ASSERT_EQ(entries.size(), qsizetype(std::size(kMainMenu) + std::size(kTrayMenu)));
    qsizetype i = 0;
    const auto expectMenu = [&](const auto& rows, MenuEntry::Menu menu) {
        for (const Row& row : rows) {
            const MenuEntry& entry = entries.at(i++);
            EXPECT_EQ(entry.name, QString::fromUtf8(row.name));
            EXPECT_EQ(entry.parent, QString::fromUtf8(row.parent)) << row.name;
            EXPECT_EQ(entry.caption, QString::fromUtf8(row.caption)) << row.name;
            EXPECT_EQ(entry.menu, menu) << row.name;
            EXPECT_EQ(entry.kind == MenuEntry::Kind::Separator, entry.caption.isEmpty()) << row.name;
        }
    };
    expectMenu(kMainMenu, MenuEntry::Menu::Main);
    expectMenu(kTrayMenu, MenuEntry::Menu::Tray);
    EXPECT_EQ(TrayMenuCaption(), u"sysTray Menu"_s);
    // As designed, the menu offers neither the statistics X nor the period Z.
    EXPECT_FALSE(form.state().menus.xrep5.enabled);
    EXPECT_FALSE(form.state().menus.zrep521.enabled);
}

TEST_F(ActionTest, AnActionAskedForDuringAJobWaitsAndRunsOnceTheEngineIsFree)
{
    startPolling(pollingParams());
    buildActions();
    ActionRegistry::Outcome during = ActionRegistry::Outcome::Ran;
    parts.interpretLines_ = walkEach([&](const QString& line, const JobSettings&) {
        walked << line;
        if (line == QLatin1String(" PLU a")) {
            during = actions->trigger(u"Ver"_s);
            settle(); // the job lets the event loop breathe after every line
            EXPECT_TRUE(ran.isEmpty()) << "an action entered the middle of a job";
        }
        return true;
    });
    put(u"print.1"_s, " PLU a\r\n PLU b\r\n");
    engine->timer1Tick();
    EXPECT_EQ(during, ActionRegistry::Outcome::Queued);
    EXPECT_EQ(walked.size(), 3);
    EXPECT_TRUE(ran.isEmpty());
    EXPECT_EQ(actions->waiting(), 1);

    settle();
    EXPECT_EQ(ran, QStringList{"Ver"});
    EXPECT_EQ(actions->waiting(), 0);
    ASSERT_EQ(finished.size(), 1);
    EXPECT_EQ(finished.first().second, ActionRegistry::Outcome::Ran);
}

TEST_F(ActionTest, AConversationWithTheRegisterHoldsActionsBackInTheirOrder)
{
    writeParams(pollingParams());
    start();
    engine->timer2Tick();
    buildActions();
    activity.conversation = true;
    EXPECT_EQ(actions->trigger(u"xrep0"_s), ActionRegistry::Outcome::Queued);
    EXPECT_EQ(actions->trigger(u"Ver"_s), ActionRegistry::Outcome::Queued);
    actions->runWaiting(); // a look while the conversation goes on changes nothing
    EXPECT_TRUE(ran.isEmpty());

    activity.conversation = false;
    actions->runWaiting();
    EXPECT_EQ(ran, (QStringList{"xrep0", "Ver"}));
}

TEST_F(ActionTest, ActionsThatCannotRunSayWhyInGreekAndRunNothing)
{
    startPolling(pollingParams());
    buildActions();

    EXPECT_EQ(actions->trigger(u"Zfile"_s), ActionRegistry::Outcome::NotBuilt);
    EXPECT_EQ(person.messages.last().text, u"Η λειτουργία Αρχείο 'Ζ' δεν είναι ακόμη διαθέσιμη."_s);
    EXPECT_EQ(person.messages.last().title, u"Μύνημα Kerbano"_s);

    EXPECT_EQ(actions->trigger(u"reports"_s), ActionRegistry::Outcome::Unknown);
    EXPECT_EQ(actions->trigger(u"nosuch"_s), ActionRegistry::Outcome::Unknown);
    EXPECT_EQ(person.messages.last().text, u"Άγνωστη λειτουργία : nosuch"_s);

    // Polling keeps the reports menu closed.
    EXPECT_EQ(actions->trigger(u"xrep0"_s), ActionRegistry::Outcome::Disabled);
    EXPECT_EQ(person.messages.last().text, u"Η λειτουργία Iσοζ. Χ (Οικονομικό) δεν είναι διαθέσιμη αυτή τη στιγμή."_s);
    engine->command2();
    EXPECT_EQ(actions->trigger(u"xrep0"_s), ActionRegistry::Outcome::Ran);

    EXPECT_EQ(ran, QStringList{"xrep0"});
    EXPECT_EQ(finished.size(), 5);
}
