#include "app/settings/config_text.h"

#include <gtest/gtest.h>

TEST(ValueOfKey, FollowsTheFieldGrammar)
{
    using Case = std::tuple<const char *, QByteArray, QString, std::optional<QString>>;
    for (const auto &[name, file, key, value] : std::initializer_list<Case>{
             Case{"AnyOrderAmongOtherLines", "; note\r\n\r\nb =,2\r\na =,1\r\n\r\n", "a =", "1"},
             {"FirstOccurrenceWins", "a =,1\r\na =,2\r\n\r\n", "a =", "1"},
             {"LetterCaseCounts", "A =,1\r\na =,2\r\n\r\n", "a =", "2"},
             {"ValueEndsAtComma", "a =,x,y\r\n\r\n", "a =", "x"},
             {"QuotesKeepCommas", "a =,\"9600,n,8,1\" x,y\r\nb =,2\r\n\r\n", "a =", "9600,n,8,1"},
             {"BehindQuotesTheLineGoesOn", "a =,\"q\"\r\nb =,2\r\n\r\n", "b =", "2"},
             {"LeadingBlanksAreSkipped", "  a =,  1 2\r\n\r\n", "a =", "1 2"},
             {"EmptyValue", "a =,\r\nb =,2\r\n\r\n", "a =", ""},
             {"LastLineWithValueNoLineEnd", "b =,2\r\na =,1", "a =", "1"},
             {"LastKeyWithoutValueIsMissing", "b =,2\r\na =", "a =", std::nullopt},
             {"LastKeyWithCommaOnlyIsMissing", "b =,2\r\na =,", "a =", std::nullopt},
             {"MissingKey", "a =,1\r\n\r\n", "c =", std::nullopt},
             {"EmptyFile", "", "a =", std::nullopt},
             {"UnclosedQuoteIsText", "a =,\"x\r\nb =,\"2\"\r\n", "a =", "\"x"},
             {"UnclosedQuoteHidesNothing", "a =,\"x\r\nb =,2\r\n", "b =", "2"},
             {"PlainLineFeeds", "a =,1\nb =,2\n\n", "b =", "2"},
             {"ByteOrderMark",
              "\xEF\xBB\xBF"
              "a =,1\r\n\r\n",
              "a =", "1"},
             {"Utf8", "a =,\xC2\xB0 C\r\n\r\n", "a =", QString::fromUtf8("° C")},
             {"CodePage1252", "a =,\xB0 C \x80\r\n\r\n", "a =", QString::fromUtf8("° C €")}})
        EXPECT_EQ(valueOfKey(file, key), value) << name;
}

TEST(WithKeysReplaced, WrittenKeysMoveToTheTopAndTheRestKeepsBytesAndOrder)
{
    const QByteArray file("; note\r\nB =,old\r\n\xB0\r\n\r\na =,1\r\nb =,again\r\nc =,3\r\n\r\n");
    const auto written = withKeysReplaced(file, {"c =", "b ="}, {"c =,9", "b =,8"});
    ASSERT_TRUE(written);
    EXPECT_EQ(*written, QByteArray("c =,9\r\nb =,8\r\n; note\r\n\xB0\r\n\r\na =,1\r\n\r\n"));
    EXPECT_EQ(withKeysReplaced(*written, {"c =", "b ="}, {"c =,9", "b =,8"}), written)
        << "writing again changes nothing, the one empty line at the end included";
}

TEST(WithKeysReplaced, EndsWithOneEmptyLineWhateverTheFileEndedWith)
{
    for (const char *end : {"x\r\n", "x", "x\r\n\r\n", "x\r\n\r\n\r\n\r\n", "x\n"})
        EXPECT_EQ(withKeysReplaced(QByteArray("a =,1\r\n") + end, {"a ="}, {"a =,2"}),
                  QByteArray("a =,2\r\nx\r\n\r\n"))
            << end;
}

TEST(WithKeysReplaced, KeyNotInTheFileOrOnlyOnItsLastLineIsRefused)
{
    EXPECT_FALSE(withKeysReplaced("a =,1\r\n\r\n", {"a =", "b ="}, {"a =,2", "b =,2"}));
    EXPECT_FALSE(withKeysReplaced("b =,1\r\na =,1\r\n", {"a ="}, {"a =,2"}));
    EXPECT_FALSE(withKeysReplaced("", {"a ="}, {"a =,2"}));
}
