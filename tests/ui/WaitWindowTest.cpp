// frmErr in the window: the session's paper-end wait shown through the GUI
// Operator, the person closing it mid-poll, and questions from the engine's
// thread answered on the GUI thread while it keeps running.
#include "../link/FakeTransport.h"
#include "PrintQString.h"
#include "WindowTestSupport.h"
#include "link/DevicePort.h"
#include "link/DeviceSession.h"
#include "shell/CommunicationLog.h"
#include "shell/FormModel.h"
#include "shell/ModuleVariables.h"
#include "shell/ResultSink.h"
#include "ui/WaitWindow.h"

#include <QScreen>
#include <QTemporaryDir>
#include <QThread>
#include <gtest/gtest.h>
#include <map>

using namespace Qt::Literals::StringLiterals;

namespace {

struct NoResults final : ResultSink {
    void appendResultLine(const QString&) override {}
};

// The GUI Operator as the session uses it, with the window's labels taken
// down after every call, and the person's hand scripted.
class WatchedOperator final : public Operator {
public:
    explicit WatchedOperator(GuiOperator& gui) : gui_(gui) {}

    // "shown|title|state line|description", or "hidden|..." once it went.
    QStringList seen;
    int closeAfterUpdates = -1; // the person closes frmErr after this many updates

    Answer message(const QString& t, const QString& x, Icon i, Buttons b) override { return gui_.message(t, x, i, b); }
    void openWaitWindow(const QString& caption, const QString& stateLine, const QString& description) override
    {
        gui_.openWaitWindow(caption, stateLine, description);
        look();
    }
    void updateWaitWindow(const QString& stateLine, const QString& description) override
    {
        gui_.updateWaitWindow(stateLine, description);
        look();
        if (--closeAfterUpdates == 0)
            gui_.waitWindow()->reject(); // the close box
    }
    bool waitWindowClosedByOperator() override { return gui_.waitWindowClosedByOperator(); }
    void closeWaitWindow() override
    {
        gui_.closeWaitWindow();
        look();
    }
    std::optional<QString> input(const QString& t, const QString& p, const QString& i) override { return gui_.input(t, p, i); }
    std::optional<int> choose(const QString& t, const QString& p, const QStringList& e) override { return gui_.choose(t, p, e); }

private:
    void look()
    {
        const WaitWindow* w = gui_.waitWindow();
        seen << QStringList{w->isVisible() ? u"shown"_s : u"hidden"_s, w->windowTitle(), w->stateLine(),
                            w->description()}.join(u'|');
    }
    GuiOperator& gui_;
};

class WaitWindowTest : public ::testing::Test {
protected:
    WaitWindowTest()
    {
        factory.script = [this](FakeTransport& t) {
            t.onWrite = [this, &t](const QByteArray& w) {
                const QString command = QString::fromLatin1(w);
                sent << command;
                auto& q = replies[command];
                const QString answer = q.empty() ? u"00/00/00/"_s : q.front();
                if (q.size() > 1)
                    q.pop_front();
                t.deliver(answer.toLatin1() + "\x03", 5);
            };
        };
        link.OpenDeviceLink(u"127.0.0.1:9101"_s, status, reply, false);
        vars.DeviceLabel = u"TEC 12345"_s; // as identification would name it
        sent.clear();
    }
    void send(const QString& command) { link.SendCommand(command, status, reply, false, timeout, 0); }

    VirtualClock clock;
    ModuleVariables vars;
    QTemporaryDir dir;
    CommunicationLog log{dir.path(), vars};
    GuiOperator gui;
    WatchedOperator person{gui};
    FormModel form;
    FakeFactory factory{clock};
    NoResults results;
    DevicePort port{vars, clock, person, factory, log};
    DeviceSession link{port, vars, clock, person, form, results, log};
    std::map<QString, std::deque<QString>> replies;
    QStringList sent;
    qint16 status = 99;
    qint16 timeout = 0;
    QString reply;
};

const QString kSale = u"3/S/A//1.000/1.00/1/24.00/"_s;

} // namespace

TEST_F(WaitWindowTest, PaperEndShowsItsLabelsFollowsThePollsAndGoesWhenTheRegisterClears)
{
    replies[kSale] = {"2C/00/00/", "00/00/00/"};
    replies["?/"] = {"36/00/00/", "00/00/00/"};
    send(kSale);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(sent, QStringList({kSale, "?/", "?/", kSale}));
    EXPECT_EQ(person.seen, (QStringList{"shown|Μήνυμα Ταμειακής (TEC 12345)|Status [44]|Τέλος Χαρτοταινίας  'PAPEREND' !",
                                        "shown|Μήνυμα Ταμειακής (TEC 12345)|Status [54]| Επέμβαση χειριστή σε εξέλιξη!",
                                        "hidden|Μήνυμα Ταμειακής (TEC 12345)|Status [54]| Επέμβαση χειριστή σε εξέλιξη!"}));
    EXPECT_FALSE(gui.waitWindowClosedByOperator());
    EXPECT_EQ(gui.waitWindow()->pos(), QApplication::primaryScreen()->availableGeometry().topLeft());
}

TEST_F(WaitWindowTest, ClosingTheWindowMidPollCountsAsClearedAndTheCommandGoesOutAgain)
{
    replies[kSale] = {"2C/00/00/", "00/00/00/"};
    replies["?/"] = {"2C/00/00/"}; // the paper never comes
    person.closeAfterUpdates = 1;
    send(kSale);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(sent, QStringList({kSale, "?/", kSale}));
    EXPECT_FALSE(gui.waitWindow()->isVisible());
    EXPECT_FALSE(link.WaitFormOpen());

    // The next wait starts afresh: the last close does not count for it.
    person.seen.clear();
    person.closeAfterUpdates = -1;
    replies[kSale] = {"2C/00/00/", "00/00/00/"};
    replies["?/"] = {"00/00/00/"};
    sent.clear();
    send(kSale);
    EXPECT_EQ(sent, QStringList({kSale, "?/", kSale}));
    ASSERT_EQ(person.seen.size(), 2);
    EXPECT_TRUE(person.seen[0].startsWith(u"shown|"_s));
}

TEST(GuiOperatorThreads, TheEngineThreadsQuestionIsAnsweredOnTheGuiThreadWhichKeepsRunning)
{
    GuiOperator gui;
    int guiTicks = 0;
    QTimer ticker;
    QObject::connect(&ticker, &QTimer::timeout, [&] { ++guiTicks; });
    ticker.start(5);
    // The person answers the box once the GUI has gone on for a while.
    QTimer answer;
    QObject::connect(&answer, &QTimer::timeout, [&] {
        auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        if (box && guiTicks >= 5)
            box->button(QMessageBox::No)->click();
    });
    answer.start(10);

    Operator::Answer got = Operator::Answer::Ok;
    Qt::HANDLE askedFrom = nullptr;
    ASSERT_TRUE(runOnEngine(gui, [&] {
        askedFrom = QThread::currentThreadId();
        got = gui.message(u"TEC 12345"_s, u"Λάθος : 7"_s, Operator::Icon::Critical, Operator::Buttons::YesNo);
    }));
    EXPECT_EQ(got, Operator::Answer::No);
    EXPECT_NE(askedFrom, QThread::currentThreadId());
    EXPECT_GE(guiTicks, 5);

    // At the end a question is answered at once, and a wait counts as closed.
    gui.release();
    ASSERT_TRUE(runOnEngine(gui, [&] {
        got = gui.message(u"TEC 12345"_s, u"x"_s, Operator::Icon::Critical, Operator::Buttons::YesNo);
    }));
    EXPECT_EQ(got, Operator::Answer::Cancel);
    EXPECT_TRUE(gui.waitWindowClosedByOperator());
}
