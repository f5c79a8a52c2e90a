// The journal of a job and what the next life makes of an unfinished one,
// against a scripted register.

#include "PrintQString.h"
#include "ScriptedLink.h"
#include "ScriptedOperator.h"
#include "pipeline/JobJournal.h"
#include "pipeline/JobRecovery.h"
#include "pipeline/PrintJob.h"
#include "records/ReceiptState.h"
#include "shell/Clock.h"
#include "shell/CodePage.h"
#include "shell/FormModel.h"
#include "shell/ModuleVariables.h"
#include "shell/ProgressIndicator.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace {
const QString kPort = QStringLiteral("127.0.0.1:9101");
const QString kRegister = QStringLiteral("Ταμειακή [ABC12345678]");
// "9/": state, lines, total, paid, change, daily number, balance (or the last total).
const QString kClosedAfterReceipt42 = QStringLiteral("00/00/00/0/0/0.00/0.00/0.00/42/6.50/");
const QString kOpenWithCoffee = QStringLiteral("00/00/10/1/1/7.00/0.00/0.00/42/7.00/");
// "i/": last daily, last progressive, last Z, progressive at the last Z.
const QString kCounters = QStringLiteral("00/00/00/42/1300/7/1207/");

class JobRecoveryTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(dir.isValid());
        vars.port = kPort;
        vars.DeviceLabel = kRegister;
        journal.useFor(kPort);
        QFile print(printPath());
        ASSERT_TRUE(print.open(QIODevice::WriteOnly));
        print.write("resFile:  result.txt\r\ntag:  00417\r\n PLU ...\r\n");
    }

    QString printPath() const { return QDir(dir.path()).filePath(QStringLiteral("print.txt")); }
    QString resultPath() const { return QDir(dir.path()).filePath(QStringLiteral("result.txt")); }

    // An earlier life began the job and sent these commands (confirmed when
    // marked), then died.
    void earlierLifeSent(const QList<QPair<QString, bool>>& commands, bool card = false)
    {
        journal.begin(printPath(), resultPath(), RegisterCounters{kRegister, {}, {}});
        for (const auto& [command, confirmed] : commands) {
            journal.sending(command, card && command.startsWith(QLatin1String("5/")));
            if (confirmed)
                journal.confirmed(command);
        }
    }

    void registerAnswers(const QString& receipt)
    {
        link.responder = [receipt](const QString& command, ScriptedLink::Answer& answer) {
            if (command == QLatin1String("9/"))
                answer.reply = receipt;
            else if (command == QLatin1String("i/"))
                answer.reply = kCounters;
            else
                return false;
            return true;
        };
    }

    QStringList resultLines() const
    {
        QFile file(resultPath());
        if (!file.open(QIODevice::ReadOnly))
            return {};
        QStringList lines = codepage::fromWin1253(file.readAll()).split(QStringLiteral("\r\n"));
        lines.removeAll(QString());
        return lines;
    }

    QTemporaryDir dir;
    VirtualClock clock;
    ScriptedOperator person;
    FormModel form;
    ModuleVariables vars;
    ReceiptState receipt;
    clsind progress{form};
    ScriptedLink link;
    JobJournal journal{dir.path()};
    PrintJob job{clock, person, form, vars, receipt, progress, dir.path()};
    JobRecovery recovery{link, journal, job, person, vars};
};

TEST_F(JobRecoveryTest, JournalKeepsTheUnfinishedJobAndForgetsItOnceEnded)
{
    EXPECT_FALSE(journal.unfinished());
    earlierLifeSent({{QStringLiteral("3/S/ΚΑΦΕΣ//2.000/3.50/1/24.00/"), true},
                     {QStringLiteral("9/"), true}, // a question leaves no trace
                     {QStringLiteral("5/1/6.50/ΜΕΤΡΗΤΑ//////"), false}});
    // A record cut short by a crash is passed over; what follows still reads.
    QFile file(journal.path());
    ASSERT_TRUE(file.open(QIODevice::Append));
    file.write("{\"job\":\"ok\",\"id\":1,\"comm");
    file.close();
    journal.confirmed(QStringLiteral("5/1/6.50/ΜΕΤΡΗΤΑ//////"));

    const std::optional<JournalJob> job = journal.unfinished();
    ASSERT_TRUE(job);
    EXPECT_EQ(job->printPath, printPath());
    EXPECT_EQ(job->printHash, JobJournal::hashOf(printPath()));
    EXPECT_EQ(job->sent, (QStringList{QStringLiteral("3/S/ΚΑΦΕΣ//2.000/3.50/1/24.00/"),
                                      QStringLiteral("5/1/6.50/ΜΕΤΡΗΤΑ//////")}));
    EXPECT_EQ(job->confirmed, job->sent);

    journal.end(QStringLiteral("printed"), RegisterCounters{kRegister, 42, 1342});
    EXPECT_FALSE(journal.unfinished());
    EXPECT_EQ(journal.lastSeen().progressive, 1342);
}

TEST_F(JobRecoveryTest, PaymentSentAndNoDocumentOpenIsAnIssuedReceiptClosedFromTheRegister)
{
    earlierLifeSent({{QStringLiteral("3/S/ΚΑΦΕΣ//2.000/3.50/1/24.00/"), true},
                     {QStringLiteral("5/1/6.50/ΜΕΤΡΗΤΑ//////"), false}});
    registerAnswers(kClosedAfterReceipt42);

    EXPECT_EQ(recovery.beforeJob(printPath()), JobRecovery::Next::Skip);
    EXPECT_EQ(link.commands(), (QStringList{QStringLiteral("9/"), QStringLiteral("i/")}));
    EXPECT_FALSE(QFile::exists(printPath())) << "printed once, deleted";
    const QStringList lines = resultLines();
    ASSERT_EQ(lines.size(), 5) << lines.join(u'\n').toStdString();
    // Progressive: 1207 - 7 at the last Z, plus the daily 42.
    EXPECT_EQ(lines.mid(1), (QStringList{"recStatus = 1;6.50", "receipt = 1242, 42, -1", "jobNote = recovered;issued;42",
                                         "exitcode = 0"}));
    EXPECT_EQ(job.exitStatus(), 0);
    EXPECT_FALSE(journal.unfinished());
}

TEST_F(JobRecoveryTest, AnOpenDocumentIsVoidedAndTheJobRunsAgainCarryingItsNote)
{
    earlierLifeSent({{QStringLiteral("3/S/ΚΑΦΕΣ//2.000/3.50/1/24.00/"), false}});
    registerAnswers(kOpenWithCoffee);

    EXPECT_EQ(recovery.beforeJob(printPath()), JobRecovery::Next::Run);
    EXPECT_EQ(link.commands(), (QStringList{QStringLiteral("9/"), QStringLiteral("i/"), QStringLiteral("+/")}));
    EXPECT_TRUE(QFile::exists(printPath()));
    EXPECT_TRUE(resultLines().isEmpty()) << "the rerun writes the result";
    EXPECT_FALSE(journal.unfinished());
}

TEST_F(JobRecoveryTest, NoPaymentSentAndNothingOpenRunsTheJobWithoutAVoid)
{
    earlierLifeSent({});
    registerAnswers(kClosedAfterReceipt42);
    EXPECT_EQ(recovery.beforeJob(printPath()), JobRecovery::Next::Run);
    EXPECT_FALSE(link.commands().contains(QStringLiteral("+/")));
    EXPECT_TRUE(QFile::exists(printPath()));
}

TEST_F(JobRecoveryTest, ACardChargeThatStandsIsNeverVoidedNorRunAgain)
{
    earlierLifeSent({{QStringLiteral("3/S/ΚΑΦΕΣ//2.000/3.50/1/24.00/"), true},
                     {QStringLiteral("5/3/3.00/ΚΑΡΤΑ///1/1/"), false}},
                    true);
    registerAnswers(kOpenWithCoffee);
    link.queue.push_back({0, QStringLiteral("00/00/10/1/3/3.00/123456/1/ΚΑΡΤΑ/x/x/x/x/x/x/x/x/APPROVED/")});

    EXPECT_EQ(recovery.beforeJob(printPath()), JobRecovery::Next::Hold);
    EXPECT_EQ(std::tuple(link.commands().contains("+/"), link.commands().contains("5/99/0/ ///1/1/")),
              std::tuple(false, true));
    EXPECT_TRUE(QFile::exists(printPath()));
    EXPECT_FALSE(person.messages.isEmpty());
}

TEST_F(JobRecoveryTest, AClosedResultLeavesOnlyTheStalePrintFileToDeleteAndAskNothing)
{
    earlierLifeSent({{QStringLiteral("5/1/6.50/ΜΕΤΡΗΤΑ//////"), true}});
    journal.resultClosed();
    EXPECT_EQ(recovery.beforeJob(printPath()), JobRecovery::Next::Skip);
    EXPECT_TRUE(link.commands().isEmpty());
    EXPECT_FALSE(QFile::exists(printPath()));
}

TEST_F(JobRecoveryTest, ATableJobIsNeverRunAgainItsOpenVisitEndedWithAZeroPayment)
{
    earlierLifeSent({{QStringLiteral("&/0/7//////////////"), true},
                     {QStringLiteral("3/S/ΚΑΦΕΣ//2.000/3.50/1/24.00/"), false}});
    registerAnswers(kOpenWithCoffee);

    EXPECT_EQ(recovery.beforeJob(printPath()), JobRecovery::Next::Skip);
    EXPECT_EQ(link.commands(),
              (QStringList{QStringLiteral("9/"), QStringLiteral("i/"), QStringLiteral("5/1/0.00////")}));
    EXPECT_FALSE(QFile::exists(printPath())) << "its items stay on the table: not sent twice";
    EXPECT_TRUE(resultLines().contains(QStringLiteral("jobNote = recovered;table;1;2")));
}
} // namespace
