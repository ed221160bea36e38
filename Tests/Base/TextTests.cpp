#include "Platform/Base/Text.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>

#include <gtest/gtest.h>

namespace {

namespace Text = Vn::Text;

// What is known of a class of characters without its table: how many there are in each 4,096 of the
// first 65,536, and the hash of the 65,536 answers in order.
struct Census {
    bool (*test)(char32_t);
    std::array<int, 16> counts;
    std::uint32_t hash;
};

void check(Census const & census) {
    std::array<int, 16> counts{};
    std::uint32_t hash = 2166136261U;
    for (char32_t c = 0; c <= 0xFFFF; ++c) {
        bool const in = census.test(c);
        counts[c / 4096] += in;
        hash = (hash ^ static_cast<std::uint32_t>(in)) * 16777619U;
    }
    EXPECT_EQ(counts, census.counts);
    EXPECT_EQ(hash, census.hash);
    // Nothing lies above.
    for (char32_t c = 0x10000; c <= 0x110000; ++c) ASSERT_FALSE(census.test(c)) << std::uint32_t{c};
    EXPECT_FALSE(census.test(0xFFFFFFFF));
}

TEST(TextTests, CensusOfPunctuation) {
    check({[](char32_t c) { return Text::isPunctuation(c); },
           {286, 171, 3108, 540, 64, 0, 0, 0, 0, 0, 146, 0, 0, 0, 0, 164},
           0xD2845464});
}

TEST(TextTests, CensusOfWhiteSpace) {
    check({[](char32_t c) { return Text::isSpace(c); },
           {8, 1, 13, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0},
           0x8E9F62B2});
}

TEST(TextTests, DigitsAreTheTenOfAscii) {
    for (char32_t c = 0; c <= 0x11000; ++c)
        ASSERT_EQ(Text::isDigit(c), c >= U'0' && c <= U'9') << std::uint32_t{c};
}

TEST(TextTests, RangesOfPunctuation) {
    struct Row {
        char32_t first;
        char32_t last;
        bool punctuation;
    };
    Row const rows[] = {
        {0x00, 0x20, false},     {0x21, 0x2F, true},      {0x30, 0x39, false},
        {0x3A, 0x40, true},      {0x41, 0x5A, false},     {0x5B, 0x60, true},
        {0x61, 0x7A, false},     {0x7B, 0x7E, true},      {0x7F, 0xA0, false},
        {0xA1, 0xBF, true},      {0xC0, 0xD6, false},     {0xD7, 0xD7, true},
        {0xD8, 0xF6, false},     {0xF7, 0xF7, true},      {0xF8, 0x2C1, false},
        {0x391, 0x3A1, false},   {0x3A3, 0x3F5, false},   {0x3F6, 0x3F6, true}, // epsilon symbol
        {0x400, 0x481, false},   {0x5D0, 0x5EA, false},   {0x660, 0x669, false},
        {0x2000, 0x200F, false}, {0x2010, 0x2027, true},  {0x2030, 0x205E, true},
        {0x2070, 0x2071, false}, {0x20A0, 0x20C0, true},  {0x2126, 0x2126, false}, // ohm sign
        {0x2190, 0x2426, true},  {0x2460, 0x249B, false}, {0x2500, 0x2775, true},
        {0x2776, 0x2793, false}, {0x2794, 0x2B73, true},  {0x3000, 0x3000, false},
        {0x3001, 0x3004, true},  {0x3041, 0x3096, false}, {0x4E00, 0x9FFF, false},
        {0xAC00, 0xD7A3, false}, {0xD800, 0xF8FF, false}, {0xFF01, 0xFF0F, true},
        {0xFF10, 0xFF19, false}, {0xFFFC, 0xFFFD, true},  {0xFFFE, 0xFFFF, false},
    };
    for (Row const & row : rows)
        for (char32_t c = row.first; c <= row.last; ++c)
            EXPECT_EQ(Text::isPunctuation(c), row.punctuation) << std::hex << std::uint32_t{c};
}

TEST(TextTests, WhiteSpaceInFull) {
    std::u32string const spaces =
        U"\t\n\v\f\r \u0085\u00A0\u1680\u2000\u2001\u2002\u2003\u2004\u2005\u2006\u2007\u2008\u2009"
        U"\u200A\u202F\u205F\u3000";
    for (char32_t c = 0; c <= 0xFFFF; ++c)
        ASSERT_EQ(Text::isSpace(c), spaces.find(c) != spaces.npos) << std::uint32_t{c};
}

TEST(TextTests, ClassesDontOverlap) {
    for (char32_t c = 0; c <= 0xFFFF; ++c)
        ASSERT_LE(Text::isPunctuation(c) + Text::isSpace(c) + Text::isDigit(c), 1);
}

TEST(TextTests, LengthCountsSixteenBitCharacters) {
    EXPECT_EQ(Text::length16(L""), 0U);
    EXPECT_EQ(Text::length16(L"a\u00E4\uFFFD"), 3U);
    EXPECT_EQ(Text::length16(L"a\U0001D11Eb"), 4U);
}

struct Utf8Row {
    std::string utf8;
    std::wstring text;
};

Utf8Row const c_wellFormed[] = {
    {"", L""},
    {"plain", L"plain"},
    {std::string("a\0b", 3), std::wstring(L"a\0b", 3)},
    {"\x7F\xC2\x80\xDF\xBF", L"\x7F\u0080\u07FF"},
    {"\xE0\xA0\x80\xEF\xBF\xBF", L"\u0800\uFFFF"},
    {"\xED\x9F\xBF\xEE\x80\x80", L"\uD7FF\uE000"},
    {"\xF0\x90\x80\x80\xF4\x8F\xBF\xBF", L"\U00010000\U0010FFFF"},
    {"20 \xC2\xB0"
     "C",
     L"20 \u00B0C"},
};

TEST(TextTests, Utf8GoesBothWays) {
    for (Utf8Row const & row : c_wellFormed) {
        std::wstring text = L"before";
        EXPECT_TRUE(Text::fromUtf8(row.utf8, text));
        EXPECT_EQ(text, row.text);
        EXPECT_EQ(Text::fromUtf8(row.utf8), row.text);
        EXPECT_EQ(Text::toUtf8(row.text), row.utf8);
    }
}

TEST(TextTests, EveryCharacterSurvivesUtf8) {
    for (char32_t c = 0; c <= 0x10FFFF; ++c) {
        if (c >= 0xD800 && c <= 0xDFFF) continue;
        std::wstring text;
        if (sizeof(wchar_t) == 2 && c > 0xFFFF) {
            text += static_cast<wchar_t>(0xD800 + ((c - 0x10000) >> 10));
            text += static_cast<wchar_t>(0xDC00 + ((c - 0x10000) & 0x3FF));
        } else {
            text += static_cast<wchar_t>(c);
        }
        ASSERT_EQ(Text::fromUtf8(Text::toUtf8(text)), text) << std::uint32_t{c};
        ASSERT_EQ(Text::length16(text), c > 0xFFFF ? 2U : 1U);
    }
}

// The lenient reader puts one U+FFFD for each longest piece that could have been a start.
Utf8Row const c_broken[] = {
    {"\x80", L"\uFFFD"},
    {"a\xBF\xBF", L"a\uFFFD\uFFFD"},
    {"\xC3", L"\uFFFD"},
    {"\xC3(", L"\uFFFD("},
    {"\xC0\x80", L"\uFFFD\uFFFD"},                     // an overlong zero
    {"\xC1\xBF", L"\uFFFD\uFFFD"},                     // overlong
    {"\xE0\x9F\xBF", L"\uFFFD\uFFFD\uFFFD"},           // overlong
    {"\xF0\x8F\xBF\xBF", L"\uFFFD\uFFFD\uFFFD\uFFFD"}, // overlong
    {"\xED\xA0\x80", L"\uFFFD\uFFFD\uFFFD"},           // a surrogate
    {"\xF4\x90\x80\x80", L"\uFFFD\uFFFD\uFFFD\uFFFD"}, // above U+10FFFF
    {"\xF5\x80\x80\x80", L"\uFFFD\uFFFD\uFFFD\uFFFD"},
    {"\xFF\xFE", L"\uFFFD\uFFFD"},
    {"\xE2\x82 ", L"\uFFFD "},
    {"\xF0\x9D\x84", L"\uFFFD"},
    {"\xF0\x9D\x84\xC3\xA4", L"\uFFFD\u00E4"},
};

TEST(TextTests, BrokenUtf8IsRefusedOrReplaced) {
    for (Utf8Row const & row : c_broken) {
        std::wstring text = L"before";
        EXPECT_FALSE(Text::fromUtf8(row.utf8, text));
        EXPECT_EQ(text, L"before");
        EXPECT_EQ(Text::fromUtf8(row.utf8), row.text);
    }
}

TEST(TextTests, WhatIsNoCharacterBecomesTheReplacement) {
    std::wstring const high(1, static_cast<wchar_t>(0xD834));
    std::wstring const low(1, static_cast<wchar_t>(0xDD1E));
    EXPECT_EQ(Text::toUtf8(high), "\xEF\xBF\xBD");
    EXPECT_EQ(Text::toUtf8(low), "\xEF\xBF\xBD");
    EXPECT_EQ(Text::toUtf8(low + high), "\xEF\xBF\xBD\xEF\xBF\xBD");
    EXPECT_EQ(Text::toUtf8(high + L"a"), "\xEF\xBF\xBD"
                                         "a");
    EXPECT_EQ(Text::toUtf8(high + low), "\xF0\x9D\x84\x9E");
    if constexpr (sizeof(wchar_t) > 2) {
        EXPECT_EQ(Text::toUtf8(std::wstring(1, static_cast<wchar_t>(0x110000))), "\xEF\xBF\xBD");
        EXPECT_EQ(Text::toUtf8(std::wstring(1, static_cast<wchar_t>(-1))), "\xEF\xBF\xBD");
    }
}

TEST(TextTests, WidenTakesAscii) {
    EXPECT_EQ(Text::widen("VnCommonData"), L"VnCommonData");
    EXPECT_EQ(Text::widen("\x7F\x80"), L"\x7F\uFFFD");
}

TEST(TextTests, DisplayWidths) {
    struct Row {
        char32_t character;
        int width;
    };
    Row const rows[] = {
        {0, 0},       {U'\t', 0},   {U' ', 1},    {U'~', 1},    {0x7F, 0},    {0x9F, 0},
        {0xA0, 1},    {0xAD, 1},    {0xB0, 1},    {0xE4, 1},    {0x300, 0},   {0x36F, 0},
        {0x483, 0},   {0x1100, 2},  {0x1160, 0},  {0x200B, 0},  {0x200D, 0},  {0x2026, 1},
        {0x20AC, 1},  {0x2126, 1},  {0x3000, 2},  {0x302A, 0},  {0x3042, 2},  {0x4E2D, 2},
        {0xAC00, 2},  {0xE000, 1},  {0xFE0F, 0},  {0xFEFF, 0},  {0xFF21, 2},  {0xFF71, 1},
        {0x1D11E, 1}, {0x1F600, 2}, {0x20000, 2}, {0x3FFFD, 2}, {0xE0100, 0}, {0x10FFFF, 1},
    };
    for (Row const & row : rows)
        EXPECT_EQ(Text::displayWidth(row.character), row.width)
            << std::hex << std::uint32_t{row.character};
    EXPECT_EQ(Text::displayWidth(std::wstring_view(L"a\u0308\u4E2D\U0001F600")), 5);
    EXPECT_EQ(Text::displayWidth(std::wstring_view()), 0);
}

TEST(TextTests, FoldingIsThatOfAscii) {
    EXPECT_TRUE(Text::foldedEqual(L"aZ[`", L"Az[`"));
    EXPECT_FALSE(Text::foldedEqual(L"@", L"`"));
    EXPECT_FALSE(Text::foldedEqual(L"[", L"{"));
    EXPECT_FALSE(Text::foldedEqual(L"\u00C4", L"\u00E4"));
    EXPECT_FALSE(Text::foldedEqual(L"a", L"ab"));
    EXPECT_TRUE(Text::foldedEqual("", ""));
    EXPECT_TRUE(Text::foldedEqual("mM\xC3", "Mm\xC3"));
}

TEST(TextTests, PositionsOf16BitsHaveAnIndex) {
    std::wstring_view const text = L"a\U0001F4CFb";
    std::size_t const wide = text.size() - 2; // 2 on Windows
    EXPECT_EQ(Text::indexAt16(text, 0), 0U);
    EXPECT_EQ(Text::indexAt16(text, 1), 1U);
    EXPECT_EQ(Text::indexAt16(text, 2), 1 + wide); // between the halves
    EXPECT_EQ(Text::indexAt16(text, 3), 1 + wide);
    EXPECT_EQ(Text::indexAt16(text, 4), text.size());
    EXPECT_EQ(Text::indexAt16(text, 4000000000), text.size());
    EXPECT_EQ(Text::indexAt16(L"", 7), 0U);
    EXPECT_EQ(Text::characterLength(text, 0), 1U);
    EXPECT_EQ(Text::characterLength(text, 1), wide);
    EXPECT_EQ(Text::characterLength(text, 100), 1U);
}

TEST(TextTests, TheFirstBrokenPieceOfUtf8IsFound) {
    EXPECT_EQ(Text::brokenUtf8(""), std::nullopt);
    EXPECT_EQ(Text::brokenUtf8("45\xC2\xB0"), std::nullopt);
    EXPECT_EQ(Text::brokenUtf8("45\xC2"), 2U);
    EXPECT_EQ(Text::brokenUtf8("\xC2\xB0\xE2\x82 \xFF"), 2U);
    EXPECT_EQ(Text::brokenUtf8(std::string_view("\0\xFF", 2)), 1U);
}

TEST(TextTests, PositionsOf16BitsHaveABytePosition) {
    struct Row {
        std::size_t position16;
        std::size_t position8;
    };
    // One, two, three and four bytes, and one more.
    std::wstring const text = L"a\u00B0\u20AC\U0001F4CFz";
    std::string const utf8 = Text::toUtf8(text);
    for (Row const & row : {Row{0, 0}, {1, 1}, {2, 3}, {3, 6}, {5, 10}, {6, 11}}) {
        EXPECT_EQ(Text::utf8At16(text, row.position16), row.position8);
        EXPECT_EQ(Text::position16AtUtf8(utf8, row.position8), row.position16);
    }
    EXPECT_EQ(Text::utf8At16(text, 4), 10U); // between the halves
    EXPECT_EQ(Text::utf8At16(text, 100), 11U);
    for (std::size_t within : {4U, 5U}) EXPECT_EQ(Text::position16AtUtf8(utf8, within), 2U);
    EXPECT_EQ(Text::position16AtUtf8(utf8, 100), 6U);
    EXPECT_EQ(Text::position16AtUtf8("", 1), 0U);
}

TEST(TextTests, TrimmedAndClipped) {
    EXPECT_EQ(Text::trimmed(L" \t a b\u3000"), L"a b");
    EXPECT_EQ(Text::trimmed(L" \t"), L"");
    EXPECT_EQ(Text::clipped(L"abc", 3), L"abc");
    EXPECT_EQ(Text::clipped(L"abcd", 3), L"abc...");
    EXPECT_EQ(Text::clipped(std::wstring(61, L'x')).size(), 63U);
}

TEST(TextTests, PrintableTextsStayOnTheirLine) {
    EXPECT_EQ(Text::printable(L"a\n\x1B\x7F"), L"a\u240A\u241B\u2421");
    EXPECT_EQ(Text::printable(L"\x85\u202E\u00E4"), L"\uFFFD\uFFFD\u00E4");
}

TEST(TextTests, ValuesFillTheirPlaces) {
    EXPECT_EQ(Text::filled(L"%2% after %1%, %1%", {L"a", L"b"}), L"b after a, a");
    EXPECT_EQ(Text::filled(L"%1%%2%", {L"%2%", L"b"}), L"%2%b");
    EXPECT_EQ(Text::filled(L"100 % of %3% and %0% and %x%", {L"a"}),
              L"100 % of %3% and %0% and %x%");
    EXPECT_EQ(Text::filled(L"%1", {L"a"}), L"%1");
    EXPECT_EQ(Text::filled(L"", {L"a"}), L"");
}

} // namespace
