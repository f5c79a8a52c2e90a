#include "SessionWorld.h"
#include "ScriptedOperator.h"

#include "link/DevicePort.h"
#include "link/DeviceSession.h"
#include "link/WaitForRegister.h"
#include "shell/CommunicationLog.h"
#include "shell/FormModel.h"
#include "shell/ModuleVariables.h"
#include "shell/ResultSink.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTimer>
#include <deque>
#include <gtest/gtest.h>
#include <optional>

namespace {

// A register behind the link: each command is answered from its own queue of
// replies (the last one repeats); commands without a queue get "00/00/00/".
class DeviceSessionTest : public ::testing::Test, protected SessionWorld {
protected:
    DeviceSessionTest()
    {
        vars.DebugEnabled = true;
        vars.baud = "9600";
        factory.script = [this](FakeTransport& t) {
            t.onWrite = [this, &t](const QByteArray& w) {
                if (w == "\x05") { // serial ENQ
                    t.deliver("\x06", 5);
                    return;
                }
                const QString command = QString::fromLatin1(w.startsWith('\x02') ? w.mid(1, w.size() - 4) : w);
                sent << command;
                auto& q = replies[command];
                const QString answer = q.empty() ? "00/00/00/" : q.front();
                if (q.size() > 1)
                    q.pop_front();
                t.deliver(answer.toLatin1() + "\x03", 5);
            };
        };
    }
    void open(const QString& port = "127.0.0.1:9101")
    {
        link.OpenDeviceLink(port, status, reply, false);
        ASSERT_EQ(status, 0);
        sent.clear();
    }
    void send(const QString& command, bool quiet = false, int logMode = 0)
    {
        link.SendCommand(command, status, reply, quiet, timeout, logMode);
    }
    QByteArray fileBytes(const QString& path) const
    {
        QFile f(path);
        return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
    }

    std::map<QString, std::deque<QString>> replies;
    QStringList sent;
    qint16 status = 99;
    qint16 timeout = 0;
    QString reply;
};

TEST_F(DeviceSessionTest, PaperEndWaitsInTheWindowThenSendsTheSameCommandAgain)
{
    open();
    replies["3/S/A//1.000/1.00/1/24.00/"] = {"2C/00/00/", "00/00/00/"};
    replies["?/"] = {"2C/00/00/", "00/00/00/"};
    send("3/S/A//1.000/1.00/1/24.00/");
    EXPECT_EQ(status, 0);
    EXPECT_EQ(sent, QStringList({"3/S/A//1.000/1.00/1/24.00/", "?/", "?/", "3/S/A//1.000/1.00/1/24.00/"}));
    ASSERT_GE(op.waitEvents.size(), 3);
    EXPECT_EQ(op.waitEvents[0].caption, "Μήνυμα Ταμειακής (" + vars.DeviceLabel + ")");
    EXPECT_EQ(op.waitEvents[0].stateLine, "Status [44]");
    EXPECT_EQ(op.waitEvents[0].description, "Τέλος Χαρτοταινίας  'PAPEREND' !");
    EXPECT_EQ(op.waitEvents.back().kind, ScriptedOperator::WaitEvent::Close);
    EXPECT_FALSE(link.WaitFormOpen());
    EXPECT_TRUE(results.lines.isEmpty());

    // A quiet command returns at once with nothing shown or resent.
    op.waitEvents.clear();
    sent.clear();
    replies["x/7///"] = {"2C/00/00/"};
    send("x/7///", true, 1);
    EXPECT_EQ(status, 44);
    EXPECT_EQ(sent, QStringList({"x/7///"}));
    EXPECT_TRUE(op.waitEvents.isEmpty());
    EXPECT_TRUE(op.messages.isEmpty());
}

TEST_F(DeviceSessionTest, EachRetryStatusIsResentOnceTheRegisterClearsAndNoOtherWaitStatusIs)
{
    open();
    const struct {
        const char* answer;
        qint16 status;
        bool resent;
    } cases[] = {
        {"1A/00/00/", 26, true},  {"2C/00/00/", 44, true},  {"36/00/00/", 54, true},
        {"AA/00/00/", 170, true}, {"00/00/04/", 251, true}, {"4F/00/00/", 79, false},
        {"5D/00/00/", 93, false}, {"C1/00/00/", 193, false}, {"C8/00/00/", 200, false},
        {"CF/00/00/", 207, false}, {"00/01/00/", 252, false},
    };
    for (const auto& c : cases) {
        sent.clear();
        replies["7/1/1/A/"] = {c.answer, "00/00/00/"};
        replies["?/"] = {"00/00/00/"};
        send("7/1/1/A/");
        const QStringList expected = c.resent ? QStringList({"7/1/1/A/", "?/", "7/1/1/A/"})
                                              : QStringList({"7/1/1/A/", "?/"});
        EXPECT_EQ(sent, expected) << c.answer;
        EXPECT_EQ(status, c.resent ? 0 : c.status) << c.answer;
        EXPECT_EQ(op.waitEvents.first().stateLine.contains(QString::number(c.status)), true) << c.answer;
        op.waitEvents.clear();
    }
    EXPECT_TRUE(op.messages.isEmpty());
}

TEST_F(DeviceSessionTest, BusyStatusBitWaitsButIsNotResent)
{
    open();
    replies["5/1/2.00////"] = {"00/01/00/"};
    send("5/1/2.00////");
    EXPECT_EQ(status, 252);
    EXPECT_EQ(sent, QStringList({"5/1/2.00////", "?/"}));
    ASSERT_EQ(results.lines.size(), 1);
    EXPECT_TRUE(results.lines[0].startsWith("Err = 252, [5/1/2.00////] DateTime = 02/01/2026 10:20:"));
}

TEST_F(DeviceSessionTest, RefusalShowsFortyCharactersUnderTheDeviceLabelAndLogsTheResult)
{
    open();
    replies["q/"] = {"06/00/00/"};
    send("q/");
    EXPECT_EQ(status, 6);
    ASSERT_EQ(op.messages.size(), 1);
    EXPECT_EQ(op.messages[0].title, vars.DeviceLabel);
    EXPECT_EQ(op.messages[0].text, "Λάθος : 6\r" + QString("Λάθος Εντολή !").leftJustified(40));
    EXPECT_EQ(op.messages[0].icon, Operator::Icon::Critical);
    EXPECT_EQ(results.lines.size(), 1);

    link.ShowDeviceMessage(-4, "Ο Φορολ. Εκτυπωτής δεν Απαντά σε εντολή !");
    EXPECT_EQ(op.messages[1].text, "Λάθος : -4\rΟ Φορολ. Εκτυπωτής δεν Απαντά σε εντολή ");

    const qsizetype before = results.lines.size();
    send("q/", false, 1);
    send("q/", false, 2);
    EXPECT_EQ(results.lines.size(), before);
}

TEST_F(DeviceSessionTest, OperatorClosingTheWindowCountsAsCleared)
{
    open();
    replies["3/S/X"] = {"1A/00/00/", "00/00/00/"};
    op.closeWaitWindowAfterChecks = 0;
    send("3/S/X");
    EXPECT_EQ(status, 0);
    EXPECT_EQ(sent, QStringList({"3/S/X", "3/S/X"}));
}

TEST_F(DeviceSessionTest, PollLabelsFollowThePollAndOperatorBusyPausesTenSeconds)
{
    open();
    replies["5/3/9.00///1/1/"] = {"C1/00/00/"};
    replies["?/"] = {"CF/00/00/", "00/00/04/", "00/00/00/"};
    send("5/3/9.00///1/1/", false, 2);
    EXPECT_EQ(op.waitEvents[0].stateLine, "Αναμονή EFTPOS[193]");
    EXPECT_EQ(op.waitEvents[1].stateLine, "Αναμονή EFTPOS[207]");
    EXPECT_EQ(op.waitEvents.size(), 3); // open, one update, close: 251 touched nothing
    EXPECT_GE(clock.monotonicMs(), 3 * 2000 + 10000);
    EXPECT_TRUE(fileBytes(log.filePath()).contains(" open Receipt, wait 10s\r\n"));
}

TEST_F(DeviceSessionTest, SerialErrLineCarriesTheFrameAndTimeoutZeroBecomesThree)
{
    open("com1");
    EXPECT_FALSE(link.tcpPort());
    replies["q/"] = {"06/00/00/"};
    send("q/", true);
    EXPECT_EQ(timeout, 3);
    ASSERT_EQ(results.lines.size(), 1);
    EXPECT_TRUE(results.lines[0].startsWith("Err = 6, [\x02q/60\x03] DateTime = "));
}

TEST_F(DeviceSessionTest, OpenFailuresGiveStatusAndText)
{
    const struct {
        qint16 status;
        const char* port;
        const char* text;
    } cases[] = {{-1, "com1", "Πρόβλημα στην Θύρα :com1"},
                 {-2, "COM2", "Πρόβλημα στο Set-Up τής Θύρας :COM2"},
                 {-6, "10.0.0.9:9101", "Λάθος κατά την σύνδεση με την ταμειακή "}};
    EXPECT_TRUE(op.messages.isEmpty());
    for (const auto& c : cases) {
        factory.nextStatus = c.status;
        link.OpenDeviceLink(c.port, status, reply, false);
        EXPECT_EQ(status, c.status);
        EXPECT_EQ(reply, c.text);
        EXPECT_FALSE(link.isConnected());
    }
    // No register known yet: the TCP failure too carries the program's own title.
    ASSERT_EQ(op.messages.size(), 3);
    for (const auto& shown : op.messages)
        EXPECT_EQ(shown.title, "Μύνημα Kerbano");
    // A port without its number is refused before any opening, silently.
    const int shown = op.messages.size();
    link.OpenDeviceLink("10.0.0.9", status, reply, false);
    EXPECT_EQ(status, DeviceSession::kStatusBadPortSetting);
    EXPECT_FALSE(reply.isEmpty());
    EXPECT_EQ(op.messages.size(), shown);
    EXPECT_FALSE(link.isConnected());
}

TEST_F(DeviceSessionTest, IdentificationNamesTheModelAndProbesTheEdition)
{
    replies["a/"] = {"00/00/00/123/x/DNT/"};
    replies["\"/0/290/1/Kerbano V11.12//"] = {"06/00/00/"};
    open();
    EXPECT_EQ(form.label2(), "Delta [DNT123]");
    EXPECT_EQ(vars.DeviceLabel, "Delta [DNT123]");
    EXPECT_TRUE(vars.spRet);

    link.CloseDeviceLink();
    replies.erase("\"/0/290/1/Kerbano V11.12//");
    link.OpenDeviceLink("127.0.0.1:9101", status, reply, false);
    EXPECT_EQ(form.label2(), "Delta Rest [DNT123]");
    EXPECT_FALSE(vars.spRet);
    EXPECT_EQ(sent, QStringList({"a/", "\"/0/290/1/Kerbano V11.12//", "&/0/290//////////////", "5/1/0.00////"}));
}

TEST_F(DeviceSessionTest, ModelsWithoutEditionsSendNoProbeAndAFailedIdentificationCloses)
{
    const struct {
        const char* answer;
        qint16 status;
        const char* label;
    } cases[] = {{"06/00/00/", 6, "..."}, // the label is left as it was
                 {"00/00/00/77/x/CCQ/", 0, "Mirka [CCQ77]"},
                 {"00/00/00/77/x/ccq/", 0, "Ταμειακή [ccq77]"},
                 // A later failure leaves the former register's name standing.
                 {"06/00/00/", 6, "Ταμειακή [ccq77]"}};
    for (const auto& c : cases) {
        sent.clear();
        replies["a/"] = {c.answer};
        link.OpenDeviceLink("127.0.0.1:9101", status, reply, false);
        EXPECT_EQ(status, c.status);
        EXPECT_EQ(form.label2(), c.label);
        EXPECT_EQ(vars.DeviceLabel, c.label);
        EXPECT_EQ(sent, QStringList({"a/"}));
        EXPECT_EQ(link.isConnected(), c.status == 0);
        link.CloseDeviceLink();
    }
}

TEST_F(DeviceSessionTest, WaitForRegisterReleasesAReceiptThatAnswers70)
{
    open();
    replies["5/1/0.00////"] = {"1A/00/00/", "46/00/00/"};
    EXPECT_EQ(WaitForRegister(link, op, clock), 0);
    EXPECT_EQ(sent, QStringList({"5/1/0.00////", "5/1/0.00////", ")/15/", ")/71/", ")/15/", ")/15/"}));
    EXPECT_EQ(op.waitEvents.first().caption, "Μήνυμα Ταμειακής (Αναμονή ολοκλήρωσης ταμειακής)");
    EXPECT_EQ(op.waitEvents.last().kind, ScriptedOperator::WaitEvent::Close);
}

TEST_F(DeviceSessionTest, VersionInfoOpensAsksAndClosesAgain)
{
    vars.port = "127.0.0.1:9101";
    replies["v/"] = {"00/00/00/POS 2.1/P 7/"};
    link.Ver();
    EXPECT_FALSE(link.isConnected());
    EXPECT_EQ(op.messages.back().text, "Version POS                : POS 2.1\rVersion Πρωτοκόλλου : P 7");
}

TEST_F(DeviceSessionTest, WhatReachesTheSessionWhileTheWaitWindowPollsIsRefused)
{
    open();
    replies["3/S/X"] = {"2C/00/00/", "00/00/00/"};
    replies["?/"] = {"00/00/00/"};
    EXPECT_FALSE(link.inConversation());
    // A menu action queued to the event loop, which the wait window runs.
    bool insideConversation = false;
    std::optional<DeviceReply> intruder;
    QTimer::singleShot(0, [&] {
        insideConversation = link.inConversation();
        intruder = link.send("x/1/1/99999/");
        link.CloseDeviceLink();
        qint16 openStatus = 0;
        QString openReply;
        link.OpenDeviceLink("127.0.0.1:9101", openStatus, openReply, false);
        EXPECT_EQ(openStatus, DeviceSession::kStatusInConversation);
    });
    send("3/S/X");
    EXPECT_EQ(status, 0);
    EXPECT_TRUE(insideConversation);
    ASSERT_TRUE(intruder.has_value());
    EXPECT_EQ(intruder->status(), DeviceSession::kStatusInConversation);
    EXPECT_EQ(intruder->outcome(), ReplyOutcome::Busy);
    EXPECT_EQ(sent, QStringList({"3/S/X", "?/", "3/S/X"}));
    EXPECT_TRUE(link.isConnected());
    EXPECT_EQ(factory.tcpConnects, 1);
    EXPECT_TRUE(results.lines.isEmpty());
    EXPECT_TRUE(op.messages.isEmpty());

    // Once the conversation has ended the same command goes through.
    EXPECT_FALSE(link.inConversation());
    EXPECT_TRUE(link.send("x/1/1/99999/").ok());
    EXPECT_EQ(sent.last(), "x/1/1/99999/");
}

TEST_F(DeviceSessionTest, ALinkNeverOpenedIsLostAndASilentRegisterGivesNoReply)
{
    // A serial port object before any opening: nothing answers the ENQ.
    const DeviceReply unopened = link.send("?/", {.quiet = true});
    EXPECT_EQ(unopened.status(), -207);
    EXPECT_EQ(unopened.outcome(), ReplyOutcome::LinkLost);

    open();
    factory.made.last()->onWrite = {};
    const DeviceReply silent = link.send("?/", {.quiet = true});
    EXPECT_EQ(silent.status(), -4);
    EXPECT_EQ(silent.outcome(), ReplyOutcome::NoReply);
}

} // namespace
