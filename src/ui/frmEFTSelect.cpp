#include "ui/frmEFTSelect.h"

#include "ui/GuiOperator.h"
#include "ui/KerbanoIcon.h"

#include <QComboBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace {
constexpr qint16 kCancelled = -1;
constexpr qint16 kClosed = 0;
} // namespace

frmEFTSelect::frmEFTSelect(QWidget* parent)
    : QDialog(parent)
    , lblTitle_(new QLabel(kEftSelectReading, this))
    , cmbDocType_(new QComboBox(this))
    , OKButton_(new QPushButton(QStringLiteral("OK"), this))
{
    setObjectName(QStringLiteral("frmEFTSelect"));
    setWindowTitle(kEftSelectTitle);
    setWindowIcon(KerbanoIcon());
    auto* cancel = new QPushButton(QStringLiteral("Cancel"), this);
    lblTitle_->setObjectName(QStringLiteral("lblTitle"));
    cmbDocType_->setObjectName(QStringLiteral("cmbDocType"));
    OKButton_->setObjectName(QStringLiteral("OKButton"));
    cancel->setObjectName(QStringLiteral("CancelButton"));
    cmbDocType_->setEnabled(false);
    OKButton_->setEnabled(false);

    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(OKButton_);
    buttons->addWidget(cancel);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(lblTitle_);
    layout->addWidget(cmbDocType_);
    layout->addLayout(buttons);

    // OK waits for a row the operator picked.
    connect(cmbDocType_, &QComboBox::activated, this, [this] { OKButton_->setEnabled(true); });
    connect(OKButton_, &QPushButton::clicked, this, [this] {
        idSelected_ = static_cast<qint16>(cmbDocType_->currentData().toInt());
        accept();
    });
    connect(cancel, &QPushButton::clicked, this, [this] {
        idSelected_ = kCancelled;
        reject();
    });
}

void frmEFTSelect::showReading()
{
    lblTitle_->setText(kEftSelectReading);
    cmbDocType_->setEnabled(false);
    show();
}

qint16 frmEFTSelect::choose(const QList<ListRow>& rows)
{
    for (const ListRow& row : rows)
        cmbDocType_->addItem(row.text, row.value);
    cmbDocType_->setCurrentIndex(-1);
    hide();
    lblTitle_->setText(kEftSelectPrompt);
    cmbDocType_->setEnabled(true);
    idSelected_ = kClosed;
    exec();
    return idSelected_;
}

QWidget* frmEFTSelect::control(const QString& name) const
{
    return findChild<QWidget*>(name);
}

EftSelectWindowOnGui::EftSelectWindowOnGui(GuiOperator& person)
    : person_(person)
{
}

EftSelectWindowOnGui::~EftSelectWindowOnGui()
{
    delete dialog_.data();
}

frmEFTSelect& EftSelectWindowOnGui::open()
{
    if (!dialog_) {
        dialog_ = new frmEFTSelect(person_.window());
        QObject::connect(&person_, &GuiOperator::releasing, dialog_.data(), &QDialog::reject);
    }
    return *dialog_;
}

void EftSelectWindowOnGui::showReading()
{
    person_.ask([this] { open().showReading(); });
}

qint16 EftSelectWindowOnGui::idSelected(const QList<ListRow>& rows)
{
    qint16 id = kClosed;
    person_.ask([&] {
        id = open().choose(rows);
        delete dialog_.data();
    });
    return id;
}
