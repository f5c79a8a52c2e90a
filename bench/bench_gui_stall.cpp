// The window never freezes: the GUI thread's longest event-loop stall while
// the engine waits out a silent register. Run it under Xvfb:
//   xvfb-run -a build/bench_gui_stall [seconds]
// Prints the longest stall; exits 1 when it is above the 50 ms target.
#include "config/ParamFileWriter.h"
#include "ui/KerbanoGui.h"
#include "ui/MainWindow.h"

#include <QApplication>
#include <QDate>
#include <QElapsedTimer>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QTimer>
#include <cstdio>
#include <vector>

namespace {
constexpr int kTickMs = 5;
constexpr qint64 kTargetMs = 50;
constexpr int kDefaultSeconds = 45;
constexpr qint64 kWarmUpMs = 2000;
constexpr int kEndWaitMs = 60000;
constexpr quint16 kFirstPort = 21000;
constexpr quint16 kLastPort = 32000;
} // namespace

int main(int argc, char** argv)
{
    QApplication app(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    const int seconds = argc > 1 ? QByteArray(argv[1]).toInt() : kDefaultSeconds;

    // The silent register: takes the connection, never answers.
    QTcpServer silent;
    std::vector<QTcpSocket*> held;
    // The register's port is a 16-bit signed number in [port]: stay below 32768.
    for (quint16 port = kFirstPort; port < kLastPort && !silent.isListening(); ++port)
        silent.listen(QHostAddress::LocalHost, port);
    QObject::connect(&silent, &QTcpServer::newConnection, [&] {
        while (QTcpSocket* s = silent.nextPendingConnection())
            held.push_back(s);
    });

    QTemporaryDir dir;
    ParamFormValues params;
    params.comtxt = QStringLiteral("127.0.0.1:%1").arg(silent.serverPort());
    params.filetxt = QStringLiteral("print");
    params.multi_print = true;
    writeParamFile(dir.filePath(QStringLiteral("param.ini")), params, QDate::currentDate());

    EngineThread::Setup setup;
    setup.driver = DriverOptions{dir.path(), dir.path(), QString(), true};
    KerbanoGui gui(setup);

    QElapsedTimer clock;
    qint64 last = -1;
    qint64 longest = 0;
    qint64 longestAt = 0;
    qint64 ticks = 0;
    QTimer meter;
    meter.setTimerType(Qt::PreciseTimer);
    QObject::connect(&meter, &QTimer::timeout, [&] {
        const qint64 now = clock.elapsed();
        // The first paint and the font cache are the start's, not the wait's.
        if (last >= 0 && now >= kWarmUpMs && now - last - kTickMs > longest) {
            longest = now - last - kTickMs;
            longestAt = now;
        }
        last = now;
        ++ticks;
        gui.window().update(); // the window repaints all along
    });

    QTimer::singleShot(seconds * 1000, &app, [&] { QApplication::exit(0); });
    clock.start();
    meter.start(kTickMs);
    gui.start();
    QApplication::exec();
    meter.stop();
    const QString status = gui.window().shownState().comstattxt;

    // Let the register go, then end through the menu entry.
    for (QTcpSocket* s : held)
        s->abort();
    silent.close();
    int code = -1;
    QObject::connect(&gui, &KerbanoGui::ended, [&](int c) { code = c; });
    emit gui.window().actionRequested(QStringLiteral("end"));
    QElapsedTimer ending;
    ending.start();
    while (code < 0 && ending.elapsed() < kEndWaitMs)
        QApplication::processEvents(QEventLoop::AllEvents, 20);
    gui.stop();

    std::printf("platform %s, %d s, %lld ticks of %d ms, connections to the silent register %zu\n",
                QApplication::platformName().toUtf8().constData(), seconds, static_cast<long long>(ticks),
                kTickMs, held.size());
    std::printf("status line at the end: %s\n", status.toUtf8().constData());
    std::printf("longest GUI stall after the first %lld ms: %lld ms at %lld ms (target under %lld ms): %s\n",
                static_cast<long long>(kWarmUpMs), static_cast<long long>(longest),
                static_cast<long long>(longestAt), static_cast<long long>(kTargetMs),
                longest < kTargetMs ? "PASS" : "FAIL");
    return longest < kTargetMs ? 0 : 1;
}
