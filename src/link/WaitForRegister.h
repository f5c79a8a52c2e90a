#pragma once

#include <QtGlobal>

class Clock;
class DeviceLink;
class Operator;

// Closes whatever is open on the register with a payment of zero, asking
// again every second, and shows the device-wait window while the register
// refuses. A register that answers 70 gets the release sequence. Returns the
// last status: 0, or the register's status when the person closed the window
// to stop waiting or the wait was given up (a signal asked the process to
// end, or the wait passed its limit: the link decides, between two tries).
qint16 WaitForRegister(DeviceLink& link, Operator& op, Clock& clock);
