#pragma once

#include <QObject>
#include <QString>
#include <QTimer>
#include <functional>

class Engine;

// The resident life begun where param.ini is not (yet) there: a service has
// nobody to write it, so the life stays up and looks for the file as often as
// Timer1 would, and once it reads, starts as at the beginning. The engine has
// already said the file is missing; this says what the life does about it.
class ParamFileWait : public QObject {
    Q_OBJECT
public:
    // beforeStart runs once the file is there, before the start; false ends
    // the engine with refusedExitCode (another kerbano holds its port).
    ParamFileWait(Engine& engine, QString paramPath, std::function<bool()> beforeStart,
                  int refusedExitCode, QObject* parent = nullptr);

    // Waits when the engine's start found no param.ini; nothing otherwise.
    void beginIfMissing();
    // One look now, as the next timer's (SIGHUP asks for one too).
    void look();
    bool waiting() const { return timer_.isActive(); }

private:
    Engine& engine_;
    QString paramPath_;
    std::function<bool()> beforeStart_;
    int refusedExitCode_;
    QTimer timer_;
};
