#pragma once

#include "payments/EftBatch.h"

#include <QDialog>
#include <QPointer>

class GuiOperator;
class QComboBox;
class QLabel;
class QPushButton;

// frmEFTSelect: the terminal whose package of transactions is closed. Made
// for one choice and dropped.
class frmEFTSelect : public QDialog {
    Q_OBJECT
public:
    explicit frmEFTSelect(QWidget* parent = nullptr);

    // Shown without blocking, its list closed, while the terminals are read.
    void showReading();
    // The rows, then the dialog again, blocking, for the choice: idSelected.
    qint16 choose(const QList<ListRow>& rows);
    // The chosen slot, -1 after Cancel, 0 when closed any other way.
    qint16 idSelected() const { return idSelected_; }

    QWidget* control(const QString& name) const;

private:
    QLabel* lblTitle_;
    QComboBox* cmbDocType_;
    QPushButton* OKButton_;
    qint16 idSelected_ = 0;
};

// frmEFTSelect for the engine's thread: blocking queued calls into the GUI
// thread, where the dialog lives from showReading to the choice.
class EftSelectWindowOnGui final : public EftTerminalChoice {
public:
    explicit EftSelectWindowOnGui(GuiOperator& person);
    ~EftSelectWindowOnGui() override;

    void showReading() override;
    qint16 idSelected(const QList<ListRow>& rows) override;

    frmEFTSelect* dialog() const { return dialog_.data(); }

private:
    frmEFTSelect& open();

    GuiOperator& person_;
    QPointer<frmEFTSelect> dialog_;
};
