// The main form: its menus in order, its labels and buttons in each state of
// the engine, and a close box that never ends the program.
#include "../pipeline/EngineFixture.h"
#include "DataFile.h"
#include "PrintQString.h"
#include "ui/FormMenus.h"
#include "ui/MainWindow.h"
#include "ui/TrayIcon.h"

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QMenu>
#include <QMenuBar>
#include <QSignalSpy>

namespace {

// "caption" of an entry, "-" for a separator, ">caption" entering a submenu
// and "<" leaving it; a menu bar holds nothing but submenus.
QStringList walk(const QWidget& menu)
{
    QStringList out;
    for (QAction* a : menu.actions()) {
        if (a->isSeparator()) {
            out << u"-"_s;
        } else if (a->menu()) {
            out << u">"_s + a->text() << walk(*a->menu()) << u"<"_s;
        } else {
            out << a->text();
        }
    }
    return out;
}

} // namespace

TEST(MainWindowMenus, MainAndTrayMenusHoldEveryEntryInOrderWithItsGreekCaption)
{
    MainWindow window;
    EXPECT_EQ(walk(*window.menuBar()), golden(u"ui/menus-walk.txt"_s, u"main"_s));
    EXPECT_EQ(walk(*window.menus().trayMenu()), golden(u"ui/menus-walk.txt"_s, u"tray"_s));
    EXPECT_EQ(window.menus().trayMenu()->title(), "sysTray Menu");

    // Choosing names the entry; the check mark waits for the engine's state.
    QSignalSpy asked(&window, &MainWindow::actionRequested);
    QAction* debug = window.menus().action(u"wndDebug"_s);
    debug->trigger();
    window.menus().action(u"xrep0"_s)->trigger();
    ASSERT_EQ(asked.count(), 2);
    EXPECT_EQ(asked.at(0).at(0).toString(), "wndDebug");
    EXPECT_EQ(asked.at(1).at(0).toString(), "xrep0");
    EXPECT_FALSE(debug->isChecked());

    FormState state;
    state.menus.reports.enabled = false;
    state.menus.wndDebug.checked = true;
    window.showState(state);
    EXPECT_FALSE(window.menus().action(u"reports"_s)->isEnabled());
    EXPECT_TRUE(debug->isChecked());
    EXPECT_FALSE(window.menus().action(u"xrep5"_s)->isEnabled());
}

// The real engine drives the form through its states; the window shows each.
class MainWindowStates : public EngineTest {
protected:
    MainWindow window;

    void SetUp() override
    {
        EngineTest::SetUp();
        QObject::connect(&form, &FormModel::stateChanged, &window, &MainWindow::showState);
    }
    void expectShown(const QString& caption, const QString& status, bool command1, bool command2)
    {
        EXPECT_EQ(window.windowTitle(), caption);
        EXPECT_EQ(window.text(u"comstattxt"_s), status);
        EXPECT_EQ(window.control(u"Command1"_s)->isEnabled(), command1) << qPrintable(status);
        EXPECT_EQ(window.control(u"Command2"_s)->isEnabled(), command2) << qPrintable(status);
        EXPECT_EQ(window.tray().tip(), window.windowTitle().left(63));
    }
};

TEST_F(MainWindowStates, LabelsCaptionAndButtonsFollowEachStateOfTheForm)
{
    writeParams(pollingParams());
    EXPECT_EQ(window.text(u"Command1"_s), "Έναρξη Εκτύπωσης");
    EXPECT_EQ(window.text(u"Command2"_s), "Διακοπή Εκτύπωσης");
    EXPECT_EQ(window.text(u"baudlbl"_s), "Ταχύτητα         :");
    EXPECT_EQ(window.text(u"Label1"_s), " Αριθμός Αποδείξεων");

    initializeStatusAtStart = -4;
    start();
    engine->mTimerTick();
    expectShown("Kerbano- Αναζήτηση", "Εύρεση Φορολογικής Ταμειακής !!! ", false, false);
    EXPECT_EQ(window.text(u"serialtxt"_s), "127.0.0.1:9101");
    EXPECT_EQ(window.text(u"filetxt"_s), "print @Path : in\\");
    EXPECT_EQ(window.text(u"desctxt"_s), "Να Εκτυπωνεται");

    for (int i = 0; i < 4; ++i)
        engine->timer2Tick();
    engine->mTimerTick();
    expectShown("Kerbano- Λάθος!", "Φορολογικός Εκτυπωτής Off-Line, Εκτυπώσεις Ανενεργές !", false, false);

    // A new start finds the register.
    initializeStatusAtStart = 0;
    start();
    engine->timer2Tick();
    engine->mTimerTick();
    expectShown("Kerbano- Έτοιμο", "Φορολογικός Εκτυπωτής ON-Line, Έτοιμος Για Εκτυπωσεις", true, false);
    EXPECT_TRUE(window.menus().action(u"reports"_s)->isEnabled());

    engine->command1();
    engine->mTimerTick();
    expectShown("Kerbano- Αναμονη", "Αναμονη Για Στοιχεια....", false, true);
    EXPECT_TRUE(window.menus().action(u"pStart"_s)->isChecked());
    EXPECT_FALSE(window.menus().action(u"reports"_s)->isEnabled());

    QString printingStatus;
    parts.interpretLines_ = walkEach([&](const QString&, const JobSettings&) {
        printingStatus = window.text(u"comstattxt"_s) + QLatin1Char('|') + window.windowTitle();
        return true;
    });
    put(u"print.1"_s, "PLU line\r\n");
    engine->timer1Tick();
    EXPECT_EQ(printingStatus, "Εκτύπωση Ενεργή ..... Παρακαλώ Περιμένετε...|Εκτύπωση Ενεργή ");
    EXPECT_EQ(window.text(u"comstattxt"_s), "Αναμονη Για Στοιχεια....");

    engine->command2();
    engine->mTimerTick();
    expectShown("Kerbano- Διακοπηκε", "Διακοπη Εκτυπωσεων. Πατηστε Εναρξη Εκτυπωσεων!!! ", true, false);
    EXPECT_TRUE(window.menus().action(u"pStop"_s)->isChecked());
}

TEST(MainWindowShown, ButtonsAskForTheirActionsAndTheCloseBoxNeverEndsTheProgram)
{
    MainWindow window;
    QSignalSpy asked(&window, &MainWindow::actionRequested);
    window.showState(FormState{});
    ASSERT_TRUE(window.isVisible());
    static_cast<QAbstractButton*>(window.control(u"Command1"_s))->click();
    static_cast<QAbstractButton*>(window.control(u"Command2"_s))->click();
    ASSERT_EQ(asked.count(), 2);
    EXPECT_EQ(asked.at(0).at(0).toString(), "pStart");
    EXPECT_EQ(asked.at(1).at(0).toString(), "pStop");

    // The offscreen desktop has no tray: the window stays and says so once.
    ASSERT_FALSE(window.tray().available());
    window.close();
    EXPECT_TRUE(window.isVisible());
    EXPECT_TRUE(window.tray().saidUnavailable());
    FormState hidden;
    hidden.formShown = false; // [AutoStar]: the register answered
    window.showState(hidden);
    EXPECT_TRUE(window.isVisible());
    EXPECT_EQ(window.findChildren<QWidget*>(u"noTrayNotice"_s).size(), 1);
    window.menus().action(u"fHide"_s)->trigger();
    EXPECT_TRUE(window.isVisible());
    EXPECT_EQ(asked.count(), 2); // fShow and fHide are the window's own
}
