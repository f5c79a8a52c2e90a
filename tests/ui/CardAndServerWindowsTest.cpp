// frmEFT, frmEFTSelect and frmsvr asked from an engine on a thread of its
// own: filled from a scripted register, pressed by the test as the operator,
// and the engine's call answered each time.
#include "DataFile.h"
#include "PrintQString.h"
#include "ScriptedLink.h"
#include "ScriptedOperator.h"
#include "WindowTestSupport.h"
#include "payments/PaymentMap.h"
#include "ui/AboutBox.h"
#include "shell/ModuleVariables.h"
#include "ui/frmEFT.h"
#include "ui/frmEFTSelect.h"
#include "ui/frmsvr.h"

#include <QCheckBox>
#include <QPushButton>
#include <QTemporaryDir>
#include <QThread>
#include <gtest/gtest.h>

using namespace Qt::Literals::StringLiterals;

namespace {

void expectShown(const QWidget* window, const QString& section)
{
    EXPECT_EQ(shown(window), golden(u"ui/card-and-server-windows.txt"_s, section));
}

// A register with terminals 2 ("ALPHA") and 12 ("OMEGA") active, 5
// inactive, 7 refusing its read; payments 1 cash, 2 card, 3 preloaded card.
class CardAndServerWindows : public ::testing::Test {
protected:
    void SetUp() override
    {
        vars.port = QStringLiteral("127.0.0.1:9101");
        link.responder = [](const QString& command, ScriptedLink::Answer& a) {
            const QStringList terminals{"0", "1/10.0.0.2/0/ALPHA", "0", "0", "0/10.0.0.5/0/OLD", "0",
                                        "", "0", "0", "0", "0", "1/10.0.0.12/0/OMEGA"};
            const QStringList payments{"ΜΕΤΡΗΤΑ/ΜΕΤ/0/100011010/0", "VISA/VIS/0/100000001/1",
                                       "ΔΩΡΟΚΑΡΤΑ/ΔΩΡ/0/100000001/3"};
            if (command.startsWith(QLatin1String(",/11/"))) {
                const QString t = terminals.value(command.section('/', 2, 2).toInt() - 1);
                a.status = t.isEmpty() ? 0x05 : 0;
                a.reply = QStringLiteral("00/00/00/") + t + QStringLiteral("/");
                return true;
            }
            if (command.startsWith(QLatin1String("y/"))) {
                a.reply = QStringLiteral("00/00/00/")
                    + payments.value(command.section('/', 1, 1).toInt() - 1, QStringLiteral("-/-/0/0/0"))
                    + QStringLiteral("/");
                return true;
            }
            return false;
        };
    }

    QTemporaryDir dir;
    QString payeft = dir.filePath(QStringLiteral("payeft.dat"));
    ScriptedLink link;
    ScriptedOperator op; // the engine's own messages
    ModuleVariables vars;
    GuiOperator person;  // the GUI side the windows are asked through
};

TEST_F(CardAndServerWindows, PaymentMapWindowShowsTheRegistersListsFindsARecordAndSavesIt)
{
    PayEftRecord stored;
    stored.payId = 6;
    stored.ecrPayment = 2;
    stored.ecrEft = 2;
    stored.active = -1;
    stored.retries = 2;
    stored.altPayment = 1;
    ASSERT_EQ(WritePayEftRecord(payeft, stored), 0);

    PaymentMapWindowOnGui window(person);
    frmEFT* form = nullptr;
    At at;
    at.then([&] {
        form = window.form();
        return form && form->isVisible() && form->windowTitle() == "Πληρωμές Καρτών";
    }, [&] {
        expectShown(form, u"payment map opened"_s);
        for (const char* name : {"txtPay", "txtPAYEDDesc", "cmdFind", "save", "cmddelete", "cmdRef", "cmdexit"})
            EXPECT_NE(form->control(QString::fromLatin1(name)), nullptr) << name;
        get<QLineEdit>(form, "txtPay")->setText(QStringLiteral("6"));
        get<QPushButton>(form, "cmdFind")->click();
    });
    at.then([&] { return get<QLineEdit>(form, "txtPAYEDDesc")->text() == "ΜΕΤΡΗΤΑ"; }, [&] {
        expectShown(form, u"payment map found"_s);
        // Another terminal and a pre-collection; save, then leave before
        // the engine is done: the save still runs.
        get<QComboBox>(form, "cmbECREFT")->setCurrentIndex(11);
        get<QCheckBox>(form, "chk355")->setChecked(true);
        get<QPushButton>(form, "save")->click();
        get<QPushButton>(form, "cmdexit")->click();
    });
    ASSERT_TRUE(runOnEngine(person, [&] { PaymentMapDialog(link, op, vars, payeft).run(window); }));
    EXPECT_TRUE(at.done());
    EXPECT_EQ(window.form(), nullptr);
    EXPECT_EQ(link.commands().last(), "Y/1/ΜΕΤΡΗΤΑ/ΑΠΠΚ//0/100011010/0/ΑΝΤΙ ΠΙΣΤ.ΚΑΡΤΑ/");
    PayEftRecord back;
    back.payId = 6;
    ASSERT_EQ(ReadPayEftRecord(payeft, back), 0);
    EXPECT_EQ(back.ecrEft, 12);
    EXPECT_EQ(back.ecrPayment, 2);
    EXPECT_EQ(back.preCollect, -1);
    EXPECT_EQ(back.retries, 2);
    EXPECT_FALSE(link.connected); // open only while the register is read or programmed
}

TEST_F(CardAndServerWindows, TerminalChoiceListsActiveTerminalsAndSendsTheChosenRowsSlot)
{
    frmEFTSelect reading;
    reading.showReading();
    EXPECT_EQ(reading.windowTitle(), "Πακέτο συναλλαγών EFTPOS...");
    expectShown(&reading, u"terminal choice reading"_s);
    QTimer::singleShot(0, get<QPushButton>(&reading, "CancelButton"), &QPushButton::click);
    EXPECT_EQ(reading.choose({{QStringLiteral("#2 - ALPHA"), 2}}), -1);

    EftSelectWindowOnGui window(person);
    At at;
    at.then([&] {
        return window.dialog() && window.dialog()->isVisible()
            && get<QLabel>(window.dialog(), "lblTitle")->text() == "Επιλέξτε απο την λίστα την συσκευή EFTPOS";
    }, [&] {
        expectShown(window.dialog(), u"terminal choice"_s);
        auto* list = get<QComboBox>(window.dialog(), "cmbDocType");
        auto* ok = get<QPushButton>(window.dialog(), "OKButton");
        list->setCurrentIndex(1);
        emit list->activated(1);
        EXPECT_TRUE(ok->isEnabled());
        ok->click();
    });
    ASSERT_TRUE(runOnEngine(person, [&] { RunEftBatch(link, op, vars, &window); }));
    EXPECT_TRUE(at.done());
    EXPECT_EQ(window.dialog(), nullptr);
    EXPECT_EQ(link.commands().last(), "\\/15/12/////////////////");
    ASSERT_FALSE(op.messages.isEmpty());
    EXPECT_EQ(op.messages.last().text, "Η αποστολή εντολής στο EFTPOS ολοκληρώθηκε...");
}

TEST_F(CardAndServerWindows, TaxServerWindowChecksOnEverySetStaysOpenAndSendsTheValidEntriesOnce)
{
    link.connected = true;
    TaxServerWindowOnGui window(person);
    frmsvr* form = nullptr;
    QPushButton* set = nullptr;
    const QString key(64, u'K');
    At at;
    at.then([&] {
        form = window.form();
        return form && form->isVisible();
    }, [&] {
        EXPECT_EQ(form->windowTitle(), "server ΑΑΔΕ");
        expectShown(form, u"tax server"_s);
        set = get<QPushButton>(form, "Command1");
        get<QLineEdit>(form, "txtAES")->setText(key.left(63));
        get<QLineEdit>(form, "txtWebServer")->setText(QStringLiteral("http://srv.gr/eafdss/myweb/websend.php"));
        get<QLineEdit>(form, "txtQR")->setText(QStringLiteral("https://srv.gr/tameiakes/myweb/q1.php"));
        get<QCheckBox>(form, "taxConnect")->setChecked(false);
        set->click();
        EXPECT_FALSE(set->isEnabled()); // one press, one send
    });
    at.then([&] { return set->isEnabled(); }, [&] {
        get<QLineEdit>(form, "txtAES")->setText(key);
        set->click();
    });
    at.then([&] { return set->isEnabled(); }, [&] {
        EXPECT_TRUE(form->isVisible());
        EXPECT_EQ(get<QLineEdit>(form, "txtAES")->text(), key); // the entries stay
        form->reject();
    });
    ASSERT_TRUE(runOnEngine(person, [&] { TaxServerSetup(link, op, vars).run(window); }));
    EXPECT_TRUE(at.done());
    EXPECT_EQ(link.commands(), QStringList{"]/0/0//http:~~srv.gr~eafdss~myweb~websend.php/80/" + key
                                           + "/https:~~srv.gr~tameiakes~myweb~q1.php/"});
    ASSERT_EQ(op.messages.size(), 2);
    EXPECT_EQ(op.messages[0].text, "Λάθος μήκος κλειδιού AES");
    EXPECT_EQ(op.messages[1].text, "Επιτυχής ενεργοποίηση επικοινωνίας με τον server της ΑΑΔΕ");
}

TEST_F(CardAndServerWindows, AProgramEndingClosesAWaitingWindowAndAnswersLaterOnesAtOnce)
{
    TaxServerWindowOnGui server(person);
    At at;
    at.then([&] { return server.form() && server.form()->isVisible(); }, [&] { person.release(); });
    ASSERT_TRUE(runOnEngine(person, [&] { TaxServerSetup(link, op, vars).run(server); }));
    EXPECT_TRUE(at.done());
    EXPECT_TRUE(link.sent.isEmpty());

    PaymentMapWindowOnGui map(person);
    EftSelectWindowOnGui select(person);
    std::optional<PaymentMapWindow::Pressed> pressed{PaymentMapWindow::Pressed{}};
    qint16 chosen = 5;
    std::optional<TaxServerEntries> entries{TaxServerEntries{}};
    ASSERT_TRUE(runOnEngine(person, [&] {
        pressed = map.waitForPress({}, {});
        chosen = select.idSelected({{QStringLiteral("#2 - ALPHA"), 2}});
        entries = server.waitForSet({});
    }));
    EXPECT_FALSE(pressed.has_value());
    EXPECT_EQ(chosen, 0);
    EXPECT_FALSE(entries.has_value());
    EXPECT_EQ(map.form(), nullptr);
}

// The window life on a dead link: the window's clicks reach the engine's
// thread as names, and one chosen while another action runs waits behind it,
// never inside it. The life hands its windows to the engine: the menu entry
// opens the dialog, not the Operator's list question. (With the link failed at
// the start, s8 is the one of the three the menu leaves open.)
TEST(CardAndServerWindowsInTheWindowLife, AnEntryWaitsBehindARunningOneAndTheBatchEntryOpensFrmEFTSelect)
{
    QTemporaryDir dir;
    DeadLinkWindowLife life(dir.path());
    KerbanoGui& gui = life.gui();
    ASSERT_TRUE(life.failed());
    EXPECT_EQ(life.boxes.size(), 1); // the link's message box, answered with OK

    // A long action on the engine thread that lets its event loop breathe, as a job does.
    std::atomic<bool> release{false};
    std::atomic<bool> running{false};
    std::atomic<Qt::HANDLE> ranOn{nullptr};
    gui.engine().post([&](Driver& d) {
        d.actions().setHandler(u"param"_s, [&] {
            ranOn = QThread::currentThreadId();
            running = true;
            while (!release)
                QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
            running = false;
        });
    });
    emit gui.window().actionRequested(u"param"_s);
    ASSERT_TRUE(waitFor([&] { return running.load(); }));
    EXPECT_NE(ranOn.load(), QThread::currentThreadId());
    emit gui.window().actionRequested(u"about"_s);
    waitFor([] { return false; }, 300);
    EXPECT_EQ(gui.aboutBox(), nullptr); // waits behind the running action
    release = true;
    ASSERT_TRUE(waitFor([&] { return gui.aboutBox() != nullptr; }));
    EXPECT_FALSE(running.load());
    EXPECT_EQ(gui.aboutBox()->windowTitle(), "Περι Kerbano");

    // Every read of the closed link is refused with its box; the dialog opens all the same.
    At at;
    at.then([&] { return gui.eftSelectWindow() && gui.eftSelectWindow()->isVisible()
                      && get<QComboBox>(gui.eftSelectWindow(), "cmbDocType")->isEnabled(); },
            [&] {
                EXPECT_EQ(gui.eftSelectWindow()->parentWidget(), &gui.window());
                EXPECT_EQ(get<QComboBox>(gui.eftSelectWindow(), "cmbDocType")->count(), 0);
                get<QPushButton>(gui.eftSelectWindow(), "CancelButton")->click();
            });
    emit gui.window().actionRequested(QStringLiteral("s8"));
    ASSERT_TRUE(waitFor([&] { return life.boxes.contains("Δεν έγινε αποστολή της εντολής στο EFTPOS..."); }, 30000));
    EXPECT_TRUE(at.done());
    EXPECT_EQ(gui.eftSelectWindow(), nullptr);
    EXPECT_TRUE(life.endsThroughTheMenu());
}

} // namespace
