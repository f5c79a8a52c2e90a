#pragma once

#include "DataFile.h"
#include "FakeTransport.h"
#include "ScriptedOperator.h"

#include "link/DevicePort.h"
#include "link/DeviceSession.h"
#include "shell/Clock.h"
#include "shell/CodePage.h"
#include "shell/CommunicationLog.h"
#include "shell/FormModel.h"
#include "shell/ModuleVariables.h"
#include "shell/ResultSink.h"

#include <QFile>
#include <QStringList>
#include <QTemporaryDir>
#include <deque>
#include <functional>
#include <gtest/gtest.h>
#include <map>

// The result file's writer as the session sees it: the lines handed over and
// the notes kept for the end of the job.
struct RecordingSink final : ResultSink {
    QStringList lines;
    QStringList notes;
    void appendResultLine(const QString& line) override { lines << line; }
    void noteBeforeExit(const QString& line) override { notes << line; }
};

// A device session over a fake transport on the virtual clock, with all it
// talks to: what the session tests put together, each with its own register.
struct SessionWorld {
    VirtualClock clock;
    ModuleVariables vars;
    QTemporaryDir dir;
    CommunicationLog log{dir.path(), vars};
    ScriptedOperator op;
    FormModel form;
    FakeFactory factory{clock};
    RecordingSink results;
    DevicePort port{vars, clock, op, factory, log};
    DeviceSession link{port, vars, clock, op, form, results, log};

    QByteArray logBytes() const
    {
        QFile f(log.filePath());
        return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
    }
};

// A register behind every pipe the session opens: each command is answered
// from its own queue of replies (the last one repeats), "00/00/00/" without
// one, framed on a serial line and plain on TCP; a NAK reply goes as its byte.
// A command in answerAfterMs is answered that much later (never when
// negative); ENQ gets its ACK after enqAnswerMs, and a negative one holds back
// the next ENQ's answer only.
class QueuedRegisterTest : public ::testing::Test, protected SessionWorld {
protected:
    QueuedRegisterTest()
    {
        factory.script = [this](FakeTransport& t) {
            t.onWrite = [this, &t](const QByteArray& w) { answer(t, w); };
        };
    }
    void open(const QString& portName = "127.0.0.1:9101")
    {
        link.OpenDeviceLink(portName, status, reply, false);
        ASSERT_EQ(status, 0);
        sent.clear();
    }
    void send(const QString& command, bool quiet = false, int logMode = 0)
    {
        link.SendCommand(command, status, reply, quiet, timeout, logMode);
        statuses << QString::number(status);
    }
    // What the commands of a test left, as lines: their statuses, what the
    // register heard, the wait window, the messages shown and the result
    // lines; compared whole against a section of tests/data/link/.
    QStringList course() const
    {
        QStringList lines{"status " + statuses.join(u' ')};
        for (const QString& command : sent)
            lines << "> " + command;
        for (const auto& e : op.waitEvents)
            lines << (e.kind == e.Open ? "window open " + e.caption + " / " + e.stateLine + " / " + e.description
                                       : QStringList{"", "window update ", "window close"}.value(e.kind) + e.stateLine);
        for (const auto& m : op.messages)
            lines << "message " + m.title + " / " + m.text + " / " + QString::number(int(m.icon));
        for (const QString& line : results.lines)
            lines << "result " + line;
        return lines.replaceInStrings(QStringLiteral("\r"), QStringLiteral("<CR>"))
            .replaceInStrings(QStringLiteral("\x02"), QStringLiteral("<STX>"))
            .replaceInStrings(QStringLiteral("\x03"), QStringLiteral("<ETX>"));
    }

    std::map<QString, std::deque<QString>> replies;
    std::map<QString, qint64> answerAfterMs;
    std::function<void(const QString& command, qsizetype timesSent)> onCommand;
    qint64 enqAnswerMs = 5;
    QStringList sent;
    QStringList statuses;
    qint16 status = 99;
    qint16 timeout = 0;
    QString reply;

private:
    void answer(FakeTransport& t, const QByteArray& w)
    {
        if (w == "\x05") {
            if (enqAnswerMs < 0)
                enqAnswerMs = 5;
            else
                t.deliver("\x06", enqAnswerMs);
            return;
        }
        if (w == "\x06") // the driver's ACK of a reply
            return;
        const bool framed = w.startsWith('\x02');
        const QString command = codepage::fromWin1253(framed ? w.mid(1, w.size() - 4) : w);
        sent << command;
        if (onCommand)
            onCommand(command, sent.count(command));
        auto& queue = replies[command];
        const QString text = queue.empty() ? "00/00/00/" : queue.front();
        if (queue.size() > 1)
            queue.pop_front();
        const qint64 after = answerAfterMs.count(command) ? answerAfterMs[command] : 5;
        if (after >= 0)
            t.deliver(text.toLatin1() + (framed && text != "\x15" ? "\x03" : ""), after);
    }
};
