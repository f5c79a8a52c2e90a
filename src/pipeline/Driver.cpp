#include "pipeline/Driver.h"

#include "operations/DeviceVatRates.h"
#include "pipeline/JobClosing.h"
#include "pipeline/PrintFileInterpreter.h"

#include <QDir>
#include <QProcess>

namespace {
const QString kVatsFile = QStringLiteral("vats.dat");
const QString kPayEftFile = QStringLiteral("payeft.dat");

QString orCurrent(const QString& dir)
{
    return dir.isEmpty() ? QDir::currentPath() : dir;
}
} // namespace

Driver::Driver(Clock& clock, Operator& person, FormModel& form, TransportFactory& transports,
               DriverOptions options)
    : clock_(clock)
    , person_(person)
    , form_(form)
    , options_(std::move(options))
    , engine_(clock, person, form,
              EngineOptions{orCurrent(options_.workingDirectory), options_.commandLine,
                            options_.honourAutoStart})
    , log_(orCurrent(options_.programDirectory), engine_.moduleVariables())
    , port_(engine_.moduleVariables(), clock, person, transports, log_)
    , link_(port_, engine_.moduleVariables(), clock, person, form, engine_.resultSink(), log_)
    , cards_(link_, engine_.moduleVariables(), person, clock)
    , tables_(link_, person, clock, engine_.receiptState(), engine_.moduleVariables(),
              engine_.resultSink(), orCurrent(options_.programDirectory))
    , tableRoads_(tables_)
    , printer_(link_, engine_.receiptState(), engine_.moduleVariables(), person, form,
               engine_.progress(), workFile(kPayEftFile))
    , reports_(link_, printer_, engine_.receiptState(), engine_.moduleVariables(), form)
    , zMail_(person, clock, engine_.moduleVariables(), orCurrent(options_.programDirectory))
    , zFile_(link_, engine_.receiptState(), engine_.moduleVariables(), form, person, engine_.progress(),
             orCurrent(options_.programDirectory))
    , taxServer_(link_, person, engine_.moduleVariables())
    , actions_(form, person, engine_.moduleVariables(), *this)
    , journal_(orCurrent(options_.programDirectory))
    , recovery_(link_, journal_, engine_.printJob(), person, engine_.moduleVariables(), tables_)
{
    // Every job leaves its trace in the journal, and an unfinished one is
    // reconciled with the register before the next.
    link_.setTrail(&journal_);
    engine_.printJob().attachJournal(journal_);
    engine_.printJob().setEndCheck([this] { return recovery_.voidReceiptLeftOpen(); });
    engine_.attachRecovery(recovery_);
    printer_.setCardRoads(cards_);
    zMail_.setFailureLog([this](const QString& failure) { log_.PrintCombine(failure); });
    zFile_.setMail(&zMail_);
    reports_.setAfterDailyZ([this] { zFile_.Zfile(); });
    printer_.setTableRoads(tableRoads_);
    engine_.attach(link_, printer_, *this, *this);
    QObject::connect(&engine_, &Engine::freed, &actions_, &ActionRegistry::runWaiting,
                     Qt::QueuedConnection);
    wireMenuActions();
}

QString Driver::workFile(const QString& name) const
{
    return QDir(orCurrent(options_.workingDirectory)).filePath(name);
}

void Driver::interpretLines(const QStringList& lines, const JobSettings& settings,
                            const LineReached& lineReached)
{
    InterpreterContext context{engine_.receiptState(), engine_.moduleVariables(), printer_,
                               link_, person_, clock_, cards_, engine_.resultSink(),
                               orCurrent(options_.workingDirectory),
                               [this] { reports_.dailyZ(); }, &tables_};
    link_.beginReceiptWatch();
    PrintFileInterpreter interpreter(std::move(context), settings);
    interpreter.run(lines, [&lineReached](int i) { lineReached(i); });
}

QStringList Driver::cardPaymentLines()
{
    return CardPaymentLines(link_, engine_.receiptState());
}

DocumentFigures Driver::documentFigures()
{
    return ReadDocumentFigures(link_, engine_.receiptState());
}

bool Driver::isOperatorBusy()
{
    return link_.IsOperatorBusy();
}

void Driver::readDeviceVatRates()
{
    ReadDeviceVatRates(link_, workFile(kVatsFile));
}

void Driver::startBatchFile(const QString& path)
{
#ifdef Q_OS_WIN
    QProcess::startDetached(QStringLiteral("cmd"), {QStringLiteral("/c"), path});
#else
    QProcess::startDetached(path, {});
#endif
}

bool Driver::jobInProgress() const
{
    return engine_.busy();
}

bool Driver::inConversation() const
{
    return link_.inConversation();
}
