#pragma once

#include <QTimer>
#include <QWidget>

class LogLineQueue;
class QCheckBox;
class QPlainTextEdit;

// frmDebug: the communication log, live. Each opening starts with an empty
// view and chkFile checked; the view keeps the last kViewLines lines, the
// file kerbanoLog.txt keeps everything.
class DebugWindow : public QWidget {
    Q_OBJECT
public:
    static constexpr int kViewLines = 5000;
    static constexpr int kDrainMs = 100;

    explicit DebugWindow(LogLineQueue& lines, QWidget* parent = nullptr);

    // Opens beside the main form, its left edge at the form's right edge.
    void openBeside(const QWidget* form);
    // Taken away by the menu entry: the log is already off.
    void closeQuietly();
    QString viewText() const;
    QCheckBox& chkFile() const { return *chkFile_; }

public slots:
    // Takes what waits in the queue into the view.
    void drain();

signals:
    void fileLogToggled(bool on);
    // Closed by its own close box: the log goes off.
    void closedByOperator();

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    LogLineQueue& lines_;
    QCheckBox* chkFile_;
    QPlainTextEdit* txtDebug_;
    QTimer drainTimer_;
};
