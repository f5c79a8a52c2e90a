#pragma once

struct Arguments;
class PortLock;

// The life with no window: the status line on stdout, the person on stderr.
// Returns the process's exit code: the engine's, or one of these.
int runHeadless(const Arguments& args);

// Takes the lock of the port this life will open, in any life; false (and
// said on stderr) when another kerbano holds it.
bool takePortOfLife(const Arguments& args, PortLock& lock);

namespace headless {
// No param.ini for the one menu action of --run (the resident life waits for it).
constexpr int kExitNoParamFile = 1;
// The command-line life gave up on a register that stayed busy past --wait-limit.
constexpr int kExitWaitLimit = 3;
// Another kerbano holds the port.
constexpr int kExitPortTaken = 6;
} // namespace headless
