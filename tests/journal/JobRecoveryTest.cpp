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
#include "tables/TableFlows.h"

#include <QDir>
#include <QFile>
#include <QSqlDatabase>
#include <QSqlQuery>
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

    // The rows of table in the store, read with a connection of the test's own:
    // identifier, line order, description, quantity, price, waiting in a move.
    QStringList storeRows(int table) const
    {
        QStringList rows;
        {
            QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("check"));
            db.setDatabaseName(QDir(dir.path()).filePath(QStringLiteral("ABC12345678_Orders.sqlite")));
            EXPECT_TRUE(db.open());
            QSqlQuery query(db);
            EXPECT_TRUE(query.exec(QStringLiteral("SELECT itemUID, tableORDER, trim(itemDesc), itemQuantity, itemPrice, "
                                                  "bTransfered FROM ecrOrders WHERE tableNUM = %1 ORDER BY itemUID")
                                       .arg(table)));
            while (query.next())
                rows << QStringLiteral("%1 %2 %3 %4 %5 %6")
                            .arg(query.value(0).toString(), query.value(1).toString(), query.value(2).toString(),
                                 query.value(3).toString(), query.value(4).toString(), query.value(5).toString());
        }
        QSqlDatabase::removeDatabase(QStringLiteral("check"));
        return rows;
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
    TableFlows tables{link, person, clock, receipt, vars, job, dir.path()};
    JobRecovery recovery{link, journal, job, person, vars, tables};
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

TEST_F(JobRecoveryTest, ASilentRegisterHoldsThePrintFileAtEveryLookAndTheOperatorIsToldOnce)
{
    earlierLifeSent({{QStringLiteral("3/S/ΚΑΦΕΣ//2.000/3.50/1/24.00/"), false}});
    link.responder = [](const QString&, ScriptedLink::Answer& answer) {
        answer.status = -1;
        return true;
    };
    EXPECT_EQ(recovery.beforeJob(printPath()), JobRecovery::Next::Hold);
    EXPECT_EQ(recovery.beforeJob(printPath()), JobRecovery::Next::Hold);
    EXPECT_EQ(person.messages.size(), 1);
    EXPECT_TRUE(QFile::exists(printPath()));
}

TEST_F(JobRecoveryTest, AClosedResultLeavesOnlyTheStalePrintFileToDeleteAndAskNothing)
{
    earlierLifeSent({{QStringLiteral("5/1/6.50/ΜΕΤΡΗΤΑ//////"), true}});
    journal.resultClosed();
    EXPECT_EQ(recovery.beforeJob(printPath()), JobRecovery::Next::Skip);
    EXPECT_TRUE(link.commands().isEmpty());
    EXPECT_FALSE(QFile::exists(printPath()));
}

// The earlier run sold a coffee onto table 7 and died before its reply (its
// identifier and line order) reached the store; the store still held a row of
// a water voided on the register and two rows of the bread, one waiting in a
// move cut short.
TEST_F(JobRecoveryTest, ATableJobIsNeverRunAgainAndLeavesTheStoreSayingWhatTheRegisterHolds)
{
    earlierLifeSent({{QStringLiteral("&/0/7//////////////"), true},
                     {QStringLiteral("3/S/ΚΑΦΕΣ//2.000/3.50/1/24.00/"), false}});
    registerAnswers(kOpenWithCoffee);
    const auto answerTheRest = link.responder;
    link.responder = [answerTheRest](const QString& command, ScriptedLink::Answer& answer) {
        if (command == QLatin1String("a/"))
            answer.reply = QStringLiteral("00/00/00/12345678/1/ABC/");
        else if (command == QLatin1String("&/11/7//0/0///////////"))
            answer.reply = QStringLiteral("00/00/00/2/1|500|ΨΩΜΙ|1.000|0.80|1|13.00/2|501|ΚΑΦΕΣ|2.000|7.00|1|24.00/");
        else
            return answerTheRest(command, answer);
        return true;
    };
    clsItemData store = tables.store(QStringLiteral("ABC12345678"), 8);
    for (const auto& [uid, order, desc, price] :
         {std::tuple(500, 1, "ΨΩΜΙ", 0.80), std::tuple(500, 1, "ΨΩΜΙ", 0.80), std::tuple(499, 3, "ΝΕΡΟ", 0.50)}) {
        clsTable row;
        row.TableNUM = 7;
        row.itemUID = uid;
        row.tableORDER = static_cast<qint16>(order);
        row.setItemDesc(QString::fromUtf8(desc));
        row.itemQuantity = 1.0;
        row.itemPrice = price;
        ASSERT_EQ(store.orders_AddRecord(row), 0);
    }
    clsTable bread;
    bread.TableNUM = 7;
    bread.itemUID = 500;
    ASSERT_EQ(store.orders_MarkRecord(bread), 0);

    EXPECT_EQ(recovery.beforeJob(printPath()), JobRecovery::Next::Skip);
    EXPECT_EQ(link.commands(), (QStringList{"9/", "i/", "5/1/0.00////", "a/", "i/", "&/11/7//0/0///////////"}));
    EXPECT_FALSE(QFile::exists(printPath())) << "its items stay on the table: not sent twice";
    EXPECT_TRUE(resultLines().contains(QStringLiteral("jobNote = recovered;table;1;2")));
    // The coffee found again as the register holds it: its price is what a void must name.
    EXPECT_EQ(storeRows(7), (QStringList{"500 1 ΨΩΜΙ 1000 80 0", "501 2 ΚΑΦΕΣ 2000 350 0"}));
    EXPECT_TRUE(person.messages.isEmpty());
}

TEST_F(JobRecoveryTest, ATableTheRegisterWillNotShowLeavesTheStoreAsItWasAndTellsTheOperator)
{
    earlierLifeSent({{QStringLiteral("&/4/3/9/0/1///////////"), false}});
    registerAnswers(kClosedAfterReceipt42);
    link.queue = {{0, QStringLiteral("00/00/00/12345678/1/ABC/")}, {0x11, "refused"},
                  {0, QStringLiteral("00/00/00/0/1|7|ΝΕΡΟ/")}};

    EXPECT_EQ(recovery.beforeJob(printPath()), JobRecovery::Next::Skip);
    EXPECT_EQ(link.commands().mid(2), (QStringList{"a/", "i/", "&/11/3//0/0///////////", "&/11/9//0/0///////////"}));
    ASSERT_EQ(person.messages.size(), 1);
    EXPECT_TRUE(person.messages.first().text.contains(QStringLiteral("τραπέζια: 3, 9."))) << person.messages.first().text.toStdString();
    EXPECT_FALSE(QFile::exists(tables.store(QStringLiteral("ABC12345678"), 8).storePath())) << "no store made";
}
} // namespace
