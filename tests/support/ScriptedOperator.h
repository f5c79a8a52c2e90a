#pragma once

#include "shell/Operator.h"

#include <QList>
#include <deque>

// An Operator for tests: records everything shown and answers from scripts.
class ScriptedOperator final : public Operator {
public:
    struct Shown {
        QString title;
        QString text;
        Icon icon;
    };
    struct WaitEvent {
        enum Kind { Open, Update, Close } kind;
        QString caption;
        QString stateLine;
        QString description;
    };

    // Answers given to message(), in order; Ok once they run out.
    std::deque<Answer> answers;
    std::deque<std::optional<QString>> inputs;
    std::deque<std::optional<int>> choices;
    // The person closes the wait window after this many checks (-1: never).
    int closeWaitWindowAfterChecks = -1;

    QList<Shown> messages;
    QList<WaitEvent> waitEvents;
    QStringList inputPrompts;
    int waitChecks = 0;

    Answer message(const QString& title, const QString& text, Icon icon, Buttons) override
    {
        messages.append({title, text, icon});
        if (answers.empty())
            return Answer::Ok;
        const Answer a = answers.front();
        answers.pop_front();
        return a;
    }
    void openWaitWindow(const QString& caption, const QString& stateLine,
                        const QString& description) override
    {
        waitChecks = 0;
        waitEvents.append({WaitEvent::Open, caption, stateLine, description});
    }
    void updateWaitWindow(const QString& stateLine, const QString& description) override
    {
        waitEvents.append({WaitEvent::Update, {}, stateLine, description});
    }
    bool waitWindowClosedByOperator() override
    {
        ++waitChecks;
        return closeWaitWindowAfterChecks >= 0 && waitChecks > closeWaitWindowAfterChecks;
    }
    void closeWaitWindow() override { waitEvents.append({WaitEvent::Close, {}, {}, {}}); }
    std::optional<QString> input(const QString&, const QString& prompt, const QString& initial) override
    {
        inputPrompts.append(prompt);
        if (inputs.empty())
            return initial;
        const bool answered = inputs.front().has_value();
        const QString text = answered ? *inputs.front() : QString();
        inputs.pop_front();
        if (!answered)
            return std::nullopt;
        return text;
    }
    std::optional<int> choose(const QString&, const QString& prompt, const QStringList&) override
    {
        inputPrompts.append(prompt);
        if (choices.empty())
            return std::nullopt;
        auto v = choices.front();
        choices.pop_front();
        return v;
    }
};
