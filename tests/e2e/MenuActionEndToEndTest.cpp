// Menu actions by name: kerbano --headless --run NAME on the virtual register,
// and the day's reports: receipts printed by the real kerbano, then --run
// zrep021, whose Z is followed by the Z file when param.ini asks for it.

#include "SimWorld.h"

namespace {
constexpr int kReceipts = 3;
constexpr int kZFileQueries = 26;

// The amount at the end of a Z file line, in cents.
qint64 cents(const QString& field)
{
    return qRound64(field.trimmed().toDouble() * 100.0);
}

class MenuActionEndToEnd : public SimWorld {
protected:
    void SetUp() override { startRegister(); }
};
} // namespace

// Version info, the financial X and an action not yet built, one after another.
TEST_F(MenuActionEndToEnd, EachActionFindsTheRegisterRunsAndEndsOrSaysItIsNotBuilt)
{
    writeParams(u"[AutoStar]=yes\r\n"_s); // passed over: a run of one action never starts polling
    const KerbanoRun ver = runAction(u"Ver"_s);
    const QString out = QString::fromUtf8(ver.out);
    EXPECT_TRUE(out.contains(u"Φορολογικός Εκτυπωτής ON-Line, Έτοιμος Για Εκτυπωσεις\n"_s)) << out.toStdString();
    EXPECT_FALSE(out.contains(u"Αναμονη Για Στοιχεια"_s)) << out.toStdString();
    const QString err = QString::fromUtf8(ver.err);
    EXPECT_TRUE(err.contains(u"Version POS                : "_s)) << err.toStdString();
    EXPECT_TRUE(err.contains(u"Version Πρωτοκόλλου : "_s)) << err.toStdString();
    QStringList heard = sim.journalCommands();
    ASSERT_FALSE(heard.isEmpty());
    EXPECT_EQ(heard.first(), u"a/"_s);
    EXPECT_EQ(heard.last(), u"v/"_s);
    EXPECT_EQ(heard.count(u"v/"_s), 1);

    const KerbanoRun x = runAction(u"xrep0"_s);
    EXPECT_TRUE(QString::fromUtf8(x.out).contains(u"Το Ισοζυγειο ολοκληρωθηκε\n"_s));
    heard = sim.journalCommands();
    ASSERT_GE(heard.size(), 3);
    EXPECT_EQ(heard.mid(heard.size() - 3),
              (QStringList{"x/1/1/99999/", "7/0/1/            0.00/", "7/0/2/ *** Ετοιμη *** /"}));

    // The answer is the option's own, never the system's command line.
    const KerbanoRun help = runAction(u"help_text"_s, {u"2"_s}, 3);
    EXPECT_TRUE(QString::fromUtf8(help.err).contains(u"Η λειτουργία Ρυθμίσεις δεν είναι ακόμη διαθέσιμη."_s))
        << help.err.toStdString();
    EXPECT_TRUE(help.out.isEmpty()) << help.out.toStdString();
    EXPECT_EQ(sim.journalCommands(), heard) << "the register is left alone";
}

TEST_F(MenuActionEndToEnd, TheZOfADayOfThreeReceiptsLeavesAZFileWithTheDaysFigures)
{
    for (int i = 0; i < kReceipts; ++i)
        print(sampleReceipt());
    writeParams(u"[ZeMail  ]=1\r\n"_s);
    const int before = int(sim.journalCommands().size());

    const KerbanoRun z = runAction(u"zrep021"_s);
    const QString out = QString::fromUtf8(z.out);
    EXPECT_TRUE(out.contains(u"Το Ισοζύγιο ολοκληρώθηκε\n"_s)) << out.toStdString();
    EXPECT_TRUE(out.contains(u"Επιτυχής δημιουργία του αρχείου 'Ζ'\n"_s)) << out.toStdString();

    // One Z, then the Z file's queries; the Z is never sent twice.
    const QStringList heard = sim.journalCommands(before);
    EXPECT_EQ(heard.count(u"x/7///"_s), 1);
    ASSERT_GE(heard.size(), kZFileQueries);
    EXPECT_EQ(heard.mid(heard.size() - kZFileQueries, 4), (QStringList{"e/", "0/", "i/", "t/"}));
    EXPECT_EQ(heard.last(), u"s/"_s);

    const QByteArray bytes = readBytes(path(u"Zfiles/Z0001.out"_s));
    ASSERT_TRUE(bytes.endsWith("\r\n"));
    const QStringList lines = codepage::fromWin1253(bytes.chopped(2)).split(u"\r\n"_s);
    ASSERT_GE(lines.size(), 14);
    EXPECT_TRUE(lines[0].startsWith(u" POS ,  1,"_s)) << lines[0].toStdString();
    EXPECT_TRUE(lines[1].startsWith(u" REP ,   1,"_s)) << lines[1].toStdString();

    // The figures agree with each other: categories and departments add up to the total.
    qint64 byCategory = 0, byDepartment = 0, total = -1;
    QString receipts;
    for (const QString& line : lines) {
        const QStringList f = line.split(u',');
        if (line.startsWith(u" VAT ,"_s))
            byCategory += cents(f[4]);
        else if (line.startsWith(u" DEP ,"_s))
            byDepartment += cents(f[4]);
        else if (line.startsWith(u" TOT ,"_s))
            total = cents(f[1]);
        else if (line.startsWith(u" REC ,"_s))
            receipts = f[1].trimmed();
    }
    EXPECT_GT(total, 0);
    EXPECT_EQ(total % kReceipts, 0);
    EXPECT_EQ(byCategory, total);
    EXPECT_EQ(byDepartment, total);
    EXPECT_EQ(receipts, QString::number(kReceipts));
    EXPECT_EQ(lines.last(), u" PO  ,          0.00"_s);
}

TEST_F(MenuActionEndToEnd, WithZeMailAtZeroTheZLeavesNoZFile)
{
    writeParams(u"[ZeMail  ]=0\r\n"_s);
    const KerbanoRun z = runAction(u"zrep021"_s);
    EXPECT_EQ(sim.journalCommands().count(u"x/7///"_s), 1);
    EXPECT_FALSE(QDir(path(u"Zfiles"_s)).exists());
}

TEST_F(MenuActionEndToEnd, TheTaxServerSetupProgramsTheRegisterFromTheAnswersGiven)
{
    writeParams();
    const QString key(64, u'A');
    const KerbanoRun setup = runAction(u"basic_programming"_s, {key, u"1"_s,
                                       u"http://srv.example/eafdss/myweb/websend.php"_s, u"https://q.example/q1.php"_s});
    EXPECT_TRUE(sim.journalCommands().contains(u"]/1/0//http:~~srv.example~eafdss~myweb~websend.php/80/"_s + key
                                               + u"/https:~~q.example~q1.php/"_s))
        << sim.journalCommands().join(u'\n').toStdString();
}
