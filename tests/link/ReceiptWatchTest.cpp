// Safe resends of the commands that change the receipt in hand, and the check
// of the register's figures before the payment, against a small register
// behind a fake line that keeps its receipt and can lose a reply.

#include "SessionWorld.h"


namespace {

const QString kCoffee = QStringLiteral("3/S/ΚΑΦΕΣ//2.000/3.50/1/24.00/"); // 7.00
const QString kWater = QStringLiteral("3/S/ΝΕΡΟ//1.000/0.50/2/13.00/");  // 0.50
const QString kTenPercentOff = QStringLiteral("4/10.00//ΕΚΠΤΩΣΗ/0/0/0/"); // 0.70 off the coffee
const QString kCash = QStringLiteral("5/1/6.80/ΜΕΤΡΗΤΑ//////");
const QString kComment = QStringLiteral("7/1/1/ΠΕΛΑΤΗΣ/");

// What the register does with one command.
enum class Fault { None, Lost, Silent, Late, NoEnq, Nack };

// The queued register keeps a receipt here: each command it hears is executed
// (unless the fault says it never arrived) and answered as the fault says.
class ReceiptWatchTest : public QueuedRegisterTest {
protected:
    ReceiptWatchTest()
    {
        vars.baud = "9600";
        onCommand = [this](const QString& command, qsizetype) {
            const Fault fault = faults.count(command) ? faults[command] : Fault::None;
            faults.erase(command);
            answerAfterMs.erase(command);
            if (fault == Fault::NoEnq)
                enqAnswerMs = -1; // the ENQ of the next command goes unanswered
            if (fault == Fault::Nack) {
                replies[command] = {"\x15"};
                return;
            }
            if (fault == Fault::Silent) {
                answerAfterMs[command] = -1;
                return;
            }
            replies[command] = {execute(command)};
            if (fault == Fault::Late)
                answerAfterMs[command] = link.tcpPort() ? 11000 : 4000;
            else if (fault == Fault::Lost)
                answerAfterMs[command] = -1;
        };
    }

    void watch(const QString& port)
    {
        open(port);
        link.beginReceiptWatch();
    }

    QString execute(const QString& command)
    {
        if (command == u"9/")
            return QStringLiteral("00/00/00/%1/%2/%3/%4/0.00/1/%5/8/")
                .arg(open_ ? 1 : 0)
                .arg(lines)
                .arg(money(total), money(paid), money(total - paid));
        if (command == kCoffee || command == kWater) {
            open_ = true;
            ++lines;
            lastSale = command == kCoffee ? 700 : 50;
            total += lastSale;
        } else if (command == kTenPercentOff) {
            total -= lastSale / 10;
        } else if (command.startsWith(u"5/1/")) {
            paid += qRound64(command.section(u'/', 2, 2).toDouble() * 100);
            if (paid >= total)
                open_ = false, lines = 0, total = paid = 0;
        } else if (command == u"+/") {
            open_ = false, lines = 0, total = paid = 0;
        }
        return QStringLiteral("00/00/00/");
    }
    static QString money(qint64 cents) { return QString::number(cents / 100.0, 'f', 2); }
    int timesHeard(const QString& command) const { return int(sent.count(command)); }
    DeviceReply send(const QString& command) { return link.send(command); }

    std::map<QString, Fault> faults;
    bool open_ = false;
    int lines = 0;
    qint64 total = 0;
    qint64 paid = 0;
    qint64 lastSale = 0;
};

class ReceiptWatchOnBothLines : public ReceiptWatchTest,
                                public ::testing::WithParamInterface<const char*> {};

// A clean receipt hears nothing beyond its own commands. A sale whose reply
// was lost or late is judged by one look at the figures, not sent again; they
// agree, so the payment goes after one more check of them.
TEST_P(ReceiptWatchOnBothLines, ASaleExecutedWithItsReplyLostOrLateIsNotSentAgainAndThePaymentGoesAfterOneCheck)
{
    for (const Fault fault : {Fault::None, Fault::Lost, Fault::Late}) {
        SCOPED_TRACE(int(fault));
        watch(GetParam());
        faults[kCoffee] = fault;
        const DeviceReply sale = send(kCoffee);
        EXPECT_TRUE(sale.ok()) << sale.text().toStdString();
        EXPECT_EQ(lines, 1);
        EXPECT_TRUE(results.lines.isEmpty()) << results.lines.join('\n').toStdString();
        for (const QString& c : {kTenPercentOff, kWater, kComment, kCash})
            EXPECT_TRUE(send(c).ok()) << c.toStdString();
        EXPECT_FALSE(open_);
        const QStringList asked = fault == Fault::None ? QStringList() : QStringList{"9/"};
        EXPECT_EQ(sent, QStringList({kCoffee}) + asked + QStringList({kTenPercentOff, kWater, kComment}) + asked
                            + QStringList({kCash}));
        EXPECT_TRUE(results.notes.isEmpty());
        send("+/"); // leaves nothing open for the next round
    }
}

TEST_P(ReceiptWatchOnBothLines, ASaleTheRegisterNeverHeardGoesOutAgainOnce)
{
    watch(GetParam());
    faults[kCoffee] = Fault::Silent;
    EXPECT_TRUE(send(kCoffee).ok());
    EXPECT_EQ(timesHeard(kCoffee), 2);
    EXPECT_EQ(lines, 1);
    EXPECT_EQ(total, 700);
    // The discount and the payment whose replies are lost are judged the same way.
    faults[kTenPercentOff] = Fault::Lost;
    EXPECT_TRUE(send(kTenPercentOff).ok());
    EXPECT_EQ(total, 630);
    faults[kCash] = Fault::Lost;
    EXPECT_TRUE(send("5/1/6.30/ΜΕΤΡΗΤΑ//////").ok());
    EXPECT_FALSE(open_);
    EXPECT_EQ(timesHeard("5/1/6.30/ΜΕΤΡΗΤΑ//////"), 1);
    EXPECT_TRUE(results.notes.isEmpty());
}

TEST_P(ReceiptWatchOnBothLines, FiguresThatFitNeitherCaseStopTheReceiptBeforeItsPayment)
{
    watch(GetParam());
    EXPECT_TRUE(send(kCoffee).ok());
    // Another hand adds to the receipt while the reply of the water is lost:
    // the driver cannot tell, so it sends nothing again and pays nothing.
    faults[kWater] = Fault::Lost;
    total += 1000;
    const DeviceReply water = send(kWater);
    EXPECT_EQ(water.status(), -4);
    EXPECT_EQ(timesHeard(kWater), 1);
    ASSERT_EQ(results.lines.size(), 1);
    EXPECT_TRUE(results.lines[0].startsWith("Err = -4, [")) << results.lines[0].toStdString();
    EXPECT_TRUE(results.lines[0].contains(kWater));

    const DeviceReply cash = send(kCash);
    EXPECT_EQ(cash.status(), DeviceSession::kStatusTotalsDiffer);
    EXPECT_EQ(timesHeard(kCash), 0);
    EXPECT_EQ(timesHeard("+/"), 1);
    EXPECT_FALSE(open_);
    ASSERT_EQ(results.notes.size(), 1);
    EXPECT_EQ(results.notes[0], "jobNote = voided;totals;17.50;");
    // Nothing more goes into a receipt of this job.
    EXPECT_EQ(send(kCoffee).status(), DeviceSession::kStatusJobStopped);
    EXPECT_EQ(timesHeard(kCoffee), 1);

    // The next job starts afresh.
    link.beginReceiptWatch();
    EXPECT_TRUE(send(kCoffee).ok());
}

INSTANTIATE_TEST_SUITE_P(SerialAndTcp, ReceiptWatchOnBothLines,
                         ::testing::Values("com1", "127.0.0.1:9101"));

TEST_F(ReceiptWatchTest, AFrameWhoseEnqWentUnansweredIsSentAgainAndANackedOneAsBefore)
{
    watch("com1");
    faults[kCoffee] = Fault::NoEnq; // the ENQ of the next command goes unanswered
    EXPECT_TRUE(send(kCoffee).ok());
    EXPECT_TRUE(send(kWater).ok());
    EXPECT_EQ(timesHeard(kWater), 1);
    EXPECT_EQ(lines, 2);
    EXPECT_TRUE(results.lines.isEmpty()) << results.lines.join('\n').toStdString();

    // NACK: the frame was not taken and goes out again within the exchange, no question asked.
    faults[kTenPercentOff] = Fault::Nack;
    EXPECT_TRUE(send(kTenPercentOff).ok());
    EXPECT_EQ(sent.mid(sent.size() - 2), QStringList({kTenPercentOff, kTenPercentOff}));
    EXPECT_EQ(timesHeard("9/"), 0);
}

} // namespace
