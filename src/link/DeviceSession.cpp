#include "link/DeviceSession.h"

#include "link/CommandTrail.h"

#include "link/DevicePort.h"
#include "link/LinkMessageTitle.h"
#include "link/PortAddress.h"
#include "link/TransportFactory.h"
#include "protocol/DeviceCommands.h"
#include "protocol/DeviceStatusClass.h"
#include "shell/Clock.h"
#include "shell/ModuleVariables.h"
#include "shell/Operator.h"
#include "shell/ResultSink.h"

namespace {

const QString kKerbanoTitle = QStringLiteral("Μύνημα Kerbano");
const QString kInConversationText = QStringLiteral("Η ταμειακή εκτελεί άλλη εντολή");

QString tcpOpenText(qint16 status)
{
    switch (status) {
    case 0: return {};
    case -1: return QStringLiteral("Λάθος κατά την έναρξη του δυκτίου");
    case -2: return QStringLiteral("Λάθος κατά την έναρξη τής θύρας (Ethernet Socket)");
    case -4: return QStringLiteral("Λάθος κατά την εκκίνηση τής θύρας (Ethernet Socket)");
    case -5: return QStringLiteral("Λάθος κατά την σύνδεση με την IP ταμειακής");
    default: return QStringLiteral("Λάθος κατά την σύνδεση με την ταμειακή ");
    }
}

} // namespace

DeviceSession::Conversation::Conversation(DeviceSession& session)
    : session_(session)
    , refused_(session.pumping_)
{
    if (!refused_)
        ++session_.depth_;
}

DeviceSession::Conversation::~Conversation()
{
    if (!refused_)
        --session_.depth_;
}

DeviceSession::DeviceSession(DevicePort& port, ModuleVariables& vars, Clock& clock, Operator& op,
                             FormModel& form, ResultSink& results, CommunicationLog& log)
    : port_(port)
    , vars_(vars)
    , clock_(clock)
    , op_(op)
    , form_(form)
    , results_(results)
    , log_(log)
{
}

bool DeviceSession::isConnected() const
{
    return port_.isConnected();
}

bool DeviceSession::tcpPort() const
{
    return port_.tcpPort();
}

cPortProp& DeviceSession::PortObject()
{
    return port_.PortObject();
}

DeviceReply DeviceSession::doSend(const QString& command, const SendOptions& options)
{
    const Conversation conversation(*this);
    if (conversation.refused())
        return DeviceReply::linkFailure(kStatusInConversation, kInConversationText,
                                        ReplyOutcome::Busy);
    const DocumentEffect effect = DocumentEffect::of(command);
    const bool guarded = guardsDocument(effect, options);
    if (guarded) {
        if (const std::optional<DeviceReply> withheld = checkBeforePayment(effect))
            return *withheld;
    }
    if (trail_)
        trail_->sending(command, options.sendOnce || options.logMode == SendOptions::kLogModeCard);
    qint16 timeoutSeconds = options.timeoutSeconds;
    // The resends of one command share one wait limit.
    const qint64 waitSinceMs = clock_.monotonicMs();
    for (;;) {
        const LinkBackend::Exchanged exchanged = guarded
            ? exchangeDocumentCommand(command, effect, timeoutSeconds)
            : port_.ExchangeCommand(command, timeoutSeconds, vars_.IgnoreOperatorBusy,
                                    options.sendOnce);
        const DeviceReply& reply = exchanged.reply;
        if (!reply.ok() && !options.quiet) {
            const WaitEnd waitEnd = showStatus(reply.status(), reply.text(), waitSinceMs);
            // The register has cleared by now: the same command goes out again.
            if (waitEnd == WaitEnd::Cleared && IsRetryStatus(reply.status()))
                continue;
        }
        if (!reply.ok() && options.logMode == SendOptions::kLogModeResultFile)
            appendErrLine(reply.status(), exchanged.sentForm);
        followDocument(command, effect, options, reply);
        if (trail_ && reply.ok())
            trail_->confirmed(command);
        return reply;
    }
}

void DeviceSession::appendErrLine(qint16 status, const QString& sentForm)
{
    results_.appendResultLine(QStringLiteral("Err = ") + QString::number(status)
                              + QStringLiteral(", [") + sentForm
                              + QStringLiteral("] DateTime = ") + clock_.stamp());
}

void DeviceSession::OpenDeviceLink(const QString& port, qint16& status, QString& reply, bool quiet)
{
    const Conversation conversation(*this);
    if (conversation.refused()) {
        status = kStatusInConversation;
        reply = kInConversationText;
        return;
    }
    status = 0;
    reply.clear();
    const PortAddress address = PortAddress::parse(port);
    switch (address.kind) {
    case PortAddress::Kind::Serial:
        openSerial(port, address.device, status, reply, quiet);
        break;
    case PortAddress::Kind::Tcp:
        openTcp(address.address, address.tcpPort, status, reply, quiet);
        break;
    case PortAddress::Kind::Invalid:
        status = kStatusBadPortSetting;
        reply = QStringLiteral("Λάθος αριθμός θύρας ταμειακής :") + port;
        return;
    }
    if (status != 0)
        return;

    IdentifyDevice(status, reply, quiet);
    if (status != 0) {
        const QString keptReply = reply;
        CloseDeviceLink();
        reply = keptReply;
    }
}

void DeviceSession::openSerial(const QString& port, const QString& device, qint16& status,
                               QString& reply, bool quiet)
{
    status = port_.openSerial(device);
    if (status == 0)
        return;
    reply = (status == TransportFactory::kSerialSetupFailed
                 ? QStringLiteral("Πρόβλημα στο Set-Up τής Θύρας :")
                 : QStringLiteral("Πρόβλημα στην Θύρα :"))
        + port;
    if (!quiet)
        op_.message(kKerbanoTitle, reply, Operator::Icon::Critical);
}

void DeviceSession::openTcp(const QString& address, quint16 tcpPort, qint16& status,
                            QString& reply, bool quiet)
{
    status = port_.openTcp(address, tcpPort);
    reply = tcpOpenText(status);
    if (status != 0 && !quiet)
        op_.message(LinkMessageTitle(vars_), reply, Operator::Icon::Critical);
}

void DeviceSession::CloseDeviceLink()
{
    const Conversation conversation(*this);
    if (!conversation.refused())
        port_.close();
}

void DeviceSession::WaitPumping(qint64 milliseconds)
{
    const bool wasPumping = pumping_;
    pumping_ = true;
    clock_.pumpFor(milliseconds);
    pumping_ = wasPumping;
}

bool DeviceSession::IsOperatorBusy()
{
    vars_.IgnoreOperatorBusy = false;
    const DeviceReply reply = send(DeviceCommands::StatusProbe(),
                                   {.quiet = true, .logMode = SendOptions::kLogModeProbe});
    return reply.status() == kStatusOperatorBusy;
}
