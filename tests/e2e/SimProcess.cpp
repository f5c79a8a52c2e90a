#include "SimProcess.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>
#include <QTcpSocket>
#include <QThread>

using namespace Qt::Literals::StringLiterals;

namespace {
const QString kSimProgram = QStringLiteral(KERBANO_BIN_DIR "/kerbano-ecr-sim");
constexpr int kStartMs = 5000;
constexpr int kPortTries = 8;
constexpr int kLowestPort = 20000;
constexpr int kHighestPort = 32000; // kerbano refuses ports above 32767
} // namespace

bool SimProcess::startTcp()
{
    for (int attempt = 0; attempt < kPortTries; ++attempt) {
        const int port = kLowestPort + QRandomGenerator::global()->bounded(kHighestPort - kLowestPort);
        const QString address = u"127.0.0.1:%1"_s.arg(port);
        if (!start({u"--tcp"_s, address}))
            continue;
        // Ready is not enough: the register must take a connection.
        QTcpSocket probe;
        probe.connectToHost(u"127.0.0.1"_s, quint16(port));
        if (probe.waitForConnected(kStartMs)) {
            probe.disconnectFromHost();
            if (probe.state() != QAbstractSocket::UnconnectedState)
                probe.waitForDisconnected(1000);
            m_portField = address;
            return true;
        }
        m_error = probe.errorString();
        stop();
    }
    return false;
}

bool SimProcess::startPty(int baud)
{
    const QString link = QDir(m_workDir).filePath(u"ecr"_s);
    if (!start({u"--pty"_s, link, u"--baud"_s, QString::number(baud)}))
        return false;
    // The driver takes a "/dev/" path as a serial device, so it is given the
    // pseudo-terminal itself rather than the link in the temporary directory.
    m_portField = QFileInfo(link).symLinkTarget();
    if (!m_portField.startsWith(u"/dev/"_s)) {
        m_error = u"no pseudo-terminal behind "_s + link;
        return false;
    }
    return true;
}

bool SimProcess::start(const QStringList& wireArgs)
{
    stop();
    m_process = std::make_unique<QProcess>();
    m_process->setWorkingDirectory(m_workDir);
    m_process->setProcessChannelMode(QProcess::SeparateChannels);
    m_process->setReadChannel(QProcess::StandardError);
    m_process->start(kSimProgram, wireArgs + QStringList{u"--journal"_s, journalPath(), u"--tape"_s, tapePath()}
                                        + m_memoryArguments + m_extraArguments);
    if (!m_process->waitForStarted(kStartMs)) {
        m_error = m_process->errorString();
        return false;
    }
    return waitReady();
}

bool SimProcess::waitReady()
{
    // The register says "ready" on stderr once its wires are open, or ends
    // with the reason (a port already taken, for one).
    QByteArray said;
    const QDeadlineTimer deadline(kStartMs);
    while (!said.contains("ready")) {
        if (m_process->state() != QProcess::Running || deadline.hasExpired()) {
            m_error = QString::fromUtf8(said + m_process->readAllStandardError());
            stop();
            return false;
        }
        m_process->waitForReadyRead(int(qMin<qint64>(200, deadline.remainingTime())));
        said += m_process->readAllStandardError();
    }
    return true;
}

void SimProcess::stop()
{
    if (!m_process)
        return;
    if (m_process->state() != QProcess::NotRunning) {
        m_process->kill();
        m_process->waitForFinished(kStartMs);
    }
    m_process.reset();
}

void SimProcess::keepMemory()
{
    const QString memory = QDir(m_workDir).filePath(QStringLiteral("register"));
    QDir().mkpath(memory);
    m_memoryArguments = {QStringLiteral("--state"), memory};
}

bool SimProcess::waitForCommands(int count, int timeoutMs) const
{
    constexpr int kLookEveryMs = 5;
    const QDeadlineTimer deadline(timeoutMs);
    while (journalLines().size() < count) {
        if (deadline.hasExpired())
            return false;
        QThread::msleep(kLookEveryMs);
    }
    return true;
}

QStringList SimProcess::journalLines() const
{
    QFile file(journalPath());
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QStringList lines = QString::fromUtf8(file.readAll()).split(QLatin1Char('\n'));
    if (!lines.isEmpty() && lines.last().isEmpty())
        lines.removeLast();
    return lines;
}

QStringList SimProcess::journalCommands(int fromLine) const
{
    QStringList commands;
    const QStringList lines = journalLines();
    for (int i = fromLine; i < lines.size(); ++i)
        commands << lines[i].section(u" -> "_s, 0, 0);
    return commands;
}
