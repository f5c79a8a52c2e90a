#include "shell/FormModel.h"
#include "shell/ProgressIndicator.h"

#include <gtest/gtest.h>

TEST(ProgressIndicator, ShowsRoundedPercentageAndDashBelowOne)
{
    FormModel form;
    clsind progress(form);
    progress.setMax(3);
    progress.setValue(0);
    EXPECT_EQ(form.lblProgr(), QStringLiteral("-"));
    progress.setValue(2);
    EXPECT_EQ(form.lblProgr(), QStringLiteral(" Ολοκληρώθηκε το 67%"));
    progress.setValue(3);
    EXPECT_EQ(form.lblProgr(), QStringLiteral(" Ολοκληρώθηκε το 100%"));
}
