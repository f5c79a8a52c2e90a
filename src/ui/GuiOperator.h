#pragma once

#include "shell/Operator.h"

#include <QObject>
#include <QPointer>
#include <atomic>
#include <functional>
#include <memory>

class QWidget;
class WaitWindow;

// The person at the screen for an engine on another thread: each question
// is a blocking queued call into the GUI thread, so the engine waits for the
// answer while the window goes on painting. Called on the GUI thread itself
// (tests, a window's own use), it asks directly.
class GuiOperator final : public QObject, public Operator {
    Q_OBJECT
public:
    explicit GuiOperator(QObject* parent = nullptr);
    ~GuiOperator() override;

    // Dialogs are placed over this window.
    void setWindow(QWidget* window) { window_ = window; }
    QWidget* window() const { return window_; }

    Answer message(const QString& title, const QString& text, Icon icon, Buttons buttons) override;
    void openWaitWindow(const QString& caption, const QString& stateLine,
                        const QString& description) override;
    void updateWaitWindow(const QString& stateLine, const QString& description) override;
    bool waitWindowClosedByOperator() override { return waitClosed_.load(); }
    void closeWaitWindow() override;
    std::optional<QString> input(const QString& title, const QString& prompt,
                                 const QString& initial) override;
    std::optional<int> choose(const QString& title, const QString& prompt,
                              const QStringList& entries) override;

    // The program is ending: questions still asked are answered at once, as
    // cancelled, and a waiting window counts as closed.
    void release();
    bool released() const { return released_.load(); }

    // A window of a menu entry, asked from the engine the way the questions
    // are: f runs on the GUI thread and the engine waits for it. False, f not
    // run, once the program is ending.
    bool ask(const std::function<void()>& f);

    // frmErr, while the engine has it up; for the window's tests.
    WaitWindow* waitWindow() const { return wait_.get(); }

signals:
    // A wait window came up or went away (for screenshots and tests).
    void waitWindowShown();
    void waitWindowGone();
    // The program is ending: a window waiting for the person gives up.
    void releasing();

private:
    template <typename F>
    void onGuiThread(F&& f);

    QPointer<QWidget> window_;
    std::unique_ptr<WaitWindow> wait_;
    std::atomic<bool> waitClosed_{false};
    std::atomic<bool> released_{false};
};
