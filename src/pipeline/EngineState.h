#pragma once

#include <QMetaType>

// The states of the main form, as its status line and caption tell them.
enum class EngineState {
    Starting,   // before Form_Load has opened the link
    LinkFailed, // the link did not open at start; nothing runs until the end
    Searching,  // Timer2 asks the register
    OffLine,    // three searches failed
    Ready,      // the register answered
    Polling,    // Timer1 looks for print files
    Printing,   // a job runs
    Stopped,    // Command2 stopped polling
};

Q_DECLARE_METATYPE(EngineState)
