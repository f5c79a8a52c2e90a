#include "shell/HeadlessOperator.h"

#include "PrintQString.h"

#include <gtest/gtest.h>

using namespace Qt::Literals::StringLiterals;

TEST(HeadlessOperator, AnswersFromTheCommandLineInOrderThenCancel)
{
    HeadlessOperator person({u"12"_s, u"2"_s, u"7"_s, u"Τερματικό 1"_s});
    const QStringList terminals = {u"Τερματικό 1"_s, u"Τερματικό 2"_s};

    EXPECT_EQ(person.input(u"t"_s, u"Τραπέζι ;"_s, u"1"_s), std::optional<QString>(u"12"_s));
    EXPECT_EQ(person.choose(u"t"_s, u"Τερματικό ;"_s, terminals), std::optional<int>(1)); // counted from 1
    // A number beyond the list, or an entry's text, cancels.
    EXPECT_EQ(person.choose(u"t"_s, u"Τερματικό ;"_s, terminals), std::nullopt);
    EXPECT_EQ(person.choose(u"t"_s, u"Τερματικό ;"_s, terminals), std::nullopt);
    // Nothing left: the person cancelled.
    EXPECT_EQ(person.input(u"t"_s, u"Τραπέζι ;"_s, u"1"_s), std::nullopt);
    EXPECT_EQ(person.choose(u"t"_s, u"Τερματικό ;"_s, terminals), std::nullopt);
}
