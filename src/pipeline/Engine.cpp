#include "pipeline/Engine.h"

#include "config/ParamFileReader.h"
#include "config/RegionalNumber.h"
#include "link/DeviceLink.h"
#include "operations/FPrinter.h"
#include "pipeline/CommandLine.h"
#include "shell/Clock.h"
#include "shell/FormModel.h"
#include "shell/Operator.h"
#include "shell/Paths.h"

#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <exception>

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
constexpr int kHighestNumberedFile = 10;
constexpr int kMaxProgress = 32767;
constexpr int kAmountDecimals = 2;

const QStringList kMenuOffWhenLinkFailed = {
    QStringLiteral("help"),  QStringLiteral("Ver"),  QStringLiteral("reports"),
    QStringLiteral("mZREp"), QStringLiteral("pStart"), QStringLiteral("pStop"),
    QStringLiteral("paramEFT")};

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

} // namespace

Engine::Engine(Clock& clock, Operator& person, FormModel& form, EngineOptions options, QObject* parent)
    : QObject(parent)
    , clock_(clock)
    , person_(person)
    , form_(form)
    , options_(std::move(options))
    , progress_(form)
{
    if (options_.workingDirectory.isEmpty())
        options_.workingDirectory = QDir::currentPath();
}

void Engine::attach(DeviceLink& link, FPrinter& printer)
{
    link_ = &link;
    printer_ = &printer;
}

void Engine::setHooks(EngineHooks hooks)
{
    hooks_ = std::move(hooks);
}

// ---- start ---------------------------------------------------------------

void Engine::Form_Load()
{
    Q_ASSERT(link_ && printer_);
    if (commandLineLife()) {
        const CommandLineFields fields = readcoman(options_.commandLine);
        if (!commandLineUsable(fields)) {
            end(1); // a wrong command line ends the process without a word
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
    if (status != 0 || !link_->isConnected()) {
        enterLinkFailed(status, reply);
    } else {
        if (!vars_.DeviceLabel.isEmpty())
            form_.setLabel2(vars_.DeviceLabel);
        hooks_.readDeviceVatRates();
        setTimer(timer2_, true, kTimer2Ms);
        setTimer(mTimer_, true);
    }
    form_.setEnabled(QStringLiteral("Command1"), false);
    form_.setEnabled(QStringLiteral("Command2"), false);
    setTimer(timer1_, false);

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
    form_.setField(QStringLiteral("serialtxt"), vars_.port);
    form_.setField(QStringLiteral("baudtxt"), vars_.baud);
    form_.setField(QStringLiteral("filetxt"), settings_.file + QStringLiteral(" @Path : ") + settings_.location);
    form_.setField(QStringLiteral("ecrtxt"), settings_.ecrt);
    form_.setField(QStringLiteral("desctxt"), settings_.printDesc == QLatin1String("true")
                                                  ? QStringLiteral("Να Εκτυπωνεται")
                                                  : QStringLiteral("Να ΜΗΝ Εκτυπωνεται"));
    form_.setField(QStringLiteral("commentstxt"),
                   settings_.comments == QLatin1String("fals") ? QStringLiteral("Οχι") : QStringLiteral("Nαι"));
    QString currency;
    if (settings_.currency == QLatin1String("0") || settings_.currency == QLatin1String("1"))
        currency = QStringLiteral("Κυριο Νομισμα");
    else if (settings_.currency == QLatin1String("2"))
        currency = QStringLiteral("δευτερευων Νομισμα");
    form_.setField(QStringLiteral("currtxt"), currency);
}

void Engine::enterLinkFailed(qint16 status, const QString& reply)
{
    form_.setComstattxt(QStringLiteral("Λάθος : %1 - %2").arg(status).arg(reply));
    setTimer(timer2_, false, kTimer2Ms);
    for (const QString& entry : kMenuOffWhenLinkFailed)
        form_.setEnabled(entry, false);
}

// The one file of the command-line life, then the end.
void Engine::commandLineJob()
{
    setTimer(timer2_, false);
    setTimer(timer1_, true, kTimer1DesignedMs);

    // The register may still be waking: ask it a few times. A register that
    // stays silent gets no file: it stays where it is, unprinted, for the next run.
    const QString path = workPath(settings_.location + settings_.file);
    const qint64 giveUpAt = clock_.monotonicMs() + kCommandLineInitializeGiveUpMs;
    for (int attempt = 0; attempt < kCommandLineInitializeAttempts; ++attempt) {
        if (attempt > 0) {
            if (clock_.monotonicMs() >= giveUpAt)
                break;
            clock_.sleepMs(kCommandLineInitializePauseMs);
            if (!link_->isConnected()) {
                qint16 status = 0;
                QString reply;
                link_->OpenDeviceLink(vars_.port, status, reply, true);
            }
        }
        printer_->FPrinterWrite(QString(), QStringLiteral("initialize"));
        if (state_.LastStatus == 0)
            break;
    }
    if (state_.LastStatus != 0) {
        form_.setComstattxt(QStringLiteral("Λάθος : %1 - %2").arg(state_.LastStatus).arg(state_.LastReply));
        person_.message(messageTitle(),
                        QStringLiteral("Η φορολογική ταμειακή δεν απαντά. Το αρχείο %1 δεν εκτυπώθηκε "
                                       "και παραμένει για την επόμενη εκτέλεση.")
                            .arg(QDir::toNativeSeparators(path)),
                        Operator::Icon::Critical);
        if (link_->isConnected())
            link_->CloseDeviceLink();
        end(kExitRegisterSilent);
        return;
    }
    form_.setComstattxt(kStatusReady);
    form_.setCaption(kCaptionReady);
    form_.setEnabled(QStringLiteral("Command1"), true);
    setTimer(timer2_, false);

    inJob_ = true;
    getdata(path, settings_);
    mFile::DeleteFile(path);
    inJob_ = false;
    command1();
    unload();
}

// ---- device search ---------------------------------------------------------

void Engine::timer2Tick()
{
    if (ended_ || !timer2_.armed)
        return;
    if (timer2Tag_ >= kSearchesBeforeOffLine) {
        form_.setComstattxt(kStatusOffLine);
        form_.setCaption(kCaptionOffLine);
        return;
    }
    if (!link_->isConnected()) {
        qint16 status = 0;
        QString reply;
        link_->OpenDeviceLink(vars_.port, status, reply, false);
        form_.setComstattxt(reply);
        if (status != 0 || !link_->isConnected()) {
            ++timer2Tag_;
            return;
        }
    }
    const bool serial = !link_->tcpPort();
    form_.setVisible(QStringLiteral("baudlbl"), serial);
    form_.setVisible(QStringLiteral("baudtxt"), serial);
    form_.setEnabled(QStringLiteral("reports"), false);
    form_.setEnabled(QStringLiteral("Command1"), false);
    form_.setComstattxt(kStatusSearching);

    printer_->FPrinterWrite(QString(), QStringLiteral("initialize"));
    if (state_.LastStatus == 0) {
        enterReady();
        if (autoStart_) {
            command1();
            form_.setFormShown(false);
        }
    } else {
        ++timer2Tag_;
    }
}

void Engine::enterReady()
{
    form_.setComstattxt(kStatusReady);
    form_.setCaption(kCaptionReady);
    form_.setEnabled(QStringLiteral("Command1"), true);
    setTimer(timer2_, false);
    form_.setEnabled(QStringLiteral("reports"), true);
    if (!vars_.DeviceLabel.isEmpty())
        form_.setLabel2(vars_.DeviceLabel);
}

// ---- buttons and tray upkeep ------------------------------------------------

void Engine::command1()
{
    if (commandLineLife())
        setTimer(timer1_, true, kTimer1CommandLineMs);
    else
        setTimer(timer1_, true);
    form_.setEnabled(QStringLiteral("Command1"), false);
    form_.setEnabled(QStringLiteral("Command2"), true);
    if (commandLineStartsBatch(options_.commandLine)) {
        const QString batch = workPath(kBatchFile);
        if (hooks_.startBatchFile) {
            hooks_.startBatchFile(batch);
        } else {
#ifdef Q_OS_WIN
            QProcess::startDetached(QStringLiteral("cmd"), {QStringLiteral("/c"), batch});
#else
            QProcess::startDetached(batch, {});
#endif
        }
    }
    showWaiting();
    form_.setEnabled(QStringLiteral("reports"), false);
    form_.setEnabled(QStringLiteral("Settings"), false);
}

void Engine::command2()
{
    setTimer(timer1_, false);
    form_.setEnabled(QStringLiteral("Command2"), false);
    form_.setEnabled(QStringLiteral("Command1"), true);
    form_.setComstattxt(kStatusStopped);
    form_.setCaption(kCaptionStopped);
    form_.setEnabled(QStringLiteral("reports"), true);
    form_.setEnabled(QStringLiteral("Settings"), true);
}

void Engine::mTimerTick()
{
    if (ended_)
        return;
    hooks_.trayUpkeep();
    const bool start = form_.isEnabled(QStringLiteral("Command1"));
    const bool stop = form_.isEnabled(QStringLiteral("Command2"));
    if (!start && !stop) {
        form_.setChecked(QStringLiteral("pStart"), false);
        form_.setChecked(QStringLiteral("pStop"), false);
        return;
    }
    form_.setChecked(QStringLiteral("pStart"), !start);
    form_.setChecked(QStringLiteral("pStop"), !stop);
}

void Engine::showWaiting()
{
    form_.setComstattxt(kStatusWaiting);
    form_.setCaption(kCaptionWaiting);
}

void Engine::unload()
{
    if (link_ && link_->isConnected())
        link_->CloseDeviceLink();
    end(0);
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

// ---- polling ---------------------------------------------------------------

void Engine::timer1Tick()
{
    // A job pumps the event loop; a tick never runs inside another one. The
    // command-line life runs its one file from the start, not from a tick.
    if (ended_ || inJob_ || !timer1_.armed || commandLineLife())
        return;
    inJob_ = true;
    progress_.setValue(0);
    looks_.beginLook();
    if (readTickSettings()) {
        if (settings_.multiType == QLatin1String("fals"))
            singleFileTick();
        else if (settings_.multiType == QLatin1String("true"))
            pollingTick();
        else if (link_->isConnected())
            link_->CloseDeviceLink();
    } else if (link_->isConnected()) {
        link_->CloseDeviceLink();
    }
    inJob_ = false;
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
void Engine::singleFileTick()
{
    const QString path = workPath(settings_.location + settings_.file);
    if (!isReady(path))
        return;
    if (!link_->isConnected()) {
        qint16 status = 0;
        QString reply;
        link_->OpenDeviceLink(vars_.port, status, reply, false);
    }
    getdata(path, settings_);
    if (!path.toUpper().endsWith(QLatin1String("PRG.1")))
        mFile::DeleteFile(path);
    unload();
}

void Engine::pollingTick()
{
    const QString candidate = findCandidate();
    if (!candidate.isEmpty() && isReady(candidate)) {
        if (!link_->isConnected()) {
            qint16 status = 0;
            QString reply;
            link_->OpenDeviceLink(vars_.port, status, reply, false);
        }
        getdata(candidate, settings_);
        if (!candidate.endsWith(QLatin1String("prg.1")))
            mFile::DeleteFile(candidate);
        showWaiting();
        return; // the link stays open for the next tick
    }
    // Nothing to print: let other programs have the port in the pause.
    if (link_->isConnected())
        link_->CloseDeviceLink();
}

QString Engine::findCandidate()
{
    const QString stem = workPath(settings_.location + settings_.file);
    if (settings_.file.contains(QLatin1Char('*'))) {
        const QFileInfo pattern(stem);
        QDir::Filters filters = QDir::Files;
#ifndef Q_OS_WIN
        filters |= QDir::CaseSensitive;
#endif
        const QStringList names = pattern.dir().entryList({pattern.fileName()}, filters, QDir::Unsorted);
        return names.isEmpty() ? QString() : pattern.dir().filePath(names.first());
    }
    for (int n = 1; n <= kHighestNumberedFile; ++n) {
        const QString numbered = stem + QLatin1Char('.') + QString::number(n);
        if (isReady(numbered))
            return numbered;
    }
    return QString();
}

bool Engine::isReady(const QString& path)
{
    return mFile::IsFileReady(path, &looks_);
}

// ---- the job ---------------------------------------------------------------

void Engine::getdata(const QString& path, const JobSettings& settings)
{
    setTimer(timer1_, false);
    form_.setComstattxt(kStatusPrinting);
    form_.setCaption(kCaptionPrinting);

    const QString text = mFile::ReadWholeFile(path);
    vars_.ResultPath = workPath(mFile::ReadResultPathLine(text));
    vars_.JobTag = mFile::ReadTagLine(text);
    // Only CR LF ends a line; a lone CR or LF belongs to the line it stands in.
    const QStringList lines = text.split(QStringLiteral("\r\n"));
    progress_.setMax(static_cast<qint16>(qMin<qsizetype>(lines.size(), kMaxProgress)));

    resultWriteFailed_ = false;
    writeResultLine(QStringLiteral("tag = ") + vars_.JobTag);
    writeResultLine(QStringLiteral("DateTime start = ") + clock_.stamp());
    vars_.IgnoreOperatorBusy = true;

    walkLines(lines, settings);
    closeJob();
}

void Engine::walkLines(const QStringList& lines, const JobSettings& settings)
{
    const auto lineReached = [this](qsizetype i) {
        progress_.setValue(static_cast<qint16>(qMin<qsizetype>(i + 1, kMaxProgress)));
    };
    // A fault inside the walk ends it; the closing lines are written all the same.
    try {
        hooks_.interpretLines(lines, settings, lineReached);
    } catch (const std::exception& fault) {
        person_.message(messageTitle(), QStringLiteral("Λάθος : ") + QString::fromLocal8Bit(fault.what()),
                        Operator::Icon::Critical);
    } catch (...) {
        person_.message(messageTitle(), QStringLiteral("Λάθος : ") + vars_.JobTag,
                        Operator::Icon::Critical);
    }
}

// Behind the last line. Whatever went before, the result file reaches its
// exitcode line and polling is armed again.
void Engine::closeJob()
{
    QStringList cardLines;
    DocumentFigures figures;
    try {
        hooks_.finishCardPayment();
        clock_.sleepMs(kDocumentSettleMs);
        cardLines = hooks_.cardPaymentLines();
    } catch (...) {
        cardLines.clear();
    }
    for (const QString& line : cardLines)
        writeResultLine(line);
    writeResultLine(QStringLiteral("DateTime end = ") + clock_.stamp());

    try {
        figures = hooks_.closeJob();
    } catch (...) {
        figures = DocumentFigures();
    }
    const int recStatus = figures.amount != 0.0 ? 1 : 0;
    state_.TableMode = 0;
    state_.setCurrentTable(-1);
    writeResultLine(QStringLiteral("recStatus = %1;%2").arg(recStatus).arg(FormatDeviceNumber(figures.amount, kAmountDecimals)));
    writeResultLine(QStringLiteral("receipt = %1, %2, %3")
                        .arg(figures.recNumberProgr)
                        .arg(figures.recNumberDaily)
                        .arg(figures.ordNumber));
    writeResultLine(QStringLiteral("exitcode = 0"));
    form_.setLblreceipt(QString::number(figures.recNumberDaily));

    try {
        vars_.IgnoreOperatorBusy = hooks_.isOperatorBusy();
    } catch (...) {
    }
    state_.PaymentDone = false;
    state_.CommentAfterTotal = false;
    setTimer(timer1_, true);

    if (resultWriteFailed_) {
        person_.message(messageTitle(),
                        QStringLiteral("Δεν ήταν δυνατή η εγγραφή στο αρχείο αποτελεσμάτων : ") + vars_.ResultPath,
                        Operator::Icon::Warning);
    }
}

bool Engine::writeResultLine(const QString& line)
{
    const bool written = mFile::AppendLine(vars_.ResultPath, line);
    if (!written)
        resultWriteFailed_ = true;
    return written;
}

// ---- small helpers -----------------------------------------------------------

QString Engine::messageTitle() const
{
    return vars_.DeviceLabel.isEmpty() ? kTitleBeforeDevice : vars_.DeviceLabel;
}

QString Engine::workPath(const QString& configured) const
{
    return ResolveAgainst(options_.workingDirectory, configured);
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
