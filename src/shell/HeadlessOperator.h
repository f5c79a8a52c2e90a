#pragma once

#include "shell/Operator.h"

// No window: every message goes to stderr and is answered as OK.
class HeadlessOperator final : public Operator {
public:
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
    QString lastWaitLine_;
};
