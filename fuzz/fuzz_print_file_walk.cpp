// A whole print file walked against a scripted register, with the card roads
// and the restaurant tables over an order store of its own, then the job's
// closing reads, as getdata runs a job. The print file comes first, in
// Windows-1253 and cut at CR LF; behind a NUL byte, the register's replies,
// one a line, in the order the commands go out.
#include "config/VatFile.h"
#include "operations/FPrinterOperations.h"
#include "payments/EftCardRoads.h"
#include "payments/PaymentMap.h"
#include "pipeline/CommandLine.h"
#include "pipeline/JobClosing.h"
#include "pipeline/PrintFileInterpreter.h"
#include "records/ReceiptState.h"
#include "shell/Clock.h"
#include "shell/CodePage.h"
#include "shell/FormModel.h"
#include "shell/ModuleVariables.h"
#include "shell/ProgressIndicator.h"
#include "shell/ResultSink.h"
#include "tables/OrderStoreRoads.h"
#include "tables/TableFlows.h"

#include "support/FuzzScratch.h"
#include "support/ReplyScript.h"

#include "ScriptedOperator.h"

#include <QDir>

namespace {

// The result file kept in memory: the walk's lines are counted, never written,
// so no line of a print file can name a place to write.
struct CountedResults final : ResultSink {
    qsizetype lines = 0;
    void appendResultLine(const QString&) override { ++lines; }
};

// The settings of the demo's command line: descriptions, comments,
// departments and quantities from the file.
JobSettings demoSettings()
{
    return commandLineSettings(
        readcoman(QStringLiteral("127.0.0.1:9101,9600,print.txt,0,TECFP,1110111")));
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    fuzzing::startApplication();
    WriteVatsFile(fuzzing::scratchPath(QStringLiteral("vats.dat")), {24.0, 13.0, 6.0, 17.0, 9.0});
    // Payment 2 is a card on terminal 1, tried three times, cash taking over.
    PayEftRecord card;
    card.payId = 2;
    card.ecrPayment = 3;
    card.ecrEft = 1;
    card.active = -1;
    card.retries = 2;
    card.altPayment = 1;
    WritePayEftRecord(fuzzing::scratchPath(QStringLiteral("payeft.dat")), card);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const SplitInput input(fuzzing::bytesOf(data, size));
    const QStringList lines = codepage::fromWin1253(input.head).split(QStringLiteral("\r\n"));
    // Each walk begins with no order store, as on a register's first day.
    QDir store(fuzzing::scratchPath(QStringLiteral("program")));
    store.removeRecursively();
    store.mkpath(QStringLiteral("."));

    VirtualClock clock;
    ScriptedOperator person;
    person.closeWaitWindowAfterChecks = 2;
    FormModel form;
    ScriptedLink link;
    ReplyScript replies(input.replies);
    replies.answer(link);
    ReceiptState receipt;
    ModuleVariables vars;
    CountedResults results;
    clsind progress{form};
    EftCardRoads cards{link, vars, person, clock};
    TableFlows tables{link, person, clock, receipt, vars, results, store.path()};
    OrderStoreRoads tableRoads{tables};
    FPrinterOperations printer(link, receipt, vars, person, form, progress,
                               fuzzing::scratchPath(QStringLiteral("payeft.dat")));
    printer.setCardRoads(cards);
    printer.setTableRoads(tableRoads);

    InterpreterContext context{receipt, vars, printer, link, person, clock, cards, results,
                               fuzzing::scratchDir().path(), [] {}, &tables};
    PrintFileInterpreter(std::move(context), demoSettings()).run(lines);
    CardPaymentLines(link, receipt);
    ReadDocumentFigures(link, receipt);
    return 0;
}
