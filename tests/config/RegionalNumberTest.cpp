#include "config/RegionalNumber.h"

#include "DataFile.h"
#include "PrintQString.h"
#include "ScriptedOperator.h"

#include <gtest/gtest.h>

namespace {

const QLocale kGreek(QLocale::Greek, QLocale::Greece);      // "," decimal, "." thousands
const QLocale kEnglish(QLocale::English, QLocale::UnitedStates); // "." decimal, "," thousands

// The cases of one section of the numbers' data, each split at its tabs; "# " opens a note.
QList<QStringList> cases(const QString& section)
{
    QList<QStringList> rows;
    for (const QString& line : golden(QStringLiteral("config/regional-numbers.txt"), section))
        if (!line.startsWith(QLatin1String("# ")))
            rows << line.split(u'\t');
    return rows;
}

class UnderBothLocales : public ::testing::TestWithParam<QLocale> {};

INSTANTIATE_TEST_SUITE_P(Regional, UnderBothLocales, ::testing::Values(kGreek, kEnglish),
                         [](const auto& info) { return info.param.name().replace('_', "").toStdString(); });

TEST_P(UnderBothLocales, DeviceNumbersAlwaysCarryAPointAndRoundHalvesAwayFromZero)
{
    const QList<QStringList> rows = cases(QStringLiteral("device"));
    ASSERT_EQ(rows.size(), 16);
    for (const QStringList& c : rows)
        EXPECT_EQ(FormatDeviceNumber(c[0].toDouble(), c[1].toInt(), GetParam()), c[2]) << c.join(u' ').toStdString();
}

TEST_P(UnderBothLocales, ParsingTakesTheRightmostMarkAsDecimalAndEmptyTextIsZero)
{
    ScriptedOperator op;
    const QList<QStringList> rows = cases(QStringLiteral("parse"));
    ASSERT_EQ(rows.size(), 13);
    for (const QStringList& c : rows)
        EXPECT_DOUBLE_EQ(ParseRegionalNumber(c[0], &op, GetParam()), c[1].toDouble()) << c[0].toStdString();
    EXPECT_TRUE(op.messages.isEmpty());

    EXPECT_EQ(ParseRegionalNumber(QStringLiteral("abc"), &op, GetParam()), 0.0);
    ASSERT_EQ(op.messages.size(), 1);
    EXPECT_EQ(std::tuple(op.messages[0].title, op.messages[0].text, op.messages[0].icon),
              std::tuple(QStringLiteral("Fiscal Device"),
                         QStringLiteral("Unsupported Decimal/Thousand seperator in Regional Settings\r"
                                        "values read are set to  '0'"),
                         Operator::Icon::Warning));
}

TEST(NormaliseNumberText, KeepsDigitsAndSignsAndRewritesTheMarks)
{
    const QList<QStringList> rows = cases(QStringLiteral("normalise"));
    ASSERT_EQ(rows.size(), 5);
    for (const QStringList& c : rows)
        EXPECT_EQ(NormaliseNumberText(c[0], c[1], c[2]), c[3]) << c[0].toStdString();
}

} // namespace
