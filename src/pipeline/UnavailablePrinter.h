#pragma once

#include "operations/FPrinter.h"

struct ReceiptState;

// Stands in for FPrinterWrite until the operations are wired in: sends
// nothing and leaves the "no reply" status behind.
class UnavailablePrinter final : public FPrinter {
public:
    explicit UnavailablePrinter(ReceiptState& state);
    void FPrinterWrite(const QString& text, QVariant& a, QVariant& b, QVariant& c,
                       const QString& op) override;
    using FPrinter::FPrinterWrite;

private:
    ReceiptState& state_;
};
