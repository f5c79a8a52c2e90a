#pragma once

#include <QString>

// What the engine's start and its start button need from outside the pipeline.
class StartParts {
public:
    virtual ~StartParts() = default;
    // Form_Load, once the link is open: the register's VAT rates into vats.dat.
    virtual void readDeviceVatRates() = 0;
    // The site's batch file, started without waiting for it.
    virtual void startBatchFile(const QString& path) = 0;
};
