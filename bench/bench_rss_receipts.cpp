// Memory over a long day: the whole driver in-process against the virtual
// register behind the SimTransport, on the virtual clock, printing the sample
// receipt again and again through Timer1's ticks. Prints RSS at Ready and
// after the receipts as one row of the bench table.
#include "SimRegister.h"
#include "SimTransport.h"
#include "link/TransportFactory.h"
#include "pipeline/Driver.h"
#include "shell/Clock.h"
#include "shell/FormModel.h"
#include "shell/HeadlessOperator.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <cstdio>
#include <cstdlib>

namespace {

long rssKiB()
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        return 0;
    for (const QByteArray& line : status.readAll().split('\n')) {
        if (line.startsWith("VmRSS:"))
            return line.mid(6).trimmed().split(' ').first().toLong();
    }
    return 0;
}

class SimTransports final : public TransportFactory {
public:
    SimTransports(SimRegister& reg, Clock& clock)
        : reg_(reg)
        , clock_(clock)
    {
    }
    std::unique_ptr<Transport> openSerial(const QString&, const QString&, qint16& status) override
    {
        status = 0;
        return std::make_unique<SimTransport>(reg_, SimTransport::Wire::Serial, clock_);
    }
    std::unique_ptr<Transport> connectTcp(const QString&, quint16, qint16& status) override
    {
        status = 0;
        return std::make_unique<SimTransport>(reg_, SimTransport::Wire::Tcp, clock_);
    }

private:
    SimRegister& reg_;
    Clock& clock_;
};

const char kParams[] = "[port] 127.0.0.1:9101\r\n[baud] 9600\r\n[file] print\r\n[ecrt] TECFP\r\n"
                       "[multi type] true\r\n[print_desc] true\r\n[print_code] falseN\r\n"
                       "[comments] true\r\n[currency]=0\r\n[keyb_off]=false\r\n[dir_depa]=false\r\n"
                       "[quantity]=true\r\n[spRet   ]=0\r\n[cpDOS   ]=0\r\n[AutoStar]=yes\r\n"
                       "[location] in\\\r\n";

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    const int receipts = argc > 1 ? std::atoi(argv[1]) : 10000;
    QTemporaryDir dir;
    QDir(dir.path()).mkpath(QStringLiteral("in"));
    QFile params(dir.filePath(QStringLiteral("param.ini")));
    if (!params.open(QIODevice::WriteOnly) || params.write(kParams) < 0)
        return 1;
    params.close();
    QFile sampleFile(QStringLiteral(KERBANO_SOURCE_DIR "/samples/receipt.txt"));
    if (!sampleFile.open(QIODevice::ReadOnly))
        return 1;
    const QByteArray sample = sampleFile.readAll();

    VirtualClock clock;
    // Memory only: no journal, no tape, no memory on disk, whose files would
    // grow or wait on the disk; the driver's own must do neither.
    SimRegister reg({}, clock);
    SimTransports transports(reg, clock);
    HeadlessOperator person;
    FormModel form;
    Driver driver(clock, person, form, transports, DriverOptions{dir.path(), dir.path(), {}, true});
    Engine& engine = driver.engine();
    engine.Form_Load();
    engine.timer2Tick();
    if (engine.state() != EngineState::Polling)
        return 1;
    const long atReady = rssKiB();

    const QString printFile = dir.filePath(QStringLiteral("in/print.1"));
    const QString result = dir.filePath(QStringLiteral("result.txt"));
    // The first thousand warm the heap and Qt's caches; growth after them is a leak.
    constexpr int kWarm = 1000;
    long warm = atReady;
    for (int i = 0; i < receipts; ++i) {
        if (i == kWarm)
            warm = rssKiB();
        QFile out(printFile);
        if (!out.open(QIODevice::WriteOnly) || out.write(sample) != sample.size())
            return 1;
        out.close();
        engine.timer1Tick();
        if (QFile::exists(printFile))
            return 1;
        QFile::remove(result); // the application takes its answer away
        QCoreApplication::processEvents();
    }
    const long after = rssKiB();
    std::printf("RSS after %d receipts / at Ready (in-process)|%ld KiB|%ld KiB|%.3f|\n", receipts, after,
                atReady, double(after) / double(atReady));
    if (receipts > kWarm)
        std::printf("RSS after %d receipts / after the first %d (in-process)|%ld KiB|%ld KiB|%.3f|no growth\n",
                    receipts, kWarm, after, warm, double(after) / double(warm));
    return 0;
}
