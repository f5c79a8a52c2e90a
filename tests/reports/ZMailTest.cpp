#include "reports/MailSender.h"
#include "reports/ZMail.h"

#include "PrintQString.h"
#include "RecordedSends.h"
#include "ScriptedOperator.h"
#include "WaitFor.h"
#include "shell/Clock.h"
#include "shell/ModuleVariables.h"

#include <QCoreApplication>
#include <QDir>
#include <QEventLoop>
#include <QFile>
#include <QTemporaryDir>
#include <QThread>
#include <QTimer>
#include <gtest/gtest.h>

#include <atomic>
#include <future>

namespace {

const QDateTime kFirstReading(QDate(2026, 1, 2), QTime(23, 59, 10));

// Each reading of the wall time is a minute after the one before, so two
// readings that cross midnight differ in date and time.
class SteppingClock final : public Clock {
public:
    qint64 monotonicMs() const override { return 0; }
    void sleepMs(qint64) override {}
    void pumpFor(qint64) override {}
    QDateTime now() const override { return kFirstReading.addSecs(60 * readings_++); }
    int readings() const { return readings_; }

private:
    mutable int readings_ = 0;
};

// A ZMail whose sends are recorded, with the operator, clock and variables it talks to.
class ZMailTest : public ::testing::Test {
protected:
    ScriptedOperator op;
    SteppingClock clock;
    ModuleVariables vars;
    RecordedSends sends;
    QTemporaryDir home;
    ZMail zmail{op, clock, vars, home.path(), sends.function()};
};

} // namespace

TEST(ZMail, MailCarriesTheZFileWithBodyAndSubjectEachOnItsOwnClockReading)
{
    SteppingClock clock;
    const QLocale locale(QLocale::Greek, QLocale::Greece);

    const MailRequest mail = BuildZMail(QStringLiteral("  z@acct.gr "), QStringLiteral("7"),
                                        QStringLiteral("/opt/kerbano"), clock, locale);

    EXPECT_EQ(mail.address, QStringLiteral("z@acct.gr"));
    EXPECT_EQ(mail.attachments, QStringList{QStringLiteral("/opt/kerbano/Zfiles/Z0007.out")});
    EXPECT_EQ(mail.body, QStringLiteral("Βρείτε συνυμμένο το αρχείο του 'Ζ' με αριθμό 7 της ταμειακής μου για την "
                                        "ημερομηνία : ")
                             + locale.toString(kFirstReading, QLocale::ShortFormat));
    EXPECT_EQ(mail.subject, QStringLiteral("Αρχείο 'Ζ' ") + locale.toString(kFirstReading.addSecs(60), QLocale::ShortFormat));
    EXPECT_EQ(clock.readings(), 2);
}

TEST_F(ZMailTest, OnlyAFailedSendIsToldTitledByTheRegisterWithoutAReasonAndTheZFileStays)
{
    EXPECT_FALSE(zmail.send(QString(), QStringLiteral("1")));
    EXPECT_FALSE(zmail.send(QStringLiteral("   "), QStringLiteral("1")));
    QCoreApplication::processEvents();
    EXPECT_TRUE(sends.requests.isEmpty() && op.messages.isEmpty());
    EXPECT_EQ(clock.readings(), 0);

    QList<int> statuses;
    QObject::connect(&zmail, &ZMail::finished, [&](int status) { statuses.append(status); });
    ASSERT_TRUE(zmail.send(QStringLiteral("z@acct.gr"), QStringLiteral("1")));
    ASSERT_TRUE(waitFor(&zmail, &ZMail::finished));
    EXPECT_TRUE(op.messages.isEmpty());

    // A failure with its reason: warned, the reason logged, the Z file left as it was.
    QDir(home.path()).mkpath(QStringLiteral("Zfiles"));
    QFile zFile(home.filePath(QStringLiteral("Zfiles/Z0123.out")));
    ASSERT_TRUE(zFile.open(QIODevice::WriteOnly) && zFile.write(" POS ,  1,ABC\r\n") == 15);
    zFile.close();
    sends.answer = {-1, QStringLiteral("Ο διακομιστής αλληλογραφίας δεν απάντησε.")};
    QStringList logged;
    zmail.setFailureLog([&](const QString& line) { logged.append(line); });
    ASSERT_TRUE(zmail.send(QStringLiteral("z@acct.gr"), QStringLiteral("123")));
    ASSERT_TRUE(waitFor(&zmail, &ZMail::finished));
    EXPECT_EQ(sends.requests.last().attachments, QStringList{zFile.fileName()});
    ASSERT_EQ(op.messages.size(), 1);
    EXPECT_EQ(std::tuple(op.messages[0].title, op.messages[0].icon, op.messages[0].text),
              std::tuple(QStringLiteral("Μύνημα Kerbano"), Operator::Icon::Warning,
                         QStringLiteral("Λάθος κατά την αποστολή το email...\nΟ διακομιστής αλληλογραφίας δεν απάντησε.")));
    EXPECT_EQ(logged, QStringList{sends.answer.failure});
    ASSERT_TRUE(zFile.open(QIODevice::ReadOnly));
    EXPECT_EQ(zFile.readAll(), QByteArray(" POS ,  1,ABC\r\n"));

    vars.DeviceLabel = QStringLiteral("TEC FP 12345678");
    sends.answer = {-1, QString()};
    ASSERT_TRUE(zmail.send(QStringLiteral("z@acct.gr"), QStringLiteral("1")));
    ASSERT_TRUE(waitFor(&zmail, &ZMail::finished));
    ASSERT_EQ(op.messages.size(), 2);
    EXPECT_EQ(std::tuple(op.messages[1].title, op.messages[1].text), std::tuple(vars.DeviceLabel, QString(kZMailFailedText)));
    EXPECT_EQ(statuses, (QList<int>{0, -1, -1}));
}

TEST(MailSender, SendRunsOffTheCallersThreadAndTheOutcomeComesBackOnIt)
{
    std::promise<void> release;
    std::shared_future<void> gate = release.get_future().share();
    std::atomic<bool> ranOnCallersThread{true};
    QThread* const caller = QThread::currentThread();
    MailSender sender([&, gate](const MailRequest& request) {
        ranOnCallersThread = QThread::currentThread() == caller;
        gate.wait();
        return MailOutcome{-1, request.subject};
    });
    QThread* deliveredOn = nullptr;
    QString failure;
    QObject::connect(&sender, &MailSender::finished, [&](int status, const QString& text) {
        deliveredOn = QThread::currentThread();
        failure = text;
        EXPECT_EQ(status, -1);
    });

    sender.start({QStringLiteral("z@acct.gr"), QStringLiteral("first"), {}, {}});
    // start came back while the send is still held.
    EXPECT_EQ(sender.pending(), 1);
    release.set_value();
    ASSERT_TRUE(waitFor(&sender, &MailSender::finished));

    EXPECT_FALSE(ranOnCallersThread);
    EXPECT_EQ(deliveredOn, caller);
    EXPECT_EQ(failure, QStringLiteral("first"));
    EXPECT_EQ(sender.pending(), 0);
}
