#include "config/VatFile.h"
#include "operations/FPrinterOperations.h"
#include "records/ReceiptState.h"
#include "payments/PaymentMap.h"
#include "payments/EftCardRoads.h"
#include "pipeline/PrintFileColumns.h"
#include "pipeline/PrintFileInterpreter.h"
#include "shell/Clock.h"
#include "shell/CodePage.h"
#include "shell/FormModel.h"
#include "shell/ModuleVariables.h"
#include "shell/FileProcedures.h"
#include "shell/ProgressIndicator.h"
#include "shell/ResultSink.h"

#include "ScriptedLink.h"
#include "ScriptedOperator.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace {

// The settings of the worked receipt: descriptions, quantities and
// departments from the line, comments on, payment number from the line.
JobSettings receiptSettings()
{
    JobSettings s;
    s.printDesc = QStringLiteral("true");
    s.printCode = QStringLiteral("true N");
    s.comments = QStringLiteral("true");
    s.currency = QStringLiteral("0");
    s.dirDepa = QStringLiteral("true");
    s.quantity = QStringLiteral("true");
    return s;
}

// A PLU line with its fields in their columns.
QString pluLine(const QString& description, const QString& quantity, const QString& price,
                const QString& vat, const QString& department)
{
    QString line = QStringLiteral(" PLU 5201234567890 ");
    line += description.leftJustified(28, QLatin1Char(' '));
    line += quantity.rightJustified(7, QLatin1Char(' '));
    line += QStringLiteral("  ") + price.rightJustified(9, QLatin1Char(' '));
    line += QStringLiteral("   ") + vat.rightJustified(5, QLatin1Char(' '));
    line += department.rightJustified(3, QLatin1Char(' '));
    return line;
}

class PrintFileInterpreterTest : public ::testing::Test {
protected:
    QTemporaryDir dir;
    VirtualClock clock;
    ScriptedOperator person;
    FormModel form;
    ScriptedLink link;
    ReceiptState receipt;
    ModuleVariables vars;
    clsind progress{form};
    JobSettings settings = receiptSettings();
    bool zRun = false;
    EftCardRoads cards{link, vars, person, clock};
    // The job's writer as the interpreter sees it: lines to the result file.
    struct : ResultSink {
        ModuleVariables* vars = nullptr;
        void appendResultLine(const QString& line) override { mFile::AppendLine(vars->ResultPath, line); }
    } results;

    void SetUp() override
    {
        vars.ResultPath = dir.filePath(QStringLiteral("result.txt"));
        results.vars = &vars;
        vars.JobTag = QStringLiteral("00417");
        WriteVatsFile(dir.filePath(QStringLiteral("vats.dat")), {24.0, 13.0, 6.0, 17.0, 9.0});
    }

    QStringList run(const QStringList& lines)
    {
        FPrinterOperations printer(link, receipt, vars, person, form, progress,
                                   dir.filePath(QStringLiteral("payeft.dat")));
        printer.setCardRoads(cards);
        InterpreterContext context{receipt, vars, printer, link, person, clock, cards, results, dir.path(),
                                   [this] { zRun = true; }};
        PrintFileInterpreter interpreter(std::move(context), settings);
        interpreter.run(lines);
        return link.commands();
    }

    QStringList resultLines() const
    {
        QFile f(vars.ResultPath);
        if (!f.open(QIODevice::ReadOnly))
            return {};
        return codepage::fromWin1253(f.readAll()).split(QStringLiteral("\r\n"), Qt::SkipEmptyParts);
    }
};

} // namespace

TEST_F(PrintFileInterpreterTest, WorkedReceiptSendsItsSaleDiscountsCommentPaymentAndFooter)
{
    const QStringList lines = {
        QStringLiteral("resFile:  \\shop\\res00417.txt"),
        QStringLiteral("tag:  00417"),
        QStringLiteral(" PLU 5201234567890 ΚΑΦΕΣ ΦΙΛΤΡΟΥ 250Γ                2       3.50   24.00  1"),
        QStringLiteral(" mod  -10%      ΕΚΠΤΩΣΗ ΠΕΛΑΤΗ"),
        QStringLiteral(" PLU 5200000000011 ΝΕΡΟ 500ML                        1       0.50   13.00  2"),
        QStringLiteral(" dis      0.30"),
        QStringLiteral(" com  ΠΕΛΑΤΗΣ 1044"),
        QStringLiteral(" tot   1       6.50ΜΕΤΡΗΤΑ"),
        QStringLiteral(" foo  ΣΑΣ ΕΥΧΑΡΙΣΤΟΥΜΕ"),
        QString()};
    EXPECT_EQ(run(lines), (QStringList{
                              "3/S/ΚΑΦΕΣ ΦΙΛΤΡΟΥ 2//2.000/3.50/1/24.00/",
                              "4/10.00//ΕΚΠΤΩΣΗ ΠΕΛΑΤΗ/0/0/0/",
                              "3/S/ΝΕΡΟ 500ML//1.000/0.50/2/13.00/",
                              "4/0.30//ΕΚΠΤΩΣΗ ΜΕΡ.ΣΥΝ/0/1/1/",
                              "7/1/1/ΠΕΛΑΤΗΣ 1044/",
                              "5/1/6.50/ΜΕΤΡΗΤΑ//////",
                              "j/ΣΑΣ ΕΥΧΑΡΙΣΤΟΥΜΕ/./././////",
                          }));
    EXPECT_EQ(receipt.DiscountScope, 1);
    EXPECT_TRUE(receipt.PaymentDone);
}

TEST_F(PrintFileInterpreterTest, TagsAreKnownOnlyInTheirOwnCase)
{
    const QStringList sent = run({
        pluLine(QStringLiteral("ΧΑΡΤΙ"), QStringLiteral("1"), QStringLiteral("2.00"), QStringLiteral("24.00"),
                QStringLiteral("1"))
            .replace(QStringLiteral(" PLU"), QStringLiteral(" plu")),
        QStringLiteral(" Dis      0.30"),          // mixed case: no tag
        QStringLiteral(" DIS      0.30"),          // dis is lower case only
        QStringLiteral(" Tbo 005 ΤΡΑΠΕΖΙ"),        // mixed spelling of an upper-or-lower tag
        QStringLiteral(" total 1       2.00ΜΕΤΡΗΤΑ"), // any word beginning "to" is a to line
        QStringLiteral(" PaY  1"),                  // pay in any case: a blank and 1 in columns 7-8
        QStringLiteral("garbage that matches nothing"),
    });
    ASSERT_GE(sent.size(), 2);
    EXPECT_EQ(sent.at(0), QStringLiteral("3/S/ΧΑΡΤΙ//1.000/2.00/1/24.00/"));
    EXPECT_EQ(sent.at(1), QStringLiteral("5/1/2.00/ΜΕΤΡΗΤΑ//////"));
    EXPECT_EQ(sent.mid(2), (QStringList{"9/", "5/1/0.00///////"}));
}

TEST_F(PrintFileInterpreterTest, SettingsChangeWhatAnItemSends)
{
    settings.quantity = QStringLiteral("fals");
    EXPECT_EQ(run({pluLine(QStringLiteral("ΧΑΡΤΙ"), QStringLiteral("3"), QStringLiteral("2.00"),
                           QStringLiteral("24.00"), QStringLiteral("5"))}),
              QStringList{"3/S/ΧΑΡΤΙ//1.000/6.00/5/24.00/"});

    link.sent.clear();
    settings = receiptSettings();
    settings.dirDepa = QStringLiteral("fals"); // the department comes from the VAT rate
    EXPECT_EQ(run({pluLine(QStringLiteral("ΝΕΡΟ"), QStringLiteral("1"), QStringLiteral("0.50"),
                           QStringLiteral("13.00"), QStringLiteral("7"))}),
              QStringList{"3/S/ΝΕΡΟ//1.000/0.50/2/13.00/"});

    link.sent.clear();
    settings = receiptSettings();
    settings.printDesc = QStringLiteral("fals"); // the register's department name is printed
    link.responder = [](const QString& command, ScriptedLink::Answer& answer) {
        if (command == QLatin1String("d/3")) {
            answer = {0, QStringLiteral("00/00/00/ ΑΡΤΟΠΟΙΙΑ /3/")};
            return true;
        }
        if (command == QLatin1String("d/4")) {
            answer = {14, QStringLiteral("unknown department")};
            return true;
        }
        return false;
    };
    EXPECT_EQ(run({pluLine(QStringLiteral("ΨΩΜΙ"), QStringLiteral("1"), QStringLiteral("1.20"),
                           QStringLiteral("6.00"), QStringLiteral("3")),
                   pluLine(QStringLiteral("ΚΑΤΙ"), QStringLiteral("1"), QStringLiteral("1.00"),
                           QStringLiteral("24.00"), QStringLiteral("4"))}),
              (QStringList{"d/3", "3/S/ΑΡΤΟΠΟΙΙΑ//1.000/1.20/3/6.00/", "d/4",
                           "3/S/ΑΝΥΠΑΡΚΤΟ ΤΜΗΜΑ//1.000/1.00/4/24.00/"}));

    link.sent.clear();
    link.responder = {};
    settings = receiptSettings();
    settings.comments = QStringLiteral("fals");
    EXPECT_TRUE(run({QStringLiteral(" com  ΔΕΝ ΤΥΠΩΝΕΤΑΙ")}).isEmpty());
}

TEST_F(PrintFileInterpreterTest, FieldsFilledToTheirFullWidthAreCutByTheirColumns)
{
    // Every field fills its columns and touches its neighbours; the columns
    // between the fields hold digits that belong to none of them.
    const auto fullLine = [](const QString& quantity) {
        return QStringLiteral(" PLU 12345678901234ΑΒΓΔΕΖΗΘΙΚΛΜΝΞΟΠΡΣΤΥΦΧΨΩ5555") + quantity
            + QStringLiteral("66123456.7877724.00999888");
    };
    ASSERT_EQ(fullLine(QStringLiteral("-12.500")).indexOf(QStringLiteral("-12.500")), 47);
    EXPECT_EQ(run({fullLine(QStringLiteral("100.250")), fullLine(QStringLiteral("-12.500"))}),
              (QStringList{"3/S/ΑΒΓΔΕΖΗΘΙΚΛΜΝΞΟ/ΠΡΣΤΥΦΧΨΩ/100.250/123456.78/999/24.00/",
                           "3/R/ΑΒΓΔΕΖΗΘΙΚΛΜΝΞΟ/ΠΡΣΤΥΦΧΨΩ/12.500/123456.78/999/24.00/"}));
}

TEST_F(PrintFileInterpreterTest, ItemFieldsFallBackAndCleanTheirText)
{
    // No price sells at 1.00; a slash and accents never reach the register.
    EXPECT_EQ(run({pluLine(QStringLiteral("καφές/γάλα"), QStringLiteral("2"), QString(),
                           QStringLiteral("24.00"), QStringLiteral("1"))}),
              QStringList{"3/S/ΚΑΦΕΣ-ΓΑΛΑ//2.000/1.00/1/24.00/"});

    // A fee line of another department sells with its VAT category in place of the rate.
    link.sent.clear();
    EXPECT_EQ(run({pluLine(QStringLiteral("ΛΠΣΜ-13 ΣΑΚΟΥΛΑ"), QStringLiteral("1"), QStringLiteral("0.09"),
                           QStringLiteral("24.00"), QStringLiteral("2")),
                   pluLine(QStringLiteral("ΛΠΣΜ-13 ΣΑΚΟΥΛΑ"), QStringLiteral("1"), QStringLiteral("0.09"),
                           QStringLiteral("24.00"), QStringLiteral("13"))}),
              (QStringList{"3/S/ΛΠΣΜ-13 ΣΑΚΟΥΛΑ//1.000/0.09/2/1.00/",
                           "3/S/ΛΠΣΜ-13 ΣΑΚΟΥΛΑ//1.000/0.09/13/24.00/"}));
    EXPECT_EQ(FeeDepartment(QStringLiteral("ΛΠΣM ΣΑΚΟΥΛΑ"), 2), 10); // Latin M, no department named
    EXPECT_EQ(FeeDepartment(QStringLiteral("ΣΑΚΟΥΛΑ"), 2), 2);
}

TEST_F(PrintFileInterpreterTest, SpecialReturnFoldsItsDiscountIntoThePriceAndExplainsIt)
{
    vars.spRet = true;
    const QString item = pluLine(QStringLiteral("ΕΠΙΣΤΡΟΦΗ"), QStringLiteral("2"), QStringLiteral("-1.50"),
                                 QStringLiteral("24.00"), QStringLiteral("1"));
    EXPECT_EQ(run({item, QStringLiteral(" mod  -10%"), QStringLiteral(" com  ΜΕΤΑ")}),
              (QStringList{"3/R/ΕΠΙΣΤΡΟΦΗ//1.000/2.70/1/24.00/", "7/1/1/2 ΤΕΜ ΕΚΠΤ=10%=0.3 ΕΥΡΩ/",
                           "7/1/1/ΜΕΤΑ/"}));
    EXPECT_TRUE(link.sent.at(1).quiet);

    // A note on the discount line replaces the explanation.
    link.sent.clear();
    EXPECT_EQ(run({item, QStringLiteral(" mod  0.40      ΑΛΛΑΓΗ ΜΕΓΕΘΟΥΣ")}),
              (QStringList{"3/R/ΕΠΙΣΤΡΟΦΗ//1.000/2.60/1/24.00/", "7/1/1/*ΑΛΛΑΓΗ ΜΕΓΕΘΟΥΣ/"}));

    // A return that folds to nothing sells nothing and takes its discount line with it.
    link.sent.clear();
    EXPECT_TRUE(run({pluLine(QStringLiteral("ΜΗΔΕΝ"), QStringLiteral("1"), QStringLiteral("-0.50"),
                             QStringLiteral("24.00"), QStringLiteral("1")),
                     QStringLiteral(" mod  0.50")})
                    .isEmpty());

    // On the last line a negative item is an ordinary return.
    link.sent.clear();
    EXPECT_EQ(run({item}), QStringList{"3/R/ΕΠΙΣΤΡΟΦΗ//2.000/1.50/1/24.00/"});
}

TEST_F(PrintFileInterpreterTest, DiscountLinesWithNothingToTakeSendNothing)
{
    EXPECT_TRUE(run({QStringLiteral(" mod  %"), QStringLiteral(" mod"), QStringLiteral(" dis"),
                     QStringLiteral(" dis      0.00")})
                    .isEmpty());
    EXPECT_EQ(run({QStringLiteral(" dis     -1.00")}), QStringList{"4/1.00//ΕΚΠΤΩΣΗ ΜΕΡ.ΣΥΝ/1/1/1/"});
}

TEST_F(PrintFileInterpreterTest, PaymentAndVoidLinesFollowTheirFields)
{
    link.responder = [](const QString& command, ScriptedLink::Answer& answer) {
        if (command == QLatin1String("9/")) {
            answer = {0, QStringLiteral("00/00/00/0/3/6.50/6.50/0.00/7/4.20/1/")};
            return true;
        }
        return false;
    };
    settings.currency = QStringLiteral("2"); // always payment 1, whatever column 8 says
    EXPECT_EQ(run({QStringLiteral(" pay  x1"), QStringLiteral(" pay  3"), QStringLiteral(" tot   3      10.00"),
                   QStringLiteral(" to    5"), QStringLiteral(" can"), QStringLiteral(" can   123"),
                   QStringLiteral(" can   abc"), QStringLiteral(" voi")}),
              (QStringList{"9/", "5/3/4.20///////", "5/1/10.00///////", "5/1/10.00///////", "+/0/99/",
                           "+/123/99/", "+/123/99/", "+/"}));
    ASSERT_EQ(link.shownMessages.size(), 1);
    EXPECT_EQ(link.shownMessages.first(), qMakePair(qint16(99), QStringLiteral("Λάθος Αριθμός πληρωμής στο αρχείο!")));

    // A to line with no usable payment number is no error: nothing at all.
    link.sent.clear();
    settings.currency = QStringLiteral("0");
    EXPECT_TRUE(run({QStringLiteral(" tot   x       5.00ΜΕΤΡΗΤΑ"), QStringLiteral(" tot")}).isEmpty());
    EXPECT_EQ(person.messages.size(), 0);

    // Voiding and cancelling belong to the table while one is open.
    receipt.TableMode = 1;
    EXPECT_TRUE(run({QStringLiteral(" can   5"), QStringLiteral(" voi")}).isEmpty());
}

TEST_F(PrintFileInterpreterTest, CardLinesPayTheRegistersBalanceOrTheLineAmountThroughTheTerminal)
{
    PayEftRecord card;
    card.payId = 2;
    card.ecrPayment = 3;
    card.ecrEft = 1;
    card.active = -1;
    ASSERT_EQ(WritePayEftRecord(dir.filePath(QStringLiteral("payeft.dat")), card), 0);
    link.responder = [](const QString& command, ScriptedLink::Answer& answer) {
        if (command == u"9/")
            answer.reply = QStringLiteral("00/00/00/1/2/6.50/0.00/0.00/42/6.50/1287/");
        return command == u"9/";
    };
    const QStringList sent = run({QStringLiteral(" pay  2"), QStringLiteral(" tot   2       6.50ΚΑΡΤΑ")});
    EXPECT_EQ(sent, (QStringList{"9/", "5/3/6.50////1/1/", "5/99/0/ ///1/1/",
                                 "5/3/6.50/ΚΑΡΤΑ///1/1/", "5/99/0/ ///1/1/"}));
    EXPECT_TRUE(link.shownMessages.isEmpty());
    EXPECT_TRUE(receipt.PaymentDone);
}

TEST_F(PrintFileInterpreterTest, RawLinesReachTheRegisterAsWrittenAndSndAnswersInTheResultFile)
{
    link.queue.push_back({0, QStringLiteral("00/00/00/a\nb\n")});
    EXPECT_EQ(run({QStringLiteral(" SND  x/1/αβ/"), QStringLiteral(" prg P/1/Καφές/")}),
              (QStringList{"x/1/αβ/", "P/1/Καφές/"}));
    EXPECT_EQ(resultLines(), QStringList{"sndReply = 0;00/00/00/a~b~"});
}

TEST_F(PrintFileInterpreterTest, ExitEndsTheWalkAndMkzRunsTheDailyZ)
{
    EXPECT_EQ(run({QStringLiteral(" com  ΠΡΙΝ"), QStringLiteral(" MKZ"), QStringLiteral(" exit"),
                   QStringLiteral(" com  ΜΕΤΑ")}),
              (QStringList{"7/1/1/ΠΡΙΝ/"}));
    EXPECT_TRUE(zRun);
    EXPECT_EQ(link.opens, 1); // the Z run leaves the link closed; MKZ opens it again
}

TEST_F(PrintFileInterpreterTest, ShortAndHostileLinesRunWithEmptyFieldsOrAreSkipped)
{
    const QStringList sent = run({
        QStringLiteral(" P"),                                   // no tag
        QString(10000, QLatin1Char('x')),                        // no tag
        QStringLiteral(" PLU"),                                 // every field empty
        pluLine(QStringLiteral("ΓΡΑΜΜΑΤΑ"), QStringLiteral("abc"), QStringLiteral("1.00"),
                QStringLiteral("zz"), QStringLiteral("q")),     // letters read as 0
        QStringLiteral(" PLU ") + QString(10000, QLatin1Char('9')),
    });
    ASSERT_EQ(sent.size(), 3);
    EXPECT_EQ(sent.at(0), QStringLiteral("3/S///0.000/1.00/0/0.00/"));
    EXPECT_EQ(sent.at(1), QStringLiteral("3/S/ΓΡΑΜΜΑΤΑ//0.000/1.00/0/0.00/"));
    EXPECT_TRUE(sent.at(2).startsWith(QStringLiteral("3/S/999999999999999/999999999/")));
}

TEST_F(PrintFileInterpreterTest, LinesBeyondTheSixteenBitCounterAreNeverReached)
{
    QStringList lines(kMaxLines, QString());
    lines << QStringLiteral(" com  ΑΡΓΑ");
    EXPECT_TRUE(run(lines).isEmpty());
}
