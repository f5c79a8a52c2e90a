#include "shell/HeadlessOperator.h"

#include <cstdio>

namespace {
void say(const QString& text)
{
    std::fprintf(stderr, "%s\n", text.toUtf8().constData());
    std::fflush(stderr);
}

QString flat(QString text)
{
    return text.replace(QLatin1Char('\r'), QLatin1Char(' ')).replace(QLatin1Char('\n'), QLatin1Char(' '));
}
} // namespace

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
                                               const QString& initial)
{
    say(QStringLiteral("[%1] %2 -> %3").arg(title, flat(prompt), initial));
    return initial;
}

std::optional<int> HeadlessOperator::choose(const QString& title, const QString& prompt,
                                            const QStringList& entries)
{
    if (entries.isEmpty())
        return std::nullopt;
    say(QStringLiteral("[%1] %2 -> %3").arg(title, flat(prompt), entries.first()));
    return 0;
}
