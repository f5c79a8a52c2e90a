#pragma once

// What the virtual register's tests share: the model on its own with a paper
// tape, and the whole register with its memory on disk.

#include "EcrModel.h"
#include "SimRegister.h"
#include "shell/Clock.h"
#include "shell/CodePage.h"

#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <cstdio>
#include <functional>
#include <memory>

// One command to a register, in Windows-1253 both ways.
inline QString sendTo(SimRegister& reg, const QString& command)
{
    return codepage::fromWin1253(reg.handle(codepage::toWin1253(command)).reply);
}

// Plays a conversation of tests/data/sim/: each line a command, a tab and the
// reply it must get word for word (no tab: the reply is not looked at);
// "restart" switches the register off and on; "at <ISO date-time>" sets the
// clock; "#" starts a comment. With KERBANO_REGOLD set every exchange is also
// printed as a golden line, for writing a new conversation.
inline void replay(const QString& name, const std::function<QString(const QString&)>& send,
                   const std::function<void()>& restart = {},
                   const std::function<void(const QDateTime&)>& at = {})
{
    QFile file(QStringLiteral(KERBANO_SOURCE_DIR "/tests/data/sim/") + name);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly)) << qPrintable(name);
    int number = 0;
    for (const QString& line : QString::fromUtf8(file.readAll()).split(QLatin1Char('\n'))) {
        ++number;
        if (line.isEmpty() || line.startsWith(QLatin1Char('#')))
            continue;
        if (line == QLatin1String("restart")) {
            ASSERT_TRUE(restart) << qPrintable(name) << ":" << number;
            restart();
            continue;
        }
        if (line.startsWith(QLatin1String("at "))) {
            ASSERT_TRUE(at) << qPrintable(name) << ":" << number;
            at(QDateTime::fromString(line.mid(3), Qt::ISODate));
            continue;
        }
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
class ModelTest : public ::testing::Test {
protected:
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
    void play(const QString& name)
    {
        replay(name, [this](const QString& command) { return send(command); }, {},
               [this](const QDateTime& t) { now = t; });
    }
};

// The whole register with its memory and tape in a temporary directory.
class DiskRegisterTest : public ::testing::Test {
protected:
    QTemporaryDir dir;
    VirtualClock clock;
    std::unique_ptr<SimRegister> reg;

    void SetUp() override
    {
        ASSERT_TRUE(dir.isValid());
        restart();
    }
    // The register is switched off and on again: all it knows comes from --state.
    void restart()
    {
        reg.reset();
        reg = std::make_unique<SimRegister>(
            SimRegister::Options{dir.path(), {}, dir.filePath(QStringLiteral("tape.txt")), {}, {}}, clock);
    }
    QString send(const QString& command) { return sendTo(*reg, command); }
    QStringList fields(const QString& command) { return send(command).split(QLatin1Char('/')); }
    void play(const QString& name)
    {
        replay(name, [this](const QString& command) { return send(command); }, [this] { restart(); });
    }
    QString tape() const
    {
        QFile f(dir.filePath(QStringLiteral("tape.txt")));
        return f.open(QIODevice::ReadOnly) ? QString::fromUtf8(f.readAll()) : QString();
    }
};
