#pragma once

#include "protocol/ReceiptFiguresQuery.h"

#include <QString>

class DeviceLink;
class JobJournal;
class Operator;
class PrintJob;
class TableFlows;
struct JournalJob;
struct RegisterCounters;
struct ModuleVariables;

// Before a job, in every life: a job an earlier life left unfinished is
// reconciled with the register before anything else goes to it.
//  - its result file already closed: the job was done, only its print file
//    was left; it is deleted, not printed again;
//  - a document open on the register: it is that job's; it is voided and the
//    job runs again from its start, so one receipt results;
//  - no document open, a payment sent and the receipt number moved on: the
//    receipt was issued; its result file is closed from the register's
//    figures with a line saying so, and its print file deleted;
//  - nothing happened: it runs again.
// A card payment whose outcome is unknown is asked with the outcome query
// first: a charge that stands is never taken twice. A table job is never
// run again: its items stay on the table, an open visit is ended with a zero
// payment, the order store is brought in step with every table the job
// named, and the result file says how far the job got.
class JobRecovery {
public:
    // What the job about to run on a print file is to do.
    enum class Next {
        Run,  // run it (a note may ride along with it)
        Skip, // it was the unfinished job's and is settled: nothing to print
        Hold, // the register could not be reconciled: the file stays unprinted
    };

    JobRecovery(DeviceLink& link, JobJournal& journal, PrintJob& job, Operator& person,
                ModuleVariables& vars, TableFlows& tables);

    // Reconciles the journal's unfinished job, if any; path is the print file
    // about to run.
    Next beforeJob(const QString& path);

    // Behind the last line of a job in hand: a receipt its refused payment
    // left open would swallow the next customer's payment; it is voided.
    // The line for the result file when it was, else nothing.
    QString voidReceiptLeftOpen();

private:
    Next settleClosed(const JournalJob& unfinished, const QString& path);
    Next settleTable(const JournalJob& unfinished, const QString& path,
                     const ReceiptFiguresQuery::Answer& figures, const RegisterCounters& now);
    void matchStoreToTables(const JournalJob& unfinished);
    bool cardChargeStands(const JournalJob& unfinished);
    void tell(const QString& text);

    DeviceLink& link_;
    JobJournal& journal_;
    PrintJob& job_;
    Operator& person_;
    ModuleVariables& vars_;
    TableFlows& tables_;
    QString lastTold_;
};
