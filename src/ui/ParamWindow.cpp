#include "ui/ParamWindow.h"

#include "config/ParamFileReader.h"
#include "config/VatFile.h"
#include "ui/KerbanoIcon.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QDate>
#include <QFile>
#include <QFormLayout>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QRadioButton>
#include <QRegularExpression>
#include <QTabWidget>
#include <QVBoxLayout>

namespace {

const char* const kBaudRates[] = {"115200", "76800", "57600", "38400", "28800", "19200", "14400", "9600"};
const char* const kVatLabels[] = {"Κατηγορία Α'", "Κατηγορία Β'", "Κατηγορία Γ'", "Κατηγορία Δ'",
                                  "Κατηγορία Ε'"};
const QString kTitle = QStringLiteral("Παράμετροι Kerbano");

const QString kEmptyPort = QStringLiteral("Η πόρτα επικοινωνίας δεν μπορεί να είναι κενή !");
const QString kBadSpeed = QStringLiteral("Η ταχύτητα πρέπει να είναι αριθμός, π.χ. 9600 !");
const QString kParamNotWritten = QStringLiteral("Αδύνατη η αποθήκευση του αρχείου param.ini ! "
                                                "Οι παράμετροι δεν άλλαξαν.");
const QString kBadVat = QStringLiteral("Λάθος στίς κατηγορίες ΦΠΑ!");
const QString kVatNotStored = QStringLiteral("Λάθος κατά την αποθήκευση τών κατηγορίών ΦΠΑ!");
const QString kMailNotWritten = QStringLiteral("Αδύνατη η αποθήκευση του αρχείου mail.ini !");
const QString kRestartTitle = QStringLiteral("Kerbano-Προσοχή");
const QString kRestart = QStringLiteral("Πρέπει να επανεκκινήσετε το Kerbano για ενεργοποίηση των μεταβολών ");

QString vatBoxName(int i)
{
    return QStringLiteral("txtVatRate(%1)").arg(i);
}

} // namespace

template <typename W>
W* ParamWindow::named(W* widget, const char* name)
{
    widget->setObjectName(QString::fromLatin1(name));
    return widget;
}

ParamWindow::ParamWindow(SettingsFiles files, StartOnlySettings startOnly, QWidget* parent)
    : QDialog(parent)
    , files_(std::move(files))
    , startOnly_(std::move(startOnly))
    , tabs_(new QTabWidget(this))
{
    setObjectName(QStringLiteral("frmparam"));
    setWindowTitle(kTitle);
    setWindowIcon(KerbanoIcon());
    tabs_->addTab(buildSettingsTab(), QStringLiteral("Παράμετροι"));
    tabs_->addTab(buildMailTab(), QStringLiteral("eMail (mail.ini)"));

    auto* ok = named(new QPushButton(QStringLiteral("Kαταχώρηση"), this), "OK");
    auto* restoreButton = named(new QPushButton(QStringLiteral("Eπαναφορά"), this), "restore");
    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(restoreButton);
    buttons->addWidget(ok);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(tabs_);
    layout->addLayout(buttons);

    connect(ok, &QPushButton::clicked, this, [this] {
        if (save())
            emit savedEndProgram();
    });
    connect(restoreButton, &QPushButton::clicked, this, &ParamWindow::restore);
    load();
}

QWidget* ParamWindow::buildSettingsTab()
{
    auto* page = new QWidget;
    auto* form = new QFormLayout;
    comtxt_ = named(new QLineEdit(QStringLiteral("com1")), "comtxt");
    baudtxt_ = named(new QComboBox, "baudtxt");
    for (const char* rate : kBaudRates)
        baudtxt_->addItem(QString::fromLatin1(rate));
    // Editable, so that a speed the list lacks can be typed; it is checked on OK.
    baudtxt_->setEditable(true);
    baudtxt_->setCurrentText(QStringLiteral("9600"));
    filetxt_ = named(new QLineEdit, "filetxt");
    typetxt_ = named(new QComboBox, "typetxt");
    typetxt_->addItem(QStringLiteral("TEC Fiscal Printer"));
    location_ = named(new QLineEdit, "location");
    form->addRow(QStringLiteral("Πορτα επικοινωνίας (serial / Ethernet)"), comtxt_);
    form->addRow(QString(), baudtxt_);
    form->addRow(QStringLiteral("Αρχειο"), filetxt_);
    form->addRow(QStringLiteral("Ταμειακη"), typetxt_);
    form->addRow(QStringLiteral("Διαδρομη"), location_);
    connect(comtxt_, &QLineEdit::textChanged, this, &ParamWindow::portChanged);

    multi_print_ = named(new QCheckBox(QStringLiteral("Print Manager")), "multi_print");
    dirdep_ = named(new QCheckBox(QStringLiteral("Direct Deparment")), "dirdep");
    descreption_ = named(new QCheckBox(QStringLiteral("Mε Περιγραφη")), "descreption");
    comments_ = named(new QCheckBox(QStringLiteral("Mε Σχολια")), "comments");
    quantity_ = named(new QCheckBox(QStringLiteral("Mε Εκτυπωση Ποσοτητας")), "quantity");
    keyb_locked_ = named(new QCheckBox(QStringLiteral("Κλειδωμενο Πληκτρολογιο")), "keyb_locked");
    ChkAuto_ = named(new QCheckBox(QStringLiteral("Αυτόματη Έναρξη Εκτυπώσεων")), "ChkAuto");
    chkspRet_ = named(new QCheckBox(QStringLiteral("Ειδικές Επιστροφές")), "chkspRet");
    chkDOSf_ = named(new QCheckBox(QStringLiteral("Γραμματοσειρά DOS")), "chkDOSf");
    auto* boxes = new QGridLayout;
    QCheckBox* const checks[] = {multi_print_, dirdep_, descreption_, comments_, quantity_,
                                 keyb_locked_, ChkAuto_, chkspRet_, chkDOSf_};
    int i = 0;
    for (QCheckBox* c : checks) {
        boxes->addWidget(c, i / 2, i % 2);
        ++i;
    }

    auto* codeFrame = new QGroupBox(QStringLiteral("Εκτύπωση Κωδικού Είδους"));
    print_code_numeric_ = named(new QCheckBox(QStringLiteral("Mε Εκτυπωση Κωδικου Αριθμητικου")), "print_code_numeric");
    print_code_ascii_ = named(new QCheckBox(QStringLiteral("Με Εκτυπωση Κωδικού Είδους Ascii")), "print_code_ascii");
    auto* codeLayout = new QVBoxLayout(codeFrame);
    codeLayout->addWidget(print_code_numeric_);
    codeLayout->addWidget(print_code_ascii_);
    // One of the two at most.
    connect(print_code_ascii_, &QCheckBox::clicked, this, [this](bool on) { if (on) print_code_numeric_->setChecked(false); });
    connect(print_code_numeric_, &QCheckBox::clicked, this, [this](bool on) { if (on) print_code_ascii_->setChecked(false); });

    auto* payFrame = new QGroupBox(QStringLiteral("Τροπος Εξοφλησης Αποδειξης"));
    auto* payLayout = new QVBoxLayout(payFrame);
    const char* const payNames[] = {"total_file", "total_1", "total_2"};
    const char* const payTexts[] = {"Οπως Στο Αρχειο", "Παντα Κυριο Νομισμα", "Παντα Δευτερευων"};
    for (int k = 0; k < 3; ++k) {
        total_[k] = named(new QRadioButton(QString::fromUtf8(payTexts[k])), payNames[k]);
        payLayout->addWidget(total_[k]);
    }
    total_[0]->setChecked(true);

    auto* mailFrame = new QGroupBox(QStringLiteral("Αποστολή eMail του 'Ζ'"));
    txtemail_ = named(new QLineEdit, "txtemail");
    chkAutomailsend_ = named(new QCheckBox(QStringLiteral("Αυτόματα με την έκδοση  'Ζ'")), "chkAutomailsend");
    auto* mailLayout = new QVBoxLayout(mailFrame);
    mailLayout->addWidget(txtemail_);
    mailLayout->addWidget(chkAutomailsend_);
    connect(txtemail_, &QLineEdit::textChanged, this, &ParamWindow::emailChanged);

    auto* vatFrame = new QGroupBox(QStringLiteral("Κατηγορίες ΦΠΑ"));
    auto* vatLayout = new QFormLayout(vatFrame);
    for (int k = 0; k < kVatCategories; ++k) {
        txtVatRate_[k] = new QLineEdit(QStringLiteral("0.00"));
        txtVatRate_[k]->setObjectName(vatBoxName(k));
        vatLayout->addRow(QString::fromUtf8(kVatLabels[k]), txtVatRate_[k]);
    }

    auto* frames = new QGridLayout;
    frames->addWidget(codeFrame, 0, 0);
    frames->addWidget(payFrame, 0, 1);
    frames->addWidget(mailFrame, 1, 0);
    frames->addWidget(vatFrame, 1, 1);

    auto* layout = new QVBoxLayout(page);
    layout->addLayout(form);
    layout->addLayout(boxes);
    layout->addLayout(frames);
    return page;
}

QWidget* ParamWindow::buildMailTab()
{
    auto* page = new QWidget;
    auto* form = new QFormLayout(page);
    smtpHost_ = named(new QLineEdit, "smtpHost");
    smtpPort_ = named(new QLineEdit, "smtpPort");
    smtpPort_->setPlaceholderText(QStringLiteral("25 / 587 / 465"));
    smtpSecurity_ = named(new QComboBox, "smtpSecurity");
    for (MailSecurity s : {MailSecurity::None, MailSecurity::StartTls, MailSecurity::Tls})
        smtpSecurity_->addItem(MailSecurityName(s), static_cast<int>(s));
    smtpUser_ = named(new QLineEdit, "smtpUser");
    smtpPassword_ = named(new QLineEdit, "smtpPassword");
    smtpPassword_->setEchoMode(QLineEdit::Password);
    smtpFrom_ = named(new QLineEdit, "smtpFrom");
    form->addRow(QStringLiteral("Διακομιστής SMTP"), smtpHost_);
    form->addRow(QStringLiteral("Θύρα"), smtpPort_);
    form->addRow(QStringLiteral("Ασφάλεια"), smtpSecurity_);
    form->addRow(QStringLiteral("Χρήστης"), smtpUser_);
    form->addRow(QStringLiteral("Κωδικός"), smtpPassword_);
    form->addRow(QStringLiteral("Αποστολέας"), smtpFrom_);
    return page;
}

QWidget* ParamWindow::control(const QString& name) const
{
    return findChild<QWidget*>(name);
}

// An address: the speed means nothing on TCP.
bool ParamWindow::baudHidden() const
{
    return comtxt_->text().contains(QLatin1Char('.'));
}

void ParamWindow::portChanged(const QString&)
{
    baudtxt_->setHidden(baudHidden());
}

void ParamWindow::emailChanged(const QString& text)
{
    if (!text.isEmpty()) {
        chkAutomailsend_->setChecked(true);
        chkAutomailsend_->setEnabled(false);
    } else {
        chkAutomailsend_->setEnabled(true);
    }
}

void ParamWindow::load()
{
    ParamSettings settings;
    if (readParamFile(files_.param, ParamReader::Start, settings)) {
        setValues(ParamFormValues::fromSettings(settings, startOnly_.spRet, startOnly_.cpDOS,
                                                startOnly_.eMail, startOnly_.ZeMail));
    } else {
        setValues(ParamFormValues{}); // no file yet: the form as designed
    }
    VatRates rates{};
    const bool ratesRead = ReadVatsFile(files_.vats, rates) == 0;
    for (int k = 0; k < kVatCategories; ++k)
        txtVatRate_[k]->setText(ratesRead ? VatBoxText(rates[k]) : QStringLiteral("0"));

    MailSettings mail;
    QString problem;
    if (QFile::exists(files_.mail))
        ReadMailSettings(files_.mail, mail, problem);
    smtpHost_->setText(mail.host);
    smtpPort_->setText(mail.port > 0 ? QString::number(mail.port) : QString());
    smtpSecurity_->setCurrentIndex(smtpSecurity_->findData(static_cast<int>(mail.security)));
    smtpUser_->setText(mail.user);
    smtpPassword_->setText(mail.password);
    smtpFrom_->setText(mail.from);
}

void ParamWindow::setValues(const ParamFormValues& v)
{
    comtxt_->setText(v.comtxt);
    baudtxt_->setCurrentText(v.baudtxt);
    filetxt_->setText(v.filetxt);
    typetxt_->setCurrentIndex(0);
    location_->setText(v.location);
    multi_print_->setChecked(v.multi_print);
    descreption_->setChecked(v.descreption);
    print_code_numeric_->setChecked(v.print_code_numeric);
    print_code_ascii_->setChecked(v.print_code_ascii);
    comments_->setChecked(v.comments);
    if (v.currency >= 0 && v.currency < 3)
        total_[v.currency]->setChecked(true);
    keyb_locked_->setChecked(v.keyb_locked);
    dirdep_->setChecked(v.dirdep);
    quantity_->setChecked(v.quantity);
    ChkAuto_->setChecked(v.ChkAuto);
    chkspRet_->setChecked(v.chkspRet);
    chkDOSf_->setChecked(v.chkDOSf);
    txtemail_->setText(v.txtemail);
    chkAutomailsend_->setChecked(v.chkAutomailsend || !v.txtemail.isEmpty());
    emailChanged(v.txtemail);
    portChanged(v.comtxt);
}

ParamFormValues ParamWindow::values() const
{
    ParamFormValues v;
    v.comtxt = comtxt_->text();
    v.baudtxt = baudtxt_->currentText();
    v.filetxt = filetxt_->text();
    v.typetxt = typetxt_->currentText();
    v.location = location_->text();
    v.multi_print = multi_print_->isChecked();
    v.descreption = descreption_->isChecked();
    v.print_code_numeric = print_code_numeric_->isChecked();
    v.print_code_ascii = print_code_ascii_->isChecked();
    v.comments = comments_->isChecked();
    v.currency = -1;
    for (int k = 0; k < 3; ++k) {
        if (total_[k]->isChecked())
            v.currency = k;
    }
    v.keyb_locked = keyb_locked_->isChecked();
    v.dirdep = dirdep_->isChecked();
    v.quantity = quantity_->isChecked();
    v.ChkAuto = ChkAuto_->isChecked();
    v.chkspRet = chkspRet_->isChecked();
    v.chkDOSf = chkDOSf_->isChecked();
    v.txtemail = txtemail_->text();
    v.chkAutomailsend = chkAutomailsend_->isChecked();
    return v;
}

QStringList ParamWindow::vatBoxes() const
{
    QStringList boxes;
    for (const QLineEdit* box : txtVatRate_)
        boxes.append(box->text());
    return boxes;
}

MailSettings ParamWindow::mailValues() const
{
    MailSettings m;
    m.host = smtpHost_->text().trimmed();
    m.port = smtpPort_->text().trimmed().toInt();
    m.security = static_cast<MailSecurity>(smtpSecurity_->currentData().toInt());
    m.user = smtpUser_->text();
    m.password = smtpPassword_->text();
    m.from = smtpFrom_->text().trimmed();
    return m;
}

// What stops the save before anything is written.
QString ParamWindow::inputProblem() const
{
    if (comtxt_->text().trimmed().isEmpty())
        return kEmptyPort;
    static const QRegularExpression digits(QStringLiteral("^[0-9]+$"));
    if (!baudHidden()) {
        if (!digits.match(baudtxt_->currentText().trimmed()).hasMatch())
            return kBadSpeed;
    }
    const QString port = smtpPort_->text().trimmed();
    if (!port.isEmpty() && !digits.match(port).hasMatch())
        return QStringLiteral("Η θύρα του διακομιστή SMTP πρέπει να είναι αριθμός !");
    const MailSettings mail = mailValues();
    if (!mail.host.isEmpty()) {
        const QString problem = MailSettingsProblem(mail);
        if (!problem.isEmpty())
            return problem;
    }
    return QString();
}

bool ParamWindow::save()
{
    if (const QString problem = inputProblem(); !problem.isEmpty()) {
        say(kTitle, problem, true);
        return false;
    }
    // The rates are read before any file is written, so that a refusal
    // leaves every file as it was.
    QStringList boxes = vatBoxes();
    VatRates rates{};
    const bool ratesGood = VatBoxesToArray(boxes, rates) == 0;
    for (int k = 0; k < kVatCategories; ++k)
        txtVatRate_[k]->setText(boxes.value(k));
    if (!ratesGood) {
        say(kTitle, kBadVat, true);
        return false;
    }

    ParamFormValues v = values();
    v.comtxt = WithDefaultTcpPort(v.comtxt, baudHidden());
    comtxt_->setText(v.comtxt);
    if (!writeParamFile(files_.param, v, QDate::currentDate())) {
        say(kTitle, kParamNotWritten, true);
        return false;
    }
    if (WriteVatsFile(files_.vats, QList<double>(rates.begin(), rates.end())) != 0)
        say(kTitle, kVatNotStored, true);
    const MailSettings mail = mailValues();
    if ((!mail.host.isEmpty() || QFile::exists(files_.mail)) && WriteMailSettings(files_.mail, mail) != 0)
        say(kTitle, kMailNotWritten, true);
    say(kRestartTitle, kRestart, false);
    return true;
}

void ParamWindow::restore()
{
    comtxt_->clear();
    filetxt_->clear();
    location_->setText(QStringLiteral(" "));
    baudtxt_->setCurrentIndex(0);
    typetxt_->setCurrentIndex(0);
    for (QCheckBox* c : {multi_print_, descreption_, print_code_numeric_, print_code_ascii_,
                         comments_, quantity_, keyb_locked_, dirdep_})
        c->setChecked(false);
    total_[0]->setChecked(true);
    load();
}

void ParamWindow::say(const QString& title, const QString& text, bool critical)
{
    if (tell_) {
        tell_(title, text, critical);
        return;
    }
    if (critical)
        QMessageBox::critical(this, title, text);
    else
        QMessageBox::information(this, title, text);
}
