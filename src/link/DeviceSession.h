#pragma once

#include "link/DeviceLink.h"
#include "link/DocumentLedger.h"
#include "link/LinkBackend.h"
#include "link/cPortProp.h"

#include <optional>

class Clock;
class CommandTrail;
class CommunicationLog;
class DevicePort;
class FormModel;
class Operator;
class ResultSink;
struct ModuleVariables;

// The device session: the policy of the link above its mechanism. It resends
// a command while the register answers one of the five retry statuses, shows
// the operator what a status means, keeps the device-wait window polling,
// hands the "Err = " line of a failed command to the result file's writer,
// and identifies the register at each opening.
//
// One conversation with the register at a time. A conversation is one public
// call of the session (a command with its resends and its device-wait window,
// an opening with its identification, Ver, ...). While the device-wait window
// waits, the session runs the event loop (WaitPumping), and whatever reaches
// the session from there (a menu action, a timer) would fall into the middle
// of the conversation: it is refused. A refused command comes back with
// kStatusInConversation and nothing goes to the register; a refused opening,
// closing or message does nothing. inConversation() tells whether one is in
// progress, so that menu actions can be deferred until it has ended.
class DeviceSession final : public DeviceLink {
public:
    // A [port] value that names no register: a missing, non-numeric or too
    // high TCP port number. Nothing is shown; the caller handles it like a
    // fault of the settings.
    static constexpr qint16 kStatusBadPortSetting = -13;
    // The session is in the middle of another conversation.
    static constexpr qint16 kStatusInConversation = -30;
    static constexpr qint64 kPollIntervalMs = 2000;
    static constexpr qint16 kPollWaitSeconds = 3;
    static constexpr qint16 kPollWaitSecondsEft = 270;
    static constexpr qint16 kOperatorBusyPauseMs = 10000;
    static constexpr int kMessageWidth = 40;

    // Safe resends of the commands that change the receipt in hand: one whose
    // reply was lost goes out again only when the register's figures show it
    // was not executed; one whose frame never got through (ENQ unanswered) is
    // sent again at once. Limits of both, and how the late bytes are waited out.
    static constexpr int kMaxDocumentSends = 4;
    static constexpr int kMaxUnsentResends = 3;
    static constexpr int kFigureQueries = 4;
    static constexpr int kStaleQuietMs = 1500;
    // A payment the driver withholds: the register's figures differ from the
    // lines it confirmed (the receipt is voided), or the job was stopped so.
    static constexpr qint16 kStatusTotalsDiffer = -31;
    static constexpr qint16 kStatusJobStopped = -32;

    // How a device-wait window ended.
    enum class WaitEnd {
        // A poll answered 0, or the operator closed the window: a retry
        // status sends the command again.
        Cleared,
        // The process is ending (ModuleVariables::Stop) or the wait passed
        // WaitLimitMs: the window closes and nothing is sent again. A card
        // payment's wait is never given up.
        GivenUp,
    };

    // Holds the session for one conversation. Conversations nest on the
    // session's own account; one begun while the session runs the event loop
    // for another is refused.
    class Conversation {
    public:
        explicit Conversation(DeviceSession& session);
        ~Conversation();
        Conversation(const Conversation&) = delete;
        Conversation& operator=(const Conversation&) = delete;

        // True when the caller must leave the register alone.
        bool refused() const { return refused_; }

    private:
        DeviceSession& session_;
        bool refused_;
    };

    DeviceSession(DevicePort& port, ModuleVariables& vars, Clock& clock, Operator& op,
                  FormModel& form, ResultSink& results, CommunicationLog& log);

    bool inConversation() const { return depth_ > 0; }

    void ShowDeviceMessage(qint16 status, const QString& reply) override;
    void OpenDeviceLink(const QString& port, qint16& status, QString& reply, bool quiet) override;
    void CloseDeviceLink() override;
    bool isConnected() const override;
    bool tcpPort() const override;
    // Runs the event loop meanwhile (a signal's stop is seen there) and gives
    // up as the device-wait window does.
    bool pauseBeforeAskingAgain(Clock& clock, qint64 ms, qint64 waitSinceMs) override;

    cPortProp& PortObject();

    // Asks "a/" and sets DeviceLabel, Label2 and spRet from the model.
    void IdentifyDevice(qint16& status, QString& reply, bool quiet);
    // False when the register accepted the table title and the opening of
    // table 290, i.e. it is the "Rest" edition.
    bool ProbeRestEdition();
    // The "Version Info" menu entry.
    void Ver();
    // Clears IgnoreOperatorBusy, then polls: true when the operator holds the register.
    bool IsOperatorBusy();
    // Waits with the event loop running.
    void WaitPumping(qint64 milliseconds);
    // True while the device-wait window is up for a device status.
    bool WaitFormOpen() const { return waitFormOpen_; }

    // A print job begins: no receipt in hand, nothing in doubt.
    void beginReceiptWatch();
    // Where the commands of a job leave their trace; nullptr for none.
    void setTrail(CommandTrail* trail) { trail_ = trail; }

private:
    DeviceReply doSend(const QString& command, const SendOptions& options) override;
    void openSerial(const QString& port, const QString& device, qint16& status, QString& reply,
                    bool quiet);
    void openTcp(const QString& address, quint16 tcpPort, qint16& status, QString& reply,
                 bool quiet);
    // ShowDeviceMessage for a command that has waited since waitSinceMs.
    WaitEnd showStatus(qint16 status, const QString& reply, qint64 waitSinceMs);
    WaitEnd runWaitWindow(qint16 status, const QString& reply, qint64 waitSinceMs);
    bool waitGivenUp(qint64 waitSinceMs);
    void appendErrLine(qint16 status, const QString& sentForm);

    // The resend decision for the commands that change the receipt in hand.
    bool guardsDocument(const DocumentEffect& effect, const SendOptions& options) const;
    LinkBackend::Exchanged exchangeDocumentCommand(const QString& command,
                                                   const DocumentEffect& effect,
                                                   qint16& timeoutSeconds);
    std::optional<ReceiptFiguresQuery::Answer> askFigures();
    std::optional<DeviceReply> checkBeforePayment(const DocumentEffect& effect);
    void followDocument(const QString& command, const DocumentEffect& effect,
                        const SendOptions& options, const DeviceReply& reply);

    DevicePort& port_;
    ModuleVariables& vars_;
    Clock& clock_;
    Operator& op_;
    FormModel& form_;
    ResultSink& results_;
    CommunicationLog& log_;
    bool waitFormOpen_ = false;
    int depth_ = 0;
    bool pumping_ = false;
    DocumentLedger ledger_;
    bool receiptInDoubt_ = false; // a lost reply was judged by the figures
    bool receiptShort_ = false;   // a line may be missing or doubled without a word
    bool receiptStopped_ = false; // the payment was withheld
    CommandTrail* trail_ = nullptr;
};
