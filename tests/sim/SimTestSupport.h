#pragma once

// What the virtual register's tests share: the model on its own with a paper
// tape, and the whole register with its memory on disk.

#include "EcrModel.h"
#include "FaultScript.h"
#include "SimRegister.h"
#include "shell/Clock.h"
#include "shell/CodePage.h"

#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <cstdio>
#include <functional>
#include <memory>

// Plays a conversation of tests/data/sim/: each line a command, a tab and the
// reply it must get word for word (no tab: the reply is not looked at); "#"
// starts a comment. A line the world takes as its own (directive returns true:
// "restart", "at <ISO date-time>", a fault-script line) is not sent. With
// KERBANO_REGOLD set every exchange is also printed as a golden line.
inline void replay(const QString& name, const std::function<QString(const QString&)>& send,
                   const std::function<bool(const QString&)>& directive)
{
    QFile file(QStringLiteral(KERBANO_SOURCE_DIR "/tests/data/sim/") + name);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly)) << qPrintable(name);
    int number = 0;
    for (const QString& line : QString::fromUtf8(file.readAll()).split(QLatin1Char('\n'))) {
        ++number;
        if (line.isEmpty() || line.startsWith(QLatin1Char('#')) || directive(line))
            continue;
        const qsizetype tab = line.indexOf(QLatin1Char('\t'));
        const QString reply = send(line.left(tab));
        if (qEnvironmentVariableIsSet("KERBANO_REGOLD"))
            fprintf(stderr, "%s\t%s\n", qPrintable(line.left(tab)), qPrintable(reply));
        if (tab >= 0) {
            EXPECT_EQ(reply, line.mid(tab + 1)) << qPrintable(name) << ":" << number << " " << qPrintable(line.left(tab));
        }
    }
}

// The register's model alone, at a fixed time; what it prints goes to tape.
struct ModelWorld {
    RegisterMemory memory = RegisterMemory::factory();
    EcrModel model{memory};
    QStringList tape;
    QDateTime now = QDateTime(QDate(2026, 11, 19), QTime(10, 15));

    QString send(const QString& command)
    {
        const auto o = model.execute(command, now);
        tape << o.printed;
        return o.reply.text();
    }
    QStringList fields(const QString& command) { return send(command).split(QLatin1Char('/')); }
    // "at" sets the time; "terminal" and "card" lines script the card terminals.
    void play(const QString& name)
    {
        replay(name, [this](const QString& command) { return send(command); },
               [this](const QString& line) {
                   if (line.startsWith(QLatin1String("at ")))
                       now = QDateTime::fromString(line.mid(3), Qt::ISODate);
                   else if (line.startsWith(QLatin1String("terminal ")) || line.startsWith(QLatin1String("card ")))
                       script(line);
                   else
                       return false;
                   return true;
               });
    }
    void script(const QString& text)
    {
        FaultScript f;
        QString error;
        ASSERT_TRUE(f.parse(text, &error)) << qPrintable(error);
        for (const TerminalRule& r : f.terminalRules())
            model.scriptTerminal(r);
    }
};

// The whole register with its memory and tape in a temporary directory; a
// "fault" line of a conversation loads a line of fault script.
struct DiskWorld {
    QTemporaryDir dir;
    VirtualClock clock;
    std::unique_ptr<SimRegister> reg;

    DiskWorld()
    {
        EXPECT_TRUE(dir.isValid());
        restart();
    }
    // The register is switched off and on again: all it knows comes from --state.
    void restart()
    {
        reg.reset();
        reg = std::make_unique<SimRegister>(
            SimRegister::Options{dir.path(), {}, dir.filePath(QStringLiteral("tape.txt")), {}, {}}, clock);
    }
    // One command, in Windows-1253 both ways.
    QString send(const QString& command)
    {
        return codepage::fromWin1253(reg->handle(codepage::toWin1253(command)).reply);
    }
    void play(const QString& name)
    {
        replay(name, [this](const QString& command) { return send(command); },
               [this](const QString& line) {
                   if (line == QLatin1String("restart"))
                       restart();
                   else if (line.startsWith(QLatin1String("fault ")))
                       EXPECT_TRUE(reg->loadFaults(line.mid(6))) << qPrintable(line);
                   else
                       return false;
                   return true;
               });
    }
    QString tape() const
    {
        QFile f(dir.filePath(QStringLiteral("tape.txt")));
        return f.open(QIODevice::ReadOnly) ? QString::fromUtf8(f.readAll()) : QString();
    }
};

class ModelTest : public ::testing::Test, protected ModelWorld {};
class DiskRegisterTest : public ::testing::Test, protected DiskWorld {};
