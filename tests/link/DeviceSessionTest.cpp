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
const QString kCard = QStringLiteral("5/3/9.00////2/1/");
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

TEST_F(DeviceSessionTest, PaperEndWaitsInTheWindowThenSendsTheSameCommandAgain)
{
    open();
    replies[kPlu] = {"2C/00/00/", "00/00/00/"};
    replies["?/"] = {"2C/00/00/", "00/00/00/"};
    send(kPlu);
    EXPECT_FALSE(link.WaitFormOpen());
    // A quiet command returns at once with nothing shown or resent.
    replies["x/7///"] = {"2C/00/00/"};
    send("x/7///", true, 1);
    EXPECT_EQ(course(), expectedCourse());
}

TEST_F(DeviceSessionTest, EachRetryStatusIsResentOnceTheRegisterClearsAndNoOtherWaitStatusIs)
{
    open();
    for (const char* answer : {"1A/00/00/", "2C/00/00/", "36/00/00/", "AA/00/00/", "00/00/04/", "4F/00/00/",
                               "5D/00/00/", "C1/00/00/", "C8/00/00/", "CF/00/00/", "00/01/00/"}) {
        replies["7/1/1/A/"] = {answer, "00/00/00/"};
        send("7/1/1/A/");
    }
    EXPECT_EQ(course(), expectedCourse());
}

TEST_F(DeviceSessionTest, RefusalShowsFortyCharactersUnderTheDeviceLabelAndLogsTheResult)
{
    open();
    replies["q/"] = {"06/00/00/"};
    send("q/");
    link.ShowDeviceMessage(-4, "Ο Φορολ. Εκτυπωτής δεν Απαντά σε εντολή !");
    // Commands logged otherwise leave no result line.
    send("q/", false, 1);
    send("q/", false, 2);
    EXPECT_EQ(course(), expectedCourse());
}

TEST_F(DeviceSessionTest, OperatorClosingTheWindowCountsAsCleared)
{
    open();
    replies["3/S/X"] = {"1A/00/00/", "00/00/00/"};
    op.closeWaitWindowAfterChecks = 0;
    send("3/S/X");
    EXPECT_EQ(course(), expectedCourse());
}

TEST_F(DeviceSessionTest, PollLabelsFollowThePollAndOperatorBusyPausesTenSeconds)
{
    open();
    replies["5/3/9.00///1/1/"] = {"C1/00/00/"};
    replies["?/"] = {"CF/00/00/", "00/00/04/", "00/00/00/"};
    send("5/3/9.00///1/1/", false, 2);
    EXPECT_EQ(course(), expectedCourse()); // 251 touched nothing
    EXPECT_GE(clock.monotonicMs(), 3 * 2000 + 10000);
    EXPECT_TRUE(logBytes().contains(" open Receipt, wait 10s\r\n"));
}

TEST_F(DeviceSessionTest, SerialErrLineCarriesTheFrameAndTimeoutZeroBecomesThree)
{
    open("com1");
    EXPECT_FALSE(link.tcpPort());
    replies["q/"] = {"06/00/00/"};
    send("q/", true);
    EXPECT_EQ(timeout, 3);
    EXPECT_EQ(course(), expectedCourse());
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

TEST_F(DeviceSessionTest, IdentificationNamesTheModelProbesOnlyDeltaEditionsAndAFailedOneCloses)
{
    const QString probe = QStringLiteral("\"/0/290/1/Kerbano V11.12//");
    const struct {
        const char* answer;
        const char* probeAnswer;
        qint16 status;
        const char* label;
        QStringList sent;
        int fullEdition; // vars.spRet afterwards; -1: left as it was
    } cases[] = {{"06/00/00/", "", 6, "...", {"a/"}, -1}, // the label is left as it was
                 {"00/00/00/77/x/CCQ/", "", 0, "Mirka [CCQ77]", {"a/"}, 1},
                 {"00/00/00/77/x/ccq/", "", 0, "Ταμειακή [ccq77]", {"a/"}, -1},
                 // A later failure leaves the former register's name standing.
                 {"06/00/00/", "", 6, "Ταμειακή [ccq77]", {"a/"}, -1},
                 // A Delta whose edition refuses the probe's title is the full one.
                 {"00/00/00/123/x/DNT/", "06/00/00/", 0, "Delta [DNT123]", {"a/", probe}, 1},
                 {"00/00/00/123/x/DNT/", "00/00/00/", 0, "Delta Rest [DNT123]",
                  {"a/", probe, "&/0/290//////////////", "5/1/0.00////"}, 0}};
    for (const auto& c : cases) {
        sent.clear();
        replies["a/"] = {c.answer};
        replies[probe] = {c.probeAnswer};
        vars.spRet = !vars.spRet; // what is left as it was shows through
        const bool before = vars.spRet;
        link.OpenDeviceLink("127.0.0.1:9101", status, reply, false);
        EXPECT_EQ(status, c.status);
        EXPECT_EQ(form.label2(), c.label);
        EXPECT_EQ(vars.DeviceLabel, c.label);
        EXPECT_EQ(sent, c.sent);
        EXPECT_EQ(link.isConnected(), c.status == 0);
        EXPECT_EQ(vars.spRet, c.fullEdition < 0 ? before : c.fullEdition == 1);
        link.CloseDeviceLink();
    }
}

TEST_F(DeviceSessionTest, WaitForRegisterReleasesAReceiptThatAnswers70)
{
    open();
    replies["5/1/0.00////"] = {"1A/00/00/", "46/00/00/"};
    statuses << QString::number(WaitForRegister(link, op, clock));
    EXPECT_EQ(course(), expectedCourse());
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
    EXPECT_TRUE(insideConversation);
    ASSERT_TRUE(intruder.has_value());
    EXPECT_EQ(std::pair(intruder->status(), intruder->outcome()),
              std::pair(qint16(DeviceSession::kStatusInConversation), ReplyOutcome::Busy));
    EXPECT_EQ(std::pair(link.isConnected(), factory.tcpConnects), std::pair(true, 1));

    // Once the conversation has ended the same command goes through.
    EXPECT_FALSE(link.inConversation());
    EXPECT_TRUE(link.send("x/1/1/99999/").ok());
    EXPECT_EQ(course(), expectedCourse());
}

TEST_F(DeviceSessionTest, ALinkNeverOpenedIsLostAndASilentRegisterGivesNoReply)
{
    // A serial port object before any opening: nothing answers the ENQ.
    const DeviceReply unopened = link.send("?/", {.quiet = true});
    EXPECT_EQ(std::pair(unopened.status(), unopened.outcome()), std::pair(qint16(-207), ReplyOutcome::LinkLost));

    open();
    factory.made.last()->onWrite = {};
    const DeviceReply silent = link.send("?/", {.quiet = true});
    EXPECT_EQ(std::pair(silent.status(), silent.outcome()), std::pair(qint16(-4), ReplyOutcome::NoReply));
}

TEST_F(DeviceSessionTest, AStopDuringTheWaitEndsItWithoutSendingTheCommandAgain)
{
    open();
    replies[kPlu] = {"2C/00/00/", "00/00/00/"};
    replies["?/"] = {"2C/00/00/"};
    onCommand = [this](const QString& command, qsizetype n) {
        if (command == "?/" && n == 3)
            vars.Stop = StopCause::Signal;
    };
    send(kPlu); // no poll after the stop, and no resend
    EXPECT_FALSE(link.WaitFormOpen());
    EXPECT_EQ(vars.Stop, StopCause::Signal);

    // Once the process is ending, a wait status ends its window at once.
    replies[kPlu] = {"1A/00/00/"};
    send(kPlu);
    EXPECT_EQ(course(), expectedCourse());
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

TEST_F(DeviceSessionTest, ACardPaymentIsWaitedOutWhateverTheStop)
{
    open();
    vars.EftBusy = true;
    vars.WaitLimitMs = 10000;
    const QString card = QStringLiteral("5/3/9.00///1/1/");
    replies[card] = {"C1/00/00/"};
    replies["?/"] = {"C1/00/00/", "C1/00/00/", "C1/00/00/", "C1/00/00/", "C1/00/00/", "C1/00/00/",
                     "C1/00/00/", "00/00/00/"};
    onCommand = [this](const QString& command, qsizetype n) {
        if (command == "?/" && n == 1)
            vars.Stop = StopCause::Signal;
        if (command == "?/" && n == 8)
            vars.EftBusy = false; // the payment's outcome is in
    };
    send(card);

    EXPECT_EQ(sent.count("?/"), 8) << "polled until the terminal answered";
    EXPECT_EQ(sent.count(card), 1);
    EXPECT_EQ(vars.Stop, StopCause::Signal);
}

TEST_F(DeviceSessionTest, ASlowTerminalIsAwaitedOnceAndASilentOneIsNeverAskedTwiceOnEitherLine)
{
    for (const QString portName : {"127.0.0.1:9101", "com1"}) {
        open(portName);
        answerAfterMs[kCard] = 40000;
        EXPECT_TRUE(link.send(kCard, kCardOptions).ok()) << portName.toStdString();
        EXPECT_EQ(sent.count(kCard), 1);

        sent.clear();
        answerAfterMs[kCard] = -1;
        const qint64 start = clock.monotonicMs();
        const DeviceReply lost = link.send(kCard, kCardOptions);
        EXPECT_EQ(lost.status(), -4);
        EXPECT_EQ(lost.outcome(), ReplyOutcome::NoReply);
        EXPECT_EQ(sent.count(kCard), 1);
        if (link.tcpPort()) {
            EXPECT_NEAR(double(clock.monotonicMs() - start), 301000.0, 1500.0);
        }
        link.CloseDeviceLink();
    }
}

TEST_F(DeviceSessionTest, WhileACardPaymentRunsTheWaitWindowPollsWithTheLongWait)
{
    open("com1");
    replies[kCard] = {"C1/00/00/"}; // 193: the terminal is still at work
    enqAnswerMs = 100000;     // the register answers nothing else meanwhile
    vars.EftBusy = true;
    statuses << QString::number(link.send(kCard, kCardOptions).status());
    EXPECT_EQ(course(), expectedCourse()); // no unanswered poll in between
}

// The zero payment's wait (WaitForRegister) ends as the device-wait window
// does: a stop that comes through the event loop, as a signal's does, or the
// command-line life's wait limit ends it without another try. The register
// answers paper end (44) forty times, then clears.
TEST_F(DeviceSessionTest, TheZeroPaymentsWaitEndsOnAPostedStopOrTheWaitLimitButWaitsOutACardPayment)
{
    const QString zero = QStringLiteral("5/1/0.00////");
    for (const bool posted : {true, false}) {
        vars.Stop = StopCause::None;
        open();
        replies[zero] = std::deque<QString>(39, "2C/00/00/");
        replies[zero].push_back("00/00/00/");
        if (posted)
            QTimer::singleShot(0, [this] { vars.Stop = StopCause::Signal; });
        else
            vars.WaitLimitMs = 10000;
        const qint64 start = clock.monotonicMs();
        EXPECT_EQ(WaitForRegister(link, op, clock), 44);
        if (posted) {
            EXPECT_EQ(sent.count(zero), 1) << "asked again after the stop";
        } else {
            EXPECT_GE(clock.monotonicMs() - start, vars.WaitLimitMs);
            EXPECT_LT(sent.count(zero), 40);
        }
        EXPECT_EQ(vars.Stop, posted ? StopCause::Signal : StopCause::WaitLimit);
    }
    const QStringList window = course().filter(QRegularExpression("^window "));
    EXPECT_EQ(window.mid(0, 2), QStringList({"window open Μήνυμα Ταμειακής (Αναμονή ολοκλήρωσης ταμειακής) / Status [44] / "
                                             "Τέλος Χαρτοταινίας  'PAPEREND' !",
                                             "window close"}));
    // While a card payment runs nothing gives the wait up.
    vars.EftBusy = true;
    EXPECT_EQ(WaitForRegister(link, op, clock), 0);
    EXPECT_EQ(sent.count(zero), 40);
}

} // namespace
