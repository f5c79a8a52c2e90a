#pragma once

#include "shell/FormState.h"

#include <QHash>
#include <QMainWindow>

class FormMenus;
class QLabel;
class QPushButton;
class TrayIcon;

// The main form Kerbano: its label pairs, the status line comstattxt, the
// two buttons, the main menu and the tray icon. It mirrors the FormState the
// engine hands it and only asks: every click becomes a named action for the
// engine's thread. Its close box hides it; the menu entry end ends.
class MainWindow : public QMainWindow {
    Q_OBJECT
public:
    explicit MainWindow(QWidget* parent = nullptr);
    ~MainWindow() override;

    FormMenus& menus() const { return *menus_; }
    TrayIcon& tray() const { return *tray_; }
    const FormState& shownState() const { return shown_; }
    // A label or button by its control name (comstattxt, Command1, ...).
    QWidget* control(const QString& name) const { return controls_.value(name); }
    QString text(const QString& name) const;

    // fShow and fHide act at once, whatever the engine is doing.
    void showForm();
    void hideForm();

public slots:
    void showState(const FormState& state);

signals:
    // A menu entry, a tray entry or a button (Command1 as pStart, Command2 as
    // pStop), by its menu name.
    void actionRequested(const QString& name);
    // The window was shown or hidden by the person; the form's state follows.
    void shownChanged(bool shown);

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    void entryChosen(const QString& name);
    QLabel* addLabel(const QString& name, const QString& text = QString());
    void applyShown(bool shown);

    QHash<QString, QWidget*> controls_;
    QPushButton* command1_;
    QPushButton* command2_;
    FormMenus* menus_;
    TrayIcon* tray_;
    FormState shown_;
    bool firstState_ = true;
};
