#pragma once

// The person at the screen for the widget tests: waiting on the GUI loop,
// finding a window's controls, taking down what a window shows, steps that
// run inside a window's own loop, and an engine thread that always ends.
#include "config/ParamFileWriter.h"
#include "ui/GuiOperator.h"
#include "ui/KerbanoGui.h"
#include "ui/MainWindow.h"

#include <QAbstractButton>
#include <QApplication>
#include <QComboBox>
#include <QDate>
#include <QDir>
#include <QElapsedTimer>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QTimer>
#include <atomic>
#include <deque>
#include <functional>
#include <thread>

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

// Every label, button, entry, frame title and list of a window, one a line
// in the order they were made: "name: text", a list's rows and "@" its row, "[x]"
// when checked, "[off]" when disabled.
inline QStringList shown(const QWidget* window)
{
    QStringList out;
    for (const QWidget* w : window->findChildren<QWidget*>()) {
        QString text;
        if (w->objectName().startsWith(QLatin1String("qt_")))
            continue;
        if (const auto* b = qobject_cast<const QAbstractButton*>(w))
            text = b->text() + (b->isChecked() ? QStringLiteral(" [x]") : QString());
        else if (const auto* l = qobject_cast<const QLabel*>(w))
            text = l->text();
        else if (const auto* e = qobject_cast<const QLineEdit*>(w))
            text = e->text();
        else if (const auto* g = qobject_cast<const QGroupBox*>(w))
            text = g->title();
        else if (const auto* c = qobject_cast<const QComboBox*>(w)) {
            for (int i = 0; i < c->count(); ++i)
                text += (i ? QStringLiteral("|") : QString()) + c->itemText(i);
            text += QStringLiteral(" @%1").arg(c->currentIndex());
        }
        else
            continue;
        out << w->objectName() + QStringLiteral(": ") + text + (w->isEnabled() ? QString() : QStringLiteral(" [off]"));
    }
    return out;
}

// Runs work as the engine does, on a thread of its own, while the GUI loop
// turns; true when it ended in time. Whatever the test did, the thread ends:
// a window still up then is given up as the program ends.
inline bool runOnEngine(GuiOperator& person, const std::function<void()>& work, int ms = 10000)
{
    std::atomic<bool> done{false};
    std::thread engine([&] {
        work();
        done = true;
    });
    const bool inTime = waitFor([&] { return done.load(); }, ms);
    if (!inTime)
        person.release();
    waitFor([&] { return done.load(); });
    engine.join();
    return inTime;
}

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

// The window life on a register nobody answers (param.ini names a port where
// nobody listens, so the link fails at once), and a person who answers every
// message box with OK and notes its text.
class DeadLinkWindowLife {
public:
    explicit DeadLinkWindowLife(const QString& dir)
        : written_(writeParams(dir))
        , gui_(setupFor(dir))
    {
        QObject::connect(&person_, &QTimer::timeout, [this] {
            if (auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget())) {
                boxes << box->text();
                box->accept();
            }
        });
        person_.start(10);
        gui_.start();
    }
    DeadLinkWindowLife(const DeadLinkWindowLife&) = delete;
    DeadLinkWindowLife& operator=(const DeadLinkWindowLife&) = delete;

    KerbanoGui& gui() { return gui_; }
    // param.ini was written and the form shows the failed link.
    bool failed()
    {
        return written_ && waitFor([this] { return gui_.window().shownState().comstattxt.startsWith("Λάθος : "); });
    }
    // The menu entry end ends the program with 0.
    bool endsThroughTheMenu()
    {
        int code = -1;
        QObject::connect(&gui_, &KerbanoGui::ended, [&code](int c) { code = c; });
        emit gui_.window().actionRequested(QStringLiteral("end"));
        const bool ended = waitFor([&code] { return code == 0; });
        gui_.stop();
        return ended;
    }

    QStringList boxes;

private:
    static bool writeParams(const QString& dir)
    {
        ParamFormValues params;
        params.comtxt = QStringLiteral("127.0.0.1:1");
        params.filetxt = QStringLiteral("print");
        return writeParamFile(QDir(dir).filePath(QStringLiteral("param.ini")), params, QDate(2026, 1, 2));
    }
    static EngineThread::Setup setupFor(const QString& dir)
    {
        EngineThread::Setup setup;
        setup.driver = DriverOptions{dir, dir, QString(), true};
        return setup;
    }

    bool written_;
    KerbanoGui gui_;
    QTimer person_;
};
