#include "ui/GuiOperator.h"

#include "ui/WaitWindow.h"

#include <QInputDialog>
#include <QMessageBox>
#include <QThread>

namespace {

QMessageBox::Icon boxIcon(Operator::Icon icon)
{
    switch (icon) {
    case Operator::Icon::Information:
        return QMessageBox::Information;
    case Operator::Icon::Warning:
        return QMessageBox::Warning;
    case Operator::Icon::Question:
        return QMessageBox::Question;
    case Operator::Icon::Critical:
        break;
    }
    return QMessageBox::Critical;
}

QMessageBox::StandardButtons boxButtons(Operator::Buttons buttons)
{
    switch (buttons) {
    case Operator::Buttons::OkCancel:
        return QMessageBox::Ok | QMessageBox::Cancel;
    case Operator::Buttons::YesNo:
        return QMessageBox::Yes | QMessageBox::No;
    case Operator::Buttons::YesNoCancel:
        return QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel;
    case Operator::Buttons::RetryCancel:
        return QMessageBox::Retry | QMessageBox::Cancel;
    case Operator::Buttons::Ok:
        break;
    }
    return QMessageBox::Ok;
}

Operator::Answer answerOf(int button)
{
    switch (button) {
    case QMessageBox::Ok:
        return Operator::Answer::Ok;
    case QMessageBox::Yes:
        return Operator::Answer::Yes;
    case QMessageBox::No:
        return Operator::Answer::No;
    case QMessageBox::Retry:
        return Operator::Answer::Retry;
    default:
        return Operator::Answer::Cancel;
    }
}

// What a question asked after the end gets: nobody pressed anything.
Operator::Answer unanswered(Operator::Buttons buttons)
{
    return buttons == Operator::Buttons::Ok ? Operator::Answer::Ok : Operator::Answer::Cancel;
}

} // namespace

GuiOperator::GuiOperator(QObject* parent)
    : QObject(parent)
{
}

GuiOperator::~GuiOperator() = default;

template <typename F>
void GuiOperator::onGuiThread(F&& f)
{
    if (QThread::currentThread() == thread()) {
        f();
        return;
    }
    if (released_.load())
        return;
    QMetaObject::invokeMethod(this, std::forward<F>(f), Qt::BlockingQueuedConnection);
}

Operator::Answer GuiOperator::message(const QString& title, const QString& text, Icon icon,
                                      Buttons buttons)
{
    Answer answer = unanswered(buttons);
    onGuiThread([&] {
        if (released_.load())
            return;
        // The register's messages break their line with a bare CR.
        QString shown = text;
        shown.replace(QStringLiteral("\r\n"), QStringLiteral("\n")).replace(QLatin1Char('\r'), QLatin1Char('\n'));
        QMessageBox box(boxIcon(icon), title, shown, boxButtons(buttons), window_);
        // Over everything, as the system-modal box of the register's messages.
        box.setWindowFlag(Qt::WindowStaysOnTopHint);
        answer = answerOf(box.exec());
    });
    return answer;
}

void GuiOperator::openWaitWindow(const QString& caption, const QString& stateLine,
                                 const QString& description)
{
    waitClosed_ = false;
    onGuiThread([&] {
        if (released_.load()) {
            waitClosed_ = true;
            return;
        }
        if (!wait_) {
            wait_ = std::make_unique<WaitWindow>();
            connect(wait_.get(), &WaitWindow::closedByOperator, this, [this] { waitClosed_ = true; });
        }
        wait_->show(caption, stateLine, description);
        emit waitWindowShown();
    });
}

void GuiOperator::updateWaitWindow(const QString& stateLine, const QString& description)
{
    onGuiThread([&] {
        if (wait_)
            wait_->setLines(stateLine, description);
    });
}

void GuiOperator::closeWaitWindow()
{
    onGuiThread([&] {
        if (wait_)
            wait_->dismiss();
        emit waitWindowGone();
    });
}

std::optional<QString> GuiOperator::input(const QString& title, const QString& prompt,
                                          const QString& initial)
{
    std::optional<QString> answer;
    onGuiThread([&] {
        if (released_.load())
            return;
        bool ok = false;
        const QString text =
            QInputDialog::getText(window_, title, prompt, QLineEdit::Normal, initial, &ok);
        if (ok)
            answer = text;
    });
    return answer;
}

std::optional<int> GuiOperator::choose(const QString& title, const QString& prompt,
                                       const QStringList& entries)
{
    std::optional<int> answer;
    onGuiThread([&] {
        if (released_.load() || entries.isEmpty())
            return;
        bool ok = false;
        const QString chosen =
            QInputDialog::getItem(window_, title, prompt, entries, 0, false, &ok);
        if (ok)
            answer = static_cast<int>(entries.indexOf(chosen));
    });
    return answer;
}

void GuiOperator::release()
{
    released_ = true;
    waitClosed_ = true;
    emit releasing();
}

bool GuiOperator::ask(const std::function<void()>& f)
{
    bool ran = false;
    onGuiThread([&] {
        if (released_.load())
            return;
        f();
        ran = true;
    });
    return ran;
}
