#include "reports/ZFile.h"

#include "DataFile.h"
#include "PrintQString.h"
#include "ScriptedLink.h"
#include "records/ReceiptState.h"
#include "shell/CodePage.h"
#include "shell/FormModel.h"
#include "shell/ProgressIndicator.h"

#include <QDir>
#include <QFile>
#include <QHash>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <numeric>

namespace {

const QLocale kPointLocale(QLocale::English, QLocale::UnitedStates);
const QLocale kGreek(QLocale::Greek, QLocale::Greece);

// A register's answers to the Z file's queries after a day of three receipts.
QHash<QString, QString> dayReplies()
{
    QHash<QString, QString> r;
    for (int n = 1; n <= 20; ++n)
        r[QStringLiteral("d/%1/").arg(n)] = "00/00/00//1/1/0.00/0/0/0.00/";
    for (const QString& line : DataLines(QStringLiteral("reports/zfile-day-replies.txt")))
        if (!line.startsWith(u'!'))
            r[line.section(u'\t', 0, 0)] = line.section(u'\t', 1);
    return r;
}

// The Z file of that day, as its lines read (in UTF-8, each ending in LF here).
QByteArray dayFile()
{
    return codepage::toWin1253(QString::fromUtf8(DataBytes(QStringLiteral("zfile-day.txt"))).replace(u'\n', QStringLiteral("\r\n")));
}

class ZFileTest : public ::testing::Test {
protected:
    QTemporaryDir dir;
    ScriptedLink link;
    ReceiptState receipt;
    FormModel form;
    clsind progress{form};
    QHash<QString, QString> replies = dayReplies();
    QHash<QString, qint16> refusals;
    QList<qint16> progressSeen;

    void SetUp() override
    {
        link.responder = [this](const QString& command, ScriptedLink::Answer& answer) {
            answer = {refusals.value(command, 0), replies.value(command, "06/00/00/")};
            return true;
        };
        QObject::connect(&form, &FormModel::stateChanged,
                         [this](const FormState& s) { progressSeen << s.progressValue; });
    }

    int build(const QLocale& locale = kPointLocale)
    {
        ZFile zfile(link, receipt, progress, dir.path(), locale);
        const int result = zfile.BuildZFile();
        lastNumber = zfile.ZFileNumber();
        lastFault = zfile.fault();
        lastFailure = zfile.failure();
        return result;
    }

    QByteArray fileBytes(const QString& name) const
    {
        QFile f(dir.filePath("Zfiles/" + name));
        return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
    }

    QString lastNumber;
    ZFile::Fault lastFault = ZFile::Fault::None;
    QString lastFailure;
};

} // namespace

TEST_F(ZFileTest, TheDaysFiguresAreWrittenByteForByteInTheCodePageWithCrLfAndASecondRunAppends)
{
    ASSERT_EQ(build(), -1);
    EXPECT_EQ(fileBytes("Z0007.out"), dayFile());
    EXPECT_EQ(lastNumber, "7");

    // Twenty-six quiet queries in the order of the file, and nothing else.
    QStringList expected{"e/", "0/", "i/", "t/"};
    for (int n = 1; n <= 20; ++n)
        expected << QStringLiteral("d/%1/").arg(n);
    expected << "a/" << "s/";
    EXPECT_EQ(link.commands(), expected);
    EXPECT_EQ(link.sent.size(), ZFile::kQueries);
    for (const auto& s : link.sent)
        EXPECT_TRUE(s.quiet) << s.command.toStdString();

    // The indicator: 0, one step for each of the first four and each
    // department, then 45 after the last query.
    QList<qint16> steps;
    for (qint16 v : progressSeen)
        if (steps.isEmpty() || steps.last() != v)
            steps << v;
    QList<qint16> expectedSteps(25);
    std::iota(expectedSteps.begin(), expectedSteps.end(), qint16(0));
    expectedSteps << 45;
    EXPECT_EQ(steps, expectedSteps);
    EXPECT_EQ(progress.Max(), 45);

    // A second run for the same Z appends a second copy.
    ASSERT_EQ(build(), -1);
    EXPECT_EQ(fileBytes("Z0007.out"), dayFile() + dayFile());
}

TEST_F(ZFileTest, NumbersTakeTheRegionalDecimalMarkWhicheverMarkTheRegisterUsed)
{
    replies["e/"] = "00/00/00/24,00/13.00/6.00/0.00/17.00/";
    ASSERT_EQ(build(kGreek), -1);
    const QStringList lines = codepage::fromWin1253(fileBytes("Z0007.out")).split("\r\n");
    EXPECT_EQ(lines[2], " VAT ,001,   A, 24,000,        124,00,        100,00,         24,00");
    EXPECT_EQ(lines[7], " DEP ,001, ΨΩΜΙ                ,      12,000,         113,00,2");
    EXPECT_EQ(lines[10], " REC ,          3,        118");
    EXPECT_EQ(lines[16], " PO  ,          0,00");
}

TEST_F(ZFileTest, AZNumberAboveNineThousandNineHundredNinetyNineIsWrittenWhole)
{
    replies["i/"] = "00/00/00/5/120/12345/125/";
    ASSERT_EQ(build(), -1);
    const QByteArray bytes = fileBytes("Z12345.out");
    ASSERT_FALSE(bytes.isEmpty());
    EXPECT_TRUE(bytes.contains(" REP ,12345,03-01-2026,2315\r\n"));
    EXPECT_EQ(lastNumber, "12345");

    // Z number 7 has the 7 in the fourth place of its field (shown above);
    // 123 gives Z0123.out.
    replies["i/"] = "00/00/00/5/120/123/125/";
    ASSERT_EQ(build(), -1);
    EXPECT_TRUE(fileBytes("Z0123.out").contains(" REP , 123,"));
}

TEST_F(ZFileTest, ARefusedOrUnreadableAnswerHalfwayLeavesNoFileAndNoLine)
{
    // A first good copy stands; the failed runs must add nothing behind it.
    ASSERT_EQ(build(), -1);
    const QByteArray good = fileBytes("Z0007.out");

    refusals["d/11/"] = 0x46;
    link.sent.clear();
    EXPECT_EQ(build(), 0);
    EXPECT_EQ(lastFault, ZFile::Fault::Query);
    EXPECT_EQ(link.commands().last(), "d/11/"); // it stops at once
    EXPECT_EQ(receipt.LastStatus, 0x46);
    EXPECT_EQ(fileBytes("Z0007.out"), good);
    EXPECT_TRUE(link.shownMessages.isEmpty()); // quiet: the run's own message tells it
    refusals.clear();

    // Answers the Z file cannot stand on, one at a time.
    int bad = 0;
    for (const QString& line : DataLines(QStringLiteral("reports/zfile-day-replies.txt"))) {
        if (!line.startsWith(u'!'))
            continue;
        const QHash<QString, QString> saved = replies;
        replies[line.section(u'\t', 0, 0).mid(1)] = line.section(u'\t', 1);
        EXPECT_EQ(build(), 0) << line.toStdString();
        EXPECT_EQ(fileBytes("Z0007.out"), good) << line.toStdString();
        replies = saved;
        ++bad;
    }
    EXPECT_EQ(bad, 6);
}

TEST_F(ZFileTest, AFolderOrFileThatCannotBeMadeIsToldWithItsPath)
{
    // A file in the folder's place.
    QFile blocker(dir.filePath("Zfiles"));
    ASSERT_TRUE(blocker.open(QIODevice::WriteOnly));
    blocker.close();
    EXPECT_EQ(build(), 0);
    EXPECT_EQ(std::tuple(lastFault, lastNumber), std::tuple(ZFile::Fault::Folder, QString("7")));
    EXPECT_TRUE(lastFailure.startsWith("Ο φάκελος") && lastFailure.contains("Zfiles")) << lastFailure.toStdString();

    // A folder in the file's place.
    ASSERT_TRUE(blocker.remove() && QDir(dir.path()).mkpath("Zfiles/Z0007.out"));
    EXPECT_EQ(build(), 0);
    EXPECT_EQ(lastFault, ZFile::Fault::File);
    EXPECT_TRUE(lastFailure.contains("Z0007.out")) << lastFailure.toStdString();
}
