#pragma once

#include <QString>

// Where the session leaves a trace of each command it hands to the register
// during a job, so that a job cut off halfway can be reconciled with the
// register by the next life: each command just before it goes out, and once
// the register has confirmed it. The trail decides what it keeps.
class CommandTrail {
public:
    virtual ~CommandTrail() = default;
    // cardCommand: a card payment, sent once and never repeated blindly.
    virtual void sending(const QString& command, bool cardCommand) = 0;
    virtual void confirmed(const QString& command) = 0;
};
