#pragma once

// The world of an end-to-end test: a temporary directory, the virtual register
// started in it, and the real kerbano --headless run against it.
#include "KerbanoRun.h"
#include "PrintQString.h"
#include "SimProcess.h"
#include "shell/CodePage.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace Qt::Literals::StringLiterals;

inline QByteArray readBytes(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

inline bool writeBytes(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

// The worked receipt of the samples folder.
inline QByteArray sampleReceipt()
{
    return readBytes(QStringLiteral(KERBANO_SOURCE_DIR "/samples/receipt.txt"));
}

class SimWorld : public ::testing::Test {
protected:
    static constexpr int kRunTimeoutMs = 30000;

    QTemporaryDir dir;
    SimProcess sim{dir.path()};

    QString path(const QString& name) const { return dir.filePath(name); }

    // Starts the register on a free port, behind a fault script when one is given.
    void startRegister(const QByteArray& faults = {})
    {
        if (!faults.isEmpty()) {
            ASSERT_TRUE(writeBytes(path(u"faults.txt"_s), faults));
            sim.setExtraArguments({u"--faults"_s, path(u"faults.txt"_s)});
        }
        ASSERT_TRUE(sim.startTcp()) << sim.startError().toStdString();
    }
    QString commandLine() const { return u"%1,9600,print.txt,0,TECFP,1110111"_s.arg(sim.portField()); }

    // Writes print.txt and runs the command-line life on it, which must end
    // with status 0 and take the print file away.
    KerbanoRun print(const QByteArray& printFile)
    {
        EXPECT_TRUE(writeBytes(path(u"print.txt"_s), printFile));
        const KerbanoRun run = runKerbanoHeadless(dir.path(), commandLine(), kRunTimeoutMs);
        EXPECT_TRUE(run.finished) << "kerbano did not end";
        EXPECT_EQ(run.exitCode, 0) << run.err.toStdString();
        EXPECT_FALSE(QFile::exists(path(u"print.txt"_s))) << "the print file stays";
        return run;
    }

    // param.ini naming the register, with more lines behind.
    void writeParams(const QString& more = {})
    {
        const QString lines = u"[port] %1\r\n[baud] 9600\r\n[file] print\r\n[multi type] true\r\n"_s;
        ASSERT_TRUE(writeBytes(path(u"param.ini"_s), codepage::toWin1253(lines.arg(sim.portField()) + more)));
    }
    // kerbano --headless --run name, each answer behind an --answer.
    KerbanoRun runAction(const QString& name, const QStringList& answers = {})
    {
        QStringList arguments{u"--run"_s, name};
        for (const QString& answer : answers)
            arguments << u"--answer"_s << answer;
        return runKerbanoHeadless(dir.path(), arguments, kRunTimeoutMs);
    }

    QStringList resultLines(const QString& name = u"result.txt"_s) const
    {
        return codepage::fromWin1253(readBytes(path(name))).split(u"\r\n"_s);
    }
};
