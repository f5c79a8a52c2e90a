#include "ui/WaitWindow.h"

#include <QGuiApplication>
#include <QLabel>
#include <QScreen>
#include <QVBoxLayout>

namespace {
constexpr int kDescriptionWidth = 360;
}

WaitWindow::WaitWindow(QWidget* parent)
    : QDialog(parent, Qt::Dialog | Qt::WindowStaysOnTopHint | Qt::WindowTitleHint
                          | Qt::WindowCloseButtonHint)
    , lblErr_(new QLabel(this))
    , lblErrDesc_(new QLabel(this))
{
    setObjectName(QStringLiteral("frmErr"));
    setWindowTitle(QStringLiteral("Μήνυμα Ταμειακής (%1)"));
    lblErr_->setObjectName(QStringLiteral("lblErr"));
    lblErrDesc_->setObjectName(QStringLiteral("lblErrDesc"));
    QFont bold = lblErr_->font();
    bold.setBold(true);
    lblErr_->setFont(bold);
    lblErr_->setText(QStringLiteral("Status [%1]"));
    lblErrDesc_->setWordWrap(true);
    lblErrDesc_->setMinimumWidth(kDescriptionWidth);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(lblErr_);
    layout->addWidget(lblErrDesc_);
    // While it is up the main form cannot be used.
    setWindowModality(Qt::ApplicationModal);
}

void WaitWindow::show(const QString& caption, const QString& stateLine, const QString& description)
{
    setWindowTitle(caption);
    setLines(stateLine, description);
    dismissing_ = false;
    adjustSize();
    if (const QScreen* screen = QGuiApplication::primaryScreen())
        move(screen->availableGeometry().topLeft());
    QDialog::show();
    raise();
}

void WaitWindow::setLines(const QString& stateLine, const QString& description)
{
    lblErr_->setText(stateLine);
    lblErrDesc_->setText(description);
}

void WaitWindow::dismiss()
{
    dismissing_ = true;
    hide();
    dismissing_ = false;
}

QString WaitWindow::stateLine() const
{
    return lblErr_->text();
}

QString WaitWindow::description() const
{
    return lblErrDesc_->text();
}

void WaitWindow::reject()
{
    if (!dismissing_)
        emit closedByOperator();
    QDialog::hide();
}
