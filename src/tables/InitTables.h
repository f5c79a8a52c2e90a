#pragma once

#include <QString>

class DeviceLink;
class Operator;
class clsind;

// The menu action "Αρχικοποίηση Τραπεζιών": asks how many tables there are
// and titles each "ΤΡΑΠΕΖΙ-<n>" on the register, stopping at the first refusal.
// caption heads the question; port opens the link when it is closed.
void InitTables(DeviceLink& link, Operator& op, clsind& progress, const QString& caption,
                const QString& port);
