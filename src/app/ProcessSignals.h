#pragma once

#include <QObject>
#include <memory>

class QSocketNotifier;

// SIGTERM, SIGINT and SIGHUP as Qt signals in the event loop of the thread
// that made this object. The handler only writes the signal's number into a
// pipe; a socket notifier reads it, so nothing runs inside the handler and an
// exchange with the register is never cut: the pipe is read the next time the
// event loop runs. A second SIGTERM or SIGINT ends the process at once, by
// that signal's own action. One instance per process; Unix only (elsewhere
// it installs nothing).
class ProcessSignals : public QObject {
    Q_OBJECT
public:
    explicit ProcessSignals(QObject* parent = nullptr);
    ~ProcessSignals() override;
    Q_DISABLE_COPY_MOVE(ProcessSignals)

    bool installed() const { return notifier_ != nullptr; }

signals:
    void stopAsked();   // SIGTERM, SIGINT
    void reloadAsked(); // SIGHUP

private:
    void readPipe();

    std::unique_ptr<QSocketNotifier> notifier_;
};
