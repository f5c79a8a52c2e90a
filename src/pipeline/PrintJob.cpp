#include "pipeline/PrintJob.h"

#include "config/RegionalNumber.h"
#include "records/ReceiptState.h"
#include "pipeline/JobJournal.h"
#include "pipeline/JobParts.h"
#include "shell/Clock.h"
#include "shell/FileProcedures.h"
#include "shell/FormModel.h"
#include "shell/ModuleVariables.h"
#include "shell/Operator.h"
#include "shell/Paths.h"
#include "shell/ProgressIndicator.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QScopeGuard>
#include <exception>

namespace {
bool printFileReadable(const QString& path)
{
    const QFileInfo info(path);
    if (!info.exists() && !info.isSymLink())
        return true; // nothing there: the job runs on an empty file, as it always did
    QFile file(path);
    return info.isFile() && file.open(QIODevice::ReadOnly);
}

const QString kTitleBeforeDevice = QStringLiteral("Μύνημα Kerbano");
constexpr int kAmountDecimals = 2;

// Why a job ended before its last line.
QString stoppedLine(StopCause cause)
{
    return cause == StopCause::WaitLimit ? QStringLiteral("stopped = wait limit")
                                         : QStringLiteral("stopped = signal");
}
} // namespace

PrintJob::PrintJob(Clock& clock, Operator& person, FormModel& form, ModuleVariables& vars,
                   ReceiptState& receipt, clsind& progress, QString workingDirectory)
    : clock_(clock)
    , person_(person)
    , form_(form)
    , vars_(vars)
    , receipt_(receipt)
    , progress_(progress)
    , workingDirectory_(std::move(workingDirectory))
{
}

void PrintJob::run(const QString& path, const JobSettings& settings)
{
    Q_ASSERT(parts_);
    exitStatus_ = 0;
    lastFigures_ = DocumentFigures();
    // A directory, a symlink that leads nowhere or a file that cannot be
    // read is no print file: it gets a message and no result that reads
    // like a printed receipt.
    if (!printFileReadable(path)) {
        person_.message(messageTitle(),
                        QStringLiteral("Το αρχείο %1 δεν είναι αρχείο εκτύπωσης που διαβάζεται "
                                       "και δεν εκτυπώθηκε.")
                            .arg(QDir::toNativeSeparators(path)),
                        Operator::Icon::Critical);
        exitStatus_ = kExitBadPrintFile;
        return;
    }
    const QString text = mFile::ReadWholeFile(path);
    open(text);
    const auto done = qScopeGuard([this] { inHand_ = false; });
    // Only CR LF ends a line; a lone CR or LF belongs to the line it stands in.
    const QStringList lines = text.split(QStringLiteral("\r\n"));
    progress_.setMax(static_cast<qint16>(qMin<qsizetype>(lines.size(), kMaxProgress)));

    appendResultLine(QStringLiteral("tag = ") + vars_.JobTag);
    appendResultLine(QStringLiteral("DateTime start = ") + clock_.stamp());
    vars_.IgnoreOperatorBusy = true;
    if (journal_) {
        // The counters the journal last saw on this register stand for the
        // register before the job: reading them now would add to every job.
        RegisterCounters before = journal_->lastSeen();
        if (before.registerName != vars_.DeviceLabel)
            before = RegisterCounters{vars_.DeviceLabel, {}, {}};
        journal_->begin(path, vars_.ResultPath, before);
    }

    walkLines(lines, settings);
    close();
}

void PrintJob::open(const QString& text)
{
    vars_.ResultPath = ResolveAgainst(workingDirectory_, mFile::ReadResultPathLine(text));
    vars_.JobTag = mFile::ReadTagLine(text);
    inHand_ = true;
    writeFailed_ = false;
    notes_.clear();
}

void PrintJob::walkLines(const QStringList& lines, const JobSettings& settings)
{
    const auto lineReached = [this](qsizetype i) {
        progress_.setValue(static_cast<qint16>(qMin<qsizetype>(i + 1, kMaxProgress)));
    };
    // A fault inside the walk ends it; the closing lines are written all the same.
    try {
        parts_->interpretLines(lines, settings, lineReached);
    } catch (const std::exception& fault) {
        person_.message(messageTitle(), QStringLiteral("Λάθος : ") + QString::fromLocal8Bit(fault.what()),
                        Operator::Icon::Critical);
    } catch (...) {
        person_.message(messageTitle(), QStringLiteral("Λάθος : ") + vars_.JobTag,
                        Operator::Icon::Critical);
    }
}

// Behind the last line. Whatever went before, the result file reaches its
// exitcode line.
void PrintJob::close()
{
    QStringList cardLines;
    DocumentFigures figures;
    try {
        parts_->finishCardPayment();
        clock_.sleepMs(kDocumentSettleMs);
        cardLines = parts_->cardPaymentLines();
    } catch (...) {
        cardLines.clear();
    }
    for (const QString& line : cardLines)
        appendResultLine(line);
    appendResultLine(QStringLiteral("DateTime end = ") + clock_.stamp());

    const QString endNote = endCheck_ ? endCheck_() : QString();
    try {
        figures = parts_->documentFigures();
    } catch (...) {
        figures = DocumentFigures();
    }
    if (!endNote.isEmpty()) {
        noteBeforeExit(endNote);
        figures.amount = 0.0; // no receipt was issued
    }
    receipt_.TableMode = 0;
    receipt_.setCurrentTable(-1);
    if (!carriedNote_.isEmpty())
        notes_.prepend(carriedNote_);
    carriedNote_.clear();
    writeClosingLines(figures);
    lastFigures_ = figures;

    try {
        vars_.IgnoreOperatorBusy = parts_->isOperatorBusy();
    } catch (...) {
    }
    receipt_.PaymentDone = false;
    receipt_.CommentAfterTotal = false;
    inHand_ = false;

    if (writeFailed_) {
        exitStatus_ = kExitResultUnwritten;
        person_.message(messageTitle(),
                        QStringLiteral("Δεν ήταν δυνατή η εγγραφή στο αρχείο αποτελεσμάτων : ") + vars_.ResultPath,
                        Operator::Icon::Warning);
    }
}

void PrintJob::writeClosingLines(const DocumentFigures& figures)
{
    const int recStatus = figures.amount != 0.0 ? 1 : 0;
    appendResultLine(QStringLiteral("recStatus = %1;%2")
                         .arg(recStatus)
                         .arg(FormatDeviceNumber(figures.amount, kAmountDecimals)));
    appendResultLine(QStringLiteral("receipt = %1, %2, %3")
                         .arg(figures.recNumberProgr)
                         .arg(figures.recNumberDaily)
                         .arg(figures.ordNumber));
    for (const QString& note : std::as_const(notes_))
        appendResultLine(note);
    if (vars_.Stop != StopCause::None)
        appendResultLine(stoppedLine(vars_.Stop));
    appendResultLine(QStringLiteral("exitcode = 0"));
    if (journal_)
        journal_->resultClosed();
    form_.setLblreceipt(QString::number(figures.recNumberDaily));
}

void PrintJob::closeRecovered(const QString& resultPath, const DocumentFigures& figures,
                              const QString& note)
{
    exitStatus_ = 0;
    vars_.ResultPath = resultPath;
    inHand_ = true;
    writeFailed_ = false;
    notes_ = QStringList{note};
    const auto done = qScopeGuard([this] {
        inHand_ = false;
        notes_.clear();
    });
    appendResultLine(QStringLiteral("DateTime end = ") + clock_.stamp());
    writeClosingLines(figures);
    if (writeFailed_)
        exitStatus_ = kExitResultUnwritten;
}

namespace {
RegisterCounters countersOf(const QString& registerName, const DocumentFigures& figures)
{
    RegisterCounters counters{registerName, {}, {}};
    if (figures.recNumberDaily >= 0)
        counters.daily = figures.recNumberDaily;
    if (figures.recNumberProgr >= 0)
        counters.progressive = figures.recNumberProgr;
    return counters;
}
} // namespace

void PrintJob::printFileSettled()
{
    if (journal_ && journal_->inJob())
        journal_->end(QStringLiteral("printed"), countersOf(vars_.DeviceLabel, lastFigures_));
}

void PrintJob::noteBeforeExit(const QString& line)
{
    if (!inHand_)
        return;
    notes_ << line;
    exitStatus_ = kExitNotAsAsked;
}

void PrintJob::appendResultLine(const QString& line)
{
    if (!inHand_)
        return;
    if (!mFile::AppendLine(vars_.ResultPath, line))
        writeFailed_ = true;
}

QString PrintJob::messageTitle() const
{
    return vars_.DeviceLabel.isEmpty() ? kTitleBeforeDevice : vars_.DeviceLabel;
}
