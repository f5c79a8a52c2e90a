#pragma once

#include <QObject>
#include <QString>

struct ModuleVariables;

// The trace of the traffic with the register (clsDebug). Lines go to
// kerbanoLog.txt in the program's own directory, Windows-1253, CR LF, only
// while DebugEnabled is on; the window that shows them listens to lineLogged.
class CommunicationLog : public QObject {
    Q_OBJECT
public:
    CommunicationLog(const QString& programDirectory, const ModuleVariables& vars,
                     QObject* parent = nullptr);

    // One line without its line end. A failure to write loses the line only.
    void PrintCombine(const QString& text);

    // chkFile of the log window: lines also go to the file while checked.
    bool fileEnabled() const { return fileEnabled_; }
    void setFileEnabled(bool on) { fileEnabled_ = on; }

    QString filePath() const { return filePath_; }

signals:
    void lineLogged(const QString& text);

private:
    const ModuleVariables& vars_;
    QString filePath_;
    bool fileEnabled_ = true;
};
