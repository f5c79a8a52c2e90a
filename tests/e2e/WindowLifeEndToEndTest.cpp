// The real kerbano in its window life (offscreen) on the virtual register,
// as a shop runs it without a command line: param.ini names one print file
// and starts printing by itself; the application drops the file, the window
// life prints it, writes its result file, and ends after its one file.
#include "SimWorld.h"

#include <QDeadlineTimer>
#include <QRegularExpression>
#include <QThread>

namespace {
constexpr int kLifeMs = 60000;

// The single-file way: [file] is the whole name, [multi type] false ends the
// program after it, [AutoStar]=yes presses Command1 once the register answers.
QByteArray singleFileSettings(const QString& port)
{
    return "[port] " + port.toLatin1()
        + "\r\n[baud] 9600\r\n[file] print.txt\r\n[ecrt] TECFP\r\n[multi type] false\r\n"
          "[print_desc] true\r\n[comments] true\r\n[currency]=1\r\n[dir_depa]=true\r\n"
          "[quantity]=true\r\n[AutoStar]=yes\r\n[location] \r\n";
}

using WindowLifeEndToEnd = SimWorld;

} // namespace

TEST_F(WindowLifeEndToEnd, ADroppedFileIsPrintedItsResultWrittenAndTheLifeEndsAfterItsOneFile)
{
    startRegister();
    ASSERT_TRUE(writeBytes(path(u"param.ini"_s), singleFileSettings(sim.portField())));

    KerbanoProcess kerbano(dir.path(), {}, {.windowLife = true, .inChild = {}});
    ASSERT_TRUE(kerbano.started());
    // The file comes once the window life has found the register.
    const QDeadlineTimer heard(KerbanoProcess::kEventMs);
    while (sim.journalCommands().isEmpty() && kerbano.running() && !heard.hasExpired())
        QThread::msleep(100);
    ASSERT_FALSE(sim.journalCommands().isEmpty()) << kerbano.said().toStdString();
    ASSERT_TRUE(kerbano.running()) << kerbano.said().toStdString();
    ASSERT_TRUE(writeBytes(path(u"print.tmp"_s), sampleReceipt()));
    ASSERT_TRUE(QFile::rename(path(u"print.tmp"_s), path(u"print.txt"_s)));

    ASSERT_TRUE(kerbano.waitEnd(kLifeMs)) << "the window life did not end after its one file";
    const std::string said = kerbano.said().toStdString();
    EXPECT_EQ(kerbano.exitCode(), 0) << said; // -1 for a death by signal
    // The status line went to the window, not to stdout as in the life without one.
    EXPECT_FALSE(kerbano.said().contains(u"Αναμονη Για Στοιχεια"_s)) << said;
    EXPECT_FALSE(QFile::exists(path(u"print.txt"_s)));

    const QStringList result = resultLines().filter(QRegularExpression(u"."_s));
    const QString shown = result.join(u'\n');
    ASSERT_FALSE(result.isEmpty());
    EXPECT_EQ(result.first(), u"tag = 00417"_s);
    EXPECT_TRUE(result.filter(u"Err = "_s).isEmpty()) << shown.toStdString();
    EXPECT_TRUE(result.contains(u"recStatus = 1;6.50"_s)) << shown.toStdString();
    EXPECT_EQ(result.last(), u"exitcode = 0"_s);
    // The payment went to the register once: the receipt was printed, once.
    EXPECT_EQ(sim.journalCommands().count(u"5/1/6.50/ΜΕΤΡΗΤΑ//////"_s), 1);
}
