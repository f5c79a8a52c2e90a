#pragma once

// What the menu actions must know before they enter the engine: whether it
// has a job in hand and whether the link is talking to the register. While
// either holds, an action waits.
class EngineActivity {
public:
    virtual ~EngineActivity() = default;
    // A start, a tick or a print job is running.
    virtual bool jobInProgress() const = 0;
    // A conversation with the register is in progress (a wait window's
    // polling included, which runs the event loop).
    virtual bool inConversation() const = 0;
};
