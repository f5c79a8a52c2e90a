#pragma once

#include "payments/PaymentMapDialog.h"

#include <QDialog>
#include <QPointer>
#include <deque>
#include <optional>

class GuiOperator;
class QCheckBox;
class QEventLoop;
class QComboBox;
class QLineEdit;
class QPushButton;

// frmEFT, the payment map's window ("Πληρωμές Καρτών"): a record of
// payeft.dat with the register's payments and terminals to pick from. It
// only shows and collects; what a press does is done on the engine's side.
class frmEFT : public QDialog {
    Q_OBJECT
public:
    using Press = PaymentMapWindow::Press;

    explicit frmEFT(QWidget* parent = nullptr);

    // While the register's lists are read: the reading title, empty lists,
    // cmdRef off.
    void showReading();
    // The lists and the controls as the logic has them, ready for the operator.
    void showForm(const PaymentMapFormValues& values, const PaymentLists& lists);
    PaymentMapFormValues values() const;

    // Waits, in a loop of its own, for the next press; nothing once the
    // window was closed or given up. A press made while the engine still does
    // the one before waits its turn, and takes the controls as they are then.
    std::optional<Press> waitForPress();
    // The program is ending: a wait gives up, as on closing.
    void giveUp();

    // A control by its name (txtPay, cmdFind, cmbECRPayment, save, ...).
    QWidget* control(const QString& name) const;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void press(Press press);
    void fillLists(const PaymentLists& lists);

    QLineEdit* txtPay_;
    QComboBox* cmbECRPayment_;
    QComboBox* cmbECREFT_;
    QCheckBox* chkActive_;
    QCheckBox* chk355_;
    QLineEdit* txtRetries_;
    QLineEdit* txtPayID_;
    QLineEdit* txtPAYEDDesc_;
    QPushButton* cmdRef_;
    PaymentLists lists_;
    // What the last press handed out: a control the engine left as it was
    // keeps what the operator did since.
    std::optional<PaymentMapFormValues> handed_;
    std::deque<Press> presses_;
    QEventLoop* waiting_ = nullptr;
    bool closed_ = false;
};

// frmEFT for the engine's thread: each call is a blocking queued call into
// the GUI thread, where the window lives from the first call to its closing.
class PaymentMapWindowOnGui final : public PaymentMapWindow {
public:
    explicit PaymentMapWindowOnGui(GuiOperator& person);
    ~PaymentMapWindowOnGui() override;

    void showReading() override;
    std::optional<Pressed> waitForPress(const PaymentMapFormValues& shown,
                                        const PaymentLists& lists) override;

    // The window while it stands (GUI thread); for tests and screenshots.
    frmEFT* form() const { return form_.data(); }

private:
    frmEFT& open();

    GuiOperator& person_;
    QPointer<frmEFT> form_;
};
