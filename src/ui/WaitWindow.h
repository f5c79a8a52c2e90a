#pragma once

#include <QDialog>

class QLabel;

// frmErr: the device-wait window. It only shows what the engine's polling
// tells it; the person closing it counts as a cleared register.
class WaitWindow : public QDialog {
    Q_OBJECT
public:
    explicit WaitWindow(QWidget* parent = nullptr);

    void show(const QString& caption, const QString& stateLine, const QString& description);
    void setLines(const QString& stateLine, const QString& description);
    // Taken away by the engine once the register has cleared.
    void dismiss();

    QString stateLine() const;
    QString description() const;

    // The close box and Escape both end here.
    void reject() override;

signals:
    void closedByOperator();

private:
    QLabel* lblErr_;
    QLabel* lblErrDesc_;
    bool dismissing_ = false;
};
