#include "ui/DebugWindow.h"

#include "ui/KerbanoIcon.h"
#include "ui/LogLineQueue.h"

#include <QCheckBox>
#include <QCloseEvent>
#include <QFontDatabase>
#include <QPlainTextEdit>
#include <QVBoxLayout>

namespace {
constexpr int kWidth = 560;
constexpr int kHeight = 420;
} // namespace

DebugWindow::DebugWindow(LogLineQueue& lines, QWidget* parent)
    : QWidget(parent, Qt::Window)
    , lines_(lines)
    , chkFile_(new QCheckBox(QStringLiteral("Ενεργοποίηση καταγραφής (kerbanoLog.txt)"), this))
    , txtDebug_(new QPlainTextEdit(this))
{
    setObjectName(QStringLiteral("frmDebug"));
    setWindowTitle(QStringLiteral("Επικοινωνία Ταμειακής"));
    setWindowIcon(KerbanoIcon());
    chkFile_->setObjectName(QStringLiteral("chkFile"));
    txtDebug_->setObjectName(QStringLiteral("txtDebug"));
    txtDebug_->setReadOnly(true);
    txtDebug_->setMaximumBlockCount(kViewLines);
    txtDebug_->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    txtDebug_->setLineWrapMode(QPlainTextEdit::NoWrap);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(chkFile_);
    layout->addWidget(txtDebug_);
    resize(kWidth, kHeight);
    connect(chkFile_, &QCheckBox::toggled, this, &DebugWindow::fileLogToggled);
    drainTimer_.setInterval(kDrainMs);
    connect(&drainTimer_, &QTimer::timeout, this, &DebugWindow::drain);
}

void DebugWindow::openBeside(const QWidget* form)
{
    txtDebug_->clear();
    lines_.take(); // what came before the opening is not shown
    chkFile_->setChecked(true);
    emit fileLogToggled(true);
    if (form && form->isVisible())
        move(form->frameGeometry().right() + 1, form->frameGeometry().top());
    drainTimer_.start();
    show();
    raise();
}

void DebugWindow::closeQuietly()
{
    drainTimer_.stop();
    lines_.take();
    hide();
}

void DebugWindow::drain()
{
    const QStringList lines = lines_.take();
    if (lines.isEmpty())
        return;
    // Control bytes of the frames stay in the file; the view shows their places.
    QString text = lines.join(QLatin1Char('\n'));
    for (QChar& c : text) {
        if (c.unicode() < 0x20 && c != QLatin1Char('\n'))
            c = QChar(0x2400 + c.unicode());
    }
    txtDebug_->appendPlainText(text);
}

QString DebugWindow::viewText() const
{
    return txtDebug_->toPlainText();
}

void DebugWindow::closeEvent(QCloseEvent* event)
{
    if (!isVisible()) {
        QWidget::closeEvent(event);
        return;
    }
    drainTimer_.stop();
    lines_.take();
    emit closedByOperator();
    QWidget::closeEvent(event);
}
