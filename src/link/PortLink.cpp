#include "link/PortLink.h"

#include "link/DeviceStatusClass.h"
#include "link/LinkMessageTitle.h"
#include "link/PortAddress.h"
#include "link/SerialExchange.h"
#include "link/SerialFrame.h"
#include "link/TcpExchange.h"
#include "link/TransportFactory.h"
#include "operations/LinkCommands.h"
#include "shell/Clock.h"
#include "shell/CodePage.h"
#include "shell/CommunicationLog.h"
#include "shell/ModuleVariables.h"
#include "shell/Operator.h"

#include <QFile>

namespace {

const QString kKerbanoTitle = QStringLiteral("Μύνημα Kerbano");

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

PortLink::PortLink(ModuleVariables& vars, Clock& clock, Operator& op, FormModel& form,
                   TransportFactory& factory, CommunicationLog& log)
    : vars_(vars)
    , clock_(clock)
    , op_(op)
    , form_(form)
    , factory_(factory)
    , log_(log)
{
}

PortLink::~PortLink() = default;

void PortLink::SendCommand(const QString& command, qint16& status, QString& reply, bool quiet,
                           qint16& timeoutSeconds, int logMode)
{
    status = 0;
    QString sentForm;
    for (;;) {
        ExchangeCommand(command, status, reply, timeoutSeconds, sentForm);
        if (quiet || status == 0)
            break;
        ShowDeviceMessage(status, reply);
        if (!IsRetryStatus(status))
            break;
    }
    if (status != 0 && logMode == kLogModeResultFile)
        appendErrLine(status, sentForm);
}

void PortLink::ExchangeCommand(const QString& command, qint16& status, QString& reply,
                               qint16& timeoutSeconds, QString& sentForm)
{
    if (port_.tcpPort) {
        sentForm = command;
        if (!port_.TCPClass) {
            status = TcpExchange::kStatusNoReply;
            reply = QStringLiteral("Ο Φορολ. Μηχανισμός δεν Απαντά σε εντολή !");
            return;
        }
        TcpExchange(*port_.TCPClass, clock_, log_)
            .run(command, status, reply, vars_.IgnoreOperatorBusy);
        return;
    }

    bool invalid = false;
    sentForm = FrameCommand(command, &invalid);
    if (invalid)
        op_.message(QStringLiteral("Μύνημα Φορ. Εκτυπωτή"), QStringLiteral("INVALID CHARACTERS"),
                    Operator::Icon::Information);
    if (!port_.comHandle) {
        // No port was ever opened: nothing could answer the ENQ.
        if (timeoutSeconds == 0)
            timeoutSeconds = SerialExchange::kDefaultEnqWaitSeconds;
        status = SerialExchange::kStatusNoEnqAnswer;
        reply = QStringLiteral("Αναμονή Απόκρισης Ταμειακής...");
        return;
    }
    SerialExchange(*port_.comHandle, clock_, log_)
        .run(sentForm, status, reply, timeoutSeconds, vars_.IgnoreOperatorBusy);
}

void PortLink::appendErrLine(qint16 status, const QString& sentForm)
{
    const QString line = QStringLiteral("Err = ") + QString::number(status) + QStringLiteral(", [")
        + sentForm + QStringLiteral("] DateTime = ") + clock_.stamp();
    QFile file(vars_.ResultPath);
    if (file.open(QIODevice::WriteOnly | QIODevice::Append))
        file.write(codepage::toWin1253(line) + "\r\n");
}

void PortLink::OpenDeviceLink(const QString& port, qint16& status, QString& reply, bool quiet)
{
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

void PortLink::openSerial(const QString& port, const QString& device, qint16& status,
                          QString& reply, bool quiet)
{
    auto serial = factory_.openSerial(device, vars_.baud, status);
    if (status != 0 || !serial) {
        if (status == 0)
            status = TransportFactory::kSerialOpenFailed;
        reply = (status == TransportFactory::kSerialSetupFailed
                     ? QStringLiteral("Πρόβλημα στο Set-Up τής Θύρας :")
                     : QStringLiteral("Πρόβλημα στην Θύρα :"))
            + port;
        if (!quiet)
            op_.message(kKerbanoTitle, reply, Operator::Icon::Critical);
        return;
    }
    port_.comHandle = std::move(serial);
    port_.tcpPort = false;
    port_.TCPClass.reset();
    port_.isConnected = true;
}

void PortLink::openTcp(const QString& address, quint16 tcpPort, qint16& status, QString& reply,
                       bool quiet)
{
    // The connection of an earlier opening closes as its object goes.
    port_.TCPClass = std::make_unique<clsNet_TCP>(factory_, log_, clock_, op_, vars_);
    clsNet_TCP& net = *port_.TCPClass;
    net.LocalHostIP = clsNet_TCP::LocalIpAddress();
    net.RemoteHostIP = address;
    net.RemotePort = tcpPort;
    status = net.OpenConnection();
    reply = tcpOpenText(status);
    if (status != 0) {
        if (!quiet)
            op_.message(LinkMessageTitle(vars_), reply, Operator::Icon::Critical);
        return;
    }
    port_.comHandle.reset();
    port_.tcpPort = true;
    port_.isConnected = true;
}

void PortLink::CloseDeviceLink()
{
    if (!port_.isConnected)
        return;
    if (port_.tcpPort) {
        if (port_.TCPClass)
            port_.TCPClass->ShutdownConnection();
    } else if (port_.comHandle) {
        port_.comHandle->close();
        port_.comHandle.reset();
    }
    port_.isConnected = false;
}

void PortLink::WaitPumping(qint64 milliseconds)
{
    clock_.pumpFor(milliseconds);
}

bool PortLink::IsOperatorBusy()
{
    vars_.IgnoreOperatorBusy = false;
    qint16 status = 0;
    QString reply;
    qint16 timeoutSeconds = 0;
    SendCommand(linkcmd::StatusProbe(), status, reply, true, timeoutSeconds, kLogModeProbe);
    return status == 251;
}
