// What people type that the language refuses, and what they are told to write: the rows of
// Hints.txt.  Rare words become words of the language once other units were used, so that what uses
// many units runs in a process of its own.

#include <cmath>
#include <fstream>
#include <set>

#include "Server/CommonData/Expressions/FailureExplanation.h"
#include "Server/CommonData/Expressions/Tokens.h"
#include "Server/CommonData/Expressions/Vocabulary.h"
#include "Server/CommonData/Units/SimpleUnit.h"
#include "Server/CommonData/Units/UnitLookup.h"
#include "Tests/CommonData/Expressions/ExpressionsTesting.h"
#include "Tests/Support/FreshProcess.h"

namespace Vn::Expressions {

namespace {

using namespace Testing;

struct Row {
    int line;
    std::wstring typed;
    std::wstring hints; // joined by " or "; "-" for none
    std::wstring meaning;
};

std::vector<Row> readRows() {
    std::ifstream file(VN_TEST_HINTS, std::ios::binary);
    std::vector<Row> rows;
    std::string line;
    for (int number = 1; std::getline(file, line); ++number) {
        if (!line.empty() && line.back() == '\r') line.pop_back();
        if (line.empty() || line == "#" || line.starts_with("# ")) continue;
        std::wstring const text = Text::fromUtf8(line);
        std::size_t const first = text.find(L" | ");
        std::size_t const second = text.rfind(L" |");
        if (first == text.npos || second <= first) {
            ADD_FAILURE() << "line " << number << " of the hints isn't a row";
            continue;
        }
        rows.push_back({number, text.substr(0, first), text.substr(first + 3, second - first - 3),
                        std::wstring(Text::trimmed(text.substr(second + 2)))});
    }
    return rows;
}

std::wstring joined(std::vector<std::wstring> const & texts) {
    std::wstring all;
    for (std::wstring const & text : texts) all += (all.empty() ? L"" : L" or ") + text;
    return all.empty() ? L"-" : all;
}

// Whether two texts have one value and one dimension, but for rounding.
testing::AssertionResult areEqual(std::wstring const & hint, std::wstring const & meaning) {
    Expression const a(hint);
    Expression const b(meaning);
    if (!a.value()) return testing::AssertionFailure() << shown(hint) << " has no value";
    if (!b.value()) return testing::AssertionFailure() << shown(meaning) << " has no value";
    Units::ComplexUnit const units = b.units().value();
    if (!a.units()->isDimensionallyEquivalent(&units))
        return testing::AssertionFailure()
               << shown(a.units()->toString()) << " isn't " << shown(units.toString());
    constexpr double c_rounding = 1e-8;
    if (std::fabs(*a.value() - *b.value()) <= c_rounding * std::fabs(*b.value()) + 1e-15)
        return testing::AssertionSuccess();
    return testing::AssertionFailure() << *a.value() << " isn't " << *b.value();
}

void expectHints() {
    for (Row const & row : readRows()) {
        Expression const expression(row.typed);
        EXPECT_FALSE(expression) << row.line << ": " << shown(row.typed) << " is an expression";
        FailureExplanation const failure = explainFailure(expression);
        EXPECT_EQ(shown(joined(failure.corrections)), shown(row.hints))
            << row.line << ": " << shown(row.typed);
        // A hint that is no question is shown whole.
        for (std::wstring const & correction : failure.corrections) {
            bool const isTold = failure.hint.find(correction) != std::wstring::npos;
            EXPECT_TRUE(isTold || failure.hint.empty()) << row.line << ": " << shown(failure.hint);
        }
    }
}

TEST(HintsTests, EachRefusedTextHasItsHints) { Units::expectInFreshProcess(expectHints); }

void expectMeanings() {
    std::size_t hints = 0;
    for (Row const & row : readRows()) {
        if (row.hints == L"-") {
            EXPECT_EQ(row.meaning, L"") << row.line;
            continue;
        }
        ++hints;
        FailureExplanation const failure = explainFailure(Expression(row.typed));
        ASSERT_FALSE(failure.corrections.empty()) << row.line << ": " << shown(row.typed);
        for (std::wstring const & correction : failure.corrections)
            EXPECT_TRUE(Expression(correction).value()) << row.line << ": " << shown(correction);
        EXPECT_TRUE(areEqual(failure.corrections.front(), row.meaning))
            << row.line << ": " << shown(row.typed);
    }
    EXPECT_GE(hints, 700U);
}

TEST(HintsTests, EachHintParsesAndTheFirstIsWhatWasMeant) {
    Units::expectInFreshProcess(expectMeanings);
}

TEST(HintsTests, ThereAreManyRowsAndEachIsThereOnce) {
    std::set<std::wstring> typed;
    for (Row const & row : readRows())
        EXPECT_TRUE(typed.insert(row.typed).second) << row.line << ": " << shown(row.typed);
    EXPECT_GE(typed.size(), 800U);
}

// What is explained first makes no difference to what is explained later.
void expectTheSameFromTheLast() {
    std::vector<Row> const rows = readRows();
    for (std::size_t i = rows.size(); i-- > 0;)
        EXPECT_EQ(shown(joined(explainFailure(Expression(rows[i].typed)).corrections)),
                  shown(rows[i].hints))
            << rows[i].line;
}

TEST(HintsTests, AHintIsTheSameAgain) { Units::expectInFreshProcess(expectTheSameFromTheLast); }

// Trying a correction keeps its units, as reading it would.  There is an end to them: each unit of
// the catalogue once for each prefix that it takes.
void expectUnitsToHaveAnEnd() {
    std::size_t most = 0;
    for (Units::SimpleUnit const * const unit : Units::listUnits())
        if (unit->magnitude() == 1.0)
            most += unit->supportsMagnitude() ? 1 + Tokens::fullMagnitudes().size() : 1;
    for (Row const & row : readRows()) explainFailure(Expression(row.typed));
    EXPECT_LE(Units::listUnits().size(), most);
    // A word that isn't known, after each that is.
    for (Vocabulary::Word const & word : Vocabulary::get().words())
        explainFailure(Expression(L"1 hours " + word.text));
    EXPECT_EQ(Units::listUnits().size(), most);
    for (Row const & row : readRows()) explainFailure(Expression(row.typed));
    for (wchar_t const * const text : {L"5 kkm hours", L"5 mmicrom hours", L"5 EEm hours"})
        explainFailure(Expression(text));
    EXPECT_EQ(Units::listUnits().size(), most);
}

TEST(HintsTests, TheUnitsThatAreTriedHaveAnEnd) {
    Units::expectInFreshProcess(expectUnitsToHaveAnEnd);
}

} // namespace

} // namespace Vn::Expressions
