#pragma once

#include "payments/RegisterPaymentLists.h"

#include <QString>
#include <optional>

class DeviceLink;
class Operator;
struct ModuleVariables;

// What frmEFT holds while a record is edited.
struct PaymentMapFormValues {
    QString txtPay;
    int cmbECRPayment = 0; // row of the payments list
    int cmbECREFT = 0;     // row of the terminals list
    bool chkActive = false;
    bool chk355 = false;
    QString txtRetries = QStringLiteral("0");
    QString txtPayID = QStringLiteral("0");
    QString txtPAYEDDesc;
};

inline const QString kPaymentMapTitle = QStringLiteral("Πληρωμές Καρτών");
inline const QString kPaymentMapReadingTitle = QStringLiteral("Ανάγνωση Ρυθμίσεων Ταμειακής...");

// frmEFT as a window of its own. The window only shows and collects; each
// press that needs the register or the map file comes back to the logic,
// which does it and hands the window its values and lists again.
class PaymentMapWindow {
public:
    enum class Press { cmdFind, txtPayIDChanged, save, cmddelete, cmdRef };
    struct Pressed {
        Press press;
        PaymentMapFormValues values; // the controls as the press found them
    };

    virtual ~PaymentMapWindow() = default;
    // The window stands titled "Ανάγνωση Ρυθμίσεων Ταμειακής...", cmdRef off,
    // while the register's lists are read.
    virtual void showReading() = 0;
    // Shows the values and the lists, then waits for the next press; nothing
    // once the operator has closed the window (cmdexit or its close box).
    virtual std::optional<Pressed> waitForPress(const PaymentMapFormValues& shown,
                                                const PaymentLists& lists) = 0;
};

// The logic of frmEFT, the payment map's window ("Πληρωμές Καρτών"): the
// register's lists, finding a record, the alternative payment's name, saving
// and blanking. The window shows it; run() asks through the Operator, which
// is how the menu action goes without a window.
class PaymentMapDialog {
public:
    PaymentMapDialog(DeviceLink& link, Operator& op, const ModuleVariables& vars,
                     QString payEftPath);

    // paramEFT: the lists read with the link open only for that, then the dialog.
    void run();
    // The same with the window: it stays until the operator closes it.
    void run(PaymentMapWindow& window);

    // cmdRef: the register's lists again.
    void refresh();
    // cmdFind: loads the record of txtPay; nothing unless it is a number.
    bool cmdFind();
    // Change of txtPayID: the alternative payment's name from the register.
    void txtPayIDChanged(const QString& text);
    // save: false when nothing was written.
    bool save();
    // cmddelete: the record of txtPay with every other field 0.
    bool cmddelete();

    PaymentMapFormValues values;
    PaymentLists lists;

private:
    void askRecord();
    bool openLinkIfClosed();
    void closeLinkIfOpen();

    DeviceLink& link_;
    Operator& op_;
    const ModuleVariables& vars_;
    QString payEftPath_;
};
