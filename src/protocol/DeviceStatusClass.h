#pragma once

#include <QtGlobal>

// The operator-busy bit of a "?/" poll, with device code "00".
inline constexpr qint16 kStatusOperatorBusy = 251;

// Statuses the register clears by itself: shown in the device-wait window,
// which polls until the register answers again.
inline bool IsWaitStatus(qint16 status)
{
    switch (status) {
    case 26: case 44: case 54: case 79: case 93: case 170: case 193: case 200: case 207:
    case 251: case 252:
        return true;
    default:
        return false;
    }
}

// Statuses after which the same command goes out again once the register has
// cleared: busy, paper end, operator at the device, busy with the tax server,
// busy with the operator. Nothing else is ever resent.
inline bool IsRetryStatus(qint16 status)
{
    switch (status) {
    case 26: case 44: case 54: case 170: case 251:
        return true;
    default:
        return false;
    }
}
