#pragma once

struct Arguments;

// The life with no window: the status line on stdout, the person on stderr.
// Returns the process's exit code.
int runHeadless(const Arguments& args);
