#include "EngineFixture.h"
#include "pipeline/CommandLine.h"

TEST(CommandLine, SplitsAtCommaOrBlankAndMarksEmptyFields)
{
    const CommandLineFields f = readcoman(QStringLiteral("com1,9600 print.txt,,TECFP,2101110 `"));
    EXPECT_EQ(f.port, QStringLiteral("com1"));
    EXPECT_EQ(f.baud, QStringLiteral("9600"));
    EXPECT_EQ(f.file, QStringLiteral("print.txt"));
    EXPECT_EQ(f.time, QStringLiteral("e"));
    EXPECT_EQ(f.ecrt, QStringLiteral("TECFP"));
    EXPECT_EQ(f.flags, QStringLiteral("2101110 `"));
    EXPECT_TRUE(commandLineUsable(f));
    EXPECT_TRUE(commandLineStartsBatch(QStringLiteral("com1,9600 print.txt,,TECFP,2101110 `")));

    JobSettings expected;
    expected.file = QStringLiteral("print.txt");
    expected.time = QStringLiteral("e");
    expected.ecrt = QStringLiteral("TECFP");
    expected.multiType = QStringLiteral("fals");
    expected.code = QStringLiteral("true");
    expected.printCode = QStringLiteral("true A");
    expected.printDesc = QStringLiteral("true");
    expected.comments = QStringLiteral("fals");
    expected.currency = QStringLiteral("1");
    expected.keybOff = QStringLiteral("true");
    expected.dirDepa = QStringLiteral("true");
    expected.quantity = QStringLiteral("fals");
    EXPECT_EQ(commandLineSettings(f), expected);

    EXPECT_FALSE(commandLineUsable(readcoman(QStringLiteral("com1,9600,print.txt,0,TECFP,111111"))));
    EXPECT_FALSE(commandLineUsable(readcoman(QStringLiteral("com1,9600"))));
    EXPECT_FALSE(commandLineUsable(readcoman(QStringLiteral("com1,9600,print.txt,0,TECFP,"))));
    EXPECT_TRUE(readcoman(QString()).port.isEmpty());
}

TEST_F(EngineTest, CommandLineWithSixFlagsEndsAtOnceWithoutAWord)
{
    start(QStringLiteral("com1,9600,print.txt,0,TECFP,111111"));
    EXPECT_TRUE(engine->hasEnded());
    EXPECT_EQ(engine->exitCode(), 1);
    EXPECT_TRUE(person.messages.isEmpty());
    EXPECT_EQ(link.opens, 0);
    EXPECT_TRUE(form.comstattxt().isEmpty());
}

TEST_F(EngineTest, CommandLinePrintsItsOneFileDeletesItAndEnds)
{
    QString batch;
    parts.startBatchFile_ = [&](const QString& path) { batch = path; };
    put(QStringLiteral("print.txt"), "tag:  cl\r\n PLU x\r\n");
    start(QStringLiteral("com1,9600,in\\print.txt,0,TECFP,1111111`"));
    EXPECT_TRUE(engine->hasEnded());
    EXPECT_EQ(engine->exitCode(), 0);
    EXPECT_FALSE(QFile::exists(inPath(QStringLiteral("print.txt"))));
    EXPECT_EQ(resultLines().first(), QStringLiteral("tag = cl"));
    EXPECT_EQ(resultLines().last(), QStringLiteral("exitcode = 0"));
    EXPECT_FALSE(link.connected);
    EXPECT_EQ(engine->timer1().intervalMs, 1000);
    EXPECT_TRUE(batch.endsWith(QStringLiteral("kerbano/cop2ker.bat")));
    EXPECT_EQ(printer->ops, QStringList{"initialize"});
}

TEST_F(EngineTest, CommandLineGivesUpOnASilentRegisterAndKeepsTheFileUnprinted)
{
    link.openStatus = -1;
    link.openReply = QStringLiteral("Πρόβλημα στην Θύρα :com1");
    put(QStringLiteral("print.txt"), "tag:  silent\r\n");
    parts.readDeviceVatRates_ = [] { ADD_FAILURE() << "no VAT rates from a closed link"; };
    initializeStatusAtStart = -4;
    start(QStringLiteral("com1,9600,in/print.txt,0,TECFP,0000000"));
    EXPECT_EQ(printer->ops.size(), Engine::kCommandLineInitializeAttempts);
    EXPECT_EQ(clock.totalSleptMs(),
              (Engine::kCommandLineInitializeAttempts - 1) * Engine::kCommandLineInitializePauseMs);
    EXPECT_TRUE(engine->hasEnded());
    EXPECT_EQ(engine->exitCode(), Engine::kExitRegisterSilent);
    EXPECT_TRUE(QFile::exists(inPath(QStringLiteral("print.txt"))));
    EXPECT_TRUE(resultLines().isEmpty());
    ASSERT_FALSE(person.messages.isEmpty());
    EXPECT_TRUE(person.messages.last().text.startsWith(QStringLiteral("Η φορολογική ταμειακή δεν απαντά.")));
}

TEST_F(EngineTest, AJobNoteStandsJustBeforeExitcodeAndTheCommandLineEndsWithItsStatus)
{
    parts.interpretLines_ = walkEach([&](const QString& line, const JobSettings&) {
        if (!line.contains(QStringLiteral("PLU")))
            return true;
        engine->resultSink().noteBeforeExit(QStringLiteral("jobNote = voided;totals;17.50;7.50"));
        engine->resultSink().appendResultLine(QStringLiteral("Err = -31, [5/1/7.50/ΜΕΤΡΗΤΑ//////] DateTime = x"));
        return true;
    });
    put(QStringLiteral("print.txt"), "tag:  cl\r\n PLU x\r\n");
    start(QStringLiteral("com1,9600,in/print.txt,0,TECFP,1111111"));
    EXPECT_TRUE(engine->hasEnded());
    EXPECT_EQ(engine->exitCode(), PrintJob::kExitNotAsAsked);
    const QStringList lines = resultLines();
    ASSERT_GE(lines.size(), 3);
    EXPECT_EQ(lines.last(), QStringLiteral("exitcode = 0"));
    EXPECT_EQ(lines[lines.size() - 2], QStringLiteral("jobNote = voided;totals;17.50;7.50"));
    EXPECT_EQ(lines.count(QStringLiteral("jobNote = voided;totals;17.50;7.50")), 1);
}

TEST_F(EngineTest, APrintFileThatIsADirectoryOrALoopingLinkIsNotPrintedAndLeavesNoResult)
{
    QDir(dir.path()).mkpath(QStringLiteral("in/print.txt"));
    start(QStringLiteral("com1,9600,in/print.txt,0,TECFP,1111111"));
    EXPECT_EQ(engine->exitCode(), PrintJob::kExitBadPrintFile);
    EXPECT_TRUE(resultLines().isEmpty());
    ASSERT_FALSE(person.messages.isEmpty());
    EXPECT_TRUE(person.messages.last().text.contains(QStringLiteral("δεν εκτυπώθηκε")));

    QFile::link(inPath(QStringLiteral("loop.txt")), inPath(QStringLiteral("loop.txt")));
    start(QStringLiteral("com1,9600,in/loop.txt,0,TECFP,1111111"));
    EXPECT_EQ(engine->exitCode(), PrintJob::kExitBadPrintFile);
    EXPECT_TRUE(resultLines().isEmpty());
}
