// The command-line life's minute on a register that never answers, played
// on the virtual clock with the time a real link takes to fail.
#include "EngineFixture.h"

namespace {

// A register behind a link that takes its time: every opening and every
// command costs the link tookMs. A silent register fails each after the
// link's own deadlines: over TCP four sends ten seconds apart, and a command
// over a closed link opens it again first.
class SlowRegisterLink final : public DeviceLink {
public:
    SlowRegisterLink(VirtualClock& clock, qint64 tookMs, bool silent)
        : clock_(clock)
        , tookMs_(tookMs)
        , silent_(silent)
    {
    }
    int commands = 0;

    void ShowDeviceMessage(qint16, const QString&) override {}
    void OpenDeviceLink(const QString&, qint16& status, QString& reply, bool) override
    {
        clock_.advance(tookMs_);
        status = silent_ ? -4 : 0;
        reply = silent_ ? QStringLiteral("no reply") : QString();
        connected_ = !silent_;
    }
    void CloseDeviceLink() override { connected_ = false; }
    bool isConnected() const override { return connected_; }
    bool tcpPort() const override { return true; }

private:
    DeviceReply doSend(const QString& command, const SendOptions&) override
    {
        ++commands;
        clock_.advance(tookMs_);
        if (silent_)
            return DeviceReply::linkFailure(-4, QStringLiteral("no reply"), ReplyOutcome::NoReply);
        return DeviceReply::fromStatusAndText(0, command);
    }

    VirtualClock& clock_;
    qint64 tookMs_;
    bool silent_;
    bool connected_ = false;
};

// "initialize" as FPrinterWrite sends it: one status probe over the link.
class ProbingPrinter final : public FPrinter {
public:
    ProbingPrinter(DeviceLink& link, ReceiptState& state)
        : link_(link)
        , state_(state)
    {
    }
    void FPrinterWrite(const QString&, QVariant&, QVariant&, QVariant&, const QString& op) override
    {
        if (op == QLatin1String("initialize"))
            link_.SendCommand(QStringLiteral("?/"), state_.LastStatus, state_.LastReply);
    }
    using FPrinter::FPrinterWrite;

private:
    DeviceLink& link_;
    ReceiptState& state_;
};

struct GiveUpCase {
    const char* link;
    qint64 failAfterMs;
    int commandsAtMost;
};

TEST(CommandLineGiveUp, ASilentRegisterIsGivenUpWithinTheMinuteOverTcpAndSerial)
{
    // TCP: four sends of ten seconds; serial: an ENQ left unanswered for three.
    const GiveUpCase cases[] = {{"tcp", 40000, 0}, {"serial", 3000, Engine::kCommandLineInitializeAttempts}};
    for (const GiveUpCase& c : cases) {
        SCOPED_TRACE(c.link);
        QTemporaryDir dir;
        VirtualClock clock;
        ScriptedOperator person;
        FormModel form;
        ScriptedJobParts parts;
        SlowRegisterLink link(clock, c.failAfterMs, true);
        Engine engine(clock, person, form,
                      EngineOptions{dir.path(), QStringLiteral("com1,9600,print.txt,0,TECFP,0000000"), true});
        ProbingPrinter printer(link, engine.receiptState());
        engine.attach(link, printer, parts, parts);

        engine.Form_Load();

        EXPECT_TRUE(engine.hasEnded());
        EXPECT_EQ(engine.exitCode(), Engine::kExitRegisterSilent);
        EXPECT_LE(clock.monotonicMs(), Engine::kCommandLineInitializeGiveUpMs);
        EXPECT_LE(link.commands, c.commandsAtMost);
        ASSERT_FALSE(person.messages.isEmpty());
        EXPECT_TRUE(person.messages.last().text.startsWith(QStringLiteral("Η φορολογική ταμειακή δεν απαντά.")));
    }
}

TEST(CommandLineGiveUp, ARegisterThatAnswersSlowlyIsAskedAndGetsItsFile)
{
    QTemporaryDir dir;
    VirtualClock clock;
    ScriptedOperator person;
    FormModel form;
    ScriptedJobParts parts;
    SlowRegisterLink link(clock, 40000, false);
    Engine engine(clock, person, form,
                  EngineOptions{dir.path(), QStringLiteral("com1,9600,print.txt,0,TECFP,0000000"), true});
    ProbingPrinter printer(link, engine.receiptState());
    engine.attach(link, printer, parts, parts);

    engine.Form_Load();

    EXPECT_TRUE(engine.hasEnded());
    EXPECT_EQ(engine.exitCode(), 0);
    EXPECT_EQ(link.commands, 1) << "initialize, once";
}

} // namespace
