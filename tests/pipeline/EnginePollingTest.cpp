#include "EngineFixture.h"

#include <stdexcept>

TEST_F(EngineTest, AFileAppearingIsPrintedDeletedAndReportedInItsResultFile)
{
    startPolling(pollingParams());
    bool timer1ArmedDuringJob = true;
    bool ignoreBusyDuringJob = false;
    parts.interpretLines_ = walkEach([&](const QString& line, const JobSettings& settings) {
        walked << line;
        timer1ArmedDuringJob = engine->timer1().armed;
        ignoreBusyDuringJob = engine->moduleVariables().IgnoreOperatorBusy;
        EXPECT_EQ(settings.printDesc, QStringLiteral("true"));
        return true;
    });
    parts.isOperatorBusy_ = [] { return false; };
    QStringList statusLines;
    QObject::connect(&form, &FormModel::statusLineChanged, [&](const QString& s) { statusLines << s; });

    engine->timer1Tick(); // nothing there: the port is let go
    EXPECT_EQ(link.closes, 1);
    EXPECT_TRUE(walked.isEmpty());

    put(QStringLiteral("print.1"), "resFile:  out\\res.txt\r\ntag:  00417\r\n PLU a\nb\rc\r\n");
    QDir(dir.path()).mkpath(QStringLiteral("out"));
    engine->timer1Tick();
    EXPECT_EQ(link.opens, 2);
    EXPECT_TRUE(link.connected);
    EXPECT_EQ(walked, (QStringList{"resFile:  out\\res.txt", "tag:  00417", " PLU a\nb\rc", ""}));
    EXPECT_FALSE(timer1ArmedDuringJob);
    EXPECT_TRUE(ignoreBusyDuringJob);
    EXPECT_FALSE(engine->moduleVariables().IgnoreOperatorBusy);
    EXPECT_TRUE(engine->timer1().armed);
    EXPECT_FALSE(QFile::exists(inPath(QStringLiteral("print.1"))));
    EXPECT_EQ(clock.totalSleptMs(), 500);
    EXPECT_EQ(resultLines(QStringLiteral("out/res.txt")),
              (QStringList{"tag = 00417", "DateTime start = 02/01/2026 10:20:30",
                           "DateTime end = 02/01/2026 10:20:30", "recStatus = 0;0.00", "receipt = -1, -1, -1",
                           "exitcode = 0"}));
    EXPECT_EQ(form.lblreceipt(), QStringLiteral("-1"));
    EXPECT_EQ(form.lblProgr(), QStringLiteral(" Ολοκληρώθηκε το 100%"));
    EXPECT_EQ(statusLines, (QStringList{"Εκτύπωση Ενεργή ..... Παρακαλώ Περιμένετε...", "Αναμονη Για Στοιχεια...."}));

    engine->timer1Tick(); // the first tick that finds nothing closes the link
    EXPECT_FALSE(link.connected);
    EXPECT_EQ(link.closes, 2);
}

TEST_F(EngineTest, FilesStillBeingWrittenOrEmptyWaitAndTheLowestNumberGoesFirst)
{
    startPolling(pollingParams());
    put(QStringLiteral("print.2"), QByteArray());
    put(QStringLiteral("print.4"), "tag:  four\r\n");
    put(QStringLiteral("print.3"), "tag:  three\r\n");
    QFile writer(inPath(QStringLiteral("print.1")));
    ASSERT_TRUE(writer.open(QIODevice::WriteOnly));
    writer.write("tag:  one\r\n");
    writer.flush();

    engine->timer1Tick();
    engine->timer1Tick();
    writer.close();
    engine->timer1Tick();
    engine->timer1Tick();
    EXPECT_EQ(resultLines().filter(QStringLiteral("tag = ")),
              (QStringList{"tag = three", "tag = four", "tag = one"}));
    EXPECT_TRUE(QFile::exists(inPath(QStringLiteral("print.2"))));
}

TEST_F(EngineTest, WildcardTakesAMatchingName)
{
    startPolling(pollingParams(QStringLiteral("*.txt")));
    put(QStringLiteral("other.dat"), "tag:  no\r\n");
    put(QStringLiteral("job.txt"), "tag:  yes\r\n");
    engine->timer1Tick();
    engine->timer1Tick();
    EXPECT_EQ(resultLines().filter(QStringLiteral("tag = ")), QStringList{"tag = yes"});
    EXPECT_FALSE(QFile::exists(inPath(QStringLiteral("job.txt"))));
    EXPECT_TRUE(QFile::exists(inPath(QStringLiteral("other.dat"))));
}

TEST_F(EngineTest, PrgFileIsKeptAndPrintedAgainInThePollingWay)
{
    startPolling(pollingParams(QStringLiteral("prg")));
    put(QStringLiteral("prg.1"), "tag:  program\r\n");
    engine->timer1Tick();
    engine->timer1Tick();
    EXPECT_TRUE(QFile::exists(inPath(QStringLiteral("prg.1"))));
    EXPECT_EQ(resultLines().filter(QStringLiteral("tag = ")).size(), 2);

    // Compared as it stands: "PRG.1" goes.
    startPolling(pollingParams(QStringLiteral("PRG")));
    put(QStringLiteral("PRG.1"), "tag:  upper\r\n");
    engine->timer1Tick();
    EXPECT_FALSE(QFile::exists(inPath(QStringLiteral("PRG.1"))));
}

TEST_F(EngineTest, SingleFileWayWaitsForItsFilePrintsItAndEnds)
{
    auto params = pollingParams(QStringLiteral("job.prg.1"));
    params.multi_print = false;
    startPolling(params);
    int endedWith = -1;
    QObject::connect(engine.get(), &Engine::ended, [&](int code) { endedWith = code; });
    engine->timer1Tick();
    EXPECT_FALSE(engine->hasEnded());

    put(QStringLiteral("job.prg.1"), "tag:  single\r\n");
    engine->timer1Tick();
    EXPECT_EQ(endedWith, 0);
    EXPECT_FALSE(link.connected);
    EXPECT_TRUE(QFile::exists(inPath(QStringLiteral("job.prg.1")))); // "PRG.1" in any case stays
    EXPECT_EQ(resultLines().first(), QStringLiteral("tag = single"));
}

TEST_F(EngineTest, ClosingLinesCarryTheDocumentAndResetTheReceiptState)
{
    parts.interpretLines_ = walkEach([&](const QString& line, const JobSettings&) {
        walked << line;
        engine->receiptState().TableMode = 1;
        engine->receiptState().setCurrentTable(5);
        engine->receiptState().PaymentDone = true;
        return !line.startsWith(QLatin1String(" exit"));
    });
    parts.cardPaymentLines_ = [] { return QStringList{"ccPay0 = a;b;c;d;e;f;g;h"}; };
    parts.documentFigures_ = [] { return DocumentFigures{6.5, 1287, 42, -1}; };
    parts.isOperatorBusy_ = [] { return true; };
    startPolling(pollingParams());
    put(QStringLiteral("print.1"), " PLU x\r\n exit\r\n PLU never\r\n");
    engine->timer1Tick();
    EXPECT_EQ(walked.size(), 2);
    EXPECT_EQ(resultLines().mid(2),
              (QStringList{"ccPay0 = a;b;c;d;e;f;g;h", "DateTime end = 02/01/2026 10:20:30", "recStatus = 1;6.50",
                           "receipt = 1287, 42, -1", "exitcode = 0"}));
    EXPECT_EQ(form.lblreceipt(), QStringLiteral("42"));
    const ReceiptState& state = engine->receiptState();
    EXPECT_EQ(state.TableMode, 0);
    EXPECT_EQ(state.currentTable(), -1);
    EXPECT_EQ(state.lastTable(), 5);
    EXPECT_FALSE(state.PaymentDone);
    EXPECT_TRUE(engine->moduleVariables().IgnoreOperatorBusy);
}

TEST_F(EngineTest, BadInputStillGetsItsClosingLinesAndPollingGoesOn)
{
    parts.interpretLines_ = walkEach([&](const QString& line, const JobSettings&) -> bool {
        if (line.contains(QLatin1String("boom")))
            throw std::runtime_error("interpreter fault");
        walked << line;
        return true;
    });
    startPolling(pollingParams());

    put(QStringLiteral("print.1"), QByteArray("\x00\xff\x81garbage\r\n boom\r\n after\r\n", 23));
    engine->timer1Tick();
    EXPECT_EQ(walked.size(), 1);
    EXPECT_EQ(resultLines().last(), QStringLiteral("exitcode = 0"));
    EXPECT_EQ(person.messages.last().text, QStringLiteral("Λάθος : interpreter fault"));

    put(QStringLiteral("print.1"), "resFile:  no\\such\\dir\\res.txt\r\n PLU x\r\n");
    engine->timer1Tick();
    EXPECT_TRUE(person.messages.last().text.startsWith(QStringLiteral("Δεν ήταν δυνατή η εγγραφή")));
    EXPECT_FALSE(QFile::exists(inPath(QStringLiteral("print.1"))));
    EXPECT_TRUE(engine->timer1().armed);
}

TEST_F(EngineTest, ParamFileGoneAtATickIsShownAndPollingResumesWhenItIsBack)
{
    startPolling(pollingParams());
    const QString param = dir.filePath(QStringLiteral("param.ini"));
    QFile::rename(param, param + QStringLiteral(".away"));
    put(QStringLiteral("print.1"), "tag:  waiting\r\n");
    engine->timer1Tick();
    EXPECT_EQ(form.comstattxt(), QStringLiteral("Λάθος : Δεν βρέθηκε το αρχείο παραμέτρων param.ini"));
    EXPECT_TRUE(QFile::exists(inPath(QStringLiteral("print.1"))));

    QFile::rename(param + QStringLiteral(".away"), param);
    engine->timer1Tick();
    EXPECT_FALSE(QFile::exists(inPath(QStringLiteral("print.1"))));
    EXPECT_EQ(form.comstattxt(), QStringLiteral("Αναμονη Για Στοιχεια...."));
}

TEST_F(EngineTest, ThePrintJobIsTheResultFilesOneWriterAndOnlyWhileItRuns)
{
    parts.interpretLines_ = walkEach([&](const QString& line, const JobSettings&) {
        if (line == QLatin1String(" SND x"))
            engine->resultSink().appendResultLine(QStringLiteral("Err = 44, [x] DateTime = now"));
        return true;
    });
    startPolling(pollingParams());
    engine->resultSink().appendResultLine(QStringLiteral("before any job"));
    put(QStringLiteral("print.1"), "tag:  sink\r\n SND x\r\n");
    engine->timer1Tick();
    engine->resultSink().appendResultLine(QStringLiteral("after the job"));
    EXPECT_EQ(resultLines().mid(0, 3),
              (QStringList{"tag = sink", "DateTime start = 02/01/2026 10:20:30", "Err = 44, [x] DateTime = now"}));
    EXPECT_EQ(resultLines().last(), QStringLiteral("exitcode = 0"));
    EXPECT_EQ(resultLines().size(), 7);
}
