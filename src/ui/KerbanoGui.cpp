#include "ui/KerbanoGui.h"

#include "ui/AboutBox.h"
#include "ui/DebugWindow.h"
#include "ui/MainWindow.h"
#include "ui/ParamWindow.h"

#include <QCoreApplication>
#include <QDesktopServices>
#include <QDir>
#include <QUrl>

namespace {
constexpr int kStopPollMs = 50;
const QString kHelpText = QStringLiteral("\\kerbano\\kerbano.txt");

// Off Windows a configured "\" path is a "/" path.
QString localPath(const QString& path)
{
#ifdef Q_OS_WIN
    return path;
#else
    QString p = path;
    return p.replace(QLatin1Char('\\'), QLatin1Char('/'));
#endif
}
} // namespace

KerbanoGui::KerbanoGui(EngineThread::Setup setup, QObject* parent)
    : QObject(parent)
    , setup_(std::move(setup))
    , window_(std::make_unique<MainWindow>())
    , debug_(std::make_unique<DebugWindow>(log_))
{
    person_.setWindow(window_.get());
    engine_ = std::make_unique<EngineThread>(person_, setup_, *window_, log_);
    engine_->setWindows({&paymentMap_, &eftSelect_, &taxServer_});
    connect(engine_.get(), &EngineThread::ended, this, &KerbanoGui::ended);
    connect(engine_.get(), &EngineThread::settingsRequested, this, &KerbanoGui::openSettings);
    connect(engine_.get(), &EngineThread::helpTextRequested, this, &KerbanoGui::openHelpText);
    connect(engine_.get(), &EngineThread::aboutRequested, this, &KerbanoGui::openAbout);
    connect(engine_.get(), &EngineThread::debugWindowRequested, this, &KerbanoGui::showDebugWindow);
    connect(debug_.get(), &DebugWindow::closedByOperator, this, [this] { engine_->debugOff(); });
    connect(debug_.get(), &DebugWindow::fileLogToggled, this, [this](bool on) { engine_->setFileLog(on); });
}

KerbanoGui::~KerbanoGui()
{
    stop();
    delete param_.data();
    delete about_.data();
}

void KerbanoGui::start()
{
    engine_->start();
}

void KerbanoGui::stop()
{
    if (!engine_->isRunning())
        return;
    person_.release();
    engine_->quit();
    // A question the engine asked just before the end still needs the GUI
    // thread to answer it.
    while (!engine_->wait(kStopPollMs))
        QCoreApplication::processEvents();
}

void KerbanoGui::openSettings(const StartOnlySettings& startOnly, bool rescue)
{
    if (param_) {
        param_->raise();
        param_->activateWindow();
        return;
    }
    const QDir work(setup_.driver.workingDirectory.isEmpty() ? QDir::currentPath()
                                                             : setup_.driver.workingDirectory);
    SettingsFiles files{work.filePath(QStringLiteral("param.ini")), work.filePath(QStringLiteral("vats.dat")),
                        work.filePath(QStringLiteral("mail.ini"))};
    param_ = new ParamWindow(files, startOnly, rescue ? nullptr : window_.get());
    param_->setAttribute(Qt::WA_DeleteOnClose);
    // A change ends the program: the engine ends in its turn, after any job.
    connect(param_, &ParamWindow::savedEndProgram, this, [this] {
        param_->hide();
        emit window_->actionRequested(QStringLiteral("end"));
    });
    if (rescue) {
        // In place of the form; closing it unsaved ends the program too.
        window_->hide();
        connect(param_, &QDialog::rejected, this, [this] { emit window_->actionRequested(QStringLiteral("end")); });
    }
    param_->show();
}

void KerbanoGui::openHelpText()
{
    QDesktopServices::openUrl(QUrl::fromLocalFile(localPath(kHelpText)));
}

void KerbanoGui::openAbout()
{
    if (!about_) {
        about_ = new AboutBox(window_.get());
        about_->setAttribute(Qt::WA_DeleteOnClose);
    }
    about_->show();
    about_->raise();
}

void KerbanoGui::showDebugWindow(bool open)
{
    if (open)
        debug_->openBeside(window_.get());
    else
        debug_->closeQuietly();
}
