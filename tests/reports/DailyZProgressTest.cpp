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

// The Z's polls for the end of the flash transfer move the indicator, short
// of its end until the register answers.
TEST(DailyZProgress, EachUnansweredPollMovesTheIndicatorAndTheAnswerFillsIt)
{
    QTemporaryDir dir;
    ScriptedLink link;
    ScriptedOperator person;
    ReceiptState receipt;
    ModuleVariables vars;
    FormModel form;
    clsind progress{form};
    FPrinterOperations printer{link, receipt, vars, person, form, progress, dir.filePath("payeft.dat")};
    QList<qint16> seen;
    QObject::connect(&form, &FormModel::stateChanged, [&](const FormState& s) {
        if (seen.isEmpty() || seen.last() != s.progressValue)
            seen << s.progressValue;
    });

    int polls = 0;
    link.responder = [&](const QString& command, ScriptedLink::Answer& a) {
        if (command == "?/")
            a = {qint16(++polls < 20 ? -4 : 0), ""};
        else
            a = {0, "00/00/00/"};
        return true;
    };
    printer.FPrinterWrite(QString(), "0Z");
    ASSERT_EQ(polls, 20);
    ASSERT_GE(seen.size(), 3);
    EXPECT_EQ(seen.first(), 0);
    EXPECT_EQ(seen.last(), 21);
    for (qsizetype i = 1; i < seen.size(); ++i)
        EXPECT_GT(seen[i], seen[i - 1]);
    EXPECT_LT(seen[seen.size() - 2], 21); // the polls alone never reach the end
}
