// Safe resends of the commands that change the receipt in hand, and the check
// of the register's figures before the payment, against a small register
// behind a fake line that keeps its receipt and can lose a reply.

#include "SessionWorld.h"

#include "shell/CodePage.h"

#include <set>

namespace {

const QString kCoffee = QStringLiteral("3/S/ΚΑΦΕΣ//2.000/3.50/1/24.00/"); // 7.00
const QString kWater = QStringLiteral("3/S/ΝΕΡΟ//1.000/0.50/2/13.00/");  // 0.50
const QString kTenPercentOff = QStringLiteral("4/10.00//ΕΚΠΤΩΣΗ/0/0/0/"); // 0.70 off the coffee
const QString kCash = QStringLiteral("5/1/6.80/ΜΕΤΡΗΤΑ//////");
const QString kComment = QStringLiteral("7/1/1/ΠΕΛΑΤΗΣ/");

// What the register does with one command.
enum class Fault { None, Lost, Silent, Late, NoEnq, Nack };

class ReceiptWatchTest : public ::testing::Test, protected SessionWorld {
protected:
    ReceiptWatchTest()
    {
        vars.baud = "9600";
        factory.script = [this](FakeTransport& t) {
            t.onWrite = [this, &t](const QByteArray& w) { onWrite(t, w); };
        };
    }

    void open(const QString& port)
    {
        qint16 status = 0;
        QString text;
        link.OpenDeviceLink(port, status, text, true);
        ASSERT_EQ(status, 0);
        heard.clear();
        link.beginReceiptWatch();
    }

    DeviceReply send(const QString& command) { return link.send(command); }

    // Frames on a serial line, plain text on TCP; ENQ is answered unless a
    // fault holds it back.
    void onWrite(FakeTransport& t, const QByteArray& w)
    {
        if (w == "\x05") {
            if (holdEnq) {
                holdEnq = false;
                return;
            }
            t.deliver("\x06", 5);
            return;
        }
        if (w == "\x06")
            return;
        const bool serial = w.startsWith('\x02');
        const QString command = codepage::fromWin1253(serial ? w.mid(1, w.size() - 4) : w);
        heard << command;
        const Fault fault = faults.count(command) ? faults[command] : Fault::None;
        faults.erase(command);
        if (fault == Fault::NoEnq)
            holdEnq = true;
        if (fault == Fault::Nack) {
            t.deliver("\x15", 5);
            return;
        }
        if (fault == Fault::Silent)
            return;
        const QString answer = execute(command);
        const QByteArray bytes = (serial ? QByteArray("\x02") : QByteArray()) + answer.toLatin1()
            + (serial ? QByteArray("\x03") : QByteArray());
        if (fault == Fault::Late)
            t.deliver(bytes, serial ? 4000 : 11000);
        else if (fault != Fault::Lost)
            t.deliver(bytes, 5);
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
    int timesHeard(const QString& command) const { return int(heard.count(command)); }

    std::map<QString, Fault> faults;
    bool holdEnq = false;
    QStringList heard;
    bool open_ = false;
    int lines = 0;
    qint64 total = 0;
    qint64 paid = 0;
    qint64 lastSale = 0;
};

class ReceiptWatchOnBothLines : public ReceiptWatchTest,
                                public ::testing::WithParamInterface<const char*> {};

TEST_P(ReceiptWatchOnBothLines, ACleanReceiptHearsNothingBeyondItsOwnCommands)
{
    open(GetParam());
    for (const QString& c : {kCoffee, kTenPercentOff, kWater, kComment, kCash})
        EXPECT_TRUE(send(c).ok()) << c.toStdString();
    EXPECT_EQ(heard, QStringList({kCoffee, kTenPercentOff, kWater, kComment, kCash}));
    EXPECT_TRUE(results.lines.isEmpty());
    EXPECT_TRUE(results.notes.isEmpty());
}

TEST_P(ReceiptWatchOnBothLines, ASaleExecutedWithItsReplyLostOrLateIsNotSentAgainAndThePaymentGoesAfterOneCheck)
{
    for (const Fault fault : {Fault::Lost, Fault::Late}) {
        open(GetParam());
        faults[kCoffee] = fault;
        const DeviceReply sale = send(kCoffee);
        EXPECT_TRUE(sale.ok()) << sale.text().toStdString();
        EXPECT_EQ(timesHeard(kCoffee), 1);
        EXPECT_EQ(lines, 1);
        EXPECT_TRUE(results.lines.isEmpty()) << results.lines.join('\n').toStdString();
        // The receipt goes on in step; the figures agree, so the payment goes
        // after one check of them.
        EXPECT_TRUE(send(kTenPercentOff).ok());
        EXPECT_TRUE(send(kWater).ok());
        heard.clear();
        EXPECT_TRUE(send(kCash).ok());
        EXPECT_FALSE(open_);
        EXPECT_EQ(heard, QStringList({"9/", kCash}));
        EXPECT_TRUE(results.notes.isEmpty());
        send("+/"); // leaves nothing open for the next round
    }
}

TEST_P(ReceiptWatchOnBothLines, ASaleTheRegisterNeverHeardGoesOutAgainOnce)
{
    open(GetParam());
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
    open(GetParam());
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
    open("com1");
    faults[kCoffee] = Fault::NoEnq; // the ENQ of the next command goes unanswered
    EXPECT_TRUE(send(kCoffee).ok());
    EXPECT_TRUE(send(kWater).ok());
    EXPECT_EQ(timesHeard(kWater), 1);
    EXPECT_EQ(lines, 2);
    EXPECT_TRUE(results.lines.isEmpty()) << results.lines.join('\n').toStdString();

    // NACK: the frame was not taken and goes out again within the exchange, no question asked.
    faults[kTenPercentOff] = Fault::Nack;
    EXPECT_TRUE(send(kTenPercentOff).ok());
    EXPECT_EQ(heard.mid(heard.size() - 2), QStringList({kTenPercentOff, kTenPercentOff}));
    EXPECT_EQ(timesHeard("9/"), 0);
}

} // namespace
