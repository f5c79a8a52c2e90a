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
        EXPECT_EQ(settings.printDesc, u"true"_s);
        return true;
    });
    parts.isOperatorBusy_ = [] { return false; };
    QStringList statusLines;
    QObject::connect(&form, &FormModel::statusLineChanged, [&](const QString& s) { statusLines << s; });

    engine->timer1Tick(); // nothing there: the port is let go
    EXPECT_EQ(link.closes, 1);
    EXPECT_TRUE(walked.isEmpty());

    put(u"print.1"_s, "resFile:  out\\res.txt\r\ntag:  00417\r\n PLU a\nb\rc\r\n");
    QDir(dir.path()).mkpath(u"out"_s);
    engine->timer1Tick();
    EXPECT_EQ(link.opens, 2);
    EXPECT_TRUE(link.connected);
    EXPECT_EQ(walked, (QStringList{"resFile:  out\\res.txt", "tag:  00417", " PLU a\nb\rc", ""}));
    EXPECT_FALSE(timer1ArmedDuringJob);
    EXPECT_TRUE(ignoreBusyDuringJob);
    EXPECT_FALSE(engine->moduleVariables().IgnoreOperatorBusy);
    EXPECT_TRUE(engine->timer1().armed);
    EXPECT_FALSE(QFile::exists(inPath(u"print.1"_s)));
    EXPECT_EQ(clock.totalSleptMs(), 500);
    EXPECT_EQ(resultLines(u"out/res.txt"_s), (QStringList{"tag = 00417", "DateTime start = 02/01/2026 10:20:30",
                           "DateTime end = 02/01/2026 10:20:30", "recStatus = 0;0.00", "receipt = -1, -1, -1",
                           "exitcode = 0"}));
    EXPECT_EQ(form.lblreceipt(), u"-1"_s);
    EXPECT_EQ(form.lblProgr(), u" Ολοκληρώθηκε το 100%"_s);
    EXPECT_EQ(statusLines, (QStringList{"Εκτύπωση Ενεργή ..... Παρακαλώ Περιμένετε...", "Αναμονη Για Στοιχεια...."}));

    engine->timer1Tick(); // the first tick that finds nothing closes the link
    EXPECT_FALSE(link.connected);
    EXPECT_EQ(link.closes, 2);
}

TEST_F(EngineTest, FilesStillBeingWrittenOrEmptyWaitAndTheLowestNumberGoesFirst)
{
    startPolling(pollingParams());
    put(u"print.2"_s, QByteArray());
    put(u"print.4"_s, "tag:  four\r\n");
    put(u"print.3"_s, "tag:  three\r\n");
    QFile writer(inPath(u"print.1"_s));
    ASSERT_TRUE(writer.open(QIODevice::WriteOnly));
    writer.write("tag:  one\r\n");
    writer.flush();

    engine->timer1Tick();
    engine->timer1Tick();
    writer.close();
    engine->timer1Tick();
    engine->timer1Tick();
    EXPECT_EQ(resultLines().filter(u"tag = "_s), (QStringList{"tag = three", "tag = four", "tag = one"}));
    EXPECT_TRUE(QFile::exists(inPath(u"print.2"_s)));
}

TEST_F(EngineTest, WildcardTakesAMatchingName)
{
    startPolling(pollingParams(u"*.txt"_s));
    put(u"other.dat"_s, "tag:  no\r\n");
    put(u"job.txt"_s, "tag:  yes\r\n");
    engine->timer1Tick();
    engine->timer1Tick();
    EXPECT_EQ(resultLines().filter(u"tag = "_s), QStringList{"tag = yes"});
    EXPECT_FALSE(QFile::exists(inPath(u"job.txt"_s)));
    EXPECT_TRUE(QFile::exists(inPath(u"other.dat"_s)));
}

TEST_F(EngineTest, PrgFileIsKeptAndPrintedAgainInThePollingWay)
{
    startPolling(pollingParams(u"prg"_s));
    put(u"prg.1"_s, "tag:  program\r\n");
    engine->timer1Tick();
    engine->timer1Tick();
    EXPECT_TRUE(QFile::exists(inPath(u"prg.1"_s)));
    EXPECT_EQ(resultLines().filter(u"tag = "_s).size(), 2);

    // Compared as it stands: "PRG.1" goes.
    startPolling(pollingParams(u"PRG"_s));
    put(u"PRG.1"_s, "tag:  upper\r\n");
    engine->timer1Tick();
    EXPECT_FALSE(QFile::exists(inPath(u"PRG.1"_s)));
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
    put(u"print.1"_s, " PLU x\r\n exit\r\n PLU never\r\n");
    engine->timer1Tick();
    EXPECT_EQ(walked.size(), 2);
    EXPECT_EQ(resultLines().mid(2),
              (QStringList{"ccPay0 = a;b;c;d;e;f;g;h", "DateTime end = 02/01/2026 10:20:30", "recStatus = 1;6.50",
                           "receipt = 1287, 42, -1", "exitcode = 0"}));
    EXPECT_EQ(form.lblreceipt(), u"42"_s);
    const ReceiptState& state = engine->receiptState();
    EXPECT_EQ(std::tuple(state.TableMode, state.currentTable(), state.lastTable(), state.PaymentDone),
              std::tuple(0, -1, 5, false));
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

    put(u"print.1"_s, QByteArray("\x00\xff\x81garbage\r\n boom\r\n after\r\n", 23));
    engine->timer1Tick();
    EXPECT_EQ(walked.size(), 1);
    EXPECT_EQ(resultLines().last(), u"exitcode = 0"_s);
    EXPECT_EQ(person.messages.last().text, u"Λάθος : interpreter fault"_s);

    put(u"print.1"_s, "resFile:  no\\such\\dir\\res.txt\r\n PLU x\r\n");
    engine->timer1Tick();
    EXPECT_TRUE(person.messages.last().text.startsWith(u"Δεν ήταν δυνατή η εγγραφή"_s));
    EXPECT_FALSE(QFile::exists(inPath(u"print.1"_s)));
    EXPECT_TRUE(engine->timer1().armed);
}

TEST_F(EngineTest, ParamFileGoneAtATickIsShownAndPollingResumesWhenItIsBack)
{
    startPolling(pollingParams());
    const QString param = dir.filePath(u"param.ini"_s);
    QFile::rename(param, param + u".away"_s);
    put(u"print.1"_s, "tag:  waiting\r\n");
    engine->timer1Tick();
    EXPECT_EQ(form.comstattxt(), u"Λάθος : Δεν βρέθηκε το αρχείο παραμέτρων param.ini"_s);
    EXPECT_TRUE(QFile::exists(inPath(u"print.1"_s)));

    QFile::rename(param + u".away"_s, param);
    engine->timer1Tick();
    EXPECT_FALSE(QFile::exists(inPath(u"print.1"_s)));
    EXPECT_EQ(form.comstattxt(), u"Αναμονη Για Στοιχεια...."_s);
}

TEST_F(EngineTest, ThePrintJobIsTheResultFilesOneWriterOnlyWhileItRunsInWindows1253WithCrLf)
{
    parts.interpretLines_ = walkEach([&](const QString& line, const JobSettings&) {
        if (line == QLatin1String(" SND x"))
            engine->resultSink().appendResultLine(u"Err = 44, [Ψ/] DateTime = now"_s);
        return true;
    });
    startPolling(pollingParams());
    engine->resultSink().appendResultLine(u"before any job"_s);
    put(u"print.1"_s, "resFile:  res.txt\r\ntag:  sink\r\n SND x\r\n");
    engine->timer1Tick();
    engine->resultSink().appendResultLine(u"after the job"_s);
    QFile file(dir.filePath(u"res.txt"_s));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_TRUE(file.readAll().startsWith("tag = sink\r\nDateTime start = 02/01/2026 10:20:30\r\n"
                                          "Err = 44, [\xD8/] DateTime = now\r\n"));
    EXPECT_EQ(resultLines(u"res.txt"_s).last(), u"exitcode = 0"_s);
    EXPECT_EQ(resultLines(u"res.txt"_s).size(), 7);
    EXPECT_TRUE(resultLines().isEmpty());
}
