#include "payments/PaymentMapDialog.h"

#include "link/DeviceLink.h"
#include "payments/PaymentMap.h"
#include "protocol/DeviceCommands.h"
#include "shell/ModuleVariables.h"
#include "shell/Operator.h"

#include <QStringList>

namespace {

const QString& kTitle = kPaymentMapTitle;
const QString kNoAlternative = QStringLiteral("--------------");
constexpr qint16 kFlagOn = -1;

// A text box's number by the integer conversion of its text.
bool numeric(const QString& text, int* value = nullptr)
{
    bool ok = false;
    const int n = text.trimmed().toInt(&ok);
    if (ok && value)
        *value = n;
    return ok;
}

QStringList texts(const QList<ListRow>& rows)
{
    QStringList out;
    for (const ListRow& row : rows)
        out << row.text;
    return out;
}

} // namespace

PaymentMapDialog::PaymentMapDialog(DeviceLink& link, Operator& op, const ModuleVariables& vars,
                                   QString payEftPath)
    : link_(link)
    , op_(op)
    , vars_(vars)
    , payEftPath_(std::move(payEftPath))
{
}

bool PaymentMapDialog::openLinkIfClosed()
{
    if (link_.isConnected())
        return true;
    qint16 status = 0;
    QString reply;
    link_.OpenDeviceLink(vars_.port, status, reply, false);
    return status == 0;
}

void PaymentMapDialog::closeLinkIfOpen()
{
    if (link_.isConnected())
        link_.CloseDeviceLink();
}

void PaymentMapDialog::refresh()
{
    values.txtRetries = QStringLiteral("0");
    values.txtPayID = QStringLiteral("0");
    openLinkIfClosed();
    lists = FillPaymentLists(link_);
    values.cmbECREFT = 0;
    values.cmbECRPayment = 0;
    closeLinkIfOpen();
}

bool PaymentMapDialog::cmdFind()
{
    int payment = 0;
    if (!numeric(values.txtPay, &payment))
        return false;
    values.txtPayID = QStringLiteral("0");
    PayEftRecord record;
    record.payId = static_cast<qint16>(payment);
    if (payment < 1 || payment > 32767 || ReadPayEftRecord(payEftPath_, record) != 0)
        return false;
    values.cmbECRPayment = getItembyData(lists.payments, record.ecrPayment);
    values.cmbECREFT = getItembyData(lists.terminals, record.ecrEft);
    values.chkActive = record.isActive();
    values.chk355 = record.isPreCollect();
    values.txtRetries = QString::number(record.retries);
    values.txtPayID = QString::number(record.altPayment);
    txtPayIDChanged(values.txtPayID);
    return true;
}

void PaymentMapDialog::txtPayIDChanged(const QString& text)
{
    int alternative = 0;
    if (!numeric(text, &alternative))
        return;
    openLinkIfClosed();
    if (alternative < 1) {
        values.txtPAYEDDesc = kNoAlternative;
    } else {
        CLSpAY payment;
        if (ReadDevicePayment(link_, alternative, payment) == 0)
            values.txtPAYEDDesc = payment.PAY_Name();
    }
    closeLinkIfOpen();
}

bool PaymentMapDialog::save()
{
    if (values.cmbECRPayment < 0 || values.cmbECRPayment >= lists.payments.size()
        || values.cmbECREFT < 0 || values.cmbECREFT >= lists.terminals.size())
        return false;
    int number = 0;
    int retries = 0;
    int alternative = 0;
    numeric(values.txtPay, &number);
    numeric(values.txtRetries, &retries);
    numeric(values.txtPayID, &alternative);
    PayEftRecord record;
    record.payId = static_cast<qint16>(number);
    record.ecrPayment = lists.payments.at(values.cmbECRPayment).value;
    record.ecrEft = lists.terminals.at(values.cmbECREFT).value;
    record.active = values.chkActive ? kFlagOn : 0;
    record.preCollect = values.chk355 ? kFlagOn : 0;
    record.retries = static_cast<qint16>(retries);
    record.altPayment = static_cast<qint16>(alternative);
    // A payment can't fall back on itself.
    if (record.altPayment == record.ecrPayment) {
        record.altPayment = 0;
        values.txtPayID = QStringLiteral("0");
    }
    if (WritePayEftRecord(payEftPath_, record) != 0)
        return false;
    if (record.altPayment > 0) {
        openLinkIfClosed();
        link_.send(DeviceCommands::ProgramAlternativePayment(record.altPayment, values.txtPAYEDDesc));
        closeLinkIfOpen();
    }
    return true;
}

bool PaymentMapDialog::cmddelete()
{
    int number = 0;
    if (!numeric(values.txtPay, &number))
        return false;
    PayEftRecord blank;
    blank.payId = static_cast<qint16>(number);
    return WritePayEftRecord(payEftPath_, blank) == 0;
}

// One record through the Operator's questions, in the order of the window's
// controls. A cancelled question leaves its control as it stands.
void PaymentMapDialog::askRecord()
{
    const QStringList noYes{QStringLiteral("Όχι"), QStringLiteral("Ναι")};
    if (const auto row = op_.choose(kTitle, QStringLiteral("# πληρωμής Ταμειακής"), texts(lists.payments)))
        values.cmbECRPayment = *row;
    if (const auto row = op_.choose(kTitle, QStringLiteral("# EFT POS"), texts(lists.terminals)))
        values.cmbECREFT = *row;
    if (const auto row = op_.choose(kTitle, QStringLiteral("Ενεργή"), noYes))
        values.chkActive = *row == 1;
    if (const auto row = op_.choose(kTitle, QStringLiteral("Προείσπραξη"), noYes))
        values.chk355 = *row == 1;
    if (const auto text = op_.input(kTitle, QStringLiteral("Προσπάθειες"), values.txtRetries))
        values.txtRetries = *text;
    if (const auto text = op_.input(kTitle, QStringLiteral("Εναλλακτική πληρωμή"), values.txtPayID)) {
        values.txtPayID = *text;
        txtPayIDChanged(values.txtPayID);
    }
    if (const auto text = op_.input(kTitle, QStringLiteral("Περιγραφή εναλλακτικής πληρωμής"),
                                    values.txtPAYEDDesc))
        values.txtPAYEDDesc = *text;
}

void PaymentMapDialog::run()
{
    refresh();
    const QStringList actions{QStringLiteral("Αποθήκευση"), QStringLiteral("Διαγραφή"),
                              QStringLiteral("Έξοδος")};
    for (;;) {
        const auto number = op_.input(kTitle, QStringLiteral("# πληρωμής Kerbano"), values.txtPay);
        if (!number)
            return;
        values.txtPay = *number;
        if (!cmdFind())
            continue;
        askRecord();
        const auto action = op_.choose(kTitle, kTitle, actions);
        if (action == 0)
            save();
        else if (action == 1)
            cmddelete();
        else
            return;
    }
}

void PaymentMapDialog::run(PaymentMapWindow& window)
{
    using Press = PaymentMapWindow::Press;
    window.showReading();
    refresh();
    while (const auto pressed = window.waitForPress(values, lists)) {
        values = pressed->values;
        switch (pressed->press) {
        case Press::cmdFind:
            cmdFind();
            break;
        case Press::txtPayIDChanged:
            txtPayIDChanged(values.txtPayID);
            break;
        case Press::save:
            save();
            break;
        case Press::cmddelete:
            cmddelete();
            break;
        case Press::cmdRef:
            window.showReading();
            refresh();
            break;
        }
    }
}
