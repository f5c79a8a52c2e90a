// Card payments printed by the real kerbano --headless on the real virtual
// register, whose terminals play from a fault script: approved, declined then
// approved, and declined for good with the alternative payment and its notice.

#include "SimWorld.h"


namespace {
const QString kCard = u"5/2/6.50/ΚΑΡΤΑ///1/1/"_s;
const QString kQuery = u"5/99/0/ ///1/1/"_s;

class CardPaymentEndToEnd : public SimWorld {
protected:
    // Prints the worked receipt paid with the application's payment 2 (the
    // register's card payment 2 on terminal 1) under the terminal script;
    // the job's commands.
    QStringList printWith(const QByteArray& script)
    {
        writePayEft({2, 2, 1, -1, 0, 2, 1}); // two retries, then payment 1
        startRegister(script);
        QByteArray file = sampleReceipt();
        const qsizetype at = file.indexOf("\n tot ");
        file.replace(at + 1, file.indexOf("\r\n", at + 1) - at - 1, codepage::toWin1253(u" tot   2       6.50ΚΑΡΤΑ"_s));
        print(file);
        return sim.journalCommands();
    }
    QString tape() const { return QString::fromUtf8(readBytes(sim.tapePath())); }
};

TEST_F(CardPaymentEndToEnd, AnApprovedCardPaysTheReceiptOnceAndIsReportedAsACardLine)
{
    const QStringList commands = printWith({});
    EXPECT_EQ(commands.count(kCard), 1);
    EXPECT_EQ(commands.value(commands.indexOf(kCard) + 1), kQuery);
    EXPECT_FALSE(commands.join(' ').contains(u"ΑΝΤΙ"_s));

    const QStringList lines = resultLines();
    EXPECT_EQ(lines.filter(u"ccPay0 = "_s).size(), 1) << lines.join('\n').toStdString();
    EXPECT_TRUE(lines.contains(u"recStatus = 1;6.50"_s));
    EXPECT_TRUE(lines.filter(u"Err = "_s).isEmpty()) << lines.join('\n').toStdString();
    EXPECT_TRUE(tape().contains(u"APPROVED"_s)) << tape().toStdString();
}

TEST_F(CardPaymentEndToEnd, ADeclineIsTriedAgainAndTheSecondAttemptIsApproved)
{
    const QStringList commands = printWith("terminal 1 x1: decline TRANSACTION WAS DECLINED\n");
    EXPECT_EQ(commands.count(kCard), 2);
    EXPECT_EQ(commands.count(kQuery), 3); // two attempts and the card lines of the result file
    EXPECT_TRUE(resultLines().contains(u"recStatus = 1;6.50"_s));
    EXPECT_FALSE(commands.join(' ').contains(u"ΑΝΤΙ"_s));
    EXPECT_TRUE(tape().contains(u"TRANSACTION WAS DECLINED"_s)) << tape().toStdString();
}

TEST_F(CardPaymentEndToEnd, AFinalRefusalFallsBackOnTheAlternativeAndPrintsTheNotice)
{
    const QStringList commands = printWith("terminal 1 always: decline DECLINED BY THE TERMINAL\n");
    EXPECT_EQ(commands.count(kCard), 1);
    const qsizetype alternative = commands.indexOf(u"5/1/6.50/ΑΝΤΙ:ΚΑΡΤΑ//////"_s);
    ASSERT_GE(alternative, 0) << commands.join('\n').toStdString();
    const qsizetype notice = commands.indexOf(u"7/1/2/ΠΡΟΣΟΧΗ!/"_s);
    EXPECT_GT(notice, alternative);
    EXPECT_EQ(commands.value(notice - 2), u"7/0/1/ΕΚΚΡΕΜ. ΠΛΗΡΩΜΕΣ/"_s);
    EXPECT_TRUE(resultLines().contains(u"recStatus = 1;6.50"_s));
    EXPECT_TRUE(tape().contains(u"ΠΡΟΣΟΧΗ!"_s)) << tape().toStdString();
    EXPECT_TRUE(tape().contains(u"ΑΠΟ ΤΟΝ ΠΕΛΑΤΗ"_s));
}

// The card menu entries headless, answered from the command line.
TEST_F(CardPaymentEndToEnd, TheBatchOfTheChosenTerminalIsClosedAndACancelSendsNothing)
{
    startRegister();
    writeParams();
    KerbanoRun batch = runAction(u"s8"_s, {u"1"_s});
    EXPECT_EQ(sim.journalCommands().last(), u"\\/15/1/////////////////"_s);
    EXPECT_TRUE(QString::fromUtf8(batch.err).contains(u"Η αποστολή εντολής στο EFTPOS ολοκληρώθηκε..."_s))
        << batch.err.toStdString();

    const int heard = int(sim.journalCommands().size());
    batch = runAction(u"s8"_s);
    EXPECT_TRUE(sim.journalCommands().mid(heard).filter(u"\\/15/"_s).isEmpty());
    EXPECT_TRUE(QString::fromUtf8(batch.err).contains(u"Δεν έγινε αποστολή της εντολής στο EFTPOS..."_s));
}

TEST_F(CardPaymentEndToEnd, ThePaymentMapIsEditedFromTheRegistersListsAndTheAlternativeProgrammed)
{
    startRegister();
    writeParams();
    const KerbanoRun edit = runAction(u"paramEFT"_s, {"2", "2", "2", "2", "1", "1", "1", u"ΜΕΤΡΗΤΑ"_s, "1"});
    EXPECT_EQ(readBytes(path(u"payeft.dat"_s)).mid(128, 14),
              QByteArray::fromHex("0200" "0200" "0100" "ffff" "0000" "0100" "0100"));
    EXPECT_TRUE(sim.journalCommands().contains(u"Y/1/ΜΕΤΡΗΤΑ/ΑΠΠΚ//0/100011010/0/ΑΝΤΙ ΠΙΣΤ.ΚΑΡΤΑ/"_s))
        << sim.journalCommands().join('\n').toStdString();
}

} // namespace
