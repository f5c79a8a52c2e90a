#include "reports/TaxServerSetup.h"

#include "link/DeviceLink.h"
#include "link/LinkMessageTitle.h"
#include "protocol/DeviceCommands.h"
#include "shell/Operator.h"

namespace {

// The authority's service as it stands today; the integrator changes it in
// the window when the authority moves it. An address left without a host would
// pass the window's checks and be programmed into the register broken.
const QString kAuthorityHost = QStringLiteral("www1.aade.gr");
// The settings the register is usually given, in the command's own form
// ("/" written "~"). The key field only names what goes there.
const QString kModelCommand = QStringLiteral(
    "]/1/0//http:~~%1~eafdss~myweb~websend.php/80/ΚΛΕΙΔΑΡΙΘΜΟΣ/"
    "https:~~%1~tameiakes~myweb~q1.php/").arg(kAuthorityHost);
constexpr int kConnectField = 1;
constexpr int kWebServerField = 4;
constexpr int kQrField = 7;
constexpr int kSecureSchemeLength = 5;

const QString kWrongKeyLength = QStringLiteral("Λάθος μήκος κλειδιού AES");
const QString kEmptyWebServer = QStringLiteral("Κενή URL επικοικωνίας ΑΑΔΕ");
const QString kWrongWebServer = QStringLiteral("Λάθος URL επικοικωνίας ΑΑΔΕ");
const QString kEmptyQr = QStringLiteral("Λάθος URL QR code απόδειξης");

const QString kKeyLabel = QStringLiteral("Κλειδί AES");
const QString kConnectLabel = QStringLiteral("Αποστολή Δεδομένων");
const QString kWebServerLabel = QStringLiteral("Διεύθυνση webServer");
const QString kQrLabel = QStringLiteral("Διεύθυνση QR");
const QString kConnectOn = QStringLiteral("Ναι");
const QString kConnectOff = QStringLiteral("Όχι");

QString modelField(const QStringList& fields, int index)
{
    QString text = fields.value(index);
    text.replace(QLatin1Char('~'), QLatin1Char('/'));
    return text;
}

} // namespace

TaxServerEntries TaxServerDefaults()
{
    const QStringList fields = kModelCommand.split(u'/');
    TaxServerEntries entries;
    entries.taxConnect = fields.value(kConnectField) == u"1";
    entries.txtWebServer = modelField(fields, kWebServerField);
    entries.txtQR = modelField(fields, kQrField);
    return entries;
}

std::optional<QString> CheckTaxServerEntries(const TaxServerEntries& e)
{
    // The key is counted as typed: blanks are characters of it.
    if (e.txtAES.size() != kAesKeyLength)
        return kWrongKeyLength;
    if (e.txtWebServer.trimmed().isEmpty())
        return kEmptyWebServer;
    // The register sends its data over plain http; the QR page may be https.
    if (e.txtWebServer.left(kSecureSchemeLength).toLower() == u"https")
        return kWrongWebServer;
    if (e.txtQR.trimmed().isEmpty())
        return kEmptyQr;
    return std::nullopt;
}

OperatorTaxServerWindow::OperatorTaxServerWindow(Operator& person)
    : person_(person)
{
}

std::optional<TaxServerEntries> OperatorTaxServerWindow::waitForSet(const TaxServerEntries& shown)
{
    TaxServerEntries entries = shown;
    const auto key = person_.input(kTaxServerTitle, kTaxServerHeading + u'\n' + kKeyLabel, shown.txtAES);
    if (!key)
        return std::nullopt;
    entries.txtAES = *key;
    const auto connect = person_.choose(kTaxServerTitle, kConnectLabel, {kConnectOn, kConnectOff});
    if (!connect)
        return std::nullopt;
    entries.taxConnect = *connect == 0;
    const auto server = person_.input(kTaxServerTitle, kWebServerLabel, shown.txtWebServer);
    if (!server)
        return std::nullopt;
    entries.txtWebServer = *server;
    const auto qr = person_.input(kTaxServerTitle, kQrLabel, shown.txtQR);
    if (!qr)
        return std::nullopt;
    entries.txtQR = *qr;
    return entries;
}

TaxServerSetup::TaxServerSetup(DeviceLink& link, Operator& person, const ModuleVariables& vars)
    : link_(link)
    , person_(person)
    , vars_(vars)
{
}

bool TaxServerSetup::Command1(const TaxServerEntries& entries)
{
    if (const auto problem = CheckTaxServerEntries(entries)) {
        person_.message(LinkMessageTitle(vars_), *problem, Operator::Icon::Warning);
        return false;
    }
    // A refusal reaches the operator through the link's own message.
    const DeviceReply reply = link_.send(DeviceCommands::TaxServerSettings(
        entries.taxConnect, entries.txtWebServer, entries.txtAES, entries.txtQR));
    if (!reply.ok())
        return false;
    person_.message(LinkMessageTitle(vars_), kTaxServerDone, Operator::Icon::Information);
    return true;
}

void TaxServerSetup::run(TaxServerWindow& window)
{
    TaxServerEntries shown = TaxServerDefaults();
    while (const auto entries = window.waitForSet(shown)) {
        shown = *entries;
        Command1(shown);
    }
}
