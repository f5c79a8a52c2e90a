#pragma once

#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QRandomGenerator>
#include <QString>
#include <QStringList>
#include <QTcpSocket>
#include <QThread>

#include <memory>

// One kerbano-ecr-sim for one run: started with a journal and a tape in the
// given directory and always killed when the guard goes, whatever the test did.
class SimProcess {
public:
    static constexpr int kStartMs = 5000;
    static constexpr int kPortTries = 8;
    static constexpr int kLowestPort = 20000;
    static constexpr int kHighestPort = 32000; // kerbano refuses ports above 32767
    static constexpr int kLookEveryMs = 5;

    explicit SimProcess(QString workDir) : m_workDir(std::move(workDir)) {}
    ~SimProcess() { stop(); }
    SimProcess(const SimProcess&) = delete;
    SimProcess& operator=(const SimProcess&) = delete;

    // Listens on a free loopback port at or below 32767; false when no port
    // could be taken within a few tries.
    bool startTcp()
    {
        for (int attempt = 0; attempt < kPortTries; ++attempt) {
            const int port = kLowestPort + QRandomGenerator::global()->bounded(kHighestPort - kLowestPort);
            const QString address = QStringLiteral("127.0.0.1:%1").arg(port);
            if (!start({QStringLiteral("--tcp"), address}))
                continue;
            // Ready is not enough: the register must take a connection.
            QTcpSocket probe;
            probe.connectToHost(QStringLiteral("127.0.0.1"), quint16(port));
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
    // Links the slave of a new pseudo-terminal at <workDir>/ecr, paced at baud.
    bool startPty(int baud)
    {
        const QString link = QDir(m_workDir).filePath(QStringLiteral("ecr"));
        if (!start({QStringLiteral("--pty"), link, QStringLiteral("--baud"), QString::number(baud)}))
            return false;
        // The driver takes a "/dev/" path as a serial device, so it is given the
        // pseudo-terminal itself rather than the link in the temporary directory.
        m_portField = QFileInfo(link).symLinkTarget();
        if (m_portField.startsWith(QStringLiteral("/dev/")))
            return true;
        m_error = QStringLiteral("no pseudo-terminal behind ") + link;
        return false;
    }

    // Arguments for the next start, behind the wire's (a --faults script, for one).
    void setExtraArguments(const QStringList& arguments) { m_extraArguments = arguments; }
    // The register keeps its memory in <workDir>/register from the next start
    // on, so that it outlives a driver killed halfway.
    void keepMemory()
    {
        const QString memory = QDir(m_workDir).filePath(QStringLiteral("register"));
        QDir().mkpath(memory);
        m_memoryArguments = {QStringLiteral("--state"), memory};
    }
    // True once the register has received count commands (its journal says
    // so), false when timeoutMs passed first.
    bool waitForCommands(int count, int timeoutMs) const
    {
        const QDeadlineTimer deadline(timeoutMs);
        while (journalLines().size() < count) {
            if (deadline.hasExpired())
                return false;
            QThread::msleep(kLookEveryMs);
        }
        return true;
    }

    // The port field of kerbano's command line for this register.
    QString portField() const { return m_portField; }
    QString journalPath() const { return m_workDir + QStringLiteral("/journal.txt"); }
    QString tapePath() const { return m_workDir + QStringLiteral("/tape.txt"); }
    // Commands the register received, in order, from the journal line index on.
    QStringList journalCommands(int fromLine = 0) const
    {
        QStringList commands;
        for (const QString& line : journalLines().mid(fromLine))
            commands << line.section(QStringLiteral(" -> "), 0, 0);
        return commands;
    }
    QStringList journalLines() const
    {
        QFile file(journalPath());
        if (!file.open(QIODevice::ReadOnly))
            return {};
        QStringList lines = QString::fromUtf8(file.readAll()).split(QLatin1Char('\n'));
        if (!lines.isEmpty() && lines.last().isEmpty())
            lines.removeLast();
        return lines;
    }
    QString startError() const { return m_error; }

private:
    bool start(const QStringList& wireArgs)
    {
        stop();
        m_process = std::make_unique<QProcess>();
        m_process->setWorkingDirectory(m_workDir);
        m_process->setProcessChannelMode(QProcess::SeparateChannels);
        m_process->setReadChannel(QProcess::StandardError);
        m_process->start(QStringLiteral(KERBANO_BIN_DIR "/kerbano-ecr-sim"),
                         wireArgs + QStringList{QStringLiteral("--journal"), journalPath(), QStringLiteral("--tape"),
                                                tapePath()}
                             + m_memoryArguments + m_extraArguments);
        if (!m_process->waitForStarted(kStartMs)) {
            m_error = m_process->errorString();
            return false;
        }
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
    void stop()
    {
        if (m_process && m_process->state() != QProcess::NotRunning) {
            m_process->kill();
            m_process->waitForFinished(kStartMs);
        }
        m_process.reset();
    }

    QString m_workDir;
    QString m_portField;
    QString m_error;
    QStringList m_extraArguments;
    QStringList m_memoryArguments;
    std::unique_ptr<QProcess> m_process;
};
