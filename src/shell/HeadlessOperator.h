#pragma once

#include "shell/Operator.h"

#include <QStringList>
#include <deque>

// No window: every message goes to stderr and is answered as OK. Input and
// choice dialogs take the answers given on the command line, in order; with
// none left they are cancelled.
class HeadlessOperator final : public Operator {
public:
    // answers: for input() the text itself; for choose() the entry's number
    // as the list on stderr shows it, counted from 1.
    explicit HeadlessOperator(const QStringList& answers = {});

    Answer message(const QString& title, const QString& text, Icon icon, Buttons buttons) override;
    void openWaitWindow(const QString& caption, const QString& stateLine,
                        const QString& description) override;
    void updateWaitWindow(const QString& stateLine, const QString& description) override;
    bool waitWindowClosedByOperator() override { return false; }
    void closeWaitWindow() override;
    std::optional<QString> input(const QString& title, const QString& prompt,
                                 const QString& initial) override;
    std::optional<int> choose(const QString& title, const QString& prompt,
                              const QStringList& entries) override;

private:
    std::optional<QString> nextAnswer();

    QString lastWaitLine_;
    std::deque<QString> answers_;
};
