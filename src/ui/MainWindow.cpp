#include "ui/MainWindow.h"

#include "ui/FormMenus.h"
#include "ui/KerbanoIcon.h"
#include "ui/TrayIcon.h"

#include <QCloseEvent>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QMenuBar>
#include <QPushButton>
#include <QVBoxLayout>

namespace {
// The label pairs of the form, in their order: caption label, value label, design text.
struct Pair {
    const char* label;
    const char* value;
    const char* text;
};
const Pair kPairs[] = {
    {"seriallbl", "serialtxt", "Πόρτα επικοινωνίας"},
    {"baudlbl", "baudtxt", "Ταχύτητα         :"},
    {"filelbl", "filetxt", "Αρχείο              :"},
    {"ecrlbl", "ecrtxt", "Φ.Εκτυπωτής          :"},
    {"desclbl", "desctxt", "Περιγραφή       :"},
    {"commentslbl", "commentstxt", "Σχόλια              :"},
    {"currlbl", "currtxt", "Εξόφληση         :"},
};
constexpr int kStatusLineMinWidth = 460;
} // namespace

MainWindow::MainWindow(QWidget* parent)
    : QMainWindow(parent)
{
    setObjectName(QStringLiteral("Kerbano"));
    setWindowTitle(QStringLiteral("Kerbano"));
    setWindowIcon(KerbanoIcon());

    auto* central = new QWidget(this);
    auto* layout = new QVBoxLayout(central);
    auto* grid = new QGridLayout;
    int row = 0;
    for (const Pair& p : kPairs) {
        grid->addWidget(addLabel(QString::fromUtf8(p.label), QString::fromUtf8(p.text)), row, 0);
        grid->addWidget(addLabel(QString::fromUtf8(p.value)), row, 1);
        ++row;
    }
    layout->addLayout(grid);

    QLabel* status = addLabel(QStringLiteral("comstattxt"));
    QFont bold = status->font();
    bold.setBold(true);
    status->setFont(bold);
    status->setFrameShape(QFrame::Panel);
    status->setFrameShadow(QFrame::Sunken);
    status->setMinimumWidth(kStatusLineMinWidth);
    layout->addWidget(status);
    layout->addWidget(addLabel(QStringLiteral("Label2"), QStringLiteral("...")));

    auto* receipt = new QHBoxLayout;
    receipt->addWidget(addLabel(QStringLiteral("Label1"), QStringLiteral(" Αριθμός Αποδείξεων")));
    receipt->addWidget(addLabel(QStringLiteral("lblreceipt")));
    receipt->addStretch();
    receipt->addWidget(addLabel(QStringLiteral("lblProgr")));
    layout->addLayout(receipt);

    auto* buttons = new QHBoxLayout;
    command1_ = new QPushButton(QStringLiteral("Έναρξη Εκτύπωσης"), central);
    command2_ = new QPushButton(QStringLiteral("Διακοπή Εκτύπωσης"), central);
    command1_->setObjectName(QStringLiteral("Command1"));
    command2_->setObjectName(QStringLiteral("Command2"));
    controls_.insert(command1_->objectName(), command1_);
    controls_.insert(command2_->objectName(), command2_);
    buttons->addWidget(command1_);
    buttons->addWidget(command2_);
    layout->addLayout(buttons);
    // The buttons do what the tray's pStart and pStop do, on the engine's thread.
    connect(command1_, &QPushButton::clicked, this, [this] { emit actionRequested(QStringLiteral("pStart")); });
    connect(command2_, &QPushButton::clicked, this, [this] { emit actionRequested(QStringLiteral("pStop")); });
    setCentralWidget(central);
    // Not to be resized, as the form it stands for.
    layout->setSizeConstraint(QLayout::SetFixedSize);

    menus_ = new FormMenus(menuBar(), this);
    connect(menus_, &FormMenus::chosen, this, &MainWindow::entryChosen);
    tray_ = new TrayIcon(*menus_->trayMenu(), windowIcon(), this);
    menus_->apply(shown_.menus);
}

void MainWindow::entryChosen(const QString& name)
{
    if (name == QLatin1String("fShow"))
        showForm();
    else if (name == QLatin1String("fHide"))
        hideForm();
    else
        emit actionRequested(name);
}

MainWindow::~MainWindow() = default;

QLabel* MainWindow::addLabel(const QString& name, const QString& text)
{
    auto* label = new QLabel(text, this);
    label->setObjectName(name);
    controls_.insert(name, label);
    return label;
}

QString MainWindow::text(const QString& name) const
{
    const QWidget* w = controls_.value(name);
    if (const auto* label = qobject_cast<const QLabel*>(w))
        return label->text();
    if (const auto* button = qobject_cast<const QPushButton*>(w))
        return button->text();
    return QString();
}

void MainWindow::showState(const FormState& state)
{
    auto set = [this](const char* name, const QString& value) {
        if (auto* label = qobject_cast<QLabel*>(controls_.value(QString::fromUtf8(name))))
            label->setText(value);
    };
    setWindowTitle(state.caption.isEmpty() ? QStringLiteral("Kerbano") : state.caption);
    set("comstattxt", state.comstattxt);
    set("Label2", state.label2);
    set("lblreceipt", state.lblreceipt);
    set("lblProgr", state.lblProgr);
    set("serialtxt", state.serialtxt);
    set("baudtxt", state.baudtxt);
    set("filetxt", state.filetxt);
    set("ecrtxt", state.ecrtxt);
    set("desctxt", state.desctxt);
    set("commentstxt", state.commentstxt);
    set("currtxt", state.currtxt);
    controls_.value(QStringLiteral("baudlbl"))->setVisible(state.baudShown);
    controls_.value(QStringLiteral("baudtxt"))->setVisible(state.baudShown);

    command1_->setEnabled(state.command1Enabled);
    command2_->setEnabled(state.command2Enabled);
    // Command1 is the default button once the register has answered.
    command1_->setDefault(state.command1Enabled);
    menus_->apply(state.menus);
    tray_->setTip(state.trayTip.isEmpty() ? state.caption : state.trayTip);

    // The engine shows or hides the form only by changing formShown.
    const bool shownChanged = firstState_ || state.formShown != shown_.formShown;
    firstState_ = false;
    shown_ = state;
    if (shownChanged && isVisible() != state.formShown)
        applyShown(state.formShown);
}

void MainWindow::showForm()
{
    applyShown(true);
    emit shownChanged(true);
}

void MainWindow::hideForm()
{
    if (!tray_->available()) {
        tray_->sayUnavailableOnce(this);
        return;
    }
    applyShown(false);
    emit shownChanged(false);
}

void MainWindow::applyShown(bool shown)
{
    if (shown) {
        show();
        raise();
        activateWindow();
        return;
    }
    // With no tray to bring it back, the window stays.
    if (!tray_->available()) {
        tray_->sayUnavailableOnce(this);
        return;
    }
    hide();
}

// The close box hides; the way out is the menu entry end.
void MainWindow::closeEvent(QCloseEvent* event)
{
    event->ignore();
    hideForm();
}
