// frmparam: the settings round trip through param.ini, vats.dat and mail.ini,
// and the saves it refuses without writing a byte.
#include "DataFile.h"
#include "PrintQString.h"
#include "config/MailSettings.h"
#include "config/ParamFileReader.h"
#include "config/VatFile.h"
#include "shell/CodePage.h"
#include "ui/ParamWindow.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDate>
#include <QFile>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace Qt::Literals::StringLiterals;

namespace {

class ParamWindowTest : public ::testing::Test {
protected:
    QTemporaryDir dir;
    SettingsFiles files{dir.filePath(u"param.ini"_s), dir.filePath(u"vats.dat"_s), dir.filePath(u"mail.ini"_s)};
    QStringList told;

    std::unique_ptr<ParamWindow> open(StartOnlySettings startOnly = {})
    {
        auto w = std::make_unique<ParamWindow>(files, startOnly);
        w->setTell([this](const QString& title, const QString& text, bool) { told << title + u": "_s + text; });
        return w;
    }
    template <typename W>
    static W* get(const ParamWindow& w, const char* name)
    {
        return qobject_cast<W*>(w.control(QString::fromLatin1(name)));
    }
    static void type(const ParamWindow& w, const char* name, const QString& text)
    {
        get<QLineEdit>(w, name)->setText(text);
    }
    QByteArray bytes(const QString& path) const
    {
        QFile f(path);
        return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
    }
};

} // namespace

TEST_F(ParamWindowTest, SavedSettingsWriteTheThirtyEightLineFileTheRatesAndMailIniAndReadBackTheSame)
{
    auto w = open(StartOnlySettings{true, false, QString(), 0});
    QSignalSpy ended(w.get(), &ParamWindow::savedEndProgram);
    type(*w, "comtxt", u"192.168.1.20"_s);
    EXPECT_TRUE(get<QComboBox>(*w, "baudtxt")->isHidden()); // an address has no speed
    type(*w, "filetxt", u"print"_s);
    type(*w, "location", u"\\ταμείο\\"_s);
    get<QCheckBox>(*w, "multi_print")->setChecked(true);
    get<QCheckBox>(*w, "print_code_numeric")->click();
    get<QCheckBox>(*w, "print_code_ascii")->click(); // takes the numeric one off
    get<QRadioButton>(*w, "total_2")->setChecked(true);
    get<QCheckBox>(*w, "ChkAuto")->setChecked(true);
    type(*w, "txtemail", u"z@shop.gr"_s);
    EXPECT_FALSE(get<QCheckBox>(*w, "chkAutomailsend")->isEnabled());
    const char* const rates[] = {"24", "13", "6", "0", "17.5"};
    for (int i = 0; i < 5; ++i)
        qobject_cast<QLineEdit*>(w->control(u"txtVatRate(%1)"_s.arg(i)))->setText(QString::fromLatin1(rates[i]));
    type(*w, "smtpHost", u"mail.shop.gr"_s);
    get<QComboBox>(*w, "smtpSecurity")->setCurrentIndex(1);
    type(*w, "smtpUser", u"kerbano"_s);
    type(*w, "smtpPassword", u"μυστικό"_s);
    type(*w, "smtpFrom", u"kerbano@shop.gr"_s);

    get<QPushButton>(*w, "OK")->click();
    EXPECT_EQ(ended.count(), 1);
    EXPECT_EQ(told, QStringList({"Kerbano-Προσοχή: Πρέπει να επανεκκινήσετε το Kerbano για ενεργοποίηση των μεταβολών "}));

    QStringList expected = golden(u"ui/param-window.txt"_s, u"saved"_s);
    expected.replaceInStrings(u"{today}"_s, QDate::currentDate().toString(u"MM-dd-yyyy"_s));
    EXPECT_EQ(codepage::fromWin1253(bytes(files.param)).split(u"\r\n"_s), expected << QString());

    VatRates stored{};
    ASSERT_EQ(ReadVatsFile(files.vats, stored), 0);
    EXPECT_DOUBLE_EQ(stored[0], 24.0);
    EXPECT_DOUBLE_EQ(stored[4], 17.5);
    MailSettings mail;
    QString problem;
    ASSERT_EQ(ReadMailSettings(files.mail, mail, problem), 0) << qPrintable(problem);
    EXPECT_EQ(mail.host, "mail.shop.gr");
    EXPECT_EQ(mail.security, MailSecurity::StartTls);
    EXPECT_EQ(mail.password, "μυστικό");

    // Opened again, the form shows what it wrote.
    auto again = open(StartOnlySettings{true, false, u"z@shop.gr"_s, 1});
    const ParamFormValues v = again->values();
    EXPECT_EQ(std::tuple(v.comtxt, v.filetxt, v.txtemail, v.currency, v.multi_print, v.print_code_ascii,
                         v.print_code_numeric, v.ChkAuto, v.chkspRet),
              std::tuple(u"192.168.1.20:9101"_s, u"print"_s, u"z@shop.gr"_s, 2, true, true, false, true, true));
    EXPECT_EQ(again->vatBoxes().at(1), VatBoxText(13.0));
    EXPECT_EQ(again->mailValues(), mail);
}

TEST_F(ParamWindowTest, AnEmptyPortLettersInTheSpeedOrABadRateAreRefusedAndNothingIsWritten)
{
    auto w = open();
    const QByteArray ratesAtOpening = bytes(files.vats);
    QSignalSpy ended(w.get(), &ParamWindow::savedEndProgram);
    type(*w, "comtxt", u"  "_s);
    get<QPushButton>(*w, "OK")->click();
    type(*w, "comtxt", u"com2"_s);
    get<QComboBox>(*w, "baudtxt")->setCurrentText(u"96OO"_s);
    get<QPushButton>(*w, "OK")->click();
    get<QComboBox>(*w, "baudtxt")->setCurrentText(u"19200"_s);
    qobject_cast<QLineEdit*>(w->control(u"txtVatRate(2)"_s))->setText(u"έξι"_s);
    get<QPushButton>(*w, "OK")->click();
    EXPECT_EQ(told, QStringList({"Παράμετροι Kerbano: Η πόρτα επικοινωνίας δεν μπορεί να είναι κενή !",
                                 "Παράμετροι Kerbano: Η ταχύτητα πρέπει να είναι αριθμός, π.χ. 9600 !",
                                 "Παράμετροι Kerbano: Λάθος στίς κατηγορίες ΦΠΑ!"}));
    EXPECT_EQ(ended.count(), 0);
    EXPECT_FALSE(QFile::exists(files.param));
    EXPECT_EQ(bytes(files.vats), ratesAtOpening);
    EXPECT_FALSE(QFile::exists(files.mail));
}

TEST_F(ParamWindowTest, AParamFileThatCannotBeWrittenKeepsTheFormOpenAndTheProgramRunning)
{
    ASSERT_TRUE(QDir(dir.path()).mkdir(u"param.ini"_s)); // a folder in its place
    auto w = open();
    const QByteArray ratesAtOpening = bytes(files.vats);
    QSignalSpy ended(w.get(), &ParamWindow::savedEndProgram);
    type(*w, "comtxt", u"COM1"_s);
    get<QPushButton>(*w, "OK")->click();
    EXPECT_EQ(ended.count(), 0);
    ASSERT_EQ(told.size(), 1);
    EXPECT_TRUE(told.at(0).contains("param.ini")) << qPrintable(told.at(0));
    EXPECT_EQ(bytes(files.vats), ratesAtOpening);
}
