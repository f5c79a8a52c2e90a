#include "PortLock.h"

#include "link/PortAddress.h"

#include <QDir>
#include <QRegularExpression>

namespace {
QString fileSafe(QString text)
{
    static const QRegularExpression unsafe(QStringLiteral("[^A-Za-z0-9.-]"));
    return text.toLower().replace(unsafe, QStringLiteral("_"));
}
} // namespace

QString PortLock::lockPath(const QString& port)
{
    const PortAddress address = PortAddress::parse(port.trimmed());
    QString name;
    switch (address.kind) {
    case PortAddress::Kind::Serial:
        name = address.device;
        break;
    case PortAddress::Kind::Tcp:
        name = address.address + QLatin1Char('_') + QString::number(address.tcpPort);
        break;
    case PortAddress::Kind::Invalid:
        return {};
    }
    return QDir(QDir::tempPath()).filePath(QStringLiteral("kerbano-%1.lock").arg(fileSafe(name)));
}

bool PortLock::take(const QString& port)
{
    const QString path = lockPath(port);
    if (path.isEmpty())
        return true;
    lock_ = std::make_unique<QLockFile>(path);
    if (lock_->tryLock(0))
        return true;
    // A temporary directory that takes no lock must not stop the driver.
    if (lock_->error() != QLockFile::LockFailedError) {
        lock_.reset();
        return true;
    }
    QString host;
    QString application;
    if (!lock_->getLockInfo(&holder_, &host, &application))
        holder_ = 0;
    lock_.reset();
    return false;
}
