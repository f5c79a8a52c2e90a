#include "shell/HeadlessOperator.h"

#include "PrintQString.h"

#include <gtest/gtest.h>

TEST(HeadlessOperator, AnswersFromTheCommandLineInOrderThenCancel)
{
    HeadlessOperator person({QStringLiteral("12"), QStringLiteral("2"), QStringLiteral("7"),
                             QStringLiteral("Τερματικό 1")});
    const QStringList terminals = {QStringLiteral("Τερματικό 1"), QStringLiteral("Τερματικό 2")};

    EXPECT_EQ(person.input(QStringLiteral("t"), QStringLiteral("Τραπέζι ;"), QStringLiteral("1")),
              std::optional<QString>(QStringLiteral("12")));
    EXPECT_EQ(person.choose(QStringLiteral("t"), QStringLiteral("Τερματικό ;"), terminals),
              std::optional<int>(1)); // counted from 1
    // A number beyond the list, or an entry's text, cancels.
    EXPECT_EQ(person.choose(QStringLiteral("t"), QStringLiteral("Τερματικό ;"), terminals), std::nullopt);
    EXPECT_EQ(person.choose(QStringLiteral("t"), QStringLiteral("Τερματικό ;"), terminals), std::nullopt);
    // Nothing left: the person cancelled.
    EXPECT_EQ(person.input(QStringLiteral("t"), QStringLiteral("Τραπέζι ;"), QStringLiteral("1")), std::nullopt);
    EXPECT_EQ(person.choose(QStringLiteral("t"), QStringLiteral("Τερματικό ;"), terminals), std::nullopt);
}
