#pragma once

#include <QtGlobal>

// KERBANO_POSIX is 1 where the code may call POSIX itself (signals through a
// pipe, the write lease of the file readiness check, the journal's stream
// check) and 0 elsewhere, where those parts fall back on plain Qt. The build
// option KERBANO_FORCE_NO_UNIX makes it 0 on a Unix machine too, so that the
// branches a Windows build takes are compiled where Windows is not at hand.
// Test with #if, never #ifdef.
#if defined(Q_OS_UNIX) && !defined(KERBANO_FORCE_NO_UNIX)
#define KERBANO_POSIX 1
#else
#define KERBANO_POSIX 0
#endif
