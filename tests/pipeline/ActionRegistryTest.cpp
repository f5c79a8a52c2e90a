#include "ActionFixture.h"

#include "DataFile.h"
#include "PrintQString.h"
#include "pipeline/MenuEntry.h"

#include <QFile>

// The main menu and the tray menu, entry by entry, as the operator sees them.
TEST_F(ActionTest, EveryEntryOfBothMenusIsThereByNameInMenuOrderWithItsCaption)
{
    start();
    buildActions();
    const QStringList rows = DataLines(u"menus.txt"_s);
    const QList<MenuEntry>& entries = actions->entries();
    ASSERT_EQ(entries.size(), rows.size());
    for (qsizetype i = 0; i < rows.size(); ++i) {
        const MenuEntry& entry = entries.at(i);
        const QString menu = entry.menu == MenuEntry::Menu::Main ? u"main"_s : u"tray"_s;
        EXPECT_EQ((QStringList{menu, entry.name, entry.parent, entry.caption}), rows[i].split(u'|'));
        EXPECT_EQ(entry.kind == MenuEntry::Kind::Separator, entry.caption.isEmpty()) << rows[i].toStdString();
    }
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
