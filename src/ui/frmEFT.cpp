#include "ui/frmEFT.h"

#include "ui/GuiOperator.h"
#include "ui/KerbanoIcon.h"

#include <QCheckBox>
#include <QComboBox>
#include <QEvent>
#include <QEventLoop>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>

namespace {

// The window opens this far right of and below the main form's corner.
constexpr int kRightTwips = 250;
constexpr int kDownTwips = 500;
constexpr int kTwipsPerInch = 1440;

int pixels(int twips, const QWidget* widget)
{
    return twips * widget->logicalDpiX() / kTwipsPerInch;
}

bool sameRows(const QList<ListRow>& a, const QList<ListRow>& b)
{
    if (a.size() != b.size())
        return false;
    for (qsizetype i = 0; i < a.size(); ++i) {
        if (a[i].text != b[i].text || a[i].value != b[i].value)
            return false;
    }
    return true;
}

void fill(QComboBox* list, const QList<ListRow>& rows)
{
    list->clear();
    for (const ListRow& row : rows)
        list->addItem(row.text, row.value);
}

} // namespace

frmEFT::frmEFT(QWidget* parent)
    : QDialog(parent)
    , txtPay_(new QLineEdit(this))
    , cmbECRPayment_(new QComboBox(this))
    , cmbECREFT_(new QComboBox(this))
    , chkActive_(new QCheckBox(QStringLiteral("Ενεργή"), this))
    , chk355_(new QCheckBox(QStringLiteral("Προείσπραξη"), this))
    , txtRetries_(new QLineEdit(this))
    , txtPayID_(new QLineEdit(this))
    , txtPAYEDDesc_(new QLineEdit(this))
    , cmdRef_(new QPushButton(QStringLiteral("Ανανέωση"), this))
{
    setObjectName(QStringLiteral("frmEFT"));
    setWindowTitle(kPaymentMapTitle);
    setWindowIcon(KerbanoIcon());
    auto* cmdFind = new QPushButton(QStringLiteral("Εύρεση"), this);
    auto* save = new QPushButton(QStringLiteral("Αποθήκευση"), this);
    auto* cmddelete = new QPushButton(QStringLiteral("Διαγραφή"), this);
    auto* cmdexit = new QPushButton(QStringLiteral("Έξοδος"), this);
    const std::pair<QWidget*, const char*> names[] = {
        {txtPay_, "txtPay"},       {cmdFind, "cmdFind"},         {cmbECRPayment_, "cmbECRPayment"},
        {cmbECREFT_, "cmbECREFT"}, {chkActive_, "chkActive"},    {chk355_, "chk355"},
        {txtRetries_, "txtRetries"}, {txtPayID_, "txtPayID"},    {txtPAYEDDesc_, "txtPAYEDDesc"},
        {save, "save"},            {cmddelete, "cmddelete"},     {cmdRef_, "cmdRef"},
        {cmdexit, "cmdexit"}};
    for (const auto& [widget, name] : names)
        widget->setObjectName(QString::fromLatin1(name));

    auto* grid = new QGridLayout;
    int row = 0;
    grid->addWidget(new QLabel(QStringLiteral("# πληρωμής Kerbano"), this), row, 0);
    grid->addWidget(txtPay_, row, 1);
    grid->addWidget(cmdFind, row++, 2);
    grid->addWidget(new QLabel(QStringLiteral("# πληρωμής Ταμειακής"), this), row, 0);
    grid->addWidget(cmbECRPayment_, row++, 1, 1, 2);
    grid->addWidget(new QLabel(QStringLiteral("# EFT POS"), this), row, 0);
    grid->addWidget(cmbECREFT_, row++, 1, 1, 2);
    grid->addWidget(chkActive_, row, 1);
    grid->addWidget(chk355_, row++, 2);
    grid->addWidget(new QLabel(QStringLiteral("Προσπάθειες"), this), row, 0);
    grid->addWidget(txtRetries_, row++, 1);
    grid->addWidget(new QLabel(QStringLiteral("Εναλλακτική πληρωμή"), this), row, 0);
    grid->addWidget(txtPayID_, row, 1);
    grid->addWidget(txtPAYEDDesc_, row++, 2);
    auto* buttons = new QHBoxLayout;
    for (QPushButton* button : {save, cmddelete, cmdRef_, cmdexit}) {
        button->setAutoDefault(false);
        buttons->addWidget(button);
    }
    cmdFind->setAutoDefault(false);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(grid);
    layout->addLayout(buttons);

    for (QLineEdit* box : {txtPay_, txtPAYEDDesc_, txtPayID_, txtRetries_})
        box->installEventFilter(this);
    connect(cmdFind, &QPushButton::clicked, this, [this] { press(Press::cmdFind); });
    connect(save, &QPushButton::clicked, this, [this] { press(Press::save); });
    connect(cmddelete, &QPushButton::clicked, this, [this] { press(Press::cmddelete); });
    connect(cmdRef_, &QPushButton::clicked, this, [this] { press(Press::cmdRef); });
    connect(cmdexit, &QPushButton::clicked, this, &QDialog::reject);
    // The alternative payment's name is read once the operator has typed its
    // number, not at every keystroke.
    connect(txtPayID_, &QLineEdit::editingFinished, this, [this] { press(Press::txtPayIDChanged); });
    connect(this, &QDialog::finished, this, [this] {
        closed_ = true;
        if (waiting_)
            waiting_->quit();
    });
}

void frmEFT::showReading()
{
    setWindowTitle(kPaymentMapReadingTitle);
    cmbECRPayment_->clear();
    cmbECREFT_->clear();
    txtRetries_->setText(QStringLiteral("0"));
    txtPayID_->setText(QStringLiteral("0"));
    cmdRef_->setEnabled(false);
}

void frmEFT::fillLists(const PaymentLists& lists)
{
    lists_ = lists;
    fill(cmbECREFT_, lists.terminals);
    fill(cmbECRPayment_, lists.payments);
}

void frmEFT::showForm(const PaymentMapFormValues& values, const PaymentLists& lists)
{
    const PaymentMapFormValues current = this->values();
    const bool newLists = !sameRows(lists.terminals, lists_.terminals) || !sameRows(lists.payments, lists_.payments)
        || cmbECREFT_->count() != lists.terminals.size() || cmbECRPayment_->count() != lists.payments.size();
    // Before any press, or after a new reading of the lists, the engine's
    // values stand whole; else a control takes the engine's value where the
    // engine changed what was handed out, and keeps what the operator did since.
    const bool whole = !handed_ || newLists;
    const PaymentMapFormValues handed = whole ? PaymentMapFormValues{} : *handed_;
    auto pick = [whole](const auto& engine, const auto& was, const auto& now) {
        return whole || engine != was ? engine : now;
    };
    if (newLists)
        fillLists(lists);
    cmbECRPayment_->setCurrentIndex(pick(values.cmbECRPayment, handed.cmbECRPayment, current.cmbECRPayment));
    cmbECREFT_->setCurrentIndex(pick(values.cmbECREFT, handed.cmbECREFT, current.cmbECREFT));
    chkActive_->setChecked(pick(values.chkActive, handed.chkActive, current.chkActive));
    chk355_->setChecked(pick(values.chk355, handed.chk355, current.chk355));
    const std::pair<QLineEdit*, QString> boxes[] = {
        {txtPay_, pick(values.txtPay, handed.txtPay, current.txtPay)},
        {txtRetries_, pick(values.txtRetries, handed.txtRetries, current.txtRetries)},
        {txtPayID_, pick(values.txtPayID, handed.txtPayID, current.txtPayID)},
        {txtPAYEDDesc_, pick(values.txtPAYEDDesc, handed.txtPAYEDDesc, current.txtPAYEDDesc)}};
    for (const auto& [box, text] : boxes) {
        if (box->text() != text)
            box->setText(text);
    }
    setWindowTitle(kPaymentMapTitle);
    cmdRef_->setEnabled(true);
}

PaymentMapFormValues frmEFT::values() const
{
    PaymentMapFormValues v;
    v.txtPay = txtPay_->text();
    v.cmbECRPayment = cmbECRPayment_->currentIndex();
    v.cmbECREFT = cmbECREFT_->currentIndex();
    v.chkActive = chkActive_->isChecked();
    v.chk355 = chk355_->isChecked();
    v.txtRetries = txtRetries_->text();
    v.txtPayID = txtPayID_->text();
    v.txtPAYEDDesc = txtPAYEDDesc_->text();
    return v;
}

void frmEFT::press(Press press)
{
    if (closed_)
        return;
    presses_.push_back(press);
    if (waiting_)
        waiting_->quit();
}

std::optional<frmEFT::Press> frmEFT::waitForPress()
{
    if (presses_.empty() && !closed_) {
        QEventLoop loop;
        waiting_ = &loop;
        loop.exec();
        waiting_ = nullptr;
    }
    // Presses made before the closing still run.
    if (presses_.empty())
        return std::nullopt;
    const Press next = presses_.front();
    presses_.pop_front();
    handed_ = values();
    return next;
}

void frmEFT::giveUp()
{
    presses_.clear();
    closed_ = true;
    hide();
    if (waiting_)
        waiting_->quit();
}

QWidget* frmEFT::control(const QString& name) const
{
    return findChild<QWidget*>(name);
}

bool frmEFT::eventFilter(QObject* watched, QEvent* event)
{
    // A text box taking the focus has its whole text selected.
    if (event->type() == QEvent::FocusIn) {
        if (auto* box = qobject_cast<QLineEdit*>(watched))
            QTimer::singleShot(0, box, &QLineEdit::selectAll);
    }
    return QDialog::eventFilter(watched, event);
}

PaymentMapWindowOnGui::PaymentMapWindowOnGui(GuiOperator& person)
    : person_(person)
{
}

PaymentMapWindowOnGui::~PaymentMapWindowOnGui()
{
    delete form_.data();
}

frmEFT& PaymentMapWindowOnGui::open()
{
    if (!form_) {
        QWidget* main = person_.window();
        form_ = new frmEFT(main);
        // The main form takes no input while the map is edited.
        form_->setWindowModality(Qt::WindowModal);
        QObject::connect(&person_, &GuiOperator::releasing, form_.data(), &frmEFT::giveUp);
        if (main)
            form_->move(main->frameGeometry().topLeft()
                        + QPoint(pixels(kRightTwips, main), pixels(kDownTwips, main)));
        form_->show();
    }
    return *form_;
}

void PaymentMapWindowOnGui::showReading()
{
    person_.ask([this] { open().showReading(); });
}

std::optional<PaymentMapWindow::Pressed> PaymentMapWindowOnGui::waitForPress(const PaymentMapFormValues& shown,
                                                                             const PaymentLists& lists)
{
    std::optional<Pressed> pressed;
    person_.ask([&] {
        frmEFT& form = open();
        form.showForm(shown, lists);
        if (const auto press = form.waitForPress()) {
            pressed = Pressed{*press, form.values()};
            return;
        }
        delete form_.data();
    });
    return pressed;
}
