#include "shell/CodePage.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace {
const QString kKerbano = QStringLiteral(KERBANO_BIN_DIR "/kerbano");

struct ProcessRun {
    int exitCode = -1;
    QString out;
    QString err;
};

ProcessRun runKerbano(const QString& workDir, const QStringList& args, int timeoutMs = 30000)
{
    QProcess process;
    process.setWorkingDirectory(workDir);
    process.start(kKerbano, args);
    ProcessRun run;
    if (!process.waitForFinished(timeoutMs)) {
        process.kill();
        process.waitForFinished();
        ADD_FAILURE() << "kerbano did not end";
    }
    run.exitCode = process.exitCode();
    run.out = QString::fromUtf8(process.readAllStandardOutput());
    run.err = QString::fromUtf8(process.readAllStandardError());
    return run;
}

void writeFile(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(bytes);
}
} // namespace

TEST(KerbanoExecutable, WrongCommandLineEndsAtOnceWithoutAWord)
{
    QTemporaryDir dir;
    const ProcessRun wrong = runKerbano(dir.path(), {QStringLiteral("--headless"), QStringLiteral("com1,9600,p.txt,0,TECFP,111111")});
    EXPECT_NE(wrong.exitCode, 0);
    EXPECT_TRUE(wrong.out.isEmpty()) << wrong.out.toStdString();
    EXPECT_TRUE(wrong.err.isEmpty()) << wrong.err.toStdString();
}

// The resident life waits for param.ini instead (ServiceStartEndToEndTest).
TEST(KerbanoExecutable, OneMenuActionWithoutParamFileSaysSoAndEnds)
{
    QTemporaryDir dir;
    const ProcessRun run = runKerbano(dir.path(), {QStringLiteral("--headless"), QStringLiteral("--run"),
                                                   QStringLiteral("Ver")});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_TRUE(run.err.contains(QStringLiteral("param.ini"))) << run.err.toStdString();
}

TEST(KerbanoExecutable, HeadlessShowsTheFailedLinkAndStaysUp)
{
    QTemporaryDir dir;
    writeFile(dir.filePath(QStringLiteral("param.ini")),
              "[port] /dev/nosuchport\r\n[baud] 9600\r\n[file] print\r\n[multi type] true\r\n");
    QProcess process;
    process.setWorkingDirectory(dir.path());
    process.start(kKerbano, {QStringLiteral("--headless")});
    QString out;
    while (!out.contains(QStringLiteral("Λάθος : ")) && process.waitForReadyRead(10000))
        out += QString::fromUtf8(process.readAllStandardOutput());
    EXPECT_TRUE(out.contains(QStringLiteral("Εύρεση Φορολογικής Ταμειακής !!! \n"))) << out.toStdString();
    EXPECT_TRUE(out.contains(QStringLiteral("Λάθος : -1 - Πρόβλημα στην Θύρα :/dev/nosuchport")))
        << out.toStdString();
    EXPECT_FALSE(process.waitForFinished(300)); // the link-failed state waits for the operator
    process.kill();
    process.waitForFinished();
}

TEST(KerbanoExecutable, CommandLineWithNoRegisterEndsNonZeroAndKeepsTheFile)
{
    QTemporaryDir dir;
    QDir(dir.path()).mkpath(QStringLiteral("jobs"));
    writeFile(dir.filePath(QStringLiteral("jobs/print.txt")),
              "resFile:  jobs\\res.txt\r\ntag:  00417\r\n PLU Καφές\r\n");
    const ProcessRun run = runKerbano(dir.path(), {QStringLiteral("--headless"),
                                            QStringLiteral("com99,9600,jobs\\print.txt,0,TECFP,1111111")});
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_TRUE(QFile::exists(dir.filePath(QStringLiteral("jobs/print.txt"))));
    EXPECT_FALSE(QFile::exists(dir.filePath(QStringLiteral("jobs/res.txt"))));
    EXPECT_FALSE(QFile::exists(dir.filePath(QStringLiteral("Result"))));
}

TEST(KerbanoExecutable, RunArgumentsThatNameNoActionEndAtOnceWithStatusOne)
{
    QTemporaryDir dir;
    const ProcessRun unknown = runKerbano(dir.path(), {QStringLiteral("--headless"), QStringLiteral("--run"),
                                                       QStringLiteral("nosuch")});
    EXPECT_EQ(unknown.exitCode, 1);
    EXPECT_TRUE(unknown.err.contains(QStringLiteral("Άγνωστη λειτουργία : nosuch"))) << unknown.err.toStdString();
    EXPECT_TRUE(unknown.out.isEmpty()) << unknown.out.toStdString();

    const ProcessRun withCommandLine = runKerbano(
        dir.path(), {QStringLiteral("--headless"), QStringLiteral("--run"), QStringLiteral("Ver"),
                     QStringLiteral("com1,9600,p.txt,0,TECFP,1111111")});
    EXPECT_EQ(withCommandLine.exitCode, 1);
    EXPECT_FALSE(withCommandLine.err.isEmpty());

    const ProcessRun noName = runKerbano(dir.path(), {QStringLiteral("--headless"), QStringLiteral("--run")});
    EXPECT_EQ(noName.exitCode, 1);
    EXPECT_FALSE(noName.err.isEmpty());
}
