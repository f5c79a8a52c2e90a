#pragma once

// The print-file interpreter over a scripted link with the receipt's world
// beside it: print-file lines in, the commands the register heard out.
#include "PrintFileLines.h"
#include "PrintQString.h"
#include "ScriptedLink.h"
#include "ScriptedOperator.h"
#include "operations/FPrinterOperations.h"
#include "payments/EftCardRoads.h"
#include "payments/PaymentMap.h"
#include "pipeline/PrintFileInterpreter.h"
#include "records/ReceiptState.h"
#include "shell/Clock.h"
#include "shell/FormModel.h"
#include "shell/ModuleVariables.h"
#include "shell/ProgressIndicator.h"
#include "shell/ResultSink.h"
#include "tables/OrderStoreRoads.h"
#include "tables/TableFlows.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace Qt::Literals::StringLiterals;

// payeft.dat's record: the application's payment payId is the register's
// card payment 3 on terminal ecrEft.
inline PayEftRecord cardRecord(qint16 payId, qint16 ecrEft, qint16 retries = 0, qint16 altPayment = 0)
{
    PayEftRecord r;
    r.payId = payId;
    r.ecrPayment = 3;
    r.ecrEft = ecrEft;
    r.active = -1;
    r.retries = retries;
    r.altPayment = altPayment;
    return r;
}

class InterpreterTest : public ::testing::Test {
protected:
    QTemporaryDir dir;
    VirtualClock clock;
    ScriptedOperator person;
    FormModel form;
    ScriptedLink link;
    ReceiptState receipt;
    ModuleVariables vars;
    clsind progress{form};
    JobSettings settings;
    EftCardRoads cards{link, vars, person, clock};
    // The job's result file as the interpreter writes it.
    struct : ResultSink {
        QStringList lines;
        void appendResultLine(const QString& line) override { lines << line; }
    } results;
    TableFlows flows{link, person, clock, receipt, vars, results, dir.path()};
    OrderStoreRoads roads{flows};
    bool withTables = false; // table lines are passed over without
    bool zRun = false;

    // Runs the lines in one job; every command the register heard so far.
    QStringList run(const QStringList& lines)
    {
        FPrinterOperations printer(link, receipt, vars, person, form, progress, dir.filePath(u"payeft.dat"_s));
        printer.setCardRoads(cards);
        if (withTables)
            printer.setTableRoads(roads);
        InterpreterContext context{receipt, vars, printer, link, person, clock, cards, results, dir.path(),
                                   [this] { zRun = true; }, withTables ? &flows : nullptr};
        PrintFileInterpreter(std::move(context), settings).run(lines);
        return link.commands();
    }
    // The same, counting only what this job sends.
    QStringList runAfresh(const QStringList& lines)
    {
        link.sent.clear();
        return run(lines);
    }
};
