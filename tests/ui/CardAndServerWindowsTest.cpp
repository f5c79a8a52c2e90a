// frmEFT, frmEFTSelect and frmsvr asked from an engine on a thread of its
// own: filled from a scripted register, pressed by the test as the operator,
// and the engine's call answered each time.
#include "PrintQString.h"
#include "ScriptedLink.h"
#include "ScriptedOperator.h"
#include "payments/PaymentMap.h"
#include "shell/ModuleVariables.h"
#include "config/ParamFileWriter.h"
#include "ui/GuiOperator.h"
#include "ui/KerbanoGui.h"
#include "ui/MainWindow.h"
#include "ui/frmEFT.h"
#include "ui/frmEFTSelect.h"
#include "ui/frmsvr.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDate>
#include <QElapsedTimer>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTimer>
#include <gtest/gtest.h>
#include <thread>

namespace {

template <typename Pred>
bool waitFor(Pred pred, int ms = 10000)
{
    QElapsedTimer t;
    t.start();
    while (!pred() && t.elapsed() < ms)
        QApplication::processEvents(QEventLoop::AllEvents, 10);
    return pred();
}

template <typename W>
W* get(const QWidget* window, const char* name)
{
    return window ? window->findChild<W*>(QString::fromLatin1(name)) : nullptr;
}

QStringList rows(const QComboBox* list)
{
    QStringList out;
    for (int i = 0; i < list->count(); ++i)
        out << list->itemText(i);
    return out;
}

QStringList labels(const QWidget* window)
{
    QStringList out;
    for (const QLabel* label : window->findChildren<QLabel*>())
        out << label->text();
    return out;
}

// The engine's side: one menu action on a thread of its own. Whatever the
// test did, it ends: a window still up is given up as the program ends.
class EngineSide {
public:
    EngineSide(GuiOperator& person, std::function<void()> work)
        : person_(person)
        , thread_([this, work = std::move(work)] {
            work();
            done_ = true;
        })
    {
    }
    ~EngineSide()
    {
        if (!waitFor([this] { return finished(); }, 0))
            person_.release();
        waitFor([this] { return finished(); });
        thread_.join();
    }
    bool finished() const { return done_.load(); }

private:
    GuiOperator& person_;
    std::atomic<bool> done_{false};
    std::thread thread_;
};

// The operator at the screen: steps in order, each once the windows show
// what it waits for. They run from a timer, so inside a window's own loop too.
class At {
public:
    At()
    {
        QObject::connect(&timer_, &QTimer::timeout, [this] {
            if (!steps_.empty() && steps_.front().first()) {
                const auto act = std::move(steps_.front().second);
                steps_.pop_front();
                act();
            }
        });
        timer_.start(10);
    }
    At& then(std::function<bool()> ready, std::function<void()> act)
    {
        steps_.emplace_back(std::move(ready), std::move(act));
        return *this;
    }
    bool done() const { return steps_.empty(); }

private:
    QTimer timer_;
    std::deque<std::pair<std::function<bool()>, std::function<void()>>> steps_;
};

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
        for (const char* label : {"# πληρωμής Kerbano", "# πληρωμής Ταμειακής", "# EFT POS", "Προσπάθειες",
                                  "Εναλλακτική πληρωμή"})
            EXPECT_TRUE(labels(form).contains(QString::fromUtf8(label))) << label;
        EXPECT_EQ(get<QCheckBox>(form, "chkActive")->text(), "Ενεργή");
        EXPECT_EQ(get<QCheckBox>(form, "chk355")->text(), "Προείσπραξη");
        for (const char* name : {"txtPay", "txtPAYEDDesc", "cmdFind", "save", "cmddelete", "cmdRef", "cmdexit"})
            EXPECT_NE(form->control(QString::fromLatin1(name)), nullptr) << name;
        const QStringList terminals = rows(get<QComboBox>(form, "cmbECREFT"));
        ASSERT_EQ(terminals.size(), 12); // "---" and the 11 slots the register read
        EXPECT_EQ(terminals.first(), "---");
        EXPECT_EQ(terminals.at(2), "ALPHA, 10.0.0.2");
        EXPECT_EQ(terminals.at(5), "Ανενεργό");
        EXPECT_EQ(terminals.at(11), "OMEGA, 10.0.0.12");
        EXPECT_EQ(rows(get<QComboBox>(form, "cmbECRPayment")),
                  (QStringList{"---", "2, VISA", "3, ΔΩΡΟΚΑΡΤΑ:ΠΡΟΦΟΡΤΩΜΕΝΗ"}));
        EXPECT_EQ(get<QLineEdit>(form, "txtRetries")->text(), "0");
        EXPECT_TRUE(get<QPushButton>(form, "cmdRef")->isEnabled());
        get<QLineEdit>(form, "txtPay")->setText(QStringLiteral("6"));
        get<QPushButton>(form, "cmdFind")->click();
    });
    at.then([&] { return get<QLineEdit>(form, "txtPAYEDDesc")->text() == "ΜΕΤΡΗΤΑ"; }, [&] {
        EXPECT_EQ(get<QComboBox>(form, "cmbECRPayment")->currentIndex(), 1);
        EXPECT_EQ(get<QComboBox>(form, "cmbECREFT")->currentIndex(), 2);
        EXPECT_TRUE(get<QCheckBox>(form, "chkActive")->isChecked());
        EXPECT_EQ(get<QLineEdit>(form, "txtRetries")->text(), "2");
        EXPECT_EQ(get<QLineEdit>(form, "txtPayID")->text(), "1");
        // Another terminal and a pre-collection; save, then leave before
        // the engine is done: the save still runs.
        get<QComboBox>(form, "cmbECREFT")->setCurrentIndex(11);
        get<QCheckBox>(form, "chk355")->setChecked(true);
        get<QPushButton>(form, "save")->click();
        get<QPushButton>(form, "cmdexit")->click();
    });
    {
        EngineSide engine(person, [&] { PaymentMapDialog(link, op, vars, payeft).run(window); });
        ASSERT_TRUE(waitFor([&] { return engine.finished(); }));
    }
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
    EXPECT_EQ(get<QLabel>(&reading, "lblTitle")->text(), "Αναμονή ανάγνωσης εγγραφών ΦΗΜΑΣ");
    EXPECT_FALSE(get<QComboBox>(&reading, "cmbDocType")->isEnabled());
    QTimer::singleShot(0, get<QPushButton>(&reading, "CancelButton"), &QPushButton::click);
    EXPECT_EQ(reading.choose({{QStringLiteral("#2 - ALPHA"), 2}}), -1);

    EftSelectWindowOnGui window(person);
    At at;
    at.then([&] {
        return window.dialog() && window.dialog()->isVisible()
            && get<QLabel>(window.dialog(), "lblTitle")->text() == "Επιλέξτε απο την λίστα την συσκευή EFTPOS";
    }, [&] {
        auto* list = get<QComboBox>(window.dialog(), "cmbDocType");
        auto* ok = get<QPushButton>(window.dialog(), "OKButton");
        EXPECT_TRUE(list->isEnabled());
        EXPECT_EQ(rows(list), (QStringList{"#2 - ALPHA", "#12 - OMEGA"}));
        EXPECT_EQ(ok->text(), "OK");
        EXPECT_EQ(get<QPushButton>(window.dialog(), "CancelButton")->text(), "Cancel");
        EXPECT_FALSE(ok->isEnabled()); // until a row is picked
        list->setCurrentIndex(1);
        emit list->activated(1);
        EXPECT_TRUE(ok->isEnabled());
        ok->click();
    });
    {
        EngineSide engine(person, [&] { RunEftBatch(link, op, vars, &window); });
        ASSERT_TRUE(waitFor([&] { return engine.finished(); }));
    }
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
        EXPECT_EQ(get<QGroupBox>(form, "heading")->title(), "Ηλεκτρονική Αποστολή δεδομένων");
        for (const char* label : {"Κλειδί AES", "Διεύθυνση webServer", "Διεύθυνση QR"})
            EXPECT_TRUE(labels(form).contains(QString::fromUtf8(label))) << label;
        set = get<QPushButton>(form, "Command1");
        auto* connect = get<QCheckBox>(form, "taxConnect");
        EXPECT_EQ(set->text(), "Set");
        EXPECT_EQ(connect->text(), "Αποστολή Δεδομένων");
        EXPECT_TRUE(connect->isChecked());
        EXPECT_TRUE(get<QLineEdit>(form, "txtAES")->text().isEmpty());
        EXPECT_TRUE(get<QLineEdit>(form, "txtWebServer")->text().startsWith("http://"));
        EXPECT_TRUE(get<QLineEdit>(form, "txtQR")->text().endsWith("/tameiakes/myweb/q1.php"));
        get<QLineEdit>(form, "txtAES")->setText(key.left(63));
        get<QLineEdit>(form, "txtWebServer")->setText(QStringLiteral("http://srv.gr/eafdss/myweb/websend.php"));
        get<QLineEdit>(form, "txtQR")->setText(QStringLiteral("https://srv.gr/tameiakes/myweb/q1.php"));
        connect->setChecked(false);
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
    {
        EngineSide engine(person, [&] { TaxServerSetup(link, op, vars).run(window); });
        ASSERT_TRUE(waitFor([&] { return engine.finished(); }));
    }
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
    {
        EngineSide waiting(person, [&] { TaxServerSetup(link, op, vars).run(server); });
        ASSERT_TRUE(waitFor([&] { return waiting.finished(); }));
    }
    EXPECT_TRUE(at.done());
    EXPECT_TRUE(link.sent.isEmpty());

    PaymentMapWindowOnGui map(person);
    EftSelectWindowOnGui select(person);
    std::optional<PaymentMapWindow::Pressed> pressed{PaymentMapWindow::Pressed{}};
    qint16 chosen = 5;
    std::optional<TaxServerEntries> entries{TaxServerEntries{}};
    {
        EngineSide later(person, [&] {
            pressed = map.waitForPress({}, {});
            chosen = select.idSelected({{QStringLiteral("#2 - ALPHA"), 2}});
            entries = server.waitForSet({});
        });
        ASSERT_TRUE(waitFor([&] { return later.finished(); }));
    }
    EXPECT_FALSE(pressed.has_value());
    EXPECT_EQ(chosen, 0);
    EXPECT_FALSE(entries.has_value());
    EXPECT_EQ(map.form(), nullptr);
}

// The window life hands its windows to the engine: the menu entry opens the
// dialog, not the Operator's list question. (With the link failed at the
// start, s8 is the one of the three the menu leaves open.)
TEST(CardAndServerWindowsInTheWindowLife, TheBatchEntryOpensFrmEFTSelectAndACancelSendsNothing)
{
    QTemporaryDir dir;
    ParamFormValues params;
    params.comtxt = QStringLiteral("127.0.0.1:1"); // nobody listens: the link fails at once
    params.filetxt = QStringLiteral("print");
    ASSERT_TRUE(writeParamFile(dir.filePath(QStringLiteral("param.ini")), params, QDate(2026, 1, 2)));
    EngineThread::Setup setup;
    setup.driver = DriverOptions{dir.path(), dir.path(), QString(), true};
    KerbanoGui gui(setup);
    QStringList boxes;
    QTimer person;
    QObject::connect(&person, &QTimer::timeout, [&] {
        if (auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget())) {
            boxes << box->text();
            box->accept();
        }
    });
    person.start(10);
    gui.start();
    ASSERT_TRUE(waitFor([&] { return gui.window().shownState().comstattxt.startsWith("Λάθος : "); }));

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
    ASSERT_TRUE(waitFor([&] { return boxes.contains("Δεν έγινε αποστολή της εντολής στο EFTPOS..."); }, 30000));
    EXPECT_TRUE(at.done());
    EXPECT_EQ(gui.eftSelectWindow(), nullptr);

    int code = -1;
    QObject::connect(&gui, &KerbanoGui::ended, [&](int c) { code = c; });
    emit gui.window().actionRequested(QStringLiteral("end"));
    ASSERT_TRUE(waitFor([&] { return code == 0; }));
    gui.stop();
}

} // namespace
