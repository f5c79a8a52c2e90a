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
    SlowRegisterLink(VirtualClock& clock, qint64 tookMs, bool silent) : clock_(clock)
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
        reply = silent_ ? u"no reply"_s : QString();
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
            return DeviceReply::linkFailure(-4, u"no reply"_s, ReplyOutcome::NoReply);
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
    ProbingPrinter(DeviceLink& link, ReceiptState& state) : link_(link)
        , state_(state)
    {
    }
    void FPrinterWrite(const QString&, QVariant&, QVariant&, QVariant&, const QString& op) override
    {
        if (op == QLatin1String("initialize"))
            link_.SendCommand(u"?/"_s, state_.LastStatus, state_.LastReply);
    }
    using FPrinter::FPrinterWrite;

private:
    DeviceLink& link_;
    ReceiptState& state_;
};

TEST(CommandLineGiveUp, ASilentRegisterIsGivenUpWithinTheMinuteOverTcpAndSerialAndASlowOneGetsItsFile)
{
    struct Case {
        const char* link;
        qint64 tookMs;
        bool silent;
        int commandsAtMost;
    };
    // TCP: four sends of ten seconds; serial: an ENQ left unanswered for three.
    const Case cases[] = {{"tcp", 40000, true, 0}, {"serial", 3000, true, Engine::kCommandLineInitializeAttempts},
                          {"slow but answering", 40000, false, 1}};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.link);
        QTemporaryDir dir;
        VirtualClock clock;
        ScriptedOperator person;
        FormModel form;
        ScriptedJobParts parts;
        SlowRegisterLink link(clock, c.tookMs, c.silent);
        Engine engine(clock, person, form, EngineOptions{dir.path(), u"com1,9600,print.txt,0,TECFP,0000000"_s, true});
        ProbingPrinter printer(link, engine.receiptState());
        engine.attach(link, printer, parts, parts);

        engine.Form_Load();

        EXPECT_TRUE(engine.hasEnded());
        EXPECT_LE(link.commands, c.commandsAtMost);
        if (!c.silent) {
            EXPECT_EQ(engine.exitCode(), 0);
            EXPECT_EQ(link.commands, 1) << "initialize, once";
            continue;
        }
        EXPECT_EQ(engine.exitCode(), Engine::kExitRegisterSilent);
        EXPECT_LE(clock.monotonicMs(), Engine::kCommandLineInitializeGiveUpMs);
        ASSERT_FALSE(person.messages.isEmpty());
        EXPECT_TRUE(person.messages.last().text.startsWith(u"Η φορολογική ταμειακή δεν απαντά."_s));
    }
}

} // namespace
