#pragma once

#include <QLocale>
#include <QString>
#include <QtGlobal>

class DeviceLink;

// At start, once the link is open: the register's five VAT rates replace
// vats.dat (48 bytes, a sixth rate of 0 behind them). A register that refuses
// "e/" leaves the old file; a failure to write is not reported. Returns the
// status of "e/".
qint16 ReadDeviceVatRates(DeviceLink& link, const QString& vatsPath,
                          const QLocale& locale = QLocale::system());
