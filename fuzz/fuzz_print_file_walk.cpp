// A whole print file walked against a scripted register, then the job's
// closing reads, as getdata runs a job. The print file comes first, in
// Windows-1253 and cut at CR LF; behind a NUL byte, the register's replies,
// one a line, in the order the commands go out.
#include "config/VatFile.h"
#include "operations/FPrinterOperations.h"
#include "payments/UnavailableCardRoads.h"
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

#include "support/FuzzScratch.h"
#include "support/ReplyScript.h"

#include "ScriptedOperator.h"

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
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const SplitInput input(fuzzing::bytesOf(data, size));
    const QStringList lines = codepage::fromWin1253(input.head).split(QStringLiteral("\r\n"));

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
    UnavailableCardRoads cards{link};
    FPrinterOperations printer(link, receipt, vars, person, form, progress,
                               fuzzing::scratchPath(QStringLiteral("payeft.dat")));
    printer.setCardRoads(cards);

    InterpreterContext context{receipt, vars, printer, link, person, clock, cards, results,
                               fuzzing::scratchDir().path(), [] {}};
    PrintFileInterpreter(std::move(context), demoSettings()).run(lines);
    CardPaymentLines(link, receipt);
    ReadDocumentFigures(link, receipt);
    return 0;
}
