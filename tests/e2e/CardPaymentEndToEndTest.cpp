// Card payments printed by the real kerbano --headless on the real virtual
// register, whose terminals play from a fault script: approved, declined then
// approved, and declined for good with the alternative payment and its notice.

#include "KerbanoRun.h"
#include "PrintQString.h"
#include "SimProcess.h"
#include "shell/CodePage.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QtEndian>
#include <gtest/gtest.h>

namespace {
constexpr int kJobTimeoutMs = 30000;
const QString kFlags = QStringLiteral("0,TECFP,1110111");
const QString kCard = QStringLiteral("5/2/6.50/ΚΑΡΤΑ///1/1/");
const QString kQuery = QStringLiteral("5/99/0/ ///1/1/");

QByteArray readBytes(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

bool writeBytes(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

// The worked receipt, paid with the application's payment 2 instead of cash.
QByteArray cardPrintFile()
{
    QByteArray file = readBytes(QStringLiteral(KERBANO_SOURCE_DIR "/samples/receipt.txt"));
    const qsizetype at = file.indexOf("\n tot ");
    const qsizetype end = file.indexOf("\r\n", at + 1);
    file.replace(at + 1, end - at - 1, codepage::toWin1253(QStringLiteral(" tot   2       6.50ΚΑΡΤΑ")));
    return file;
}

// payeft.dat with payment 2 on the register's card payment 2 and terminal 1.
QByteArray payEftFile(qint16 retries, qint16 altPayment)
{
    QByteArray file(2 * 128, '\0');
    const qint16 fields[] = {2, 2, 1, -1, 0, retries, altPayment};
    for (int i = 0; i < 7; ++i)
        qToLittleEndian<qint16>(fields[i], file.data() + 128 + 2 * i);
    return file;
}

class CardPaymentEndToEnd : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(dir.isValid()); }
    QString path(const QString& name) const { return QDir(dir.path()).filePath(name); }

    // Prints the card receipt with the terminal script; the job's commands.
    QStringList printWith(const QString& script, qint16 retries, qint16 altPayment)
    {
        EXPECT_TRUE(writeBytes(path("faults.txt"), script.toUtf8()));
        EXPECT_TRUE(writeBytes(path("payeft.dat"), payEftFile(retries, altPayment)));
        sim.setExtraArguments({QStringLiteral("--faults"), path("faults.txt")});
        EXPECT_TRUE(sim.startTcp()) << sim.startError().toStdString();
        EXPECT_TRUE(writeBytes(path("print.txt"), cardPrintFile()));
        run = runKerbanoHeadless(dir.path(),
                                 QStringLiteral("%1,9600,print.txt,%2").arg(sim.portField(), kFlags),
                                 kJobTimeoutMs);
        EXPECT_TRUE(run.finished) << "kerbano did not end";
        EXPECT_EQ(run.exitCode, 0) << run.err.toStdString();
        return sim.journalCommands();
    }

    QStringList resultLines() const
    {
        return codepage::fromWin1253(readBytes(path("result.txt"))).split(QStringLiteral("\r\n"));
    }
    QString tape() const { return QString::fromUtf8(readBytes(sim.tapePath())); }

    QTemporaryDir dir;
    SimProcess sim{dir.path()};
    KerbanoRun run;
};

TEST_F(CardPaymentEndToEnd, AnApprovedCardPaysTheReceiptOnceAndIsReportedAsACardLine)
{
    const QStringList commands = printWith(QString(), 2, 1);
    EXPECT_EQ(commands.count(kCard), 1);
    const qsizetype card = commands.indexOf(kCard);
    ASSERT_GE(card, 0);
    EXPECT_EQ(commands.value(card + 1), kQuery);
    EXPECT_FALSE(commands.join(' ').contains(QStringLiteral("ΑΝΤΙ")));

    const QStringList lines = resultLines();
    EXPECT_TRUE(lines.filter(QStringLiteral("ccPay0 = ")).size() == 1) << lines.join('\n').toStdString();
    EXPECT_TRUE(lines.contains(QStringLiteral("recStatus = 1;6.50")));
    EXPECT_TRUE(lines.filter(QStringLiteral("Err = ")).isEmpty()) << lines.join('\n').toStdString();
    EXPECT_TRUE(tape().contains(QStringLiteral("APPROVED"))) << tape().toStdString();
}

TEST_F(CardPaymentEndToEnd, ADeclineIsTriedAgainAndTheSecondAttemptIsApproved)
{
    const QStringList commands =
        printWith(QStringLiteral("terminal 1 x1: decline TRANSACTION WAS DECLINED\n"), 2, 1);
    EXPECT_EQ(commands.count(kCard), 2);
    EXPECT_EQ(commands.count(kQuery), 3); // two attempts and the card lines of the result file
    const QStringList lines = resultLines();
    EXPECT_TRUE(lines.contains(QStringLiteral("recStatus = 1;6.50")));
    EXPECT_FALSE(commands.join(' ').contains(QStringLiteral("ΑΝΤΙ")));
    EXPECT_TRUE(tape().contains(QStringLiteral("TRANSACTION WAS DECLINED"))) << tape().toStdString();
}

TEST_F(CardPaymentEndToEnd, AFinalRefusalFallsBackOnTheAlternativeAndPrintsTheNotice)
{
    const QStringList commands =
        printWith(QStringLiteral("terminal 1 always: decline DECLINED BY THE TERMINAL\n"), 2, 1);
    EXPECT_EQ(commands.count(kCard), 1);
    const qsizetype alternative = commands.indexOf(QStringLiteral("5/1/6.50/ΑΝΤΙ:ΚΑΡΤΑ//////"));
    ASSERT_GE(alternative, 0) << commands.join('\n').toStdString();
    const qsizetype notice = commands.indexOf(QStringLiteral("7/1/2/ΠΡΟΣΟΧΗ!/"));
    EXPECT_GT(notice, alternative);
    EXPECT_EQ(commands.value(notice - 2), QStringLiteral("7/0/1/ΕΚΚΡΕΜ. ΠΛΗΡΩΜΕΣ/"));
    EXPECT_TRUE(resultLines().contains(QStringLiteral("recStatus = 1;6.50")));
    EXPECT_TRUE(tape().contains(QStringLiteral("ΠΡΟΣΟΧΗ!"))) << tape().toStdString();
    EXPECT_TRUE(tape().contains(QStringLiteral("ΑΠΟ ΤΟΝ ΠΕΛΑΤΗ")));
}

// The card menu entries headless, answered from the command line.
class CardMenuEndToEnd : public ::testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(sim.startTcp()) << sim.startError().toStdString();
        ASSERT_TRUE(writeBytes(dir.filePath(QStringLiteral("param.ini")),
                               QStringLiteral("[port] %1\r\n[baud] 9600\r\n[file] print\r\n")
                                   .arg(sim.portField())
                                   .toLatin1()));
    }
    KerbanoRun runAction(const QString& name, const QStringList& answers)
    {
        QStringList arguments{QStringLiteral("--run"), name};
        for (const QString& answer : answers)
            arguments << QStringLiteral("--answer") << answer;
        return runKerbanoHeadless(dir.path(), arguments, kJobTimeoutMs);
    }

    QTemporaryDir dir;
    SimProcess sim{dir.path()};
};

TEST_F(CardMenuEndToEnd, TheBatchOfTheChosenTerminalIsClosedAndACancelSendsNothing)
{
    KerbanoRun batch = runAction(QStringLiteral("s8"), {QStringLiteral("1")});
    ASSERT_TRUE(batch.finished);
    EXPECT_EQ(batch.exitCode, 0) << batch.err.toStdString();
    EXPECT_EQ(sim.journalCommands().last(), QStringLiteral("\\/15/1/////////////////"));
    EXPECT_TRUE(QString::fromUtf8(batch.err).contains(QStringLiteral("Η αποστολή εντολής στο EFTPOS ολοκληρώθηκε...")))
        << batch.err.toStdString();

    const int heard = int(sim.journalCommands().size());
    batch = runAction(QStringLiteral("s8"), {});
    EXPECT_EQ(batch.exitCode, 0);
    EXPECT_TRUE(sim.journalCommands().mid(heard).filter(QStringLiteral("\\/15/")).isEmpty());
    EXPECT_TRUE(QString::fromUtf8(batch.err).contains(QStringLiteral("Δεν έγινε αποστολή της εντολής στο EFTPOS...")));
}

TEST_F(CardMenuEndToEnd, ThePaymentMapIsEditedFromTheRegistersListsAndTheAlternativeProgrammed)
{
    const KerbanoRun edit = runAction(
        QStringLiteral("paramEFT"),
        {"2", "2", "2", "2", "1", "1", "1", QStringLiteral("ΜΕΤΡΗΤΑ"), "1"});
    ASSERT_TRUE(edit.finished);
    EXPECT_EQ(edit.exitCode, 0) << edit.err.toStdString();
    const QByteArray map = readBytes(dir.filePath(QStringLiteral("payeft.dat")));
    ASSERT_GE(map.size(), 128 + 14);
    EXPECT_EQ(map.mid(128, 14), QByteArray::fromHex("0200" "0200" "0100" "ffff" "0000" "0100" "0100"));
    EXPECT_TRUE(sim.journalCommands().contains(
        QStringLiteral("Y/1/ΜΕΤΡΗΤΑ/ΑΠΠΚ//0/100011010/0/ΑΝΤΙ ΠΙΣΤ.ΚΑΡΤΑ/")))
        << sim.journalCommands().join('\n').toStdString();
}

} // namespace
