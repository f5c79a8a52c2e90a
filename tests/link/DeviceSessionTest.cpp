// The device session: retries, the wait window's polling and its end, the
// operator's messages, identification, one conversation at a time, and a card
// command that must never reach the register twice while its terminal may
// still be working.
#include "SessionWorld.h"

#include "PrintQString.h"
#include "link/WaitForRegister.h"

#include <QRegularExpression>
#include <QTimer>
#include <optional>

namespace {

const QString kPlu = QStringLiteral("3/S/A//1.000/1.00/1/24.00/");
const SendOptions kCardOptions{.timeoutSeconds = 301, .logMode = SendOptions::kLogModeCard,
                               .sendOnce = true};

class DeviceSessionTest : public QueuedRegisterTest {
protected:
    DeviceSessionTest()
    {
        vars.DebugEnabled = true;
        vars.baud = "9600";
    }
};

// The sessions of link/session-scripts.txt: the heads of its sections.
const QString kScripts = QStringLiteral("link/session-scripts.txt");
std::vector<QString> scriptedSessions()
{
    std::vector<QString> names;
    for (const QString& line : DataLines(kScripts))
        if (line.startsWith(u"== "))
            names.push_back(line.mid(3));
    return names;
}

class ScriptedSession : public DeviceSessionTest, public ::testing::WithParamInterface<QString> {};

// Each script line sets the register up or talks to it; the course lines
// after it are what the session must leave. Every send ends with the wait
// window closed.
TEST_P(ScriptedSession, LeavesTheCourseItsSectionHolds)
{
    const QStringList courseHeads = {"status", ">", "window", "message", "result"};
    QStringList expected;
    std::map<std::pair<QString, int>, QString> events; // what happens as a command is heard the n-th time
    onCommand = [&](const QString& command, qsizetype n) {
        const QString event = events[{command, int(n)}];
        if (event == u"stop")
            vars.Stop = StopCause::Signal;
        if (event == u"eft-done")
            vars.EftBusy = false;
    };
    for (const QString& line : golden(kScripts, GetParam())) {
        QStringList word = line.split(u' ');
        const QString verb = word.takeFirst();
        if (courseHeads.contains(verb))
            expected << line;
        else if (verb == u"open")
            open(word[0]);
        else if (verb == u"reply") { // the command may hold blanks, the answers never
            std::deque<QString>& answers = replies[line.section(QStringLiteral(" = "), 0, 0).mid(6)];
            answers.clear();
            for (const QString& answer : word.mid(word.indexOf(QStringLiteral("=")) + 1))
                answers.insert(answers.end(), qMax(1, answer.section(u'*', 1).toInt()), answer.section(u'*', 0, 0));
        } else if (verb == u"answer-after")
            answerAfterMs[word[0]] = word[1].toLongLong();
        else if (line == u"silent")
            factory.made.last()->onWrite = {};
        else if (line == u"post stop")
            QTimer::singleShot(0, [this] { vars.Stop = StopCause::Signal; });
        else if (line == u"set no-stop")
            vars.Stop = StopCause::None;
        else if (verb == u"connect") {
            link.OpenDeviceLink(word[0], status, reply, false);
            statuses << QString::number(status);
            EXPECT_EQ(link.isConnected(), status == 0);
        } else if (line == u"close")
            link.CloseDeviceLink();
        else if (line.startsWith(u"set open-status "))
            factory.nextStatus = qint16(word[1].toInt());
        else if (line.startsWith(u"set full-edition "))
            vars.spRet = word[1] == u"yes";
        else if (line == u"set eft-busy")
            vars.EftBusy = true;
        else if (verb == u"set" && word[0] == u"enq-after")
            enqAnswerMs = word[1].toLongLong();
        else if (verb == u"set" && word[0] == u"window-closed-after")
            op.closeWaitWindowAfterChecks = word[1].toInt();
        else if (verb == u"send")
            send(word[0], word.contains(u"quiet"), word.contains(u"log") ? word.constLast().toInt() : 0);
        else if (verb == u"card")
            statuses << QString::number(link.send(word[0], kCardOptions).status());
        else if (verb == u"wait-for-register")
            statuses << QString::number(WaitForRegister(link, op, clock));
        else if (verb == u"show")
            link.ShowDeviceMessage(qint16(word[0].toInt()), word.mid(1).join(u' '));
        else if (verb == u"on")
            events[{word[0], word[1].toInt()}] = word[2];
        else if (line.startsWith(u"set wait-limit "))
            vars.WaitLimitMs = word[1].toLongLong();
        else if (verb == u"stopped")
            EXPECT_EQ(vars.Stop, word.value(0) == u"by-wait-limit" ? StopCause::WaitLimit : StopCause::Signal);
        else if (verb == u"said")
            EXPECT_EQ(reply, line.mid(5));
        else if (verb == u"label")
            EXPECT_EQ(std::pair(form.label2(), vars.DeviceLabel), std::pair(line.mid(6), line.mid(6)));
        else if (verb == u"full-edition")
            EXPECT_EQ(vars.spRet, word[0] == u"yes");
        else if (verb == u"timeout")
            EXPECT_EQ(timeout, word[0].toInt());
        else if (verb == u"clock-at-least")
            EXPECT_GE(clock.monotonicMs(), word[0].toLongLong());
        else if (verb == u"clock-below")
            EXPECT_LT(clock.monotonicMs(), word[0].toLongLong());
        else if (verb == u"logged")
            EXPECT_TRUE(logBytes().contains(line.mid(6).toUtf8() + "\r\n")) << line.toStdString();
        else
            ASSERT_TRUE(verb.startsWith(u'#')) << "unknown line " << line.toStdString();
        EXPECT_FALSE(link.WaitFormOpen()) << line.toStdString();
    }
    EXPECT_EQ(course(), expected);
}

INSTANTIATE_TEST_SUITE_P(Sessions, ScriptedSession, ::testing::ValuesIn(scriptedSessions()),
                         [](const auto& info) { return info.param.toStdString(); });

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
    EXPECT_TRUE(insideConversation);
    ASSERT_TRUE(intruder.has_value());
    EXPECT_EQ(std::pair(intruder->status(), intruder->outcome()),
              std::pair(qint16(DeviceSession::kStatusInConversation), ReplyOutcome::Busy));
    EXPECT_EQ(std::pair(link.isConnected(), factory.tcpConnects), std::pair(true, 1));

    // Once the conversation has ended the same command goes through.
    EXPECT_FALSE(link.inConversation());
    EXPECT_TRUE(link.send("x/1/1/99999/").ok());
    EXPECT_EQ(course(), golden("link/session.txt", "WhatReachesTheSessionWhileTheWaitWindowPollsIsRefused"));
}

TEST_F(DeviceSessionTest, WithoutALimitTheWindowWaitsUntilTheRegisterClearsAndALimitCountsOverTheResends)
{
    open();
    replies[kPlu] = {"2C/00/00/", "00/00/00/"};
    std::deque<QString> polls(400, "2C/00/00/"); // 800 s of paper end
    polls.push_back("00/00/00/");
    replies["?/"] = polls;
    send(kPlu);
    EXPECT_EQ(std::tuple(status, vars.Stop, sent.count("?/")), std::tuple(0, StopCause::None, 401));
    EXPECT_EQ(sent.back(), kPlu);

    // Paper end on the command, a clear poll, paper end again: each window
    // alone is short, the command as a whole waits for ever.
    sent.clear();
    const qint64 start = clock.monotonicMs();
    vars.WaitLimitMs = 300000;
    replies[kPlu] = {"2C/00/00/"};
    replies["?/"] = {"00/00/00/"};
    send(kPlu);

    EXPECT_EQ(status, 44);
    EXPECT_EQ(vars.Stop, StopCause::WaitLimit);
    EXPECT_GE(clock.monotonicMs() - start, vars.WaitLimitMs);
    EXPECT_LT(clock.monotonicMs() - start, vars.WaitLimitMs + 2 * DeviceSession::kPollIntervalMs + 1000);
    EXPECT_EQ(sent.count(kPlu), sent.count("?/") + 1) << "the last window sends nothing again";
    EXPECT_EQ(course().filter(QRegularExpression("^window open ")).size(), course().count("window close"));
    ASSERT_EQ(results.lines.size(), 1);
    EXPECT_TRUE(results.lines[0].startsWith("Err = 44, "));
}

} // namespace
