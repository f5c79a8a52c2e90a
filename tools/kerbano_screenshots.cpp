// The pictures of docs/screenshots: the window life on a running virtual
// register, driven the way the person would drive it, each window saved as
// <objectName>.png. scripts/screenshots starts the register (with a paper end
// on the first sale) and runs this under Xvfb:
//   kerbano-screenshots HOST:PORT RECEIPT_FILE WORK_DIR OUT_DIR
// Exits 0 once every picture is saved, 1 on bad arguments, 2 when a window
// never came.
#include "config/ParamFileWriter.h"
#include "ui/DebugWindow.h"
#include "ui/FormMenus.h"
#include "ui/GuiOperator.h"
#include "ui/KerbanoGui.h"
#include "ui/MainWindow.h"
#include "ui/ParamWindow.h"
#include "ui/WaitWindow.h"

#include <QApplication>
#include <QDate>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QMenu>
#include <QMenuBar>
#include <QPainter>
#include <QPushButton>
#include <cstdio>
#include <functional>

namespace {
constexpr int kRegisterFoundMs = 30000;
constexpr int kWindowMs = 10000;
constexpr int kJobMs = 60000;
constexpr int kEndMs = 30000;
constexpr int kSettleMs = 400;
constexpr int kPumpMs = 20;
constexpr int kTitleHeight = 26;
constexpr int kPngSmallest = 0; // PNG quality 0: the strongest compression, still lossless

const QString kCaptionReady = QStringLiteral("Kerbano- Έτοιμο");
const QString kCaptionWaiting = QStringLiteral("Kerbano- Αναμονη");

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

class Tour {
public:
    Tour(KerbanoGui& gui, QDir out)
        : gui_(gui)
        , out_(std::move(out))
    {
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
        return false;
    }

    MainWindow& form() { return gui_.window(); }

    bool caption(const QString& text, int timeoutMs)
    {
        return waitUntil([&] { return form().shownState().caption == text; }, timeoutMs);
    }

    // The reports menu dropped from the menu bar, over the form.
    bool mainMenu()
    {
        QAction* reports = form().menus().action(QStringLiteral("reports"));
        if (!reports || !reports->menu())
            return fail("no reports menu");
        form().menuBar()->setActiveAction(reports);
        QMenu& menu = *reports->menu();
        if (!waitUntil([&] { return menu.isVisible(); }, kWindowMs))
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
        if (!waitUntil([&] { return menu.isVisible(); }, kWindowMs))
            return fail("the tray menu did not open");
        settle();
        const bool saved = save(menu.objectName(), menu.grab());
        menu.hide();
        return saved;
    }

    bool settingsWindow()
    {
        emit form().actionRequested(QStringLiteral("param"));
        if (!waitUntil([&] { return gui_.paramWindow() && gui_.paramWindow()->isVisible(); }, kWindowMs))
            return fail("frmparam did not open");
        settle();
        ParamWindow& param = *gui_.paramWindow();
        const bool saved = save(param.objectName(), withTitleBar(param, param.grab()));
        param.reject();
        return saved && waitUntil([&] { return !gui_.paramWindow(); }, kWindowMs);
    }

    bool openLogWindow()
    {
        emit form().actionRequested(QStringLiteral("wndDebug"));
        return waitUntil([&] { return gui_.debugWindow()->isVisible(); }, kWindowMs)
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
        if (!waitUntil([&] { return person.waitWindow() && person.waitWindow()->isVisible(); }, kJobMs))
            return fail("frmErr did not come up");
        settle();
        WaitWindow& wait = *person.waitWindow();
        if (!save(wait.objectName(), withTitleBar(wait, wait.grab())))
            return false;
        const QString printFile = work.filePath(QStringLiteral("print.1"));
        if (!waitUntil([&] { return !QFile::exists(printFile) && form().shownState().caption == kCaptionWaiting; },
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
    KerbanoGui& gui_;
    QDir out_;
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

    EngineThread::Setup setup;
    setup.driver = DriverOptions{work.path(), work.path(), QString(), true};
    KerbanoGui gui(setup);
    Tour tour(gui, out);
    gui.start();
    const bool ok = (tour.caption(kCaptionReady, kRegisterFoundMs) || tour.fail("the register was not found"))
        && tour.mainMenu() && tour.trayMenu() && tour.settingsWindow() && tour.openLogWindow()
        && tour.paperEnd(receipt, work) && tour.logWindow() && tour.mainWindow();
    const bool ended = tour.end();
    return ok && ended ? 0 : 2;
}
