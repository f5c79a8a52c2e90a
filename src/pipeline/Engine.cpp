#include "pipeline/Engine.h"

#include "config/ParamFileReader.h"
#include "link/DeviceLink.h"
#include "operations/FPrinter.h"
#include "pipeline/CommandLine.h"
#include "pipeline/JobRecovery.h"
#include "pipeline/StartParts.h"
#include "shell/Clock.h"
#include "shell/FormModel.h"
#include "shell/Operator.h"
#include "shell/Paths.h"

#include <QDir>
#include <QFileInfo>

namespace {
const QString kCaptionSearching = QStringLiteral("Kerbano- Αναζήτηση");
const QString kCaptionReady = QStringLiteral("Kerbano- Έτοιμο");
const QString kCaptionOffLine = QStringLiteral("Kerbano- Λάθος!");
const QString kCaptionWaiting = QStringLiteral("Kerbano- Αναμονη");
const QString kCaptionPrinting = QStringLiteral("Εκτύπωση Ενεργή ");
const QString kCaptionStopped = QStringLiteral("Kerbano- Διακοπηκε");

const QString kStatusSearching = QStringLiteral("Εύρεση Φορολογικής Ταμειακής !!! ");
const QString kStatusReady = QStringLiteral("Φορολογικός Εκτυπωτής ON-Line, Έτοιμος Για Εκτυπωσεις");
const QString kStatusOffLine = QStringLiteral("Φορολογικός Εκτυπωτής Off-Line, Εκτυπώσεις Ανενεργές !");
const QString kStatusWaiting = QStringLiteral("Αναμονη Για Στοιχεια....");
const QString kStatusPrinting = QStringLiteral("Εκτύπωση Ενεργή ..... Παρακαλώ Περιμένετε...");
const QString kStatusStopped = QStringLiteral("Διακοπη Εκτυπωσεων. Πατηστε Εναρξη Εκτυπωσεων!!! ");
const QString kStatusNoParamFile = QStringLiteral("Λάθος : Δεν βρέθηκε το αρχείο παραμέτρων param.ini");

const QString kTitleBeforeDevice = QStringLiteral("Μύνημα Kerbano");
const QString kParamFileName = QStringLiteral("param.ini");
const QString kBatchFile = QStringLiteral("\\kerbano\\cop2ker.bat");

const FormModel::Entry kMenuOffWhenLinkFailed[] = {&MenuStates::help,   &MenuStates::Ver,
                                                   &MenuStates::reports, &MenuStates::mZREp,
                                                   &MenuStates::pStart, &MenuStates::pStop,
                                                   &MenuStates::paramEFT};

int deviceTypeOf(const QString& ecrt)
{
    const QString e = ecrt.toUpper();
    if (e == QLatin1String("TECFP"))
        return 1;
    if (e == QLatin1String("MIKRO"))
        return 2;
    if (e == QLatin1String("POS21"))
        return 3;
    return 0;
}

EngineOptions withWorkingDirectory(EngineOptions options)
{
    if (options.workingDirectory.isEmpty())
        options.workingDirectory = QDir::currentPath();
    return options;
}

} // namespace

// Marks the engine busy for the length of a start, a tick or a job; leaving
// the outermost one tells whoever waits that the engine is free.
class Engine::Work {
public:
    explicit Work(Engine& engine)
        : engine_(engine)
    {
        ++engine_.workDepth_;
    }
    ~Work()
    {
        if (--engine_.workDepth_ == 0 && !engine_.ended_)
            emit engine_.freed();
    }
    Q_DISABLE_COPY_MOVE(Work)

private:
    Engine& engine_;
};

Engine::Engine(Clock& clock, Operator& person, FormModel& form, EngineOptions options, QObject* parent)
    : QObject(parent)
    , clock_(clock)
    , person_(person)
    , form_(form)
    , options_(withWorkingDirectory(std::move(options)))
    , progress_(form)
    , job_(clock, person, form, vars_, state_, progress_, options_.workingDirectory)
    , watch_(options_.workingDirectory)
    , search_(form, vars_, state_)
{
}

void Engine::attach(DeviceLink& link, FPrinter& printer, JobParts& jobParts, StartParts& startParts)
{
    link_ = &link;
    printer_ = &printer;
    startParts_ = &startParts;
    job_.attach(jobParts);
    search_.attach(link, printer);
}

// ---- start ---------------------------------------------------------------

void Engine::Form_Load()
{
    Q_ASSERT(link_ && printer_ && startParts_);
    const Work work(*this);
    startMs_ = clock_.monotonicMs();
    if (commandLineLife()) {
        const CommandLineFields fields = readcoman(options_.commandLine);
        if (!commandLineUsable(fields)) {
            end(kExitWrongCommandLine); // a wrong command line ends the process without a word
            return;
        }
        settings_ = commandLineSettings(fields);
        vars_.port = fields.port;
        vars_.baud = fields.baud;
        parametersRead_ = true;
    } else {
        readStartSettings();
    }
    deviceType_ = deviceTypeOf(settings_.ecrt);
    showSettings();

    form_.setCaption(kCaptionSearching);
    form_.setComstattxt(kStatusSearching);
    form_.setFormShown(true);

    qint16 status = 0;
    QString reply;
    link_->OpenDeviceLink(vars_.port, status, reply, false);
    const bool opened = status == 0 && link_->isConnected();
    if (!opened) {
        enterLinkFailed(status, reply);
        // The first of the command-line life's questions, unanswered.
        if (commandLineLife()) {
            state_.LastStatus = status;
            state_.LastReply = reply;
        }
    } else {
        if (!vars_.DeviceLabel.isEmpty())
            form_.setLabel2(vars_.DeviceLabel);
        startParts_->readDeviceVatRates();
        setTimer(timer2_, true, kTimer2Ms);
        setTimer(mTimer_, true);
    }
    form_.setCommand1Enabled(false);
    form_.setCommand2Enabled(false);
    setTimer(timer1_, false);
    enter(opened ? EngineState::Searching : EngineState::LinkFailed);

    if (commandLineLife())
        commandLineJob();
}

void Engine::readStartSettings()
{
    ParamSettings s;
    parametersRead_ = readParamFile(paramPath(), ParamReader::Start, s);
    if (!parametersRead_) {
        person_.message(kTitleBeforeDevice,
                        QStringLiteral("Δεν βρέθηκε το αρχείο παραμέτρων param.ini !"),
                        Operator::Icon::Critical);
    }
    settings_ = s.job;
    vars_.port = s.port;
    vars_.baud = s.baud;
    vars_.spRet = ParamSettings::flagValue(s.spRet);
    vars_.cpDOS = ParamSettings::flagValue(s.cpDOS);
    vars_.eMail = s.eMail;
    vars_.ZeMail = ParamSettings::wholeNumberValue(s.ZeMail);
    autoStart_ = s.autoStart;
}

void Engine::showSettings()
{
    form_.update([this](FormState& f) {
        f.serialtxt = vars_.port;
        f.baudtxt = vars_.baud;
        f.filetxt = settings_.file + QStringLiteral(" @Path : ") + settings_.location;
        f.ecrtxt = settings_.ecrt;
        f.desctxt = settings_.printDesc == QLatin1String("true") ? QStringLiteral("Να Εκτυπωνεται")
                                                                 : QStringLiteral("Να ΜΗΝ Εκτυπωνεται");
        f.commentstxt = settings_.comments == QLatin1String("fals") ? QStringLiteral("Οχι")
                                                                    : QStringLiteral("Nαι");
        f.currtxt.clear();
        if (settings_.currency == QLatin1String("0") || settings_.currency == QLatin1String("1"))
            f.currtxt = QStringLiteral("Κυριο Νομισμα");
        else if (settings_.currency == QLatin1String("2"))
            f.currtxt = QStringLiteral("δευτερευων Νομισμα");
    });
}

void Engine::enterLinkFailed(qint16 status, const QString& reply)
{
    form_.setComstattxt(QStringLiteral("Λάθος : %1 - %2").arg(status).arg(reply));
    setTimer(timer2_, false, kTimer2Ms);
    for (const FormModel::Entry entry : kMenuOffWhenLinkFailed)
        form_.setMenuEnabled(entry, false);
}

// The one file of the command-line life, then the end.
void Engine::commandLineJob()
{
    setTimer(timer2_, false);
    setTimer(timer1_, true, kTimer1DesignedMs);

    const QString path = watch_.namedPath(settings_);
    const bool answered = initializeForCommandLine();
    if (stopRequested()) { // asked to end first: the file stays for the next run
        closeLinkIfOpen();
        end(0);
        return;
    }
    if (!answered) {
        form_.setComstattxt(QStringLiteral("Λάθος : %1 - %2").arg(state_.LastStatus).arg(state_.LastReply));
        person_.message(messageTitle(),
                        QStringLiteral("Η φορολογική ταμειακή δεν απαντά. Το αρχείο %1 δεν εκτυπώθηκε "
                                       "και παραμένει για την επόμενη εκτέλεση.")
                            .arg(QDir::toNativeSeparators(path)),
                        Operator::Icon::Critical);
        closeLinkIfOpen();
        end(kExitRegisterSilent);
        return;
    }
    form_.setComstattxt(kStatusReady);
    form_.setCaption(kCaptionReady);
    form_.setCommand1Enabled(true);
    setTimer(timer2_, false);
    enter(EngineState::Ready);

    inJob_ = true;
    const BeforeJob next = reconcile(path);
    if (next == BeforeJob::Hold) {
        // The register could not be reconciled: the file stays for the next run.
        inJob_ = false;
        closeLinkIfOpen();
        end(kExitRegisterSilent);
        return;
    }
    if (next == BeforeJob::Run)
        getdata(path, settings_);
    mFile::DeleteFile(path);
    job_.printFileSettled();
    inJob_ = false;
    command1();
    unload(job_.exitStatus());
}

// The register may still be waking: ask it a few times. A register that
// stays silent gets no file: it stays where it is, unprinted, for the next run.
// The minute counts from the start of the life, the opening included, and an
// attempt begins only while what is left of it holds the longest attempt so
// far: the link's own deadlines (four sends of ten seconds over TCP) stay as
// they are, and the life still gives up within its minute.
bool Engine::initializeForCommandLine()
{
    const qint64 giveUpAt = startMs_ + kCommandLineInitializeGiveUpMs;
    // An opening that went unanswered was the first attempt.
    qint64 longestMs = link_->isConnected() ? 0 : clock_.monotonicMs() - startMs_;
    for (int attempt = 0; attempt < kCommandLineInitializeAttempts && !stopRequested(); ++attempt) {
        const qint64 began = clock_.monotonicMs();
        const qint64 pauseMs = attempt > 0 ? kCommandLineInitializePauseMs : 0;
        if (began + pauseMs + longestMs > giveUpAt)
            break;
        if (attempt > 0) {
            clock_.sleepMs(pauseMs);
            if (!link_->isConnected()) {
                qint16 status = 0;
                QString reply;
                link_->OpenDeviceLink(vars_.port, status, reply, true);
            }
        }
        printer_->FPrinterWrite(QString(), QStringLiteral("initialize"));
        if (state_.LastStatus == 0)
            return true;
        longestMs = qMax(longestMs, clock_.monotonicMs() - began);
    }
    return false;
}

// ---- device search ---------------------------------------------------------

void Engine::timer2Tick()
{
    if (ended_ || !timer2_.armed)
        return;
    const Work work(*this);
    switch (search_.tick()) {
    case DeviceSearch::Outcome::OffLine:
        enterOffLine();
        break;
    case DeviceSearch::Outcome::Answered:
        // Before anything else reaches the register.
        reconcile(QString());
        enterReady();
        if (autoStart_ && options_.honourAutoStart) {
            command1();
            form_.setFormShown(false);
        }
        break;
    case DeviceSearch::Outcome::LinkFailed:
    case DeviceSearch::Outcome::Silent:
        break;
    }
}

void Engine::enterOffLine()
{
    form_.setComstattxt(kStatusOffLine);
    form_.setCaption(kCaptionOffLine);
    enter(EngineState::OffLine);
}

void Engine::enterReady()
{
    form_.setComstattxt(kStatusReady);
    form_.setCaption(kCaptionReady);
    form_.setCommand1Enabled(true);
    setTimer(timer2_, false);
    form_.setMenuEnabled(&MenuStates::reports, true);
    if (!vars_.DeviceLabel.isEmpty())
        form_.setLabel2(vars_.DeviceLabel);
    enter(EngineState::Ready);
}

// ---- buttons and tray upkeep ------------------------------------------------

void Engine::command1()
{
    if (commandLineLife())
        setTimer(timer1_, true, kTimer1CommandLineMs);
    else
        setTimer(timer1_, true);
    form_.setCommand1Enabled(false);
    form_.setCommand2Enabled(true);
    startBatchFileWhenAsked();
    showWaiting();
    form_.setMenuEnabled(&MenuStates::reports, false);
    form_.setMenuEnabled(&MenuStates::Settings, false);
    enter(EngineState::Polling);
}

void Engine::startBatchFileWhenAsked()
{
    if (commandLineStartsBatch(options_.commandLine))
        startParts_->startBatchFile(ResolveAgainst(options_.workingDirectory, kBatchFile));
}

void Engine::stopDeviceSearch()
{
    setTimer(timer2_, false);
}

void Engine::command2()
{
    setTimer(timer1_, false);
    form_.setCommand2Enabled(false);
    form_.setCommand1Enabled(true);
    form_.setComstattxt(kStatusStopped);
    form_.setCaption(kCaptionStopped);
    form_.setMenuEnabled(&MenuStates::reports, true);
    form_.setMenuEnabled(&MenuStates::Settings, true);
    enter(EngineState::Stopped);
}

void Engine::mTimerTick()
{
    if (ended_)
        return;
    form_.update([](FormState& f) {
        f.trayTip = f.caption.left(kTrayTipLength);
        // Both marks are off while both buttons are, as during a device search.
        const bool bothOff = !f.command1Enabled && !f.command2Enabled;
        f.menus.pStart.checked = !bothOff && !f.command1Enabled;
        f.menus.pStop.checked = !bothOff && !f.command2Enabled;
    });
}

void Engine::showWaiting()
{
    form_.setComstattxt(kStatusWaiting);
    form_.setCaption(kCaptionWaiting);
}

void Engine::unload(int exitCode)
{
    closeLinkIfOpen();
    end(exitCode);
}

void Engine::end(int code)
{
    if (ended_)
        return;
    ended_ = true;
    exitCode_ = code;
    timer1_.armed = timer2_.armed = mTimer_.armed = false;
    emit timersChanged();
    emit ended(code);
}

void Engine::enter(EngineState state)
{
    if (engineState_ == state)
        return;
    engineState_ = state;
    emit stateEntered(state);
}

// ---- polling ---------------------------------------------------------------

void Engine::timer1Tick()
{
    tick(TickKind::Timer1);
}

Engine::ArrivalLook Engine::lookOnArrival()
{
    return tick(TickKind::Arrival);
}

QString Engine::printFolder() const
{
    if (commandLineLife() || !parametersRead_)
        return QString();
    return watch_.folder(settings_);
}

Engine::ArrivalLook Engine::tick(TickKind kind)
{
    // A job pumps the event loop; a tick never runs inside another one. The
    // command-line life runs its one file from the start, not from a tick.
    if (ended_ || commandLineLife() || stopRequested())
        return ArrivalLook::NotNow;
    if (inJob_)
        return ArrivalLook::Busy;
    if (!timer1_.armed)
        return ArrivalLook::NotNow;
    const Work work(*this);
    inJob_ = true;
    progress_.setValue(0);
    if (kind == TickKind::Timer1)
        watch_.beginLook();
    else
        watch_.beginArrivalLook();
    ArrivalLook outcome = ArrivalLook::Nothing;
    if (!readTickSettings()) {
        closeLinkIfOpen();
    } else {
        switch (FileWatch::wayOf(settings_)) {
        case FileWatch::Way::SingleFile:
            outcome = singleFileTick();
            break;
        case FileWatch::Way::Polling:
            outcome = pollingTick(kind);
            break;
        case FileWatch::Way::Unknown:
            closeLinkIfOpen();
            break;
        }
    }
    inJob_ = false;
    return outcome;
}

void Engine::rereadSettings()
{
    if (ended_ || busy())
        return;
    const Work work(*this);
    readTickSettings();
    showSettings();
}

bool Engine::readTickSettings()
{
    ParamSettings s;
    const bool read = readParamFile(paramPath(), ParamReader::Tick, s);
    settings_ = s.job;
    vars_.port = s.port;
    vars_.baud = s.baud;
    if (!read) {
        form_.setComstattxt(kStatusNoParamFile);
    } else if (form_.comstattxt() == kStatusNoParamFile) {
        showWaiting();
    }
    return read;
}

// One file, named whole; the program ends once it is printed. Until the file
// is there and finished the tick only waits.
Engine::ArrivalLook Engine::singleFileTick()
{
    const std::optional<QString> path = watch_.singleFile(settings_);
    if (!path)
        return watch_.hasUnfinishedFile(settings_) ? ArrivalLook::Waiting : ArrivalLook::Nothing;
    openLinkIfClosed();
    const BeforeJob next = reconcile(*path);
    if (next == BeforeJob::Hold)
        return ArrivalLook::Waiting;
    if (next == BeforeJob::Run)
        getdata(*path, settings_);
    if (!FileWatch::keptAfterJob(*path, FileWatch::Way::SingleFile))
        mFile::DeleteFile(*path);
    job_.printFileSettled();
    unload();
    return ArrivalLook::Kept;
}

Engine::ArrivalLook Engine::pollingTick(TickKind kind)
{
    const std::optional<QString> candidate = watch_.nextFile(settings_);
    if (!candidate) {
        // Nothing to print: let other programs have the port in the pause.
        if (kind == TickKind::Timer1)
            closeLinkIfOpen();
        return watch_.hasUnfinishedFile(settings_) ? ArrivalLook::Waiting : ArrivalLook::Nothing;
    }
    openLinkIfClosed();
    const BeforeJob next = reconcile(*candidate);
    if (next == BeforeJob::Hold)
        return ArrivalLook::Waiting;
    if (next == BeforeJob::Run)
        getdata(*candidate, settings_);
    if (!FileWatch::keptAfterJob(*candidate, FileWatch::Way::Polling))
        mFile::DeleteFile(*candidate);
    job_.printFileSettled();
    showWaiting();
    enter(EngineState::Polling);
    // The link stays open for the next tick.
    return QFileInfo::exists(*candidate) ? ArrivalLook::Kept : ArrivalLook::Printed;
}

void Engine::openLinkIfClosed()
{
    if (link_->isConnected())
        return;
    qint16 status = 0;
    QString reply;
    link_->OpenDeviceLink(vars_.port, status, reply, false);
}

void Engine::closeLinkIfOpen()
{
    if (link_ && link_->isConnected())
        link_->CloseDeviceLink();
}

// ---- the job ---------------------------------------------------------------

Engine::BeforeJob Engine::reconcile(const QString& path)
{
    if (!recovery_)
        return BeforeJob::Run;
    switch (recovery_->beforeJob(path)) {
    case JobRecovery::Next::Skip:
        return BeforeJob::Skip;
    case JobRecovery::Next::Hold:
        return BeforeJob::Hold;
    case JobRecovery::Next::Run:
        break;
    }
    return BeforeJob::Run;
}

void Engine::getdata(const QString& path, const JobSettings& settings)
{
    const Work work(*this);
    setTimer(timer1_, false);
    form_.setComstattxt(kStatusPrinting);
    form_.setCaption(kCaptionPrinting);
    enter(EngineState::Printing);
    job_.run(path, settings);
    setTimer(timer1_, true);
}

// ---- small helpers -----------------------------------------------------------

QString Engine::messageTitle() const
{
    return vars_.DeviceLabel.isEmpty() ? kTitleBeforeDevice : vars_.DeviceLabel;
}

QString Engine::paramPath() const
{
    return QDir(options_.workingDirectory).filePath(kParamFileName);
}

void Engine::setTimer(TimerState& timer, bool armed, int intervalMs)
{
    if (timer.armed == armed && timer.intervalMs == intervalMs)
        return;
    timer.armed = armed;
    timer.intervalMs = intervalMs;
    emit timersChanged();
}

void Engine::setTimer(TimerState& timer, bool armed)
{
    setTimer(timer, armed, timer.intervalMs);
}
