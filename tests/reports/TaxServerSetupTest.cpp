#include "reports/TaxServerSetup.h"

#include "PrintQString.h"
#include "ScriptedLink.h"
#include "ScriptedOperator.h"
#include "shell/ModuleVariables.h"

#include <gtest/gtest.h>

#include <tuple>

namespace {

const QString kKey(64, QLatin1Char('K'));

TaxServerEntries valid()
{
    return {kKey, true, QStringLiteral("http://srv.gr/eafdss/myweb/websend.php"),
            QStringLiteral("https://q.gr/tameiakes/myweb/q1.php")};
}

class TaxServerSetupTest : public ::testing::Test {
protected:
    ScriptedLink link;
    ScriptedOperator person;
    ModuleVariables vars;
    TaxServerSetup setup{link, person, vars};
};

} // namespace

TEST(TaxServerEntries, ChecksRunInOrderAndTheFirstFailureIsTold)
{
    const QString web = valid().txtWebServer, qr = valid().txtQR, aes = "Λάθος μήκος κλειδιού AES";
    const struct {
        QString key, web, qr, told; // told empty: accepted
    } cases[] = {
        {kKey, web, qr, {}},
        {QString(63, 'K'), web, qr, aes}, {QString(65, 'K'), web, qr, aes}, {QString(), web, qr, aes},
        {QString(64, ' '), web, qr, {}}, // counted as typed, blanks too
        {kKey, "   ", {}, "Κενή URL επικοικωνίας ΑΑΔΕ"},
        {kKey, "HTTPS://srv.gr/x", {}, "Λάθος URL επικοικωνίας ΑΑΔΕ"},
        {kKey, " https://srv.gr/x", {}, "Λάθος URL QR code απόδειξης"}, // the blank hides the scheme
        {kKey, " https://srv.gr/x", "https://q.gr/x", {}},
        {"short", {}, qr, aes}, // a bad key is told before an empty address
    };
    for (const auto& c : cases) {
        TaxServerEntries e = valid();
        std::tie(e.txtAES, e.txtWebServer, e.txtQR) = std::tie(c.key, c.web, c.qr);
        const std::optional<QString> told = c.told.isEmpty() ? std::nullopt : std::optional(c.told);
        EXPECT_EQ(CheckTaxServerEntries(e), told) << (c.key + '|' + c.web + '|' + c.qr).toStdString();
    }
}

TEST_F(TaxServerSetupTest, SetSendsOneCommandWithTheAddressesSlashesAsTildesAndSaysSo)
{
    TaxServerEntries e = valid();
    e.taxConnect = false; // off still needs a valid key and addresses
    EXPECT_TRUE(setup.Command1(e));
    ASSERT_EQ(link.sent.size(), 1);
    EXPECT_EQ(link.sent[0].command, "]/0/0//http:~~srv.gr~eafdss~myweb~websend.php/80/" + kKey
                                        + "/https:~~q.gr~tameiakes~myweb~q1.php/");
    // Spoken, with the default wait.
    EXPECT_EQ(std::tuple(link.sent[0].quiet, link.sent[0].timeoutSeconds, link.sent[0].logMode),
              std::tuple(false, qint16(3), 0));
    ASSERT_EQ(person.messages.size(), 1);
    EXPECT_EQ(std::tuple(person.messages[0].text, person.messages[0].icon),
              std::tuple(QString("Επιτυχής ενεργοποίηση επικοινωνίας με τον server της ΑΑΔΕ"), Operator::Icon::Information));
}

TEST_F(TaxServerSetupTest, AFailedCheckSendsNothingAndARefusalHasOnlyTheLinksMessage)
{
    TaxServerEntries e = valid();
    e.txtAES.chop(1);
    EXPECT_FALSE(setup.Command1(e));
    EXPECT_TRUE(link.sent.isEmpty());
    ASSERT_EQ(person.messages.size(), 1);
    EXPECT_EQ(std::tuple(person.messages[0].text, person.messages[0].icon),
              std::tuple(QString("Λάθος μήκος κλειδιού AES"), Operator::Icon::Warning));

    person.messages.clear();
    link.queue.push_back({0x7D, "Λάθος κλειδί"});
    EXPECT_FALSE(setup.Command1(valid()));
    EXPECT_EQ(link.shownMessages.size(), 1);
    EXPECT_TRUE(person.messages.isEmpty());
}

TEST_F(TaxServerSetupTest, WithoutTheWindowTheEntriesAreAskedInItsOrderUntilItIsClosed)
{
    person.inputs = {kKey, QStringLiteral("http://srv.gr/a"), QStringLiteral("https://q.gr/b"),
                     // The window stays open after "Set": a second round, closed at its first question.
                     std::nullopt};
    person.choices = {1}; // the second entry: sending off
    OperatorTaxServerWindow window(person);
    setup.run(window);
    ASSERT_EQ(person.inputPrompts.size(), 5);
    EXPECT_TRUE(person.inputPrompts[0].endsWith("Κλειδί AES"));
    EXPECT_EQ(person.inputPrompts.mid(1, 3), (QStringList{"Αποστολή Δεδομένων", "Διεύθυνση webServer", "Διεύθυνση QR"}));
    EXPECT_EQ(link.commands(), QStringList{"]/0/0//http:~~srv.gr~a/80/" + kKey + "/https:~~q.gr~b/"});
}
