#include "reports/ReportRun.h"
#include "reports/ZFileRun.h"
#include "reports/ZMail.h"

#include "DataFile.h"
#include "PrintQString.h"
#include "RecordedSends.h"
#include "ScriptedLink.h"
#include "ScriptedOperator.h"
#include "WaitFor.h"
#include "operations/FPrinterOperations.h"
#include "records/ReceiptState.h"
#include "shell/Clock.h"
#include "shell/FormModel.h"
#include "shell/ModuleVariables.h"
#include "shell/ProgressIndicator.h"

#include <QDir>
#include <QEventLoop>
#include <QFile>
#include <QTemporaryDir>
#include <QTimer>
#include <gtest/gtest.h>


namespace {

// Answers every query of the Z file with a register's day; refuses nothing
// unless told to.
bool dayAnswer(const QString& command, ScriptedLink::Answer& a)
{
    static const QStringList day = DataLines(QStringLiteral("reports/zfile-run-day.txt"));
    a = {0, QStringLiteral("00/00/00/")};
    for (const QString& line : day)
        if (command.startsWith(line.section(u'\t', 0, 0)))
            a.reply = line.section(u'\t', 1);
    return true;
}

class ZFileRunTest : public ::testing::Test {
protected:
    QTemporaryDir dir;
    ScriptedLink link;
    ScriptedOperator person;
    ReceiptState receipt;
    ModuleVariables vars;
    FormModel form;
    clsind progress{form};
    VirtualClock clock;
    RecordedSends mails;
    ZMail mail{person, clock, vars, dir.path(), mails.function()};
    ZFileRun run{link, receipt, vars, form, person, progress, dir.path()};
    QStringList statusLines;

    void SetUp() override
    {
        run.setMail(&mail);
        mails.answer = {-1, QStringLiteral("ο server δεν απαντά")};
        link.responder = dayAnswer;
        QObject::connect(&form, &FormModel::statusLineChanged, [this](const QString& s) { statusLines << s; });
    }

    // The mail's outcome comes back through the event loop.
    bool waitForMail() { return waitFor(&mail, &ZMail::finished); }
};

} // namespace

TEST_F(ZFileRunTest, AWrittenZFileIsSaidOnTheStatusLineAndMailedWhenAReceiverIsSet)
{
    vars.eMail = QStringLiteral(" z@acct.gr ");
    run.Zfile();
    EXPECT_EQ(link.opens, 1);
    EXPECT_TRUE(link.connected); // left open for what follows
    EXPECT_EQ(statusLines, (QStringList{"Eναρξη δημιουργίας αρχείου 'Ζ'", "Επιτυχής δημιουργία του αρχείου 'Ζ'"}));
    EXPECT_TRUE(QFile::exists(dir.filePath("Zfiles/Z0042.out")));
    EXPECT_TRUE(person.messages.isEmpty());

    ASSERT_TRUE(waitForMail());
    ASSERT_EQ(mails.requests.size(), 1);
    EXPECT_EQ(std::tuple(mails.requests[0].address, mails.requests[0].attachments),
              std::tuple(QString("z@acct.gr"), QStringList{dir.filePath("Zfiles/Z0042.out")}));
    EXPECT_TRUE(mails.requests[0].body.contains("με αριθμό 42 της"));
    // A failed mail is told and the Z file stays.
    ASSERT_EQ(person.messages.size(), 1);
    EXPECT_TRUE(person.messages[0].text.startsWith("Λάθος κατά την αποστολή το email..."));
    EXPECT_TRUE(QFile::exists(dir.filePath("Zfiles/Z0042.out")));
}

TEST_F(ZFileRunTest, AFailedRunShowsItsMessageAndSendsNoMail)
{
    vars.eMail = QStringLiteral("z@acct.gr");
    vars.DeviceLabel = QStringLiteral("TEC 12345678");
    link.responder = [](const QString& command, ScriptedLink::Answer& a) {
        if (command == "d/7/") {
            a = {0x46, "Λάθος"};
            return true;
        }
        return dayAnswer(command, a);
    };
    run.Zfile();
    EXPECT_EQ(form.comstattxt(), "Λάθος κατά την δημιουργία του αρχείου 'Ζ'");
    ASSERT_EQ(person.messages.size(), 1);
    EXPECT_EQ(std::tuple(person.messages[0].text, person.messages[0].title, person.messages[0].icon),
              std::tuple(QString("Λάθος κατά την δημιουργία του αρχείου 'Ζ'"), QString("TEC 12345678"),
                         Operator::Icon::Information));
    EXPECT_FALSE(QFile::exists(dir.filePath("Zfiles/Z0042.out")));
    QEventLoop().processEvents();
    EXPECT_TRUE(mails.requests.isEmpty());

    // A folder that cannot be made: the same text, and why under it.
    person.messages.clear();
    link.responder = dayAnswer;
    QFile blocker(dir.filePath("Zfiles"));
    QFile::remove(blocker.fileName());
    QDir(dir.path()).rmdir("Zfiles");
    ASSERT_TRUE(blocker.open(QIODevice::WriteOnly));
    blocker.close();
    run.Zfile();
    ASSERT_EQ(person.messages.size(), 1);
    EXPECT_TRUE(person.messages[0].text.startsWith("Λάθος κατά την δημιουργία του αρχείου 'Ζ'\nΟ φάκελος"))
        << person.messages[0].text.toStdString();
}

TEST_F(ZFileRunTest, ALinkThatCannotBeOpenedEndsTheActionSilently)
{
    link.openStatus = -1;
    link.openReply = "Πρόβλημα στην Θύρα";
    run.Zfile();
    EXPECT_TRUE(link.sent.isEmpty());
    EXPECT_TRUE(statusLines.isEmpty());
    EXPECT_TRUE(person.messages.isEmpty());
}

TEST_F(ZFileRunTest, TheDailyZIsFollowedByTheZFileWhenZeMailIsOneOrAReceiverIsSet)
{
    FPrinterOperations printer{link, receipt, vars, person, form, progress, dir.filePath("payeft.dat")};
    ReportRun reports{link, printer, receipt, vars, form};
    reports.setAfterDailyZ([this] { run.Zfile(); });

    // Neither: the Z alone.
    vars.ZeMail = 0;
    vars.eMail = QStringLiteral(" ");
    const QStringList theZ{"x/7///", "?/", "7/0/1/            0.00/", "7/0/2/ *** Ετοιμη *** /"};
    reports.dailyZ();
    EXPECT_EQ(link.commands(), theZ); // no Z file query
    EXPECT_FALSE(QFile::exists(dir.filePath("Zfiles/Z0042.out")));
    EXPECT_FALSE(link.connected);

    // [ZeMail  ] 1: the Z, its display lines, the link closed, then opened again for the file.
    link.sent.clear();
    vars.ZeMail = 1;
    reports.dailyZ();
    const QStringList sent = link.commands();
    ASSERT_GE(sent.size(), 4 + ZFile::kQueries);
    EXPECT_EQ(sent.mid(0, 4), theZ);
    EXPECT_EQ(sent.size(), 4 + ZFile::kQueries);
    EXPECT_EQ(link.opens, 3);
    EXPECT_TRUE(link.connected);
    EXPECT_TRUE(QFile::exists(dir.filePath("Zfiles/Z0042.out")));
    EXPECT_EQ(form.comstattxt(), "Επιτυχής δημιουργία του αρχείου 'Ζ'");

    // A receiver alone is enough, and the file goes out.
    link.CloseDeviceLink();
    vars.ZeMail = 0;
    vars.eMail = QStringLiteral("z@acct.gr");
    reports.dailyZ();
    ASSERT_TRUE(waitForMail());
    EXPECT_EQ(mails.requests.size(), 1);
}
