#pragma once

#include <QString>
#include <optional>

class Engine;

// Print on arrival: when the print-file folder changes, the engine looks at
// once instead of at Timer1's next tick. One job per look, as per tick; after a
// job whose file is gone it looks again straight away, so files that landed
// during the job (their folder events swallowed while it ran) go next, one
// by one, until none is left. A file seen still being written is looked at
// again a little later for a short while; past that, Timer1 takes it. A file
// that stays after its job (a program file) waits for Timer1, never a loop.
//
// The platform's folder watch and one-shot timer stay outside (EngineTimers),
// so the decisions here run on the virtual clock in tests.
class ArrivalWatch {
public:
    // A file not finished yet is looked at again this soon, this many times
    // after each change of the folder; then Timer1's ticks take over.
    static constexpr int kUnfinishedRetryMs = 100;
    static constexpr int kUnfinishedRetries = 20;

    explicit ArrivalWatch(Engine& engine);

    // The folder changed: a look is due.
    void folderChanged();
    // A look is owed: the folder changed, or the engine was busy when it did.
    bool due() const { return due_; }
    // One look; the pause before the next one, if any.
    std::optional<int> look();

    // The folder to watch now, from the settings of the last tick; empty:
    // none. A folder that went away is watched again once it is back.
    QString folder() const;

    int looks() const { return looks_; }

private:
    Engine& engine_;
    bool due_ = false;
    int retriesLeft_ = 0;
    int looks_ = 0;
};
