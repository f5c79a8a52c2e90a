#pragma once

// The world of an end-to-end test: a temporary directory, the virtual register
// started in it, and the real kerbano --headless run against it.
#include "KerbanoRun.h"
#include "PrintQString.h"
#include "SimProcess.h"
#include "shell/CodePage.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QThread>
#include <QtEndian>
#include <gtest/gtest.h>

#include <initializer_list>
#include <utility>

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

// A print file of count items, each one line, paid by the payment line.
inline QByteArray itemsPrintFile(int count, const QByteArray& payment = " tot   1       0.00ΜΕΤΡΗΤΑ")
{
    QByteArray file = "resFile:  result.txt\r\ntag:  ITEMS\r\n";
    for (int i = 0; i < count; ++i)
        file += codepage::toWin1253(u" PLU 5200000000011 ΝΕΡΟ 500ML                        1       0.50   13.00  2\r\n"_s);
    return file + codepage::toWin1253(QString::fromUtf8(payment)) + "\r\n";
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
    // The register started over TCP or on a serial line with "command: action"
    // in its fault script, and the worked receipt in print.txt: the command
    // line that prints it, empty when the register did not start.
    QString workedReceiptBehindFault(int command, const QByteArray& action, bool serial)
    {
        constexpr int kSerialBaud = 115200;
        if (!writeBytes(path(u"faults.txt"_s), QByteArray::number(command) + ": " + action + "\n")
            || !writeBytes(path(u"print.txt"_s), sampleReceipt()))
            return {};
        sim.setExtraArguments({u"--faults"_s, path(u"faults.txt"_s)});
        if (!(serial ? sim.startPty(kSerialBaud) : sim.startTcp()))
            return {};
        return u"%1,%2,print.txt,0,TECFP,1110111"_s.arg(sim.portField()).arg(serial ? kSerialBaud : 9600);
    }
    QString commandLine() const { return u"%1,9600,print.txt,0,TECFP,1110111"_s.arg(sim.portField()); }

    // Writes print.txt and runs the command-line life on it, which must end
    // with status 0 and take the print file away.
    KerbanoRun print(const QByteArray& printFile)
    {
        EXPECT_TRUE(writeBytes(path(u"print.txt"_s), printFile));
        const KerbanoRun run = runKerbanoHeadless(dir.path(), {commandLine()}, kRunTimeoutMs);
        EXPECT_TRUE(run.finished) << "kerbano did not end";
        EXPECT_EQ(run.exitCode, 0) << run.err.toStdString();
        EXPECT_FALSE(QFile::exists(path(u"print.txt"_s))) << "the print file stays";
        return run;
    }

    // payeft.dat mapping the application's payment 2: its seven fields (the
    // register's payment, terminal, ... retries, alternative).
    void writePayEft(std::initializer_list<qint16> fields)
    {
        QByteArray map(2 * 128, '\0');
        int at = 128;
        for (const qint16 field : fields)
            qToLittleEndian<qint16>(field, map.data() + std::exchange(at, at + 2));
        ASSERT_TRUE(writeBytes(path(u"payeft.dat"_s), map));
    }
    // param.ini naming the register, with more lines behind.
    void writeParams(const QString& more = {})
    {
        const QString lines = u"[port] %1\r\n[baud] 9600\r\n[file] print\r\n[multi type] true\r\n"_s;
        ASSERT_TRUE(writeBytes(path(u"param.ini"_s), codepage::toWin1253(lines.arg(sim.portField()) + more)));
    }
    // kerbano --headless --run name, each answer behind an --answer; it must
    // end, with exitCode.
    KerbanoRun runAction(const QString& name, const QStringList& answers = {}, int exitCode = 0)
    {
        QStringList arguments{u"--run"_s, name};
        for (const QString& answer : answers)
            arguments << u"--answer"_s << answer;
        const KerbanoRun run = runKerbanoHeadless(dir.path(), arguments, kRunTimeoutMs);
        EXPECT_TRUE(run.finished) << "kerbano did not end";
        EXPECT_EQ(run.exitCode, exitCode) << run.err.toStdString();
        return run;
    }

    // A resident life's param.ini: print files "in/print.N", polling from the start.
    QByteArray residentParams() const
    {
        return "[port] " + sim.portField().toLatin1()
            + "\r\n[baud] 9600\r\n[file] print\r\n[location] in\\\r\n[ecrt] TECFP\r\n"
              "[multi type] true\r\n[print_desc] true\r\n[print_code] falseN\r\n[comments] true\r\n"
              "[currency]=0\r\n[AutoStar]=yes\r\n";
    }
    // True once a resident kerbano took printFile away, within the event time.
    bool printedWithin(const QString& printFile, KerbanoProcess& kerbano)
    {
        const QDeadlineTimer deadline(KerbanoProcess::kEventMs);
        while (QFile::exists(printFile) && !deadline.hasExpired() && kerbano.running())
            kerbano.waitEnd(100);
        return !QFile::exists(printFile);
    }
    // True once the register heard count commands starting with prefix while
    // kerbano runs, within the event time.
    bool heardWithin(const QString& prefix, int count, const KerbanoProcess& kerbano) const
    {
        const QDeadlineTimer deadline(KerbanoProcess::kEventMs);
        while (journalCount(prefix) < count && !deadline.hasExpired() && kerbano.running())
            QThread::msleep(50);
        return journalCount(prefix) >= count;
    }
    // How many commands the register heard that start with prefix.
    int journalCount(const QString& prefix) const
    {
        int n = 0;
        for (const QString& command : sim.journalCommands())
            n += command.startsWith(prefix);
        return n;
    }

    QStringList resultLines(const QString& name = u"result.txt"_s) const
    {
        return codepage::fromWin1253(readBytes(path(name))).split(u"\r\n"_s);
    }
};
