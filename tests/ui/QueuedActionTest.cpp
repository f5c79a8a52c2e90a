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

    // end ends, through the engine.
    EXPECT_TRUE(life.endsThroughTheMenu());
}
