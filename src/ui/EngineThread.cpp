#include "ui/EngineThread.h"

#include "link/QtTransportFactory.h"
#include "pipeline/ActionRun.h"
#include "pipeline/EngineTimers.h"
#include "shell/Clock.h"
#include "shell/FormModel.h"
#include "ui/LogLineQueue.h"
#include "ui/MainWindow.h"

#include <QTimer>

EngineThread::EngineThread(Operator& person, Setup setup, MainWindow& window, LogLineQueue& log,
                           QObject* parent)
    : QThread(parent)
    , person_(person)
    , setup_(std::move(setup))
    , window_(window)
    , log_(log)
{
    qRegisterMetaType<FormState>();
    qRegisterMetaType<StartOnlySettings>();
}

EngineThread::~EngineThread()
{
    quit();
    wait();
}

void EngineThread::run()
{
    RealClock clock;
    FormModel form;
    std::unique_ptr<TransportFactory> transports =
        setup_.transports ? setup_.transports() : std::make_unique<QtTransportFactory>();
    Driver driver(clock, person_, form, *transports, setup_.driver);
    EngineTimers timers(driver.engine());
    std::unique_ptr<ActionRun> actionRun;
    if (!setup_.runAction.isEmpty())
        actionRun = std::make_unique<ActionRun>(driver.engine(), driver.actions(), setup_.runAction);

    wire(driver, form);
    driver_ = &driver;
    context_ = &driver.engine();
    QTimer::singleShot(0, &driver.engine(), [&] {
        if (actionRun) {
            actionRun->start(); // a name that runs nothing ends by itself
            return;
        }
        startLife(driver);
    });
    exec();
    context_ = nullptr;
    driver_ = nullptr;
}

void EngineThread::wire(Driver& driver, FormModel& form)
{
    Engine& engine = driver.engine();
    // Out: the form's state, mirrored by the window on its own thread.
    connect(&form, &FormModel::stateChanged, &window_, &MainWindow::showState);
    connect(&engine, &Engine::ended, this, &EngineThread::ended, Qt::DirectConnection);
    // In: a click is a name; the registry runs it once no job or
    // conversation is in hand, never inside one.
    ActionRegistry& actions = driver.actions();
    connect(&window_, &MainWindow::actionRequested, &actions,
            [&actions](const QString& name) { actions.trigger(name); });
    connect(&window_, &MainWindow::shownChanged, &form, [&form](bool shown) { form.setFormShown(shown); });
    // Log lines leave the exchange at the cost of a short lock.
    LogLineQueue& log = log_;
    connect(&driver.log(), &CommunicationLog::lineLogged, &driver.log(),
            [&log](const QString& line) { log.push(line); }, Qt::DirectConnection);
    wireWindowActions(driver, form);
    // The first state goes out whole, so the window starts from it.
    QMetaObject::invokeMethod(&window_, "showState", Qt::QueuedConnection,
                              Q_ARG(FormState, form.state()));
}

// The menu entries whose windows live on the GUI thread: the engine does its
// part here, in its turn, then asks the window.
void EngineThread::wireWindowActions(Driver& driver, FormModel& form)
{
    Engine& engine = driver.engine();
    ActionRegistry& actions = driver.actions();
    driver.setPaymentMapWindow(windows_.paymentMap);
    driver.setEftSelectWindow(windows_.eftSelect);
    driver.setTaxServerWindow(windows_.taxServer);
    actions.setHandler(QStringLiteral("param"), [this, &engine] {
        engine.stopDeviceSearch();
        const ModuleVariables& v = engine.moduleVariables();
        emit settingsRequested(StartOnlySettings{v.spRet, v.cpDOS, v.eMail, v.ZeMail}, false);
    });
    actions.setHandler(QStringLiteral("help_text"), [this] { emit helpTextRequested(); });
    actions.setHandler(QStringLiteral("about"), [this] { emit aboutRequested(); });
    actions.setHandler(QStringLiteral("wndDebug"), [this, &engine, &form] {
        ModuleVariables& v = engine.moduleVariables();
        v.DebugEnabled = !v.DebugEnabled;
        form.setMenuChecked(&MenuStates::wndDebug, v.DebugEnabled);
        emit debugWindowRequested(v.DebugEnabled);
    });
}

void EngineThread::startLife(Driver& driver)
{
    Engine& engine = driver.engine();
    engine.Form_Load();
    // No param.ini: the settings window opens in place of the form, and
    // keeps the program alive until the settings are saved.
    if (!engine.hasEnded() && !engine.commandLineLife() && !engine.parametersRead()) {
        engine.stopDeviceSearch();
        emit settingsRequested(StartOnlySettings{}, true);
    }
}

void EngineThread::post(std::function<void(Driver&)> work)
{
    QObject* context = context_.load();
    if (!context)
        return;
    QMetaObject::invokeMethod(context, [this, work = std::move(work)] {
        if (driver_)
            work(*driver_);
    }, Qt::QueuedConnection);
}

void EngineThread::debugOff()
{
    post([](Driver& d) {
        d.engine().moduleVariables().DebugEnabled = false;
        d.engine().form().setMenuChecked(&MenuStates::wndDebug, false);
    });
}

void EngineThread::setFileLog(bool on)
{
    post([on](Driver& d) { d.log().setFileEnabled(on); });
}
