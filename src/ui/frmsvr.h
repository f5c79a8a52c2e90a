#pragma once

#include "reports/TaxServerSetup.h"

#include <QDialog>
#include <QPointer>
#include <optional>

class GuiOperator;
class QCheckBox;
class QEventLoop;
class QLineEdit;
class QPushButton;

// frmsvr ("server ΑΑΔΕ"): the key, the two addresses and whether the
// register sends its data. "Set" hands them to the engine, which checks and
// sends them; the window stays open with its entries until it is closed.
class frmsvr : public QDialog {
    Q_OBJECT
public:
    explicit frmsvr(QWidget* parent = nullptr);

    void setEntries(const TaxServerEntries& entries);
    TaxServerEntries entries() const;

    // Waits, in a loop of its own, for "Set": true when pressed, false once
    // the window is closed or given up. "Set" stays closed from its press
    // until the next wait, so one press sends once.
    bool waitForSet();
    void giveUp();

    QWidget* control(const QString& name) const;

private:
    QLineEdit* txtAES_;
    QCheckBox* taxConnect_;
    QLineEdit* txtWebServer_;
    QLineEdit* txtQR_;
    QPushButton* Command1_;
    QEventLoop* waiting_ = nullptr;
    bool setPressed_ = false;
    bool closed_ = false;
};

// frmsvr for the engine's thread: blocking queued calls into the GUI
// thread, where the window lives from the first call to its closing.
class TaxServerWindowOnGui final : public TaxServerWindow {
public:
    explicit TaxServerWindowOnGui(GuiOperator& person);
    ~TaxServerWindowOnGui() override;

    std::optional<TaxServerEntries> waitForSet(const TaxServerEntries& shown) override;

    frmsvr* form() const { return form_.data(); }

private:
    GuiOperator& person_;
    QPointer<frmsvr> form_;
};
