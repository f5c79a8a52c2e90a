// The worked receipt printed by the real kerbano --headless on the real
// virtual register, over TCP and over a serial line (a pseudo-terminal).

#include "DataFile.h"
#include "SimWorld.h"

#include <QDateTime>
#include <QRegularExpression>

namespace {

QStringList replyFieldsOf(const QStringList& journalLines, const QString& command)
{
    for (const QString& line : journalLines) {
        if (line.section(u" -> "_s, 0, 0) == command)
            return line.section(u" -> "_s, 1).split(u'/');
    }
    return {};
}

// "receipt = " progressive, daily and order, worked out from the register's
// own answers: daily is field 8 of 9/, the progressive base of the day is
// field 6 minus field 5 of i/, and no table gives order -1.
QString expectedReceiptLine(const QStringList& jobJournal)
{
    const QStringList totals = replyFieldsOf(jobJournal, u"9/"_s);
    const QStringList counters = replyFieldsOf(jobJournal, u"i/"_s);
    if (totals.size() < 10 || counters.size() < 7)
        return u"(no 9/ or i/ answer in the journal)"_s;
    const int daily = totals[8].toInt();
    return u"receipt = %1, %2, -1"_s.arg(counters[6].toInt() - counters[5].toInt() + daily).arg(daily);
}

QDateTime stampAfter(const QString& line, const QString& prefix)
{
    return line.startsWith(prefix) ? QDateTime::fromString(line.mid(prefix.size()), u"dd/MM/yyyy hh:mm:ss"_s)
                                   : QDateTime();
}

class WorkedReceiptEndToEnd : public SimWorld {
protected:
    void printAndCheckWorkedReceipt()
    {
        const int from = int(sim.journalLines().size());
        const QDateTime before = QDateTime::currentDateTime();
        print(sampleReceipt());
        const QDateTime after = QDateTime::currentDateTime();

        // Every command-line life opens the link anew, so the opening comes first.
        EXPECT_EQ(sim.journalCommands(from), golden(u"e2e/worked-receipt.txt"_s, u"journal"_s));

        const QStringList lines = resultLines();
        ASSERT_EQ(lines.size(), 7) << lines.join(u'|').toStdString();
        EXPECT_EQ(lines[0], u"tag = 00417"_s);
        const QDateTime start = stampAfter(lines[1], u"DateTime start = "_s);
        const QDateTime end = stampAfter(lines[2], u"DateTime end = "_s);
        ASSERT_TRUE(start.isValid() && end.isValid()) << lines.join(u'|').toStdString();
        // The stamps are whole seconds of the local clock, inside the run.
        EXPECT_LE(before.addSecs(-1), start);
        EXPECT_LE(start, end);
        EXPECT_LE(end, after.addSecs(1));
        EXPECT_EQ(lines.mid(3), (QStringList{u"recStatus = 1;6.50"_s, expectedReceiptLine(sim.journalLines().mid(from)),
                                             u"exitcode = 0"_s, QString()}))
            << "the last line ends in CR LF";

        // The paper shows the register's arithmetic: 2 x 3.50, 10 % of it off, the
        // water, 0.30 off the subtotal, the comment, a total and cash of 6.50.
        const QStringList tape = QString::fromUtf8(readBytes(sim.tapePath())).split(u'\n');
        qsizetype at = 0;
        for (const char* pattern : {"^ΚΑΦΕΣ ΦΙΛΤΡΟΥ 2 +7\\.00 ", "^ΕΚΠΤΩΣΗ ΠΕΛΑΤΗ +-0\\.70 ", "^ΝΕΡΟ 500ML +0\\.50 ",
                                    "^ΕΚΠΤΩΣΗ ΜΕΡ\\.ΣΥΝ +-0\\.30$", "^ΠΕΛΑΤΗΣ 1044$", "^ΣΥΝΟΛΟ +6\\.50$",
                                    "^ΜΕΤΡΗΤΑ +6\\.50$"}) {
            const QRegularExpression re(QString::fromUtf8(pattern));
            while (at < tape.size() && !re.match(tape[at]).hasMatch())
                ++at;
            ASSERT_LT(at++, tape.size()) << "tape lacks, in order: " << pattern << "\n"
                                         << tape.join(u'\n').toStdString();
        }
    }
};

} // namespace

TEST_F(WorkedReceiptEndToEnd, OverTcpAfterAnEarlierDayTheReceiptCarriesTheProgressiveNumber)
{
    startRegister();
    // An earlier receipt and a Z make the day's progressive base differ from
    // the daily number, so the receipt line can't pass with the two mixed up.
    QByteArray earlier = sampleReceipt();
    earlier.replace("resFile:  result.txt", "resFile:  earlier.txt");
    print(earlier.append(" SND  x/7///\r\n"));
    const QByteArray earlierResult = readBytes(path(u"earlier.txt"_s));
    ASSERT_TRUE(earlierResult.contains("sndReply = 0;")) << earlierResult.toStdString();
    ASSERT_TRUE(earlierResult.endsWith("exitcode = 0\r\n"));

    printAndCheckWorkedReceipt();
    EXPECT_TRUE(resultLines().contains(u"receipt = 2, 1, -1"_s)) << "one receipt and one Z before it";
}

TEST_F(WorkedReceiptEndToEnd, OverASerialLineAt9600TheSameCommandsAndResult)
{
#ifndef Q_OS_UNIX
    GTEST_SKIP() << "the virtual register has no serial wire here";
#endif
    ASSERT_TRUE(sim.startPty(9600)) << sim.startError().toStdString();
    printAndCheckWorkedReceipt();
}
