// The parts of the console that a process doesn't show alone.

#include <gtest/gtest.h>
#include <set>
#include <sstream>
#include <utility>

#include "Console/CommandLine/SelfTestCommand.h"
#include "Console/Conversion.h"
#include "Console/Evaluation.h"
#include "Console/SettingsTexts.h"
#include "Console/Terminal/Excerpt.h"
#include "Console/Terminal/Table.h"
#include "Console/Texts.h"
#include "Platform/Base/Initializer.h"
#include "Platform/Base/Text.h"
#include "Platform/Base/UnitTest.h"
#include "Server/CommonData/Expressions/Expression.h"
#include "Server/CommonData/Expressions/Tokenizer.h"

namespace Vn::Console::Tests {

namespace {

TEST(ExcerptTests, BothLinesTakeTheSameColumns) {
    struct Row {
        wchar_t const * text;
        std::size_t position;
        wchar_t const * caret;
    };
    Row const rows[] = {
        {L"abc", 0, L"^"},
        {L"abc", 2, L"  ^"},
        {L"abc", 3, L"   ^"},
        {L"abc", 4000000000, L"   ^"},
        {L"", 0, L"^"},
        {L"\u65E5b", 1, L"  ^"},     // wide
        {L"e\u0301b", 2, L" ^"},     // combining
        {L"\U0001F4CFb", 2, L"  ^"}, // two 16-bit characters, two columns
        {L"\U0001F4CFb", 1, L"  ^"}, // between them is after them
        {L"\tb", 1, L"\t^"},         // a tab for a tab
        {L"\x01"
         L"b",
         1, L" ^"},              // shown by its picture
        {L"\uFF11b", 1, L"  ^"}, // fullwidth digit
    };
    for (Row const & row : rows)
        EXPECT_EQ(excerptAt(row.text, row.position).marks, row.caret) << Text::toUtf8(row.text);
}

TEST(ExcerptTests, APieceElsewhereIsUnderlined) {
    struct Row {
        wchar_t const * text;
        std::size_t position;
        std::size_t start;
        std::size_t end;
        wchar_t const * marks;
    };
    Row const rows[] = {
        {L"2 + me 5", 2, 4, 6, L"  ^ ~~"},
        {L"pow(2)", 5, 0, 3, L"~~~  ^"},
        {L"abc", 1, 1, 3, L" ^"},            // begins there
        {L"abc", 2, 0, 3, L"~~^"},           // goes on around it
        {L"1+\u65E5", 1, 2, 3, L" ^~~"},     // wide
        {L"\u65E5+x", 0, 2, 3, L"^  ~"},     // after a wide one
        {L"1\t+\tx", 2, 4, 5, L" \t^\t~"},   // tabs
        {L"abc", 0, 3, 3, L"^"},             // nothing to underline
        {L"abc", 3, 1, 4000000000, L" ~~^"}, // beyond the end
    };
    for (Row const & row : rows) {
        EXPECT_EQ(excerptAt(row.text, row.position, row.start, row.end).marks, row.marks)
            << Text::toUtf8(row.text);
    }
}

TEST(ExcerptTests, HalfOfASurrogatePairTakesAColumn) {
    for (int const half : {0xD83D, 0xDCCF}) {
        Excerpt const excerpt = excerptAt(std::wstring(1, static_cast<wchar_t>(half)) + L"b", 1);
        EXPECT_EQ(Text::toUtf8(excerpt.text), "\uFFFDb") << half;
        EXPECT_EQ(excerpt.marks, L" ^") << half;
    }
}

TEST(ExcerptTests, WindowKeepsThePositionInSight) {
    std::wstring const text(10000000, L'x');
    for (std::size_t const position :
         {std::size_t{0}, std::size_t{5}, text.size() / 2, text.size() - 1, text.size()}) {
        Excerpt const excerpt = excerptAt(text, position);
        EXPECT_LE(excerpt.text.size(), 82u);
        EXPECT_LE(excerpt.marks.size() - 1, excerpt.text.size());
        EXPECT_EQ(excerpt.marks.back(), L'^');
        EXPECT_EQ(excerpt.text.substr(0, 3) == L"...", position > 43);
    }
}

TEST(ExcerptTests, CombiningCharactersWithoutEndAreClippedToo) {
    Excerpt const excerpt = excerptAt(L"2" + std::wstring(1000000, L'\u0301') + L"3", 500000);
    EXPECT_LT(excerpt.text.size(), 500u);
}

TEST(TableTests, ColumnsAreAsWideAsATerminalShowsThem) {
    Table table;
    table.add({L"a", L"b", L"c"});
    table.add({L"\u65E5\u672C", L"e\u0301", L""});
    table.add({L"x"});
    EXPECT_EQ(table.toUtf8("> "), "> a     b  c\n> \u65E5\u672C  e\u0301\n> x\n");
}

TEST(TextsTests, ShortestNumberReadsBack) {
    struct Row {
        double value;
        wchar_t const * text;
    };
    Row const rows[] = {{2.0, L"2"},         {0.1, L"0.1"},
                        {-1.5, L"-1.5"},     {1e300, L"1e+300"},
                        {5e-324, L"5e-324"}, {0.1 + 0.2, L"0.30000000000000004"}};
    for (Row const & row : rows) EXPECT_EQ(shortestNumber(row.value), row.text);
}

TEST(TextsTests, ClippedTextEndsInDots) {
    EXPECT_EQ(clipped(L"abcdef", 6), L"abcdef");
    EXPECT_EQ(clipped(L"abcdef", 5), L"abcde...");
    EXPECT_EQ(inQuotes(L"a\nb"), L"\"a\u240Ab\"");
}

TEST(TextsTests, CaseOfAsciiLettersDoesNotCount) {
    EXPECT_TRUE(containsFolded(L"LuminousFlux", L"USf"));
    EXPECT_TRUE(containsFolded(L"abc", L""));
    EXPECT_FALSE(containsFolded(L"abc", L"abcd"));
    EXPECT_FALSE(containsFolded(L"\u00C4", L"\u00E4"));
}

TEST(SettingsTextsTests, EachFieldHasAMeaningOfItsOwn) {
    std::set<std::wstring> meanings;
    for (Units::UnitDisplaySettingsField const & field : Units::unitDisplaySettingsFields()) {
        EXPECT_FALSE(settingMeaning(field).empty()) << field.name;
        meanings.insert(settingMeaning(field));
    }
    EXPECT_EQ(meanings.size(), Units::unitDisplaySettingsFields().size());
}

TEST(SettingsTextsTests, ValuesOutsideTheRangeAreExplained) {
    Units::UnitDisplaySettings settings = Units::UnitDisplaySettings::standard();
    Units::UnitDisplaySettingsField const & field =
        *Units::findUnitDisplaySettingsField("degreeDisplay");
    for (double const value : {2.0, -1.0, 0.5, 1e300}) {
        EXPECT_EQ(setSetting(field, settings, value),
                  "degreeDisplay takes a whole number from 0 to 1");
    }
    EXPECT_EQ(field.get(settings), 0.0);
    EXPECT_EQ(setSetting(field, settings, 1.0), "");
    EXPECT_EQ(field.get(settings), 1.0);
}

// Reads nothing, and keeps the texts that are parsed while it is there: each is read once from its
// beginning, if that is a digit.
class TextKeeper final : public Expressions::Tokenizer {
public:
    TextKeeper() : Tokenizer(FirstDigit) {}

    std::vector<std::wstring> takeTexts() { return std::exchange(m_texts, {}); }

private:
    Expressions::Reading onRead(std::wstring_view text, std::size_t position) const override {
        if (position == 0) m_texts.emplace_back(text);
        return {};
    }

    mutable std::vector<std::wstring> m_texts;
};

TEST(EvaluationTests, ARebuiltTextIsReadOnce) {
    Initializer::runAll();
    using Units::UnitDisplaySettings;
    using Texts = std::vector<std::wstring>;
    UnitDisplaySettings inWords = UnitDisplaySettings::standard();
    inWords.displayAbbreviated(false);
    Units::UnitContext const anything;
    TextKeeper keeper;
    std::ostringstream out;

    Request length;
    length.expression = Expressions::Expression(L"1 in+2cm");
    Request rounded;
    rounded.expression = Expressions::Expression(L"1/128 in");
    EXPECT_EQ(keeper.takeTexts(), (Texts{L"1 in+2cm", L"1/128 in"}));
    // The text as typed is read for the notes on it.
    for (auto const show : {&showEvaluation, &showBriefly}) {
        EXPECT_TRUE(show(length, UnitDisplaySettings::standard(), anything, out, out));
        EXPECT_EQ(keeper.takeTexts(), (Texts{L"1 in + 2 cm", L"1 in+2cm"}));
        // A copy of the factory settings, as the user's are at first.
        EXPECT_TRUE(
            show(length, UnitDisplaySettings(UnitDisplaySettings::standard()), anything, out, out));
        EXPECT_EQ(keeper.takeTexts(), (Texts{L"1 in + 2 cm", L"1 in+2cm"}));
        EXPECT_TRUE(show(length, inWords, anything, out, out));
        EXPECT_EQ(keeper.takeTexts(), (Texts{L"1 inch + 2 centimeter", L"1 in+2cm"}));
        // What is stored then isn't the text that is shown.
        EXPECT_TRUE(show(rounded, UnitDisplaySettings::standard(), anything, out, out));
        EXPECT_EQ(keeper.takeTexts(), (Texts{L"1/64\"", L"1/128 in"}));
    }
}

TEST(EvaluationTests, TheTextToStoreIsThatOfTheExpression) {
    Initializer::runAll();
    Units::UnitDisplaySettings inWords = Units::UnitDisplaySettings::standard();
    inWords.displayAbbreviated(false);
    for (wchar_t const * const text : {L"1 in+2cm", L"1/128 in", L"1/0", L"2"}) {
        Expressions::Expression const expression(text);
        for (Units::UnitDisplaySettings const & settings :
             {Units::UnitDisplaySettings::standard(), inWords}) {
            Evaluation const evaluation = evaluate(expression, settings, {});
            EXPECT_EQ(textToStore(evaluation, expression), expression.textToStore())
                << Text::toUtf8(text);
        }
    }
}

void failing(UnitTest & test) {
    test.Assert(true, L"never told");
    test.Assert(false, L"the first\nfailure");
    test.note(L"a note");
}

TEST(SelfTestCommandTests, FailuresAreToldAndMakeTheStatusBad) {
    UnitTest const check("ConsoleTests", "failing", &failing);
    std::ostringstream out;
    std::ostringstream err;
    EXPECT_EQ(runSelfTest("ConsoleTests", out, err), 1);
    EXPECT_EQ(out.str(), "ConsoleTests failing: FAILED, 2 assertions, 1 failure\n"
                         "  a note\n"
                         "  failed: the first\u240Afailure\n"
                         "1 check, 2 assertions, 1 failure\n");
    EXPECT_EQ(err.str(), "");
}

} // namespace

} // namespace Vn::Console::Tests
