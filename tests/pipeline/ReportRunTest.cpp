#include "reports/ReportRun.h"

#include "PrintQString.h"
#include "ScriptedLink.h"
#include "ScriptedOperator.h"
#include "operations/FPrinterOperations.h"
#include "records/ReceiptState.h"
#include "shell/FormModel.h"
#include "shell/ModuleVariables.h"
#include "shell/ProgressIndicator.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace {

class ReportRunTest : public ::testing::Test {
protected:
    QTemporaryDir dir;
    ScriptedLink link;
    ScriptedOperator op;
    ReceiptState state;
    ModuleVariables vars;
    FormModel form;
    clsind progress{form};
    FPrinterOperations printer{link, state, vars, op, form, progress, dir.filePath("payeft.dat")};
    ReportRun reports{link, printer, state, vars, form};
};

} // namespace

TEST_F(ReportRunTest, AReportOpensTheLinkLeavesTheReadyTextOnTheDisplayAndClosesTheLink)
{
    reports.financialX();
    EXPECT_EQ(link.commands(), QStringList({"x/1/1/99999/", "7/0/1/            0.00/", "7/0/2/ *** Ετοιμη *** /"}));
    EXPECT_FALSE(link.sent[0].quiet);
    EXPECT_TRUE(link.sent[1].quiet && link.sent[2].quiet);
    EXPECT_EQ(link.opens, 1);
    EXPECT_FALSE(link.connected);
    EXPECT_TRUE(form.state().command1Enabled);
    EXPECT_EQ(form.comstattxt(), "Το Ισοζυγειο ολοκληρωθηκε");
    EXPECT_EQ(form.caption(), "Kerbano- Ετοιμο");

    // The table reports are one quiet command, with nothing left on the display.
    link.sent.clear();
    reports.tablesDetail();
    EXPECT_EQ(link.commands(), QStringList({"&/10/1/290/1////////////"}));
    EXPECT_TRUE(link.sent[0].quiet);
}

TEST_F(ReportRunTest, TheDailyZCarriesItsOwnAccentsAndRunsEvenOverAFailedLink)
{
    link.openStatus = -1;
    link.openReply = "Πρόβλημα στην Θύρα :com9";
    QStringList shown;
    QObject::connect(&form, &FormModel::statusLineChanged, [&](const QString& s) { shown << s; });
    link.responder = [](const QString&, ScriptedLink::Answer& a) {
        a = {0, ""};
        return true;
    };
    reports.dailyZ();
    ASSERT_GE(shown.size(), 2);
    EXPECT_EQ(shown[0], "Εκτέλεση Ισοζυγίου!!! Παρακαλω περιμενετε για την ολοκληρωση του");
    EXPECT_EQ(shown[1], "Λάθος :-1 - Πρόβλημα στην Θύρα :com9");
    EXPECT_EQ(link.commands().first(), "x/7///");
    EXPECT_EQ(form.comstattxt(), "Το Ισοζύγιο ολοκληρώθηκε");
    EXPECT_EQ(form.caption(), "Kerbano- Έτοιμο");
}
