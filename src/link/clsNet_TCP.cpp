#include "link/clsNet_TCP.h"

#include "link/LinkLogStamp.h"
#include "link/LinkMessageTitle.h"
#include "link/TcpTransport.h"
#include "link/TransportFactory.h"
#include "shell/Clock.h"
#include "shell/CommunicationLog.h"
#include "shell/ModuleVariables.h"
#include "shell/Operator.h"

#include <QHostAddress>
#include <QNetworkInterface>

clsNet_TCP::clsNet_TCP(TransportFactory& factory, CommunicationLog& log, Clock& clock,
                       Operator& op, const ModuleVariables& vars)
    : factory_(factory)
    , log_(log)
    , clock_(clock)
    , op_(op)
    , vars_(vars)
{
}

clsNet_TCP::~clsNet_TCP()
{
    if (connection_)
        ShutdownConnection();
}

qint16 clsNet_TCP::OpenConnection()
{
    qint16 status = 0;
    auto connection = factory_.connectTcp(RemoteHostIP, RemotePort, status);
    if (status != 0 || !connection)
        return status != 0 ? status : TransportFactory::kTcpConnectFailed;
    connection_ = std::move(connection);
    ++connectionNumber_;
    const auto* tcp = dynamic_cast<const TcpTransport*>(connection_.get());
    const qint64 number = tcp ? qint64(tcp->socketNumber()) : connectionNumber_;
    log_.PrintCombine(QStringLiteral("socket = ") + QString::number(number));
    return 0;
}

bool clsNet_TCP::SendData(const QByteArray& data)
{
    for (int attempt = 0; attempt < kSendTries; ++attempt) {
        if (connection_ && connection_->write(data) == data.size())
            return true;
        const qint16 result = OpenConnection();
        log_.PrintCombine(LinkLogStamp(clock_) + QStringLiteral(" reOpen TCP: ")
                          + QString::number(result));
    }
    op_.message(LinkMessageTitle(vars_),
                QStringLiteral("Λάθος κατά την αποστολή δεδομένων στην θύρα (Ethernet)"),
                Operator::Icon::Critical);
    return false;
}

void clsNet_TCP::ShutdownConnection()
{
    if (!connection_) {
        log_.PrintCombine(QStringLiteral("no socket to close"));
        return;
    }
    const auto* tcp = dynamic_cast<const TcpTransport*>(connection_.get());
    const qint64 number = tcp ? qint64(tcp->socketNumber()) : connectionNumber_;
    connection_->close();
    log_.PrintCombine(QStringLiteral("socket close ") + QString::number(number)
                      + QStringLiteral(" 0 0"));
    for (int i = 0; i < kShutdownPauses; ++i)
        clock_.sleepMs(1);
    connection_.reset();
}

QString clsNet_TCP::LocalIpAddress()
{
    const QStringList skipped = {QStringLiteral("127.0.0.1"), QStringLiteral("0.0.0.1"),
                                 QStringLiteral("0.0.0.0")};
    for (const QHostAddress& address : QNetworkInterface::allAddresses()) {
        if (address.protocol() != QAbstractSocket::IPv4Protocol)
            continue;
        const QString text = address.toString();
        if (!skipped.contains(text))
            return text;
    }
    return {};
}
