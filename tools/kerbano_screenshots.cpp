// The pictures of docs/screenshots: the window life on a running virtual
// register, driven the way the person would drive it, each window saved as
// <objectName>.png. scripts/screenshots starts the register (with a paper end
// on the first sale) and runs this under Xvfb:
//   kerbano-screenshots HOST:PORT RECEIPT_FILE WORK_DIR OUT_DIR
// Exits 0 once every picture is saved, 1 on bad arguments, 2 when a window
// never came or a message box stood where none belongs (pictured as
// failed-message.png, closed, and told on stderr), 3 when the whole run
// outlived its limit.
#include "config/ParamFileWriter.h"
#include "payments/EftBatch.h"
#include "payments/PaymentMapDialog.h"
#include "ui/DebugWindow.h"
#include "ui/FormMenus.h"
#include "ui/GuiOperator.h"
#include "ui/KerbanoGui.h"
#include "ui/MainWindow.h"
#include "ui/ParamWindow.h"
#include "ui/WaitWindow.h"
#include "ui/frmEFT.h"
#include "ui/frmEFTSelect.h"
#include "ui/frmsvr.h"

#include <QApplication>
#include <QDate>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QInputDialog>
#include <QMenu>
#include <QMenuBar>
#include <QPainter>
#include <QMessageBox>
#include <QPushButton>
#include <QTimer>
#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <mutex>
#include <thread>

namespace {
constexpr int kRegisterFoundMs = 30000;
constexpr int kWindowMs = 10000;
constexpr int kJobMs = 60000;
constexpr int kEndMs = 30000;
constexpr int kSettleMs = 400;
constexpr int kPumpMs = 20;
constexpr int kTitleHeight = 26;
constexpr int kPngSmallest = 0; // PNG quality 0: the strongest compression, still lossless
constexpr int kTourExitCode = 2;
constexpr int kOverdueExitCode = 3;
// The whole run takes well under a minute; past this something blocks.
constexpr std::chrono::seconds kRunLimit{240};

const QString kCaptionReady = QStringLiteral("Kerbano- Έτοιμο");
const QString kCaptionWaiting = QStringLiteral("Kerbano- Αναμονη");
// What the batch says when the person closed frmEFTSelect without a choice.
const QString kBatchNotSent = QStringLiteral("Δεν έγινε αποστολή της εντολής στο EFTPOS...");
const QString kFailedMessage = QStringLiteral("failed-message");

bool waitUntil(const std::function<bool()>& done, int timeoutMs)
{
    QElapsedTimer clock;
    clock.start();
    while (!done()) {
        if (clock.elapsed() > timeoutMs)
            return false;
        QApplication::processEvents(QEventLoop::AllEvents, kPumpMs);
    }
    return true;
}

void settle()
{
    waitUntil([] { return false; }, kSettleMs);
}

// No window manager draws title bars under Xvfb; the captions matter, so
// each picture gets a plain one with the window's title.
QPixmap withTitleBar(const QWidget& window, const QPixmap& content)
{
    QPixmap framed(content.width() + 2, content.height() + kTitleHeight + 1);
    const QPalette& palette = window.palette();
    framed.fill(palette.color(QPalette::Dark));
    QPainter p(&framed);
    const QRect bar(1, 1, content.width(), kTitleHeight - 1);
    p.fillRect(bar, palette.color(QPalette::Highlight));
    QFont bold = window.font();
    bold.setBold(true);
    p.setFont(bold);
    p.setPen(palette.color(QPalette::HighlightedText));
    p.drawText(bar.adjusted(8, 0, -8, 0), Qt::AlignVCenter | Qt::AlignLeft, window.windowTitle());
    p.drawPixmap(1, kTitleHeight, content);
    return framed;
}

// The window with an opened menu over it, where the menu stands on the screen.
QPixmap withPopup(QWidget& window, QMenu& menu)
{
    const QPixmap base = window.grab();
    const QPixmap popup = menu.grab();
    const QRect baseRect(QPoint(0, 0), base.size());
    const QRect popupRect(menu.pos() - window.mapToGlobal(QPoint(0, 0)), popup.size());
    const QRect all = baseRect.united(popupRect);
    QPixmap canvas(all.size());
    canvas.fill(window.palette().color(QPalette::Dark));
    QPainter p(&canvas);
    p.drawPixmap(baseRect.topLeft() - all.topLeft(), base);
    p.drawPixmap(popupRect.topLeft() - all.topLeft(), popup);
    return canvas;
}

// The last guard, on a thread of its own so that nothing blocking the GUI
// thread can outlast it: past the limit the program ends.
class Deadline {
public:
    explicit Deadline(std::chrono::seconds limit)
        : guard_([this, limit] {
            std::unique_lock lock(mutex_);
            if (!ended_changed_.wait_for(lock, limit, [this] { return ended_; })) {
                std::fprintf(stderr, "screenshots: still running after %lld s, given up\n",
                             static_cast<long long>(limit.count()));
                std::_Exit(kOverdueExitCode);
            }
        })
    {
    }
    ~Deadline()
    {
        {
            std::lock_guard lock(mutex_);
            ended_ = true;
        }
        ended_changed_.notify_all();
        guard_.join();
    }
    Deadline(const Deadline&) = delete;
    Deadline& operator=(const Deadline&) = delete;

private:
    std::mutex mutex_;
    std::condition_variable ended_changed_;
    bool ended_ = false;
    std::thread guard_;
};

// A window of a menu entry that the engine asks for and that waits for the
// person in an event loop of its own.
struct MenuWindow {
    QString action;
    std::function<QDialog*()> find;
    std::function<bool(QDialog&)> ready; // filled and waiting for the person
    std::function<void(QDialog&)> close; // as the person closes it
    QString closingMessage;              // the message box its closing brings, if any
};

QAbstractButton* closingButton(QMessageBox& box)
{
    for (QAbstractButton* button : box.buttons()) {
        if (box.buttonRole(button) == QMessageBox::RejectRole)
            return button;
    }
    return box.defaultButton() ? box.defaultButton() : box.buttons().value(0);
}

class Tour {
public:
    Tour(KerbanoGui& gui, QDir out)
        : gui_(gui)
        , out_(std::move(out))
    {
        // A timer fires in every event loop, a message box's own included.
        watch_.setInterval(kPumpMs);
        QObject::connect(&watch_, &QTimer::timeout, [this] { closeMessageBoxes(); });
        watch_.start();
    }

    bool save(const QString& name, const QPixmap& picture)
    {
        const QString path = out_.filePath(name + QStringLiteral(".png"));
        if (!picture.save(path, "PNG", kPngSmallest)) {
            std::fprintf(stderr, "screenshots: cannot write %s\n", qPrintable(path));
            return false;
        }
        std::printf("%s\n", qPrintable(path));
        return true;
    }

    bool fail(const char* what)
    {
        std::fprintf(stderr, "screenshots: %s\n", what);
        failed_ = true;
        return false;
    }

    // waitUntil, cut short once the tour has failed.
    bool waitFor(const std::function<bool()>& done, int timeoutMs)
    {
        return waitUntil([&] { return failed_ || done(); }, timeoutMs) && !failed_;
    }

    MainWindow& form() { return gui_.window(); }

    bool caption(const QString& text, int timeoutMs)
    {
        return waitFor([&] { return form().shownState().caption == text; }, timeoutMs);
    }

    // The reports menu dropped from the menu bar, over the form.
    bool mainMenu()
    {
        QAction* reports = form().menus().action(QStringLiteral("reports"));
        if (!reports || !reports->menu())
            return fail("no reports menu");
        form().menuBar()->setActiveAction(reports);
        QMenu& menu = *reports->menu();
        if (!waitFor([&] { return menu.isVisible(); }, kWindowMs))
            return fail("the reports menu did not open");
        settle();
        const bool saved = save(QStringLiteral("Kerbano-menu"), withTitleBar(form(), withPopup(form(), menu)));
        menu.hide();
        return saved;
    }

    // The tray's menu as a click on the icon pops it up.
    bool trayMenu()
    {
        QMenu& menu = *form().menus().trayMenu();
        menu.popup(form().mapToGlobal(QPoint(form().width() / 3, form().height() / 3)));
        if (!waitFor([&] { return menu.isVisible(); }, kWindowMs))
            return fail("the tray menu did not open");
        settle();
        const bool saved = save(menu.objectName(), menu.grab());
        menu.hide();
        return saved;
    }

    bool settingsWindow()
    {
        emit form().actionRequested(QStringLiteral("param"));
        if (!waitFor([&] { return gui_.paramWindow() && gui_.paramWindow()->isVisible(); }, kWindowMs))
            return fail("frmparam did not open");
        settle();
        ParamWindow& param = *gui_.paramWindow();
        const bool saved = save(param.objectName(), withTitleBar(param, param.grab()));
        param.reject();
        return saved && waitFor([&] { return !gui_.paramWindow(); }, kWindowMs);
    }

    // frmEFT, frmEFTSelect and frmsvr wait for the person in an event loop
    // of their own, entered from this program's waitUntil; this code stays
    // below that loop until the window closes. So the hand that pictures and
    // closes the window is a timer, which fires inside that loop.
    bool menuWindow(const MenuWindow& step)
    {
        bool closed = false;
        QElapsedTimer clock;
        clock.start();
        QElapsedTimer readySince;
        QTimer hand;
        hand.setInterval(kPumpMs);
        QObject::connect(&hand, &QTimer::timeout, [&] {
            QDialog* window = step.find();
            if (failed_ || clock.elapsed() > kJobMs) {
                hand.stop();
                if (!failed_)
                    fail("a menu entry's window did not become ready");
                if (window)
                    window->reject();
                return;
            }
            if (!window || !window->isVisible() || !step.ready(*window)) {
                readySince.invalidate();
                return;
            }
            if (!readySince.isValid())
                readySince.start();
            if (readySince.elapsed() < kSettleMs)
                return;
            hand.stop();
            if (!save(window->objectName(), withTitleBar(*window, window->grab())))
                failed_ = true;
            closed = true;
            step.close(*window);
        });
        closingMessage_ = step.closingMessage;
        hand.start();
        emit form().actionRequested(step.action);
        const bool done = waitFor(
            [&] {
                QDialog* open = step.find();
                return closed && (!open || !open->isVisible()) && closingMessage_.isEmpty();
            },
            kJobMs + kWindowMs);
        closingMessage_.clear();
        if (!done && !failed_)
            fail("a menu entry's window did not close");
        return done;
    }

    bool cardAndServerWindows()
    {
        const MenuWindow paymentMap{
            QStringLiteral("paramEFT"), [this] { return gui_.paymentMapWindow(); },
            [](QDialog& w) {
                return w.windowTitle() == kPaymentMapTitle
                    && static_cast<frmEFT&>(w).control(QStringLiteral("cmdRef"))->isEnabled();
            },
            [](QDialog& w) { clickButton(static_cast<frmEFT&>(w).control(QStringLiteral("cmdexit"))); }, {}};
        const MenuWindow terminalChoice{
            QStringLiteral("s8"), [this] { return gui_.eftSelectWindow(); },
            [](QDialog& w) {
                return w.isModal() && static_cast<frmEFTSelect&>(w).control(QStringLiteral("cmbDocType"))->isEnabled();
            },
            [](QDialog& w) {
                clickButton(static_cast<frmEFTSelect&>(w).control(QStringLiteral("CancelButton")));
            },
            kBatchNotSent};
        const MenuWindow taxServer{
            QStringLiteral("basic_programming"), [this] { return gui_.taxServerWindow(); },
            [](QDialog& w) { return static_cast<frmsvr&>(w).control(QStringLiteral("Command1"))->isEnabled(); },
            [](QDialog& w) { w.close(); }, {}};
        return menuWindow(paymentMap) && menuWindow(terminalChoice) && menuWindow(taxServer);
    }

    bool openLogWindow()
    {
        emit form().actionRequested(QStringLiteral("wndDebug"));
        return waitFor([&] { return gui_.debugWindow()->isVisible(); }, kWindowMs)
            || fail("frmDebug did not open");
    }

    // A receipt dropped while polling; the register runs out of paper on its
    // first sale, and frmErr stands until a poll finds paper again.
    bool paperEnd(const QString& receipt, const QDir& work)
    {
        form().findChild<QPushButton*>(QStringLiteral("Command1"))->click();
        if (!caption(kCaptionWaiting, kWindowMs))
            return fail("polling did not start");
        const QString dropping = work.filePath(QStringLiteral("print.tmp"));
        if (!QFile::copy(receipt, dropping) || !QFile::rename(dropping, work.filePath(QStringLiteral("print.1"))))
            return fail("cannot drop the receipt");
        GuiOperator& person = gui_.person();
        if (!waitFor([&] { return person.waitWindow() && person.waitWindow()->isVisible(); }, kJobMs))
            return fail("frmErr did not come up");
        settle();
        WaitWindow& wait = *person.waitWindow();
        if (!save(wait.objectName(), withTitleBar(wait, wait.grab())))
            return false;
        const QString printFile = work.filePath(QStringLiteral("print.1"));
        if (!waitFor([&] { return !QFile::exists(printFile) && form().shownState().caption == kCaptionWaiting; },
                       kJobMs))
            return fail("the receipt did not print");
        return true;
    }

    bool logWindow()
    {
        settle();
        DebugWindow& log = *gui_.debugWindow();
        log.drain();
        return save(log.objectName(), withTitleBar(log, log.grab()));
    }

    bool mainWindow()
    {
        return save(form().objectName(), withTitleBar(form(), form().grab()));
    }

    bool end()
    {
        int code = -1;
        QObject::connect(&gui_, &KerbanoGui::ended, [&code](int c) { code = c; });
        emit form().actionRequested(QStringLiteral("end"));
        const bool ended = waitUntil([&] { return code >= 0; }, kEndMs);
        gui_.stop();
        return ended || fail("the menu entry end did not end the program");
    }

private:
    static void clickButton(QWidget* button)
    {
        if (auto* b = qobject_cast<QAbstractButton*>(button))
            b->click();
    }

    // A message box or a question the tour did not ask for would stand in
    // its own event loop with nobody to answer it: it is pictured, closed and
    // the tour fails. The one a window's closing brings is closed and expected.
    void closeMessageBoxes()
    {
        for (QWidget* widget : QApplication::topLevelWidgets()) {
            if (!widget->isVisible())
                continue;
            if (auto* box = qobject_cast<QMessageBox*>(widget)) {
                const bool expected = !closingMessage_.isEmpty() && box->text() == closingMessage_;
                if (expected)
                    closingMessage_.clear();
                else
                    unexpected(*box, box->text());
                if (QAbstractButton* button = closingButton(*box))
                    button->click();
                else
                    box->reject();
            } else if (auto* question = qobject_cast<QInputDialog*>(widget)) {
                unexpected(*question, question->labelText());
                question->reject();
            }
        }
    }

    void unexpected(QWidget& box, const QString& text)
    {
        save(kFailedMessage, withTitleBar(box, box.grab()));
        std::fprintf(stderr, "screenshots: a message stood, closed: [%s] %s\n", qPrintable(box.windowTitle()),
                     qPrintable(text));
        fail("the tour met a message it did not expect");
    }

    KerbanoGui& gui_;
    QDir out_;
    QTimer watch_;
    QString closingMessage_;
    bool failed_ = false;
};

bool writeSettings(const QDir& work, const QString& address)
{
    ParamFormValues params;
    params.comtxt = address;
    params.filetxt = QStringLiteral("print");
    // An empty location is written as \kerbano\; the files come to the work folder.
    params.location = QStringLiteral("./");
    params.multi_print = true;
    params.descreption = true;
    params.comments = true;
    params.currency = 1;
    return writeParamFile(work.filePath(QStringLiteral("param.ini")), params, QDate::currentDate());
}
} // namespace

int main(int argc, char** argv)
{
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("kerbano"));
    QApplication::setQuitOnLastWindowClosed(false);
    const QStringList args = QApplication::arguments();
    if (args.size() != 5) {
        std::fputs("usage: kerbano-screenshots HOST:PORT RECEIPT_FILE WORK_DIR OUT_DIR\n", stderr);
        return 1;
    }
    const QString receipt = args.at(2);
    const QDir work(args.at(3));
    QDir out(args.at(4));
    if (!out.mkpath(QStringLiteral(".")) || !writeSettings(work, args.at(1))) {
        std::fputs("screenshots: cannot write into the work or the output folder\n", stderr);
        return 1;
    }

    const Deadline deadline(kRunLimit);
    EngineThread::Setup setup;
    setup.driver = DriverOptions{work.path(), work.path(), QString(), true};
    KerbanoGui gui(setup);
    Tour tour(gui, out);
    gui.start();
    const bool ok = (tour.caption(kCaptionReady, kRegisterFoundMs) || tour.fail("the register was not found"))
        && tour.mainMenu() && tour.trayMenu() && tour.settingsWindow() && tour.cardAndServerWindows() && tour.openLogWindow()
        && tour.paperEnd(receipt, work) && tour.logWindow() && tour.mainWindow();
    const bool ended = tour.end();
    return ok && ended ? 0 : kTourExitCode;
}
