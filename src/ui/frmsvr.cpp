#include "ui/frmsvr.h"

#include "ui/GuiOperator.h"
#include "ui/KerbanoIcon.h"

#include <QCheckBox>
#include <QEventLoop>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

frmsvr::frmsvr(QWidget* parent)
    : QDialog(parent)
    , txtAES_(new QLineEdit(this))
    , taxConnect_(new QCheckBox(QStringLiteral("Αποστολή Δεδομένων"), this))
    , txtWebServer_(new QLineEdit(this))
    , txtQR_(new QLineEdit(this))
    , Command1_(new QPushButton(QStringLiteral("Set"), this))
{
    setObjectName(QStringLiteral("frmsvr"));
    setWindowTitle(kTaxServerTitle);
    setWindowIcon(KerbanoIcon());
    txtAES_->setObjectName(QStringLiteral("txtAES"));
    taxConnect_->setObjectName(QStringLiteral("taxConnect"));
    txtWebServer_->setObjectName(QStringLiteral("txtWebServer"));
    txtQR_->setObjectName(QStringLiteral("txtQR"));
    Command1_->setObjectName(QStringLiteral("Command1"));
    Command1_->setAutoDefault(false);
    // Room for the key's 64 characters at a glance.
    txtAES_->setMinimumWidth(txtAES_->fontMetrics().horizontalAdvance(QString(kAesKeyLength, u'W')) / 2);

    auto* heading = new QGroupBox(kTaxServerHeading, this);
    heading->setObjectName(QStringLiteral("heading"));
    auto* form = new QFormLayout(heading);
    form->addRow(QStringLiteral("Κλειδί AES"), txtAES_);
    form->addRow(QString(), taxConnect_);
    form->addRow(QStringLiteral("Διεύθυνση webServer"), txtWebServer_);
    form->addRow(QStringLiteral("Διεύθυνση QR"), txtQR_);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(Command1_);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(heading);
    layout->addLayout(buttons);

    connect(Command1_, &QPushButton::clicked, this, [this] {
        Command1_->setEnabled(false);
        setPressed_ = true;
        if (waiting_)
            waiting_->quit();
    });
    connect(this, &QDialog::finished, this, [this] {
        closed_ = true;
        if (waiting_)
            waiting_->quit();
    });
}

void frmsvr::setEntries(const TaxServerEntries& entries)
{
    txtAES_->setText(entries.txtAES);
    taxConnect_->setChecked(entries.taxConnect);
    txtWebServer_->setText(entries.txtWebServer);
    txtQR_->setText(entries.txtQR);
}

TaxServerEntries frmsvr::entries() const
{
    return {txtAES_->text(), taxConnect_->isChecked(), txtWebServer_->text(), txtQR_->text()};
}

bool frmsvr::waitForSet()
{
    if (!setPressed_ && !closed_) {
        Command1_->setEnabled(true);
        QEventLoop loop;
        waiting_ = &loop;
        loop.exec();
        waiting_ = nullptr;
    }
    const bool pressed = setPressed_ && !closed_;
    setPressed_ = false;
    return pressed;
}

void frmsvr::giveUp()
{
    closed_ = true;
    hide();
    if (waiting_)
        waiting_->quit();
}

QWidget* frmsvr::control(const QString& name) const
{
    return findChild<QWidget*>(name);
}

TaxServerWindowOnGui::TaxServerWindowOnGui(GuiOperator& person)
    : person_(person)
{
}

TaxServerWindowOnGui::~TaxServerWindowOnGui()
{
    delete form_.data();
}

std::optional<TaxServerEntries> TaxServerWindowOnGui::waitForSet(const TaxServerEntries& shown)
{
    std::optional<TaxServerEntries> entries;
    person_.ask([&] {
        if (!form_) {
            QWidget* main = person_.window();
            form_ = new frmsvr(main);
            // Modal over the main form, beside it: left edge at its right edge.
            form_->setWindowModality(Qt::WindowModal);
            QObject::connect(&person_, &GuiOperator::releasing, form_.data(), &frmsvr::giveUp);
            form_->setEntries(shown);
            if (main)
                form_->move(main->frameGeometry().topRight() + QPoint(1, 0));
            form_->show();
        }
        if (form_->waitForSet()) {
            entries = form_->entries();
            return;
        }
        delete form_.data();
    });
    return entries;
}
