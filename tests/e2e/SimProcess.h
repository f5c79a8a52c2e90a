#pragma once

#include <QProcess>
#include <QString>
#include <QStringList>

#include <memory>

// One kerbano-ecr-sim for one run: started with a journal and a tape in the
// given directory and always killed when the guard goes, whatever the test did.
class SimProcess {
public:
    explicit SimProcess(QString workDir) : m_workDir(std::move(workDir)) {}
    ~SimProcess() { stop(); }
    SimProcess(const SimProcess&) = delete;
    SimProcess& operator=(const SimProcess&) = delete;

    // Listens on a free loopback port at or below 32767; false when no port
    // could be taken within a few tries.
    bool startTcp();
    // Links the slave of a new pseudo-terminal at <workDir>/ecr, paced at baud.
    bool startPty(int baud);

    // Arguments for the next start, behind the wire's (a --faults script, for one).
    void setExtraArguments(const QStringList& arguments) { m_extraArguments = arguments; }
    // The register keeps its memory in <workDir>/register from the next start
    // on, so that it outlives a driver killed halfway.
    void keepMemory();
    // True once the register has received count commands (its journal says
    // so), false when timeoutMs passed first.
    bool waitForCommands(int count, int timeoutMs) const;

    // The port field of kerbano's command line for this register.
    QString portField() const { return m_portField; }
    QString journalPath() const { return m_workDir + QStringLiteral("/journal.txt"); }
    QString tapePath() const { return m_workDir + QStringLiteral("/tape.txt"); }
    // Commands the register received, in order, from the journal line index on.
    QStringList journalCommands(int fromLine = 0) const;
    QStringList journalLines() const;
    QString startError() const { return m_error; }

private:
    bool start(const QStringList& wireArgs);
    bool waitReady();
    void stop();

    QString m_workDir;
    QString m_portField;
    QString m_error;
    QStringList m_extraArguments;
    QStringList m_memoryArguments;
    std::unique_ptr<QProcess> m_process;
};
