#include "EngineFixture.h"
#include "pipeline/ArrivalWatch.h"
#include "pipeline/EngineTimers.h"

#include <QDeadlineTimer>
#include <QCoreApplication>

namespace {

class ArrivalWatchTest : public EngineTest {
protected:
    std::unique_ptr<ArrivalWatch> watch;

    void startWatching(const ParamFormValues& f)
    {
        startPolling(f);
        watch = std::make_unique<ArrivalWatch>(*engine);
    }
    // Looks as the platform's one-shot timer would run them, the pauses on
    // the virtual clock, until the watch wants no more; how many it took.
    int looksUntilQuiet(int bound = 5000)
    {
        int looks = 0;
        while (looks < bound) {
            ++looks;
            const std::optional<int> next = watch->look();
            if (!next)
                break;
            clock.advance(*next);
        }
        return looks;
    }
    QStringList printedTags() const { return resultLines().filter(u"tag = "_s); }
};

} // namespace

TEST_F(ArrivalWatchTest, AFileIsPrintedAsItLandsAndOnlyTimer1LetsTheLinkGo)
{
    startWatching(pollingParams());
    engine->timer1Tick(); // nothing there: the port is let go
    ASSERT_FALSE(link.connected);

    watch->folderChanged();
    EXPECT_EQ(watch->look(), std::nullopt); // a change that brought no print file
    EXPECT_EQ(link.opens, 1);

    put(u"print.1"_s, "tag:  first\r\n");
    watch->folderChanged();
    EXPECT_EQ(watch->look(), 0); // printed: look again at once for more
    EXPECT_EQ(printedTags(), QStringList{"tag = first"});
    EXPECT_EQ(clock.monotonicMs(), 500); // the job's own wait, no tick waited for
    EXPECT_FALSE(QFile::exists(inPath(u"print.1"_s)));

    EXPECT_EQ(watch->look(), std::nullopt);
    EXPECT_TRUE(link.connected); // an empty look keeps it for the next file
    put(u"print.1"_s, "tag:  second\r\n");
    watch->folderChanged();
    looksUntilQuiet();
    EXPECT_EQ(link.opens, 2); // opened and identified once for both files
    EXPECT_EQ(printedTags(), (QStringList{"tag = first", "tag = second"}));

    engine->timer1Tick();
    EXPECT_FALSE(link.connected);
}

TEST_F(ArrivalWatchTest, NotPollingOrStoppedTheWatchLeavesFilesToTimer1)
{
    writeParams(pollingParams());
    start();
    engine->timer2Tick(); // Ready, not polling
    watch = std::make_unique<ArrivalWatch>(*engine);
    put(u"print.1"_s, "tag:  early\r\n");
    watch->folderChanged();
    EXPECT_EQ(watch->look(), std::nullopt);
    EXPECT_TRUE(QFile::exists(inPath(u"print.1"_s)));

    engine->command1();
    engine->command2();
    watch->folderChanged();
    EXPECT_EQ(watch->look(), std::nullopt);
    EXPECT_FALSE(watch->due());
    EXPECT_TRUE(printedTags().isEmpty());
    EXPECT_EQ(watch->folder(), QFileInfo(inPath(QString())).absolutePath());
}

// A thousand files at once: each printed once, one job a look, none left, and
// the looks stop when the folder is empty.
TEST_F(ArrivalWatchTest, AFloodOfFilesGoesOneJobALookWithNoneLostAndNoLoopAfter)
{
    constexpr int kFiles = 1000;
    startWatching(pollingParams(u"*.txt"_s));
    for (int i = 0; i < kFiles; ++i)
        put(u"job%1.txt"_s.arg(i, 4, 10, QLatin1Char('0')), u"tag:  %1\r\n"_s.arg(i).toLatin1());
    watch->folderChanged();
    EXPECT_EQ(looksUntilQuiet(), kFiles + 1);
    QStringList tags = printedTags();
    EXPECT_EQ(tags.size(), kFiles);
    tags.removeDuplicates();
    EXPECT_EQ(tags.size(), kFiles);
    EXPECT_TRUE(QDir(inPath(QString())).entryList(QDir::Files).isEmpty());
}

TEST_F(ArrivalWatchTest, NumberedFilesGoLowestFirstAndChangesDuringAJobAreOwedNotLost)
{
    startWatching(pollingParams());
    std::optional<int> duringJob = -1;
    bool dueDuringJob = false;
    parts.interpretLines_ = walkEach([&](const QString& line, const JobSettings&) {
        if (line == QLatin1String("tag:  3")) {
            // The folder changes while a job runs (its event loop is pumped).
            put(u"print.2"_s, "tag:  2\r\n");
            watch->folderChanged();
            duringJob = watch->look();
            dueDuringJob = watch->due();
        }
        return true;
    });
    put(u"print.9"_s, "tag:  9\r\n");
    put(u"print.3"_s, "tag:  3\r\n");
    watch->folderChanged();
    looksUntilQuiet();
    EXPECT_EQ(duringJob, std::nullopt);
    EXPECT_TRUE(dueDuringJob);
    EXPECT_FALSE(watch->due());
    EXPECT_EQ(printedTags(), (QStringList{"tag = 3", "tag = 2", "tag = 9"}));
}

TEST_F(ArrivalWatchTest, AFileStillBeingWrittenIsNeverPrintedHalfAndTheRetriesEnd)
{
    startWatching(pollingParams());
    QFile writer(inPath(u"print.1"_s));
    ASSERT_TRUE(writer.open(QIODevice::WriteOnly));
    writer.write("tag:  whole\r\n PLU first half\r\n");
    writer.flush();
    watch->folderChanged();
    EXPECT_EQ(looksUntilQuiet(), ArrivalWatch::kUnfinishedRetries + 1);
    EXPECT_EQ(clock.monotonicMs(), qint64(ArrivalWatch::kUnfinishedRetries) * ArrivalWatch::kUnfinishedRetryMs);
    EXPECT_TRUE(walked.isEmpty());

    writer.write(" PLU second half\r\n");
    writer.close();
    watch->folderChanged();
    looksUntilQuiet();
    EXPECT_EQ(walked, (QStringList{"tag:  whole", " PLU first half", " PLU second half", ""}));
}

TEST_F(ArrivalWatchTest, AFileRenamedIntoPlaceIsPrintedAndAProgramFileWaitsForTimer1)
{
    startWatching(pollingParams());
    put(u"print.tmp"_s, "tag:  renamed\r\n");
    watch->folderChanged();
    EXPECT_EQ(watch->look(), std::nullopt);
    ASSERT_TRUE(QFile::rename(inPath(u"print.tmp"_s), inPath(u"print.1"_s)));
    watch->folderChanged();
    looksUntilQuiet();
    EXPECT_EQ(printedTags(), QStringList{"tag = renamed"});

    // A program file stays after its job: printed once per change, not in a loop.
    startWatching(pollingParams(u"prg"_s));
    put(u"prg.1"_s, "tag:  program\r\n");
    watch->folderChanged();
    EXPECT_EQ(looksUntilQuiet(), 1);
    EXPECT_TRUE(QFile::exists(inPath(u"prg.1"_s)));
}

TEST_F(ArrivalWatchTest, SingleFileWayPrintsItsFileOnArrivalAndEnds)
{
    auto params = pollingParams(u"job.txt"_s);
    params.multi_print = false;
    startWatching(params);
    put(u"job.txt"_s, "tag:  single\r\n");
    watch->folderChanged();
    EXPECT_EQ(watch->look(), std::nullopt);
    EXPECT_TRUE(engine->hasEnded());
    EXPECT_EQ(printedTags(), QStringList{"tag = single"});
}

// The platform's watch: a folder that goes away and comes back is watched
// again from the next tick, and a file landing there is printed before
// Timer1's first real tick (3 s after the timers started) could have.
TEST_F(ArrivalWatchTest, TheRealWatchFollowsAFolderThatGoesAndComesBack)
{
    startPolling(pollingParams());
    EngineTimers timers(*engine);
    const QDeadlineTimer beforeTimer1(2000);
    QDir(inPath(QString())).removeRecursively();
    QCoreApplication::processEvents();
    engine->timer1Tick(); // the folder is gone: nothing to watch
    ASSERT_TRUE(QDir(dir.path()).mkpath(u"in"_s));
    engine->timer1Tick(); // back: watched again
    const int looksBefore = timers.arrivals().looks();

    put(u"print.1"_s, "tag:  back\r\n");
    while (QFile::exists(inPath(u"print.1"_s)) && !beforeTimer1.hasExpired())
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
    EXPECT_FALSE(QFile::exists(inPath(u"print.1"_s)));
    EXPECT_GT(timers.arrivals().looks(), looksBefore);
    EXPECT_EQ(printedTags(), QStringList{"tag = back"});
}
