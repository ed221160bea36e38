#include "Platform/Base/Spelling.h"

#include <string>

#include <gtest/gtest.h>

namespace Vn::Spelling {

namespace {

struct Pair {
    wchar_t const * a;
    wchar_t const * b;
    std::size_t mistakes;
};

constexpr Pair c_pairs[] = {
    {L"", L"", 0},
    {L"", L"inch", 4},
    {L"inch", L"inch", 0},
    {L"INCH", L"inch", 0},           // ASCII case isn't counted
    {L"\u00C4hre", L"\u00E4hre", 1}, // other case is
    {L"inh", L"inch", 1},            // inserted
    {L"incch", L"inch", 1},          // dropped
    {L"imch", L"inch", 1},           // replaced
    {L"icnh", L"inch", 1},           // swapped
    {L"nicH", L"inch", 1},
    {L"ihcn", L"inch", 2}, // two that aren't neighbours
    {L"meter", L"degree", 4},
    {L"kitten", L"sitting", 3},
};

TEST(SpellingTests, MistakesAreCountedBothWays) {
    for (Pair const & pair : c_pairs) {
        EXPECT_EQ(mistakes(pair.a, pair.b), pair.mistakes);
        EXPECT_EQ(mistakes(pair.b, pair.a), pair.mistakes);
    }
}

TEST(SpellingTests, LongerNamesMayHaveMoreMistakes) {
    std::size_t const wanted[] = {0, 0, 0, 1, 1, 1, 2, 2, 2, 2, 3, 3};
    for (std::size_t length = 0; length < std::size(wanted); ++length)
        EXPECT_EQ(allowedMistakes(length), wanted[length]) << length;
    EXPECT_EQ(allowedMistakes(1000), 3U);
}

std::vector<std::wstring> const c_units = {L"inch", L"foot", L"meter", L"mile", L"mole"};

std::wstring nearestOf(std::wstring_view name, std::size_t allowed) {
    std::wstring all;
    for (std::wstring const * const each : nearest(name, c_units, allowed)) all += *each + L' ';
    return all;
}

TEST(SpellingTests, TheNearestNamesAreFoundInTheirOrder) {
    EXPECT_EQ(nearestOf(L"metre", 1), L"meter ");
    EXPECT_EQ(nearestOf(L"mule", 2), L"mile mole ");
    EXPECT_EQ(nearestOf(L"mile", 2), L"mile ");
}

TEST(SpellingTests, NoNameIsFoundBeyondWhatIsAllowed) {
    EXPECT_EQ(nearestOf(L"fte", 1), L"");
    EXPECT_EQ(nearestOf(L"metres", 1), L"");
    EXPECT_EQ(nearestOf(L"metres", 2), L"meter ");
    EXPECT_EQ(nearestOf(L"Inch", 0), L"inch ");
}

TEST(SpellingTests, ANameThatSharesNothingIsNotFound) {
    EXPECT_EQ(nearestOf(L"x", 4), L"");
    EXPECT_EQ(nearestOf(L"wxyz", 5), L"");
    EXPECT_EQ(nearestOf(L"", 5), L"");
}

TEST(SpellingTests, ALongNameIsRefusedAtOnce) {
    EXPECT_EQ(nearestOf(std::wstring(10'000'000, L'm'), 3), L"");
}

struct Field {
    std::wstring name;
};

TEST(SpellingTests, ItemsAreFoundByTheirNames) {
    Field const fields[] = {{L"precision"}, {L"sceneUp"}};
    EXPECT_EQ(nearest(L"scneUp", fields, 1, &Field::name), std::vector{&fields[1]});
    auto const shown = [](Field const & field) { return field.name + L"!"; };
    EXPECT_EQ(nearest(L"precision!", fields, 0, shown), std::vector{&fields[0]});
}

} // namespace

} // namespace Vn::Spelling
