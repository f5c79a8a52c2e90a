#pragma once

#include <QString>
#include <QStringList>
#include <optional>

class DeviceLink;
class Operator;
struct ModuleVariables;

// frmsvr: programs the register for the tax authority's server. The driver
// keeps none of it; everything goes to the register in one "]/" command.

inline const QString kTaxServerTitle = QStringLiteral("server ΑΑΔΕ");
inline const QString kTaxServerHeading = QStringLiteral("Ηλεκτρονική Αποστολή δεδομένων");
inline const QString kTaxServerDone = QStringLiteral("Επιτυχής ενεργοποίηση επικοινωνίας με τον server της ΑΑΔΕ");
inline constexpr int kAesKeyLength = 64;

// What the window holds: txtAES, taxConnect, txtWebServer, txtQR.
struct TaxServerEntries {
    QString txtAES;
    bool taxConnect = true;
    QString txtWebServer;
    QString txtQR;
};

// The entries as the window opens: read from the model command, so the
// addresses are those the register is usually given. The key stays empty.
TaxServerEntries TaxServerDefaults();

// The first check that fails, as the operator is told it; nothing when all pass.
std::optional<QString> CheckTaxServerEntries(const TaxServerEntries& entries);

// The window itself. The Qt dialog of the window implements it; without one
// the entries are asked through the Operator, in the order the window shows them.
class TaxServerWindow {
public:
    virtual ~TaxServerWindow() = default;
    // The entries when the operator presses "Set"; nothing when the window is closed.
    virtual std::optional<TaxServerEntries> waitForSet(const TaxServerEntries& shown) = 0;
};

// The window's questions through Operator::input and choose: key, sending
// on or off (1 on, 2 off), web server address, QR address.
class OperatorTaxServerWindow final : public TaxServerWindow {
public:
    explicit OperatorTaxServerWindow(Operator& person);
    std::optional<TaxServerEntries> waitForSet(const TaxServerEntries& shown) override;

private:
    Operator& person_;
};

class TaxServerSetup {
public:
    TaxServerSetup(DeviceLink& link, Operator& person, const ModuleVariables& vars);

    // Command1 ("Set"): the checks, then the command over the link as it
    // stands. True when the register took it.
    bool Command1(const TaxServerEntries& entries);

    // The window from opening to closing; it stays open after each "Set",
    // with its entries, until the operator closes it.
    void run(TaxServerWindow& window);

private:
    DeviceLink& link_;
    Operator& person_;
    const ModuleVariables& vars_;
};
