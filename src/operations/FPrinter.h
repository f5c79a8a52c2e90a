#pragma once

#include <QString>
#include <QVariant>

// FPrinterWrite turns a named operation (plu, tot, 0Z, ...) into register
// commands. a, b and c are loosely typed and some operations write them back.
// Everything learnt from the register is left in ReceiptState's LastStatus and
// LastReply. An unknown operation does nothing.
class FPrinter {
public:
    virtual ~FPrinter() = default;
    virtual void FPrinterWrite(const QString& text, QVariant& a, QVariant& b, QVariant& c,
                               const QString& op) = 0;

    void FPrinterWrite(const QString& text, const QString& op)
    {
        QVariant a, b, c;
        FPrinterWrite(text, a, b, c, op);
    }
};
