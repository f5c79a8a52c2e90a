#include "shell/HeadlessOperator.h"

#include "shell/ConsoleLine.h"

namespace {
using console::Level;
using console::say;

Level levelOf(Operator::Icon icon)
{
    switch (icon) {
    case Operator::Icon::Critical: return Level::Error;
    case Operator::Icon::Warning: return Level::Warning;
    case Operator::Icon::Question: return Level::Notice;
    case Operator::Icon::Information: break;
    }
    return Level::Info;
}

const QString kCancelled = QStringLiteral("Άκυρο");

QString flat(QString text)
{
    return text.replace(QLatin1Char('\r'), QLatin1Char(' ')).replace(QLatin1Char('\n'), QLatin1Char(' '));
}
} // namespace

HeadlessOperator::HeadlessOperator(const QStringList& answers)
    : answers_(answers.cbegin(), answers.cend())
{
}

Operator::Answer HeadlessOperator::message(const QString& title, const QString& text, Icon icon,
                                           Buttons buttons)
{
    say(levelOf(icon), QStringLiteral("[%1] %2").arg(title, flat(text)));
    switch (buttons) {
    case Buttons::YesNo:
    case Buttons::YesNoCancel:
        return Answer::Yes;
    case Buttons::RetryCancel:
        return Answer::Cancel;
    default:
        return Answer::Ok;
    }
}

void HeadlessOperator::openWaitWindow(const QString& caption, const QString& stateLine,
                                      const QString& description)
{
    lastWaitLine_ = stateLine + QLatin1Char(' ') + description;
    // Nobody closes this window headless: whoever reads the journal must know.
    say(Level::Warning, QStringLiteral("[%1] %2").arg(caption, flat(lastWaitLine_)));
}

void HeadlessOperator::updateWaitWindow(const QString& stateLine, const QString& description)
{
    const QString line = stateLine + QLatin1Char(' ') + description;
    if (line == lastWaitLine_)
        return; // a poll every 2 s would flood the terminal otherwise
    lastWaitLine_ = line;
    say(Level::Warning, flat(line));
}

void HeadlessOperator::closeWaitWindow()
{
    lastWaitLine_.clear();
}

std::optional<QString> HeadlessOperator::input(const QString& title, const QString& prompt,
                                               const QString&)
{
    const std::optional<QString> answer = nextAnswer();
    say(Level::Info, QStringLiteral("[%1] %2 -> %3").arg(title, flat(prompt), answer ? *answer : kCancelled));
    return answer;
}

std::optional<int> HeadlessOperator::choose(const QString& title, const QString& prompt,
                                            const QStringList& entries)
{
    say(Level::Info, QStringLiteral("[%1] %2").arg(title, flat(prompt)));
    for (qsizetype i = 0; i < entries.size(); ++i)
        say(Level::Info, QStringLiteral("  %1. %2").arg(i + 1).arg(flat(entries.at(i))));
    const std::optional<QString> answer = nextAnswer();
    bool number = false;
    const int chosen = answer ? answer->trimmed().toInt(&number) : 0;
    if (!number || chosen < 1 || chosen > entries.size()) {
        say(Level::Info, QStringLiteral("-> ") + kCancelled);
        return std::nullopt;
    }
    say(Level::Info, QStringLiteral("-> %1. %2").arg(chosen).arg(flat(entries.at(chosen - 1))));
    return chosen - 1;
}

std::optional<QString> HeadlessOperator::nextAnswer()
{
    if (answers_.empty())
        return std::nullopt;
    QString answer = answers_.front();
    answers_.pop_front();
    return answer;
}
