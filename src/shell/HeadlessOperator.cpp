#include "shell/HeadlessOperator.h"

#include <cstdio>

namespace {
void say(const QString& text)
{
    std::fprintf(stderr, "%s\n", text.toUtf8().constData());
    std::fflush(stderr);
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

Operator::Answer HeadlessOperator::message(const QString& title, const QString& text, Icon,
                                           Buttons buttons)
{
    say(QStringLiteral("[%1] %2").arg(title, flat(text)));
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
    say(QStringLiteral("[%1] %2").arg(caption, flat(lastWaitLine_)));
}

void HeadlessOperator::updateWaitWindow(const QString& stateLine, const QString& description)
{
    const QString line = stateLine + QLatin1Char(' ') + description;
    if (line == lastWaitLine_)
        return; // a poll every 2 s would flood the terminal otherwise
    lastWaitLine_ = line;
    say(flat(line));
}

void HeadlessOperator::closeWaitWindow()
{
    lastWaitLine_.clear();
}

std::optional<QString> HeadlessOperator::input(const QString& title, const QString& prompt,
                                               const QString&)
{
    const std::optional<QString> answer = nextAnswer();
    say(QStringLiteral("[%1] %2 -> %3").arg(title, flat(prompt), answer ? *answer : kCancelled));
    return answer;
}

std::optional<int> HeadlessOperator::choose(const QString& title, const QString& prompt,
                                            const QStringList& entries)
{
    say(QStringLiteral("[%1] %2").arg(title, flat(prompt)));
    for (qsizetype i = 0; i < entries.size(); ++i)
        say(QStringLiteral("  %1. %2").arg(i + 1).arg(flat(entries.at(i))));
    const std::optional<QString> answer = nextAnswer();
    bool number = false;
    const int chosen = answer ? answer->trimmed().toInt(&number) : 0;
    if (!number || chosen < 1 || chosen > entries.size()) {
        say(QStringLiteral("-> ") + kCancelled);
        return std::nullopt;
    }
    say(QStringLiteral("-> %1. %2").arg(chosen).arg(flat(entries.at(chosen - 1))));
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
