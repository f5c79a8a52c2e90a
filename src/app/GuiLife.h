#pragma once

// The life with the window: the main form and the tray icon, the engine on a
// thread of its own. kerbano chooses it unless --headless (or --help,
// --version) is given.
bool WantsWindow(int argc, char** argv);

// Returns the process's exit code.
int runGui(int argc, char** argv);
