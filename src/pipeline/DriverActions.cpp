#include "pipeline/Driver.h"

#include "payments/EftBatch.h"
#include "payments/PaymentMapDialog.h"
#include "shell/FormModel.h"
#include "tables/InitTables.h"

// The menu entries whose actions are built; the rest report that they are not.
void Driver::wireMenuActions()
{
    actions_.setHandler(QStringLiteral("xrep0"), [this] { reports_.financialX(); });
    actions_.setHandler(QStringLiteral("xrep5"), [this] { reports_.statisticsX(); });
    actions_.setHandler(QStringLiteral("zrep021"), [this] { reports_.dailyZ(); });
    // The period Z has no action, in the menu as from the command line.
    actions_.setHandler(QStringLiteral("zrep521"), [] {});
    actions_.setHandler(QStringLiteral("Zfile"), [this] { zFile_.Zfile(); });
    actions_.setHandler(QStringLiteral("basic_programming"), [this] {
        OperatorTaxServerWindow asked(person_);
        taxServer_.run(taxServerWindow_ ? *taxServerWindow_ : static_cast<TaxServerWindow&>(asked));
    });
    actions_.setHandler(QStringLiteral("initTables"), [this] {
        InitTables(link_, person_, engine_.progress(), form_.caption(), engine_.moduleVariables().port);
    });
    actions_.setHandler(QStringLiteral("xrep_table_summary"), [this] { reports_.tablesSummary(); });
    actions_.setHandler(QStringLiteral("xrep_table_detail"), [this] { reports_.tablesDetail(); });
    actions_.setHandler(QStringLiteral("mZREp"), [this] {
        engine_.command2();
        reports_.dailyZ();
    });
    actions_.setHandler(QStringLiteral("pStart"), [this] {
        if (form_.state().command1Enabled)
            engine_.command1();
    });
    actions_.setHandler(QStringLiteral("pStop"), [this] {
        if (form_.state().command2Enabled)
            engine_.command2();
    });
    actions_.setHandler(QStringLiteral("Ver"), [this] { link_.Ver(); });
    actions_.setHandler(QStringLiteral("end"), [this] { engine_.unload(); });
    actions_.setHandler(QStringLiteral("fShow"), [this] { form_.setFormShown(true); });
    actions_.setHandler(QStringLiteral("fHide"), [this] { form_.setFormShown(false); });
    actions_.setHandler(QStringLiteral("paramEFT"), [this] {
        PaymentMapDialog dialog(link_, person_, engine_.moduleVariables(), workFile(QStringLiteral("payeft.dat")));
        if (paymentMapWindow_)
            dialog.run(*paymentMapWindow_);
        else
            dialog.run();
    });
    actions_.setHandler(QStringLiteral("s8"), [this] {
        RunEftBatch(link_, person_, engine_.moduleVariables(), eftSelectWindow_);
    });
}
