#include "reports/TaxServerSetup.h"

#include "PrintQString.h"
#include "ScriptedLink.h"
#include "ScriptedOperator.h"
#include "shell/ModuleVariables.h"

#include <gtest/gtest.h>

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
    EXPECT_FALSE(CheckTaxServerEntries(valid()).has_value());

    TaxServerEntries e = valid();
    for (int length : {63, 65, 0}) {
        e.txtAES = QString(length, QLatin1Char('K'));
        EXPECT_EQ(CheckTaxServerEntries(e), QStringLiteral("Λάθος μήκος κλειδιού AES")) << length;
    }
    e.txtAES = QString(64, QLatin1Char(' ')); // counted as typed, blanks too
    EXPECT_FALSE(CheckTaxServerEntries(e).has_value());

    e = valid();
    e.txtWebServer = QStringLiteral("   ");
    e.txtQR.clear();
    EXPECT_EQ(CheckTaxServerEntries(e), QStringLiteral("Κενή URL επικοικωνίας ΑΑΔΕ"));
    e.txtWebServer = QStringLiteral("HTTPS://srv.gr/x");
    EXPECT_EQ(CheckTaxServerEntries(e), QStringLiteral("Λάθος URL επικοικωνίας ΑΑΔΕ"));
    e.txtWebServer = QStringLiteral(" https://srv.gr/x"); // the blank hides the scheme from the check
    EXPECT_EQ(CheckTaxServerEntries(e), QStringLiteral("Λάθος URL QR code απόδειξης"));
    e.txtQR = QStringLiteral("https://q.gr/x");
    EXPECT_FALSE(CheckTaxServerEntries(e).has_value());

    // A bad key is told before an empty address.
    e.txtAES = QStringLiteral("short");
    e.txtWebServer.clear();
    EXPECT_EQ(CheckTaxServerEntries(e), QStringLiteral("Λάθος μήκος κλειδιού AES"));
}

TEST_F(TaxServerSetupTest, SetSendsOneCommandWithTheAddressesSlashesAsTildesAndSaysSo)
{
    TaxServerEntries e = valid();
    e.taxConnect = false; // off still needs a valid key and addresses
    EXPECT_TRUE(setup.Command1(e));
    ASSERT_EQ(link.sent.size(), 1);
    EXPECT_EQ(link.sent[0].command, "]/0/0//http:~~srv.gr~eafdss~myweb~websend.php/80/" + kKey
                                        + "/https:~~q.gr~tameiakes~myweb~q1.php/");
    EXPECT_FALSE(link.sent[0].quiet);
    EXPECT_EQ(link.sent[0].timeoutSeconds, 3); // the default wait
    EXPECT_EQ(link.sent[0].logMode, 0);
    ASSERT_EQ(person.messages.size(), 1);
    EXPECT_EQ(person.messages[0].text, "Επιτυχής ενεργοποίηση επικοινωνίας με τον server της ΑΑΔΕ");
    EXPECT_EQ(person.messages[0].icon, Operator::Icon::Information);
}

TEST_F(TaxServerSetupTest, AFailedCheckSendsNothingAndARefusalHasOnlyTheLinksMessage)
{
    TaxServerEntries e = valid();
    e.txtAES.chop(1);
    EXPECT_FALSE(setup.Command1(e));
    EXPECT_TRUE(link.sent.isEmpty());
    ASSERT_EQ(person.messages.size(), 1);
    EXPECT_EQ(person.messages[0].text, "Λάθος μήκος κλειδιού AES");
    EXPECT_EQ(person.messages[0].icon, Operator::Icon::Warning);

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
    EXPECT_EQ(person.inputPrompts[1], "Αποστολή Δεδομένων");
    EXPECT_EQ(person.inputPrompts[2], "Διεύθυνση webServer");
    EXPECT_EQ(person.inputPrompts[3], "Διεύθυνση QR");
    EXPECT_EQ(link.commands(), QStringList{"]/0/0//http:~~srv.gr~a/80/" + kKey + "/https:~~q.gr~b/"});
}
