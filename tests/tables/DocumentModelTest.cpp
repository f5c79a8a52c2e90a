#include "tables/DepartmentLookup.h"
#include "tables/MDocData.h"
#include "tables/MTable.h"

#include "PrintQString.h"
#include "ScriptedLink.h"
#include "config/VatFile.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace {

const QLocale kGreek(QLocale::Greek, QLocale::Greece);
const QLocale kEnglish(QLocale::English, QLocale::UnitedStates);

// The figures of a document, as one value.
auto figures(const clsDocData& d)
{
    return std::tuple(d.recNumberDaily, d.recAmount, d.recNumberProgr, d.ordAmount, d.ordNumber);
}

// A register that knows one receipt and one table with two items.
bool answerRegister(const QString& command, ScriptedLink::Answer& a)
{
    if (command == "9/")
        a = {0, "0/00/00/x/x/x/x/x/42/18.60/x/"};
    else if (command == "i/")
        a = {0, "0/00/00/x/x/12/1012/"};
    else if (command == "&/11/7//0/0///////////")
        a = {0, "0/00/00/7/3|x|x|x|4.50/5|x|x|x|10.25/"};
    else
        return false;
    return true;
}

TEST(DocumentModel, BuildsTheDocumentFromTheRegistersAnswersAndAsksNoTableForTableZero)
{
    for (const QLocale& locale : {kGreek, kEnglish}) {
        ScriptedLink link;
        link.responder = answerRegister;
        mDocData doc(link, locale);
        const clsDocData d = doc.BuildDocData(7);
        EXPECT_EQ(d.tableNumber, 7);
        EXPECT_EQ(figures(d), std::tuple(42, 18.6, 1000 + 42, 14.75, 5));
        EXPECT_EQ(doc.ReadTableAmount(7), locale == kGreek ? "14,75" : "14.75");
        EXPECT_DOUBLE_EQ(doc.ReadRemainingAmount(), 18.6);
    }

    // No table means no table query.
    ScriptedLink link;
    link.responder = answerRegister;
    const clsDocData d = mDocData(link).BuildDocData(0);
    EXPECT_EQ(std::tuple(d.ordAmount, d.ordNumber), std::tuple(0.0, -1));
    EXPECT_EQ(link.commands(), QStringList({"9/", "i/"}));
}

TEST(DocumentModel, ARegisterThatRefusesEverythingYieldsMinusOneAndZero)
{
    ScriptedLink link;
    link.responder = [](const QString&, ScriptedLink::Answer& a) {
        a = {-4, "silent"};
        return true;
    };
    mDocData doc(link);
    EXPECT_EQ(figures(doc.BuildDocData(7)), std::tuple(-1, 0.0, -1, 0.0, -1));
    EXPECT_EQ(doc.ReadRemainingAmount(), 0.0);
    EXPECT_EQ(link.commands(),
              QStringList({"9/", "i/", "&/11/7//0/0///////////", "&/11/7//0/0///////////", "9/"}));
}

TEST(DocumentModel, AReceiptNumberThatIsNoNumberIsNotRead)
{
    ScriptedLink link;
    link.queue.push_back({0, "0/00/00/"}); // too few fields
    mDocData doc(link);
    EXPECT_EQ(doc.ReadReceiptTotals(), -1);
    link.queue.push_back({0, "0/00/00/x/x/5/abc/"});
    EXPECT_EQ(doc.ReadProgressiveBase(), -1);
    link.queue.push_back({0, "0/00/00/4/"});
    EXPECT_EQ(doc.ReadTableAmount(3), "0.00"); // an empty table
}

TEST(TableHeader, TitlesAreRightAlignedInTwoLines)
{
    ScriptedLink link;
    qint16 status = 0;
    QString reply;
    ProgramTableHeader(link, 5, "ABCDE~1234567", status, reply);
    ProgramTableHeader(link, 5, "", status, reply);
    ProgramTableHeader(link, 5, QString(21, 'A'), status, reply);
    ProgramTableHeader(link, 5, "A~" + QString(33, 'B'), status, reply);
    ProgramTableHeader(link, 5, "a/b", status, reply);
    EXPECT_EQ(link.commands(),
              QStringList({"\"/0/5/1/" + QString(15, ' ') + "ABCDE/" + QString(25, ' ') + "1234567/",
                           "\"/0/5/1/ / /", "\"/0/5/1/*/ /",
                           "\"/0/5/1/" + QString(19, ' ') + "A/*/",
                           "\"/0/5/1/" + QString(17, ' ') + "a-b/ /"}));

    link.queue.push_back({44, "paper"});
    ProgramTableHeader(link, 5, "x", status, reply);
    EXPECT_EQ(status, 44);
    EXPECT_EQ(PadLeftTo("ab", 5, "#"), "#  ab");
}

TEST(DepartmentLookup, DescriptionAndRateOfTheCategoryItNames)
{
    QTemporaryDir dir;
    const QString vats = dir.filePath("vats.dat");
    ASSERT_EQ(WriteVatsFile(vats, {24, 13, 6.5, 0, 0, 0}), 0);
    ScriptedLink link;
    link.queue.push_back({0, "0/00/00/ ΑΡΤΟΣ /3/"});
    const clsDepartmentInfo info = ReadDepartment(link, 4, vats, kGreek);
    EXPECT_EQ(link.commands(), QStringList({"d/4"}));
    EXPECT_EQ(std::tuple(info.Result, info.DepNumber, info.DepDesc, info.DepVatRate),
              std::tuple(0, 4, QString("ΑΡΤΟΣ"), 6.5));

    link.queue.push_back({12, "unknown"});
    EXPECT_EQ(ReadDepartment(link, 99, vats).Result, -1);
}

} // namespace
