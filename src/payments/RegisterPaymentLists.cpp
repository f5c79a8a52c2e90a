#include "payments/RegisterPaymentLists.h"

#include "link/DeviceLink.h"
#include "protocol/EftTerminalQuery.h"

namespace {
const QString kNoChoice = QStringLiteral("---");
const QString kInactiveTerminal = QStringLiteral("Ανενεργό");
constexpr int kTerminalSlots = 12;
constexpr int kPaymentSlots = 10;

bool cardCapable(qint16 type)
{
    return type == 1 || type == CLSpAY::kPreloadedCardType || type == 4;
}
} // namespace

int ReadEftDevice(DeviceLink& link, int slot, clsEFT& terminal)
{
    const auto answer = link.ask(EftTerminalQuery{slot});
    if (!answer)
        return -1;
    terminal.EFT_Name = answer->name;
    terminal.EFT_IP = answer->address;
    terminal.EFT_active = answer->active;
    return 0;
}

int ReadDevicePayment(DeviceLink& link, int slot, CLSpAY& payment)
{
    const auto answer = link.ask(PaymentDefinitionQuery{slot});
    if (!answer)
        return -1;
    payment.PAY_iD = static_cast<qint16>(slot);
    payment.setPAY_Name(answer->name);
    payment.PAY_active = answer->active;
    payment.PAY_type = answer->type;
    return 0;
}

PaymentLists FillPaymentLists(DeviceLink& link)
{
    PaymentLists lists;
    lists.terminals << ListRow{kNoChoice, 0};
    for (int slot = 1; slot <= kTerminalSlots; ++slot) {
        clsEFT terminal;
        if (ReadEftDevice(link, slot, terminal) != 0)
            continue;
        if (terminal.EFT_active)
            lists.terminals << ListRow{terminal.EFT_Name + QStringLiteral(", ") + terminal.EFT_IP,
                                       static_cast<qint16>(slot)};
        else
            lists.terminals << ListRow{kInactiveTerminal, 0};
    }
    lists.payments << ListRow{kNoChoice, 0};
    for (int slot = 1; slot <= kPaymentSlots; ++slot) {
        CLSpAY payment;
        if (ReadDevicePayment(link, slot, payment) != 0 || !payment.PAY_active
            || !cardCapable(payment.PAY_type))
            continue;
        lists.payments << ListRow{QString::number(payment.PAY_iD) + QStringLiteral(", ")
                                      + payment.PAY_Name(),
                                  payment.PAY_iD};
    }
    return lists;
}

int getItembyData(const QList<ListRow>& list, qint16 value)
{
    for (int i = 0; i < list.size(); ++i) {
        if (list.at(i).value == value)
            return i;
    }
    return 0;
}
