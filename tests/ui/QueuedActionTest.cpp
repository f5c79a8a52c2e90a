// The window's clicks reach the engine's thread as names, and one chosen
// while another action runs waits behind it, never inside it.
#include "PrintQString.h"
#include "WindowTestSupport.h"
#include "config/ParamFileWriter.h"
#include "ui/AboutBox.h"
#include "ui/KerbanoGui.h"
#include "ui/MainWindow.h"

#include <QApplication>
#include <QDate>
#include <QMessageBox>
#include <QTimer>
#include <QTemporaryDir>
#include <QThread>
#include <atomic>
#include <gtest/gtest.h>

using namespace Qt::Literals::StringLiterals;


TEST(QueuedActions, AnEntryChosenWhileAnotherRunsWaitsBehindItOnTheEngineThread)
{
    QTemporaryDir dir;
    ParamFormValues params;
    params.comtxt = u"127.0.0.1:1"_s; // nobody listens: the link fails at once
    params.filetxt = u"print"_s;
    ASSERT_TRUE(writeParamFile(dir.filePath(u"param.ini"_s), params, QDate(2026, 1, 2)));

    EngineThread::Setup setup;
    setup.driver = DriverOptions{dir.path(), dir.path(), QString(), true};
    KerbanoGui gui(setup);
    // The person answers the link's message box with OK.
    QStringList boxes;
    QTimer person;
    QObject::connect(&person, &QTimer::timeout, [&] {
        if (auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget())) {
            boxes << box->text();
            box->accept();
        }
    });
    person.start(20);
    gui.start();
    ASSERT_TRUE(waitFor([&] { return gui.window().shownState().comstattxt.startsWith("Λάθος : "); }));
    EXPECT_EQ(boxes.size(), 1);

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

    // end ends, through the engine.
    int code = -1;
    QObject::connect(&gui, &KerbanoGui::ended, [&](int c) { code = c; });
    emit gui.window().actionRequested(u"end"_s);
    ASSERT_TRUE(waitFor([&] { return code == 0; }));
    gui.stop();
}
