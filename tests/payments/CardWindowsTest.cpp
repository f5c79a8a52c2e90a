#include "payments/EftBatch.h"
#include "payments/PaymentMap.h"
#include "payments/PaymentMapDialog.h"

#include "PrintQString.h"
#include "ScriptedLink.h"
#include "ScriptedOperator.h"
#include "shell/ModuleVariables.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <array>

using namespace Qt::Literals::StringLiterals;

namespace {

// A register with terminals 2 ("ALPHA") and 12 ("OMEGA") active, 5 inactive,
// 7 refusing its read; payments 1 cash, 2 card, 3 preloaded card, 4 inactive card.
class CardWindowsTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        link.connected = true;
        link.responder = [](const QString& command, ScriptedLink::Answer& a) {
            const QStringList terminals{"0", "1/10.0.0.2/0/ALPHA", "0", "0", "0/10.0.0.5/0/OLD", "0",
                                        "", "0", "0", "0", "0", "1/10.0.0.12/0/OMEGA"};
            const QStringList payments{"ΜΕΤΡΗΤΑ/ΜΕΤ/0/100011010/0", "VISA/VIS/0/100000001/1",
                                       "  ΔΩΡΟΚΑΡΤΑ /ΔΩΡ/0/100000001/3",
                                       "AMEX/AMX/0/000000001/1"};
            if (command.startsWith(QLatin1String(",/11/"))) {
                const QString t = terminals.value(command.section('/', 2, 2).toInt() - 1);
                if (t.isEmpty())
                    a.status = 0x05;
                a.reply = u"00/00/00/"_s + t + u"/"_s;
                return true;
            }
            if (command.startsWith(QLatin1String("y/"))) {
                const QString p = payments.value(command.section('/', 1, 1).toInt() - 1, u"-/-/0/0/0"_s);
                a.reply = u"00/00/00/"_s + p + u"/"_s;
                return true;
            }
            return false;
        };
    }

    QTemporaryDir dir;
    QString path = dir.filePath(u"payeft.dat"_s);
    ScriptedLink link;
    ScriptedOperator op;
    ModuleVariables vars;
};

TEST_F(CardWindowsTest, TheListsKeepTerminalSlotsInOrderAndOnlyActiveCardPayments)
{
    const PaymentLists lists = FillPaymentLists(link);
    ASSERT_EQ(lists.terminals.size(), 12); // "---" and 11 slots read
    ASSERT_EQ(lists.payments.size(), 3);
    const auto row = [](const auto& item) { return std::pair(item.text, int(item.value)); };
    EXPECT_EQ((QList{row(lists.terminals[0]), row(lists.terminals[2]), row(lists.terminals[5]),
                     row(lists.terminals[11]), row(lists.payments[1]), row(lists.payments[2])}),
              (QList<std::pair<QString, int>>{{"---", 0}, {"ALPHA, 10.0.0.2", 2}, {"Ανενεργό", 0}, {"OMEGA, 10.0.0.12", 12},
                                              {"2, VISA", 2}, {"3, ΔΩΡΟΚΑΡΤΑ:ΠΡΟΦΟΡΤΩΜΕΝΗ", 3}}));
    EXPECT_EQ(getItembyData(lists.terminals, 9), 0);
}

TEST_F(CardWindowsTest, FindSelectsTheStoredRowsAndSaveProgramsTheAlternativeUnlessItIsItself)
{
    PaymentMapDialog dialog(link, op, vars, path);
    dialog.refresh();
    EXPECT_FALSE(link.connected); // the lists are read with the link open for that only

    PayEftRecord stored;
    stored.payId = 6;
    stored.ecrPayment = 3;
    stored.ecrEft = 9; // a terminal the register no longer lists
    stored.active = -1;
    stored.retries = 2;
    stored.altPayment = 1;
    ASSERT_EQ(WritePayEftRecord(path, stored), 0);
    dialog.values.txtPay = "6";
    ASSERT_TRUE(dialog.cmdFind());
    const auto& v = dialog.values;
    EXPECT_EQ(std::tuple(int(v.cmbECRPayment), int(v.cmbECREFT), bool(v.chkActive), v.txtRetries, v.txtPAYEDDesc),
              std::tuple(2, 0, true, QString("2"), QString("ΜΕΤΡΗΤΑ")));

    dialog.values.cmbECREFT = 11;
    link.sent.clear();
    ASSERT_TRUE(dialog.save());
    EXPECT_EQ(link.commands(), QStringList{"Y/1/ΜΕΤΡΗΤΑ/ΑΠΠΚ//0/100011010/0/ΑΝΤΙ ΠΙΣΤ.ΚΑΡΤΑ/"});
    PayEftRecord back;
    back.payId = 6;
    ASSERT_EQ(ReadPayEftRecord(path, back), 0);
    EXPECT_EQ(std::tuple(back.ecrEft, back.ecrPayment), std::tuple(qint16(12), qint16(3)));

    dialog.values.txtPayID = "3";
    link.sent.clear();
    ASSERT_TRUE(dialog.save());
    EXPECT_TRUE(link.sent.isEmpty());
    EXPECT_EQ(dialog.values.txtPayID, "0");
    ASSERT_EQ(ReadPayEftRecord(path, back), 0);
    EXPECT_EQ(back.altPayment, 0);

    ASSERT_TRUE(dialog.cmddelete());
    ASSERT_EQ(ReadPayEftRecord(path, back), 0);
    EXPECT_EQ(std::tuple(back.payId, back.isActive(), back.ecrEft), std::tuple(qint16(6), false, qint16(0)));
}

TEST_F(CardWindowsTest, TheDialogAsksTheControlsInOrderAndSavesWhatWasAnswered)
{
    op.inputs = {QString("4"), QString("1"), QString("1"), QString("ΜΕΤΡΗΤΑ Χ"), std::nullopt};
    op.choices = {1, 2, 1, 0, 0};
    PaymentMapDialog(link, op, vars, path).run();
    PayEftRecord r;
    r.payId = 4;
    ASSERT_EQ(ReadPayEftRecord(path, r), 0);
    EXPECT_EQ((std::array{r.ecrPayment, r.ecrEft, r.active, r.preCollect, r.retries, r.altPayment}),
              (std::array<qint16, 6>{2, 2, -1, 0, 1, 1}));
    EXPECT_EQ(link.commands().last(), "Y/1/ΜΕΤΡΗΤΑ Χ/ΑΠΠΚ//0/100011010/0/ΑΝΤΙ ΠΙΣΤ.ΚΑΡΤΑ/");
}

TEST_F(CardWindowsTest, TheBatchGoesToTheChosenRowsSlotAndACancelSendsNothing)
{
    op.choices = {1};
    EXPECT_EQ(SendEftBatchCommand(link, op), -1);
    EXPECT_EQ(link.commands().last(), "\\/15/12/////////////////");

    link.sent.clear();
    op.choices = {std::nullopt};
    EXPECT_EQ(SendEftBatchCommand(link, op), 0);
    for (const QString& c : link.commands())
        EXPECT_TRUE(c.startsWith(QLatin1String(",/11/"))) << c.toStdString();

    link.queue.clear();
    op.choices = {0};
    link.responder = [first = link.responder](const QString& command, ScriptedLink::Answer& a) {
        if (command.startsWith(QLatin1String("\\/15/"))) {
            a.status = 0xBC;
            return true;
        }
        return first(command, a);
    };
    vars.port = "127.0.0.1:9101";
    link.connected = false;
    RunEftBatch(link, op, vars);
    EXPECT_EQ(link.commands().last(), "\\/15/2/////////////////");
    ASSERT_FALSE(op.messages.isEmpty());
    EXPECT_EQ(op.messages.last().text, "Δεν έγινε αποστολή της εντολής στο EFTPOS...");
    EXPECT_EQ(link.opens, 1);
    EXPECT_FALSE(link.connected);
}

} // namespace
