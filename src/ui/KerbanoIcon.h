#pragma once

#include <QIcon>

// The program's icon, for the form, its windows and the tray.
QIcon KerbanoIcon();
