#include "pipeline/JobRecovery.h"

#include "link/DeviceLink.h"
#include "pipeline/DocumentFigures.h"
#include "pipeline/JobJournal.h"
#include "pipeline/PrintJob.h"
#include "protocol/CountersQuery.h"
#include "protocol/DeviceCommands.h"
#include "protocol/EftOutcome.h"
#include "protocol/EftOutcomeQuery.h"
#include "protocol/ReceiptFiguresQuery.h"
#include "shell/FileProcedures.h"
#include "shell/ModuleVariables.h"
#include "shell/Operator.h"
#include "tables/TableFlows.h"

#include <QDir>
#include <QFileInfo>
#include <QStringList>
#include <algorithm>
#include <set>

namespace {
const QString kTitleBeforeDevice = QStringLiteral("Μύνημα Kerbano");
const SendOptions kQuietQuestion{.quiet = true, .logMode = SendOptions::kLogModeProbe};

bool samePrintFile(const JournalJob& job, const QString& path)
{
    return QFileInfo(path).absoluteFilePath() == job.printPath;
}

// The unfinished job's print file is still there, as it was.
bool printFileUnchanged(const JournalJob& job)
{
    return QFileInfo::exists(job.printPath) && JobJournal::hashOf(job.printPath) == job.printHash;
}

// A table's items stay on the table whatever becomes of the visit's
// document: a table job is never run again from its start.
bool touchedTable(const JournalJob& job)
{
    for (const QString& command : job.sent) {
        if (command.startsWith(QLatin1String("&/")) || command.startsWith(u'"'))
            return true;
    }
    return false;
}

bool paymentSent(const JournalJob& job)
{
    for (const QString& command : job.sent) {
        if (command.startsWith(QLatin1String("5/")))
            return true;
    }
    return false;
}

QString money(qint64 cents)
{
    return QString::number(cents / 100.0, 'f', 2);
}
} // namespace

JobRecovery::JobRecovery(DeviceLink& link, JobJournal& journal, PrintJob& job, Operator& person,
                         ModuleVariables& vars, TableFlows& tables)
    : link_(link)
    , journal_(journal)
    , job_(job)
    , person_(person)
    , vars_(vars)
    , tables_(tables)
{
}

JobRecovery::Next JobRecovery::beforeJob(const QString& path)
{
    journal_.useFor(vars_.port);
    const std::optional<JournalJob> unfinished = journal_.unfinished();
    if (!unfinished)
        return Next::Run;
    const JournalJob& j = *unfinished;
    if (j.resultClosed)
        return settleClosed(j, path);

    const std::optional<ReceiptFiguresQuery::Answer> figures = link_.ask(ReceiptFiguresQuery{}, kQuietQuestion);
    const std::optional<CountersQuery::Answer> counters = link_.ask(CountersQuery{}, kQuietQuestion);
    if (!figures) {
        tell(QStringLiteral("Η προηγούμενη εργασία (%1) δεν ολοκληρώθηκε και η ταμειακή δεν "
                            "απαντά για να ελεγχθεί: το αρχείο δεν εκτυπώνεται ακόμη.")
                 .arg(QDir::toNativeSeparators(j.printPath)));
        return Next::Hold;
    }
    RegisterCounters now{vars_.DeviceLabel, figures->dailyNumber, {}};
    if (counters && counters->receiptCounter)
        now.progressive = *counters->receiptCounter - counters->lastZ + figures->dailyNumber;

    const bool chargeStands = j.cardSent && cardChargeStands(j);
    if (touchedTable(j) && !chargeStands)
        return settleTable(j, path, *figures, now);
    QString note;
    if (figures->open) {
        // An open document on the register is the unfinished job's own.
        if (chargeStands) {
            tell(QStringLiteral("Η προηγούμενη εργασία (%1) άφησε ανοιχτή απόδειξη με πληρωμή "
                                "κάρτας που έγινε δεκτή: δεν ακυρώνεται και δεν εκτυπώνεται ξανά.")
                     .arg(QDir::toNativeSeparators(j.printPath)));
            return Next::Hold;
        }
        if (!link_.send(DeviceCommands::VoidDocument(), kQuietQuestion).ok()) {
            tell(QStringLiteral("Η προηγούμενη εργασία (%1) άφησε ανοιχτή απόδειξη που δεν "
                                "ακυρώθηκε: το αρχείο δεν εκτυπώνεται ακόμη.")
                     .arg(QDir::toNativeSeparators(j.printPath)));
            return Next::Hold;
        }
        note = QStringLiteral("jobNote = recovered;voided;%1").arg(money(figures->totalCents));
        journal_.settle(j.id, QStringLiteral("voided"), now);
    } else {
        const bool movedOn = !(j.before.progressive && now.progressive)
                             || *now.progressive > *j.before.progressive;
        const bool voidedLast = !j.sent.isEmpty() && j.sent.last() == DeviceCommands::VoidDocument();
        if ((paymentSent(j) || chargeStands) && movedOn && !voidedLast) {
            // Issued: the receipt is the register's last one.
            DocumentFigures issued;
            issued.amount = figures->balanceCents / 100.0;
            issued.recNumberDaily = static_cast<qint16>(figures->dailyNumber);
            issued.recNumberProgr = now.progressive.value_or(-1);
            job_.closeRecovered(j.resultPath, issued,
                                QStringLiteral("jobNote = recovered;issued;%1").arg(figures->dailyNumber));
            if (printFileUnchanged(j))
                mFile::DeleteFile(j.printPath);
            journal_.settle(j.id, QStringLiteral("recovered"), now);
            return samePrintFile(j, path) && !QFileInfo::exists(path) ? Next::Skip : Next::Run;
        }
        note = QStringLiteral("jobNote = recovered;rerun");
        journal_.settle(j.id, QStringLiteral("rerun"), now);
    }
    // Run again from the start: the same print file carries the note (at the
    // start of a life, before any file is picked, the next job carries it);
    // one that is gone or changed closes the old result file as not printed.
    if ((path.isEmpty() || samePrintFile(j, path)) && printFileUnchanged(j)) {
        job_.carryNote(note);
    } else {
        job_.closeRecovered(j.resultPath, DocumentFigures(), note + QStringLiteral(";notprinted"));
    }
    return Next::Run;
}

QString JobRecovery::voidReceiptLeftOpen()
{
    if (!journal_.paymentInDoubt())
        return QString();
    const std::optional<ReceiptFiguresQuery::Answer> figures = link_.ask(ReceiptFiguresQuery{}, kQuietQuestion);
    if (!figures || !figures->open)
        return QString();
    const bool voided = link_.send(DeviceCommands::VoidDocument(), kQuietQuestion).ok();
    return QStringLiteral("jobNote = %1;unpaid;%2")
        .arg(voided ? QStringLiteral("voided") : QStringLiteral("open"), money(figures->totalCents));
}

// What the earlier run put on the table stays there, as the order store
// holds it; an open visit is ended as the table's own end does (a zero
// payment), and the job is not printed again: its result says how far it got.
JobRecovery::Next JobRecovery::settleTable(const JournalJob& unfinished, const QString& path,
                                           const ReceiptFiguresQuery::Answer& figures,
                                           const RegisterCounters& now)
{
    if (figures.open && !link_.send(DeviceCommands::ZeroPayment(), kQuietQuestion).ok()) {
        tell(QStringLiteral("Η προηγούμενη εργασία τραπεζιού (%1) άφησε ανοιχτό παραστατικό που δεν "
                            "έκλεισε: το αρχείο δεν εκτυπώνεται ακόμη.")
                 .arg(QDir::toNativeSeparators(unfinished.printPath)));
        return Next::Hold;
    }
    // A visit opened and a title set change nothing the job would not do again.
    const bool onlyOpened = std::all_of(unfinished.sent.cbegin(), unfinished.sent.cend(), [](const QString& c) {
        return c.startsWith(QLatin1String("&/0/")) || c.startsWith(u'"');
    });
    if (onlyOpened && samePrintFile(unfinished, path) && printFileUnchanged(unfinished)) {
        // Nothing reached the table yet: the job may run from its start.
        job_.carryNote(QStringLiteral("jobNote = recovered;rerun"));
        journal_.settle(unfinished.id, QStringLiteral("rerun"), now);
        return Next::Run;
    }
    matchStoreToTables(unfinished);
    job_.closeRecovered(unfinished.resultPath, DocumentFigures(),
                        QStringLiteral("jobNote = recovered;table;%1;%2")
                            .arg(unfinished.confirmed.size())
                            .arg(unfinished.sent.size()));
    const bool gone = printFileUnchanged(unfinished);
    if (gone)
        mFile::DeleteFile(unfinished.printPath);
    journal_.settle(unfinished.id, QStringLiteral("table"), now);
    return gone && samePrintFile(unfinished, path) ? Next::Skip : Next::Run;
}

// A reply that died with the earlier run may have left an item on a table
// with no row in the store, or a row whose item never reached the table:
// the register's table is the truth.
void JobRecovery::matchStoreToTables(const JournalJob& unfinished)
{
    std::set<int> tables;
    for (const QString& command : unfinished.sent) {
        for (const int table : DeviceCommands::TablesNamedBy(command))
            tables.insert(table);
    }
    if (tables.empty())
        return;
    tables_.readStoreKeys();
    QStringList unmatched;
    for (const int table : tables) {
        if (tables_.MatchStoreToTable(static_cast<qint16>(table)) < 0)
            unmatched << QString::number(table);
    }
    if (!unmatched.isEmpty())
        tell(QStringLiteral("Η προηγούμενη εργασία τραπεζιού (%1) δεν ολοκληρώθηκε και η τοπική βάση "
                            "παραγγελιών δεν μπόρεσε να ελεγχθεί με την ταμειακή για τα τραπέζια: %2.")
                 .arg(QDir::toNativeSeparators(unfinished.printPath), unmatched.join(QStringLiteral(", "))));
}

// The result file was closed; only the deletion of the print file was cut
// off. A file written again since then is a new job.
JobRecovery::Next JobRecovery::settleClosed(const JournalJob& unfinished, const QString& path)
{
    const QFileInfo info(unfinished.printPath);
    const bool leftOver = printFileUnchanged(unfinished)
                          && info.lastModified().toMSecsSinceEpoch() <= unfinished.closedAtMs;
    if (leftOver)
        mFile::DeleteFile(unfinished.printPath);
    journal_.settle(unfinished.id, QStringLiteral("printed"), journal_.lastSeen());
    return leftOver && samePrintFile(unfinished, path) ? Next::Skip : Next::Run;
}

bool JobRecovery::cardChargeStands(const JournalJob& unfinished)
{
    Q_UNUSED(unfinished);
    const std::optional<EftOutcomeQuery::Answer> outcome = link_.ask(EftOutcomeQuery{}, kQuietQuestion);
    return outcome && !outcome->transactions.isEmpty()
           && ClassifyTerminalText(outcome->lastText) == EftOutcome::Approved;
}

void JobRecovery::tell(const QString& text)
{
    // A register that stays silent is asked again at every look for a print
    // file; the operator is told once, not at every look.
    if (text == lastTold_)
        return;
    lastTold_ = text;
    person_.message(vars_.DeviceLabel.isEmpty() ? kTitleBeforeDevice : vars_.DeviceLabel, text,
                    Operator::Icon::Warning);
}
