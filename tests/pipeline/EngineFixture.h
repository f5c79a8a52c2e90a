#pragma once

#include "ScriptedLink.h"
#include "ScriptedOperator.h"
#include "config/ParamFileWriter.h"
#include "operations/FPrinter.h"
#include "pipeline/Engine.h"
#include "pipeline/JobParts.h"
#include "pipeline/StartParts.h"
#include "shell/Clock.h"
#include "shell/CodePage.h"
#include "shell/FormModel.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <deque>
#include <gtest/gtest.h>
#include <memory>

using namespace Qt::Literals::StringLiterals;

// FPrinterWrite for the engine's tests: "initialize" answers from a script.
class ScriptedPrinter final : public FPrinter {
public:
    explicit ScriptedPrinter(ReceiptState& state) : state_(state)
    {
    }
    std::deque<qint16> initializeStatuses; // then statusAfterScript
    qint16 statusAfterScript = 0;
    QStringList ops;

    void FPrinterWrite(const QString&, QVariant&, QVariant&, QVariant&, const QString& op) override
    {
        ops << op;
        if (op != QLatin1String("initialize"))
            return;
        state_.LastStatus = initializeStatuses.empty() ? statusAfterScript : initializeStatuses.front();
        state_.LastReply = state_.LastStatus ? u"no reply"_s : QString();
        if (!initializeStatuses.empty())
            initializeStatuses.pop_front();
    }
    using FPrinter::FPrinterWrite;

private:
    ReceiptState& state_;
};

// The parts of a job, each a replaceable step with harmless defaults, so that
// the job's frame runs on its own.
class ScriptedJobParts final : public JobParts, public StartParts {
public:
    using InterpretLines = std::function<void(const QStringList&, const JobSettings&, const LineReached&)>;

    InterpretLines interpretLines_ = [](const QStringList& lines, const JobSettings&, const LineReached& reached) {
        for (qsizetype i = 0; i < lines.size(); ++i)
            reached(i);
    };
    std::function<QStringList()> cardPaymentLines_ = [] { return QStringList(); };
    std::function<DocumentFigures()> documentFigures_ = [] { return DocumentFigures(); };
    std::function<bool()> isOperatorBusy_ = [] { return false; };
    std::function<void()> readDeviceVatRates_ = [] {};
    std::function<void(const QString&)> startBatchFile_ = [](const QString&) {};

    void interpretLines(const QStringList& lines, const JobSettings& settings, const LineReached& reached) override
    {
        interpretLines_(lines, settings, reached);
    }
    void finishCardPayment() override {}
    QStringList cardPaymentLines() override { return cardPaymentLines_(); }
    DocumentFigures documentFigures() override { return documentFigures_(); }
    bool isOperatorBusy() override { return isOperatorBusy_(); }
    void readDeviceVatRates() override { readDeviceVatRates_(); }
    void startBatchFile(const QString& path) override { startBatchFile_(path); }
};

// An engine over a temporary working directory; print files go to "in/".
class EngineTest : public ::testing::Test {
protected:
    QTemporaryDir dir;
    VirtualClock clock;
    ScriptedOperator person;
    FormModel form;
    ScriptedLink link;
    std::unique_ptr<Engine> engine;
    std::unique_ptr<ScriptedPrinter> printer;
    QStringList walked;
    ScriptedJobParts parts;
    qint16 initializeStatusAtStart = 0; // what "initialize" answers from the start on

    // A walk that hands each line to perLine; false from it ends the walk.
    static ScriptedJobParts::InterpretLines walkEach(std::function<bool(const QString&, const JobSettings&)> perLine)
    {
        return [perLine](const QStringList& lines, const JobSettings& settings,
                         const std::function<void(qsizetype)>& lineReached) {
            for (qsizetype i = 0; i < lines.size(); ++i) {
                lineReached(i);
                if (!perLine(lines.at(i), settings))
                    return;
            }
        };
    }

    void SetUp() override
    {
        QDir(dir.path()).mkpath(u"in"_s);
        parts.interpretLines_ = walkEach([this](const QString& line, const JobSettings&) {
            walked << line;
            return true;
        });
    }

    ParamFormValues pollingParams(const QString& file = u"print"_s) const
    {
        ParamFormValues f;
        f.comtxt = u"127.0.0.1:9101"_s;
        f.filetxt = file;
        f.location = u"in\\"_s;
        f.multi_print = true;
        f.descreption = true;
        return f;
    }
    void writeParams(const ParamFormValues& f)
    {
        ASSERT_TRUE(writeParamFile(dir.filePath(u"param.ini"_s), f, QDate(2026, 1, 2)));
    }

    // An engine put together but not started.
    void build(const QString& commandLine = QString(), bool honourAutoStart = true)
    {
        engine = std::make_unique<Engine>(clock, person, form, EngineOptions{dir.path(), commandLine, honourAutoStart});
        printer = std::make_unique<ScriptedPrinter>(engine->receiptState());
        printer->statusAfterScript = initializeStatusAtStart;
        engine->attach(link, *printer, parts, parts);
    }
    void start(const QString& commandLine = QString())
    {
        build(commandLine);
        engine->Form_Load();
    }
    // Started, device found, polling.
    void startPolling(const ParamFormValues& f)
    {
        writeParams(f);
        start();
        engine->timer2Tick();
        engine->command1();
    }

    // The form and the timers at a glance: "caption|status line|" then the
    // buttons Command1 and Command2 and the timers Timer1, Timer2 and mTimer,
    // each "+" when enabled or armed and "-" when not.
    QString glance() const
    {
        QString flags;
        for (bool on : {form.state().command1Enabled, form.state().command2Enabled, engine->timer1().armed,
                        engine->timer2().armed, engine->mTimer().armed})
            flags += on ? u'+' : u'-';
        return form.caption() + u'|' + form.comstattxt() + u'|' + flags;
    }

    QString inPath(const QString& name) const { return dir.filePath(u"in/"_s + name); }
    void put(const QString& name, const QByteArray& bytes)
    {
        QFile file(inPath(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    }
    QStringList resultLines(const QString& relative = u"Result"_s) const
    {
        QFile file(dir.filePath(relative));
        if (!file.open(QIODevice::ReadOnly))
            return {};
        QStringList lines = codepage::fromWin1253(file.readAll()).split(u"\r\n"_s);
        lines.removeLast();
        return lines;
    }
};
