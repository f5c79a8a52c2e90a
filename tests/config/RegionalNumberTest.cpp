#include "config/RegionalNumber.h"

#include "ScriptedOperator.h"

#include <gtest/gtest.h>

namespace {

const QLocale kGreek(QLocale::Greek, QLocale::Greece);      // "," decimal, "." thousands
const QLocale kEnglish(QLocale::English, QLocale::UnitedStates); // "." decimal, "," thousands

class UnderBothLocales : public ::testing::TestWithParam<QLocale> {};

INSTANTIATE_TEST_SUITE_P(Regional, UnderBothLocales, ::testing::Values(kGreek, kEnglish),
                         [](const auto& info) { return info.param.name().replace('_', "").toStdString(); });

TEST_P(UnderBothLocales, DeviceNumbersAlwaysCarryAPointAndRoundHalvesAwayFromZero)
{
    const QLocale locale = GetParam();
    struct Case {
        double value;
        int decimals;
        const char* text;
    } cases[] = {
        {1234.5, 2, "1234.50"},  {1234.5, 3, "1234.500"}, {0.005, 2, "0.01"},
        {0.125, 2, "0.13"},      {-0.125, 2, "-0.13"},    {1.005, 2, "1.00"}, // held as 1.00499...
        {0.0, 3, "0.000"},       {0.4, 2, "0.40"},        {999.995, 2, "1000.00"},
        {9.9996, 3, "10.000"},   {-5.0, 2, "-5.00"},      {1234567.891, 2, "1234567.89"},
        {24.0, 0, "24"},         {6.5, 0, "6.5"},
        // A negative value keeps its sign even when it rounds to nothing.
        {-0.004, 2, "-0.00"},    {-0.005, 2, "-0.01"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(FormatDeviceNumber(c.value, c.decimals, locale), QString::fromLatin1(c.text))
            << c.value << " with " << c.decimals;
}

TEST_P(UnderBothLocales, ParsingTakesTheRightmostMarkAsDecimalAndEmptyTextIsZero)
{
    const QLocale locale = GetParam();
    ScriptedOperator op;
    struct Case {
        const char* text;
        double value;
    } cases[] = {
        {"1.234,50", 1234.5}, {"1,234.50", 1234.5}, {"1,234", 1.234},   {"1.234", 1.234},
        {"-12,5", -12.5},     {" 7 ", 7.0},         {"1 5", 1.5},       {"##12.30#", 12.3},
        {"1.234.567,8", 1234567.8}, {"42", 42.0},   {"-0.01", -0.01},   {"", 0.0},
        {"#", 0.0},
    };
    for (const auto& c : cases)
        EXPECT_DOUBLE_EQ(ParseRegionalNumber(QString::fromUtf8(c.text), &op, locale), c.value)
            << c.text;
    EXPECT_TRUE(op.messages.isEmpty());
}

TEST_P(UnderBothLocales, TextThatIsNoNumberTellsTheOperatorAndReadsZero)
{
    ScriptedOperator op;
    EXPECT_EQ(ParseRegionalNumber(QStringLiteral("abc"), &op, GetParam()), 0.0);
    ASSERT_EQ(op.messages.size(), 1);
    EXPECT_EQ(op.messages[0].title, QStringLiteral("Fiscal Device"));
    EXPECT_EQ(op.messages[0].text,
              QStringLiteral("Unsupported Decimal/Thousand seperator in Regional Settings\r"
                             "values read are set to  '0'"));
    EXPECT_EQ(op.messages[0].icon, Operator::Icon::Warning);
}

TEST(NormaliseNumberText, KeepsDigitsAndSignsAndRewritesTheMarks)
{
    EXPECT_EQ(NormaliseNumberText("1.234,50", ",", "."), "1.234,50");
    EXPECT_EQ(NormaliseNumberText("1,234.50", ",", "."), "1.234,50");
    EXPECT_EQ(NormaliseNumberText("1'234'567.5", ".", ","), "1,234,567.5");
    EXPECT_EQ(NormaliseNumberText("-3 5", ".", " "), "-3.5");
    EXPECT_EQ(NormaliseNumberText("1 234,5", ",", " "), "1234,5"); // a blank thousand mark vanishes
}

} // namespace
