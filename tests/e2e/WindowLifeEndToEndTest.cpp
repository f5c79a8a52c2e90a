// The real kerbano in its window life (offscreen) on the virtual register,
// as a shop runs it without a command line: param.ini names one print file
// and starts printing by itself; the application drops the file, the window
// life prints it, writes its result file, and ends after its one file.
#include "PrintQString.h"
#include "SimProcess.h"
#include "shell/CodePage.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QProcessEnvironment>
#include <QTemporaryDir>
#include <QThread>
#include <gtest/gtest.h>

namespace {
constexpr int kStartMs = 5000;
constexpr int kRegisterHeardMs = 20000;
constexpr int kLifeMs = 60000;
constexpr int kLookMs = 100;

QByteArray readBytes(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

bool writeBytes(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

// The single-file way: [file] is the whole name, [multi type] false ends the
// program after it, [AutoStar]=yes presses Command1 once the register answers.
QByteArray singleFileSettings(const QString& port)
{
    return "[port] " + port.toLatin1()
        + "\r\n[baud] 9600\r\n[file] print.txt\r\n[ecrt] TECFP\r\n[multi type] false\r\n"
          "[print_desc] true\r\n[comments] true\r\n[currency]=1\r\n[dir_depa]=true\r\n"
          "[quantity]=true\r\n[AutoStar]=yes\r\n[location] \r\n";
}

// kerbano with no arguments: the window life, on a screen nobody sees.
class WindowLife {
public:
    explicit WindowLife(const QString& workDir)
    {
        process_.setWorkingDirectory(workDir);
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
        environment.insert(QStringLiteral("KERBANO_HOME"), workDir);
        process_.setProcessEnvironment(environment);
        process_.setProcessChannelMode(QProcess::MergedChannels);
        process_.start(QStringLiteral(KERBANO_BIN_DIR "/kerbano"), QStringList());
        started_ = process_.waitForStarted(kStartMs);
    }
    ~WindowLife()
    {
        if (process_.state() != QProcess::NotRunning) {
            process_.kill();
            process_.waitForFinished(kStartMs);
        }
    }

    bool started() const { return started_; }
    bool running() const { return process_.state() == QProcess::Running; }
    bool waitEnd(int timeoutMs) { return process_.waitForFinished(timeoutMs); }
    bool endedNormally() const { return process_.exitStatus() == QProcess::NormalExit; }
    int exitCode() const { return process_.exitCode(); }
    std::string said() { return process_.readAll().toStdString(); }

private:
    QProcess process_;
    bool started_ = false;
};

} // namespace

TEST(WindowLifeEndToEnd, ADroppedFileIsPrintedItsResultWrittenAndTheLifeEndsAfterItsOneFile)
{
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    const QDir work(dir.path());
    SimProcess sim(dir.path());
    ASSERT_TRUE(sim.startTcp()) << sim.startError().toStdString();
    ASSERT_TRUE(writeBytes(work.filePath(QStringLiteral("param.ini")), singleFileSettings(sim.portField())));

    WindowLife kerbano(dir.path());
    ASSERT_TRUE(kerbano.started());
    // The file comes once the window life has found the register.
    const QDeadlineTimer heard(kRegisterHeardMs);
    while (sim.journalCommands().isEmpty() && kerbano.running() && !heard.hasExpired())
        QThread::msleep(kLookMs);
    ASSERT_FALSE(sim.journalCommands().isEmpty()) << kerbano.said();
    ASSERT_TRUE(kerbano.running()) << kerbano.said();
    const QString printFile = work.filePath(QStringLiteral("print.txt"));
    const QString dropping = work.filePath(QStringLiteral("print.tmp"));
    ASSERT_TRUE(writeBytes(dropping, readBytes(QStringLiteral(KERBANO_SOURCE_DIR "/samples/receipt.txt"))));
    ASSERT_TRUE(QFile::rename(dropping, printFile));

    ASSERT_TRUE(kerbano.waitEnd(kLifeMs)) << "the window life did not end after its one file";
    const std::string said = kerbano.said();
    EXPECT_TRUE(kerbano.endedNormally()) << said;
    EXPECT_EQ(kerbano.exitCode(), 0) << said;
    // The status line went to the window, not to stdout as in the life without one.
    EXPECT_EQ(said.find(QStringLiteral("Αναμονη Για Στοιχεια").toStdString()), std::string::npos) << said;
    EXPECT_FALSE(QFile::exists(printFile));

    const QStringList result = codepage::fromWin1253(readBytes(work.filePath(QStringLiteral("result.txt"))))
                                   .split(QStringLiteral("\r\n"), Qt::SkipEmptyParts);
    ASSERT_FALSE(result.isEmpty());
    EXPECT_EQ(result.first(), QStringLiteral("tag = 00417"));
    EXPECT_TRUE(result.filter(QStringLiteral("Err = ")).isEmpty()) << result.join(u'\n').toStdString();
    EXPECT_TRUE(result.contains(QStringLiteral("recStatus = 1;6.50"))) << result.join(u'\n').toStdString();
    EXPECT_EQ(result.last(), QStringLiteral("exitcode = 0"));
    // The payment went to the register once: the receipt was printed, once.
    EXPECT_EQ(sim.journalCommands().count(QStringLiteral("5/1/6.50/ΜΕΤΡΗΤΑ//////")), 1);
}
