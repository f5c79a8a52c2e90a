#include "EngineFixture.h"
#include "pipeline/CommandLine.h"

TEST(CommandLine, SplitsAtCommaOrBlankAndMarksEmptyFields)
{
    const CommandLineFields f = readcoman(u"com1,9600 print.txt,,TECFP,2101110 `"_s);
    EXPECT_EQ((QStringList{f.port, f.baud, f.file, f.time, f.ecrt, f.flags}),
              (QStringList{"com1", "9600", "print.txt", "e", "TECFP", "2101110 `"}));
    EXPECT_TRUE(commandLineUsable(f));
    EXPECT_TRUE(commandLineStartsBatch(u"com1,9600 print.txt,,TECFP,2101110 `"_s));

    JobSettings expected;
    expected.file = u"print.txt"_s;
    expected.time = u"e"_s;
    expected.ecrt = u"TECFP"_s;
    expected.printCode = u"true A"_s;
    expected.currency = u"1"_s;
    expected.code = expected.printDesc = expected.keybOff = expected.dirDepa = u"true"_s;
    expected.multiType = expected.comments = expected.quantity = u"fals"_s;
    EXPECT_EQ(commandLineSettings(f), expected);

    EXPECT_FALSE(commandLineUsable(readcoman(u"com1,9600,print.txt,0,TECFP,111111"_s)));
    EXPECT_FALSE(commandLineUsable(readcoman(u"com1,9600"_s)));
    EXPECT_FALSE(commandLineUsable(readcoman(u"com1,9600,print.txt,0,TECFP,"_s)));
    EXPECT_TRUE(readcoman(QString()).port.isEmpty());
}

TEST_F(EngineTest, CommandLineWithSixFlagsEndsAtOnceWithoutAWord)
{
    start(u"com1,9600,print.txt,0,TECFP,111111"_s);
    EXPECT_TRUE(engine->hasEnded());
    EXPECT_EQ(engine->exitCode(), 1);
    EXPECT_TRUE(person.messages.isEmpty());
    EXPECT_EQ(link.opens, 0);
    EXPECT_TRUE(form.comstattxt().isEmpty());
}

TEST_F(EngineTest, AJobNoteStandsJustBeforeExitcodeAndTheCommandLineEndsWithItsStatus)
{
    parts.interpretLines_ = walkEach([&](const QString& line, const JobSettings&) {
        if (!line.contains(u"PLU"_s))
            return true;
        engine->resultSink().noteBeforeExit(u"jobNote = voided;totals;17.50;7.50"_s);
        engine->resultSink().appendResultLine(u"Err = -31, [5/1/7.50/ΜΕΤΡΗΤΑ//////] DateTime = x"_s);
        return true;
    });
    put(u"print.txt"_s, "tag:  cl\r\n PLU x\r\n");
    start(u"com1,9600,in/print.txt,0,TECFP,1111111"_s);
    EXPECT_TRUE(engine->hasEnded());
    EXPECT_EQ(engine->exitCode(), PrintJob::kExitNotAsAsked);
    const QStringList lines = resultLines();
    EXPECT_EQ(lines.mid(lines.size() - 2), (QStringList{"jobNote = voided;totals;17.50;7.50", "exitcode = 0"}));
    EXPECT_EQ(lines.count(u"jobNote = voided;totals;17.50;7.50"_s), 1);
}

TEST_F(EngineTest, APrintFileThatIsADirectoryOrALoopingLinkIsNotPrintedAndLeavesNoResult)
{
    QDir(dir.path()).mkpath(u"in/print.txt"_s);
    start(u"com1,9600,in/print.txt,0,TECFP,1111111"_s);
    EXPECT_EQ(engine->exitCode(), PrintJob::kExitBadPrintFile);
    EXPECT_TRUE(resultLines().isEmpty());
    ASSERT_FALSE(person.messages.isEmpty());
    EXPECT_TRUE(person.messages.last().text.contains(u"δεν εκτυπώθηκε"_s));

    QFile::link(inPath(u"loop.txt"_s), inPath(u"loop.txt"_s));
    start(u"com1,9600,in/loop.txt,0,TECFP,1111111"_s);
    EXPECT_EQ(engine->exitCode(), PrintJob::kExitBadPrintFile);
    EXPECT_TRUE(resultLines().isEmpty());
}
