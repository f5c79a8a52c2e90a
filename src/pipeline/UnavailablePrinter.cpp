#include "pipeline/UnavailablePrinter.h"

#include "operations/ReceiptState.h"

UnavailablePrinter::UnavailablePrinter(ReceiptState& state)
    : state_(state)
{
}

void UnavailablePrinter::FPrinterWrite(const QString&, QVariant&, QVariant&, QVariant&, const QString&)
{
    state_.LastStatus = -4;
    state_.LastReply = QStringLiteral("Ο Φορολ. Μηχανισμός δεν Απαντά σε εντολή !");
}
