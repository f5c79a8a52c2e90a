#pragma once

#include <QObject>

class QIcon;
class QMenu;
class QSystemTrayIcon;
class QWidget;

// The icon in the notification area, its tip (the form's caption, cut to 63
// characters) and the popup sysMenu on a click. Where the desktop has no
// tray, there is no icon, and the window says so once when it would hide.
class TrayIcon : public QObject {
    Q_OBJECT
public:
    TrayIcon(QMenu& menu, const QIcon& icon, QObject* parent = nullptr);

    bool available() const;
    QString tip() const { return tip_; }
    void setTip(const QString& tip);

    // The one notice that the window stays because there is no tray.
    void sayUnavailableOnce(QWidget* over);
    bool saidUnavailable() const { return said_; }

    static QString unavailableText();

private:
    QSystemTrayIcon* icon_ = nullptr;
    QString tip_;
    bool said_ = false;
};
