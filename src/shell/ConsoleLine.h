#pragma once

#include <QString>

// Lines for the person or the journal on stderr, each with its level. Under
// systemd (stderr is the journal's stream) a line starts with the sd-daemon
// prefix "<N>", which journald takes as the line's priority; on a terminal
// it starts with the level's word.
namespace console {

enum class Level { Error = 3, Warning = 4, Notice = 5, Info = 6 };

// "<4>" or "warning: "
QString levelPrefix(Level level, bool toJournal);

// True when stderr is the stream systemd connected to the journal.
bool stderrIsJournal();

// One line, written and flushed at once.
void say(Level level, const QString& text);

} // namespace console
