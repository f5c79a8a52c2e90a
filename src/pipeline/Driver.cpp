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
    , options_(std::move(options))
    , engine_(clock, person, form,
              EngineOptions{orCurrent(options_.workingDirectory), options_.commandLine})
    , log_(orCurrent(options_.programDirectory), engine_.moduleVariables())
    , results_(engine_.moduleVariables())
    , port_(engine_.moduleVariables(), clock, person, transports, log_)
    , link_(port_, engine_.moduleVariables(), clock, person, form, results_, log_)
    , cards_(link_)
    , printer_(link_, engine_.receiptState(), engine_.moduleVariables(), person, form,
               engine_.progress(), workFile(kPayEftFile))
    , reports_(link_, printer_, engine_.receiptState(), engine_.moduleVariables(), form)
{
    printer_.setCardRoads(cards_);
    engine_.attach(link_, printer_);
    engine_.setHooks(makeHooks());
}

QString Driver::workFile(const QString& name) const
{
    return QDir(orCurrent(options_.workingDirectory)).filePath(name);
}

EngineHooks Driver::makeHooks()
{
    EngineHooks hooks;
    hooks.readDeviceVatRates = [this] { ReadDeviceVatRates(link_, workFile(kVatsFile)); };
    hooks.interpretLines = [this](const QStringList& lines, const JobSettings& settings,
                                  const std::function<void(qsizetype)>& lineReached) {
        InterpreterContext context{engine_.receiptState(), engine_.moduleVariables(), printer_,
                                   link_, person_, clock_, cards_,
                                   orCurrent(options_.workingDirectory),
                                   [this] { reports_.dailyZ(); }};
        PrintFileInterpreter interpreter(std::move(context), settings);
        interpreter.run(lines, [&lineReached](int i) { lineReached(i); });
    };
    hooks.cardPaymentLines = [this] { return CardPaymentLines(link_, engine_.receiptState()); };
    hooks.closeJob = [this] { return ReadDocumentFigures(link_, engine_.receiptState()); };
    hooks.isOperatorBusy = [this] { return link_.IsOperatorBusy(); };
    hooks.startBatchFile = [](const QString& path) { QProcess::startDetached(path, {}); };
    return hooks;
}
