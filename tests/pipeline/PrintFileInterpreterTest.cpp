#include "InterpreterFixture.h"
#include "config/VatFile.h"
#include "pipeline/PrintFileColumns.h"

namespace {

// The settings of the worked receipt: descriptions, quantities and
// departments from the line, comments on, payment number from the line.
JobSettings receiptSettings()
{
    JobSettings s;
    s.printDesc = s.comments = s.dirDepa = s.quantity = u"true"_s;
    s.printCode = u"true N"_s;
    s.currency = u"0"_s;
    return s;
}

class PrintFileInterpreterTest : public InterpreterTest {
protected:
    void SetUp() override
    {
        settings = receiptSettings();
        vars.JobTag = u"00417"_s;
        WriteVatsFile(dir.filePath(u"vats.dat"_s), {24.0, 13.0, 6.0, 17.0, 9.0});
    }
};

// A register whose 9/ answers with reply.
std::function<bool(const QString&, ScriptedLink::Answer&)> balanceAnswer(const QString& reply)
{
    return [reply](const QString& command, ScriptedLink::Answer& answer) {
        if (command != u"9/")
            return false;
        answer = {0, reply};
        return true;
    };
}

} // namespace

TEST_F(PrintFileInterpreterTest, TagsAreKnownOnlyInTheirOwnCase)
{
    EXPECT_EQ(run({pluLine(u"ΧΑΡΤΙ"_s, u"1"_s, u"2.00"_s, u"24.00"_s, u"1"_s).replace(u" PLU"_s, u" plu"_s),
                   u" Dis      0.30"_s,            // mixed case: no tag
                   u" DIS      0.30"_s,            // dis is lower case only
                   u" Tbo 005 ΤΡΑΠΕΖΙ"_s,          // mixed spelling of an upper-or-lower tag
                   u" total 1       2.00ΜΕΤΡΗΤΑ"_s, // any word beginning "to" is a to line
                   u" PaY  1"_s,                    // pay in any case: a blank and 1 in columns 7-8
                   u"garbage that matches nothing"_s}),
              (QStringList{"3/S/ΧΑΡΤΙ//1.000/2.00/1/24.00/", "5/1/2.00/ΜΕΤΡΗΤΑ//////", "9/", "5/1/0.00///////"}));
}

TEST_F(PrintFileInterpreterTest, SettingsChangeWhatAnItemSends)
{
    settings.quantity = u"fals"_s;
    EXPECT_EQ(run({pluLine(u"ΧΑΡΤΙ"_s, u"3"_s, u"2.00"_s, u"24.00"_s, u"5"_s)}),
              QStringList{"3/S/ΧΑΡΤΙ//1.000/6.00/5/24.00/"});

    settings = receiptSettings();
    settings.dirDepa = u"fals"_s; // the department comes from the VAT rate
    EXPECT_EQ(runAfresh({pluLine(u"ΝΕΡΟ"_s, u"1"_s, u"0.50"_s, u"13.00"_s, u"7"_s)}),
              QStringList{"3/S/ΝΕΡΟ//1.000/0.50/2/13.00/"});

    settings = receiptSettings();
    settings.printDesc = u"fals"_s; // the register's department name is printed
    link.responder = [](const QString& command, ScriptedLink::Answer& answer) {
        if (command == u"d/3")
            answer = {0, u"00/00/00/ ΑΡΤΟΠΟΙΙΑ /3/"_s};
        else if (command == u"d/4")
            answer = {14, u"unknown department"_s};
        return command.startsWith(u"d/");
    };
    EXPECT_EQ(runAfresh({pluLine(u"ΨΩΜΙ"_s, u"1"_s, u"1.20"_s, u"6.00"_s, u"3"_s),
                         pluLine(u"ΚΑΤΙ"_s, u"1"_s, u"1.00"_s, u"24.00"_s, u"4"_s)}),
              (QStringList{"d/3", "3/S/ΑΡΤΟΠΟΙΙΑ//1.000/1.20/3/6.00/", "d/4",
                           "3/S/ΑΝΥΠΑΡΚΤΟ ΤΜΗΜΑ//1.000/1.00/4/24.00/"}));

    settings = receiptSettings();
    settings.comments = u"fals"_s;
    EXPECT_TRUE(runAfresh({u" com  ΔΕΝ ΤΥΠΩΝΕΤΑΙ"_s}).isEmpty());
}

TEST_F(PrintFileInterpreterTest, FieldsFilledToTheirFullWidthAreCutByTheirColumns)
{
    // Every field fills its columns and touches its neighbours; the columns
    // between the fields hold digits that belong to none of them.
    const auto fullLine = [](const QString& quantity) {
        return u" PLU 12345678901234ΑΒΓΔΕΖΗΘΙΚΛΜΝΞΟΠΡΣΤΥΦΧΨΩ5555"_s + quantity + u"66123456.7877724.00999888"_s;
    };
    ASSERT_EQ(fullLine(u"-12.500"_s).indexOf(u"-12.500"_s), 47);
    EXPECT_EQ(run({fullLine(u"100.250"_s), fullLine(u"-12.500"_s)}),
              (QStringList{"3/S/ΑΒΓΔΕΖΗΘΙΚΛΜΝΞΟ/ΠΡΣΤΥΦΧΨΩ/100.250/123456.78/999/24.00/",
                           "3/R/ΑΒΓΔΕΖΗΘΙΚΛΜΝΞΟ/ΠΡΣΤΥΦΧΨΩ/12.500/123456.78/999/24.00/"}));
}

TEST_F(PrintFileInterpreterTest, ItemFieldsFallBackAndCleanTheirText)
{
    // No price sells at 1.00; a slash and accents never reach the register.
    EXPECT_EQ(run({pluLine(u"καφές/γάλα"_s, u"2"_s, QString(), u"24.00"_s, u"1"_s)}),
              QStringList{"3/S/ΚΑΦΕΣ-ΓΑΛΑ//2.000/1.00/1/24.00/"});

    // A fee line of another department sells with its VAT category in place of the rate.
    EXPECT_EQ(runAfresh({pluLine(u"ΛΠΣΜ-13 ΣΑΚΟΥΛΑ"_s, u"1"_s, u"0.09"_s, u"24.00"_s, u"2"_s),
                         pluLine(u"ΛΠΣΜ-13 ΣΑΚΟΥΛΑ"_s, u"1"_s, u"0.09"_s, u"24.00"_s, u"13"_s)}),
              (QStringList{"3/S/ΛΠΣΜ-13 ΣΑΚΟΥΛΑ//1.000/0.09/2/1.00/", "3/S/ΛΠΣΜ-13 ΣΑΚΟΥΛΑ//1.000/0.09/13/24.00/"}));
    EXPECT_EQ(FeeDepartment(u"ΛΠΣM ΣΑΚΟΥΛΑ"_s, 2), 10); // Latin M, no department named
    EXPECT_EQ(FeeDepartment(u"ΣΑΚΟΥΛΑ"_s, 2), 2);
}

TEST_F(PrintFileInterpreterTest, SpecialReturnFoldsItsDiscountIntoThePriceAndExplainsIt)
{
    vars.spRet = true;
    const QString item = pluLine(u"ΕΠΙΣΤΡΟΦΗ"_s, u"2"_s, u"-1.50"_s, u"24.00"_s, u"1"_s);
    EXPECT_EQ(run({item, u" mod  -10%"_s, u" com  ΜΕΤΑ"_s}),
              (QStringList{"3/R/ΕΠΙΣΤΡΟΦΗ//1.000/2.70/1/24.00/", "7/1/1/2 ΤΕΜ ΕΚΠΤ=10%=0.3 ΕΥΡΩ/", "7/1/1/ΜΕΤΑ/"}));
    EXPECT_TRUE(link.sent.at(1).quiet);

    // A note on the discount line replaces the explanation.
    EXPECT_EQ(runAfresh({item, u" mod  0.40      ΑΛΛΑΓΗ ΜΕΓΕΘΟΥΣ"_s}),
              (QStringList{"3/R/ΕΠΙΣΤΡΟΦΗ//1.000/2.60/1/24.00/", "7/1/1/*ΑΛΛΑΓΗ ΜΕΓΕΘΟΥΣ/"}));

    // A return that folds to nothing sells nothing and takes its discount line with it.
    EXPECT_TRUE(runAfresh({pluLine(u"ΜΗΔΕΝ"_s, u"1"_s, u"-0.50"_s, u"24.00"_s, u"1"_s), u" mod  0.50"_s}).isEmpty());

    // On the last line a negative item is an ordinary return.
    EXPECT_EQ(runAfresh({item}), QStringList{"3/R/ΕΠΙΣΤΡΟΦΗ//2.000/1.50/1/24.00/"});
}

TEST_F(PrintFileInterpreterTest, DiscountLinesWithNothingToTakeSendNothing)
{
    EXPECT_TRUE(run({u" mod  %"_s, u" mod"_s, u" dis"_s, u" dis      0.00"_s}).isEmpty());
    EXPECT_EQ(run({u" dis     -1.00"_s}), QStringList{"4/1.00//ΕΚΠΤΩΣΗ ΜΕΡ.ΣΥΝ/1/1/1/"});
    EXPECT_EQ(receipt.DiscountScope, 1); // the subtotal's
}

TEST_F(PrintFileInterpreterTest, PaymentAndVoidLinesFollowTheirFields)
{
    link.responder = balanceAnswer(u"00/00/00/0/3/6.50/6.50/0.00/7/4.20/1/"_s);
    settings.currency = u"2"_s; // always payment 1, whatever column 8 says
    EXPECT_EQ(run({u" pay  x1"_s, u" pay  3"_s, u" tot   3      10.00"_s, u" to    5"_s, u" can"_s, u" can   123"_s,
                   u" can   abc"_s, u" voi"_s}),
              (QStringList{"9/", "5/3/4.20///////", "5/1/10.00///////", "5/1/10.00///////", "+/0/99/", "+/123/99/",
                           "+/123/99/", "+/"}));
    EXPECT_EQ(link.shownMessages, (QList<QPair<qint16, QString>>{{99, u"Λάθος Αριθμός πληρωμής στο αρχείο!"_s}}));

    // A to line with no usable payment number is no error: nothing at all.
    settings.currency = u"0"_s;
    EXPECT_TRUE(runAfresh({u" tot   x       5.00ΜΕΤΡΗΤΑ"_s, u" tot"_s}).isEmpty());
    EXPECT_EQ(person.messages.size(), 0);

    // Voiding and cancelling belong to the table while one is open.
    receipt.TableMode = 1;
    EXPECT_TRUE(run({u" can   5"_s, u" voi"_s}).isEmpty());
}

TEST_F(PrintFileInterpreterTest, CardLinesPayTheRegistersBalanceOrTheLineAmountThroughTheTerminal)
{
    ASSERT_EQ(WritePayEftRecord(dir.filePath(u"payeft.dat"_s), cardRecord(2, 1)), 0);
    link.responder = balanceAnswer(u"00/00/00/1/2/6.50/0.00/0.00/42/6.50/1287/"_s);
    EXPECT_EQ(run({u" pay  2"_s, u" tot   2       6.50ΚΑΡΤΑ"_s}),
              (QStringList{"9/", "5/3/6.50////1/1/", "5/99/0/ ///1/1/", "5/3/6.50/ΚΑΡΤΑ///1/1/", "5/99/0/ ///1/1/"}));
    EXPECT_TRUE(link.shownMessages.isEmpty());
    EXPECT_TRUE(receipt.PaymentDone);
}

TEST_F(PrintFileInterpreterTest, RawLinesReachTheRegisterAsWrittenAndSndAnswersInTheResultFile)
{
    link.queue.push_back({0, u"00/00/00/a\nb\n"_s});
    EXPECT_EQ(run({u" SND  x/1/αβ/"_s, u" prg P/1/Καφές/"_s}), (QStringList{"x/1/αβ/", "P/1/Καφές/"}));
    EXPECT_EQ(results.lines, QStringList{"sndReply = 0;00/00/00/a~b~"});
}

TEST_F(PrintFileInterpreterTest, ExitEndsTheWalkAndMkzRunsTheDailyZ)
{
    EXPECT_EQ(run({u" com  ΠΡΙΝ"_s, u" MKZ"_s, u" exit"_s, u" com  ΜΕΤΑ"_s}), QStringList{"7/1/1/ΠΡΙΝ/"});
    EXPECT_TRUE(zRun);
    EXPECT_EQ(link.opens, 1); // the Z run leaves the link closed; MKZ opens it again
}

TEST_F(PrintFileInterpreterTest, ShortAndHostileLinesRunWithEmptyFieldsOrAreSkippedAndSoAreLinesPastTheCounter)
{
    const QStringList sent = run({
        u" P"_s,                                                                    // no tag
        QString(10000, u'x'),                                                       // no tag
        u" PLU"_s,                                                                  // every field empty
        pluLine(u"ΓΡΑΜΜΑΤΑ"_s, u"abc"_s, u"1.00"_s, u"zz"_s, u"q"_s),               // letters read as 0
        u" PLU "_s + QString(10000, u'9'),
    });
    ASSERT_EQ(sent.size(), 3);
    EXPECT_EQ(sent.at(0), u"3/S///0.000/1.00/0/0.00/"_s);
    EXPECT_EQ(sent.at(1), u"3/S/ΓΡΑΜΜΑΤΑ//0.000/1.00/0/0.00/"_s);
    EXPECT_TRUE(sent.at(2).startsWith(u"3/S/999999999999999/999999999/"_s));

    // Lines beyond the sixteen-bit counter are never reached.
    QStringList lines(kMaxLines, QString());
    EXPECT_TRUE(runAfresh(lines << u" com  ΑΡΓΑ"_s).isEmpty());
}
