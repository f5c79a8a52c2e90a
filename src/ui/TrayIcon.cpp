#include "ui/TrayIcon.h"

#include <QMenu>
#include <QMessageBox>
#include <QSystemTrayIcon>

namespace {
constexpr int kTipLength = 63;
}

TrayIcon::TrayIcon(QMenu& menu, const QIcon& icon, QObject* parent)
    : QObject(parent)
{
    if (!QSystemTrayIcon::isSystemTrayAvailable())
        return;
    icon_ = new QSystemTrayIcon(icon, this);
    icon_->setContextMenu(&menu);
    // A left click pops the menu up too, as the right one does.
    connect(icon_, &QSystemTrayIcon::activated, this, [this, &menu](QSystemTrayIcon::ActivationReason reason) {
        if (reason == QSystemTrayIcon::Trigger)
            menu.popup(icon_->geometry().center());
    });
    icon_->show();
}

bool TrayIcon::available() const
{
    return icon_ != nullptr;
}

void TrayIcon::setTip(const QString& tip)
{
    tip_ = tip.left(kTipLength);
    if (icon_)
        icon_->setToolTip(tip_);
}

QString TrayIcon::unavailableText()
{
    return QStringLiteral("Η επιφάνεια εργασίας δεν έχει περιοχή ειδοποιήσεων: "
                          "το παράθυρο του Kerbano μένει ανοικτό.");
}

void TrayIcon::sayUnavailableOnce(QWidget* over)
{
    if (said_)
        return;
    said_ = true;
    auto* box = new QMessageBox(QMessageBox::Information, QStringLiteral("Μύνημα Kerbano"),
                                unavailableText(), QMessageBox::Ok, over);
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->setObjectName(QStringLiteral("noTrayNotice"));
    box->open();
}
