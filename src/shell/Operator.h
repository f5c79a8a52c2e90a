#pragma once

#include <QString>
#include <QStringList>
#include <optional>

// The person at the screen, as the engine reaches them: message boxes, the
// device-wait window and small input dialogs. The GUI shows real dialogs,
// headless writes to stderr and answers OK, tests script the answers.
class Operator {
public:
    enum class Icon { Information, Warning, Critical, Question };
    enum class Buttons { Ok, OkCancel, YesNo, YesNoCancel, RetryCancel };
    enum class Answer { Ok, Cancel, Yes, No, Retry };

    virtual ~Operator() = default;

    // A modal message box; returns the button pressed.
    virtual Answer message(const QString& title, const QString& text, Icon icon,
                           Buttons buttons = Buttons::Ok) = 0;

    // The device-wait window (frmErr). The engine polls the device and calls
    // update; the window itself never talks to the device.
    virtual void openWaitWindow(const QString& caption, const QString& stateLine,
                                const QString& description) = 0;
    virtual void updateWaitWindow(const QString& stateLine, const QString& description) = 0;
    // True once the person has closed the window since it was opened.
    virtual bool waitWindowClosedByOperator() = 0;
    virtual void closeWaitWindow() = 0;

    // A line of text; nothing when the person cancels.
    virtual std::optional<QString> input(const QString& title, const QString& prompt,
                                         const QString& initial = QString()) = 0;
    // One of several entries; its index, or nothing when the person cancels.
    virtual std::optional<int> choose(const QString& title, const QString& prompt,
                                      const QStringList& entries) = 0;
};
