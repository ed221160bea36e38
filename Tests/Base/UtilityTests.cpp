#include <clocale>
#include <cstring>
#include <limits>
#include <random>

#include <gtest/gtest.h>

#include "Platform/Base/Utility.h"

namespace Vn::Utility {

namespace {

TEST(UtilityTests, ADoubleIsReadWithAFullStopOrAComma) {
    struct Row {
        wchar_t const * text;
        double value;
    };
    constexpr Row c_rows[] = {
        {L"9999.9999", 9999.9999},
        {L"9999,9999", 9999.9999},
        {L"0,001", 0.001},
        {L"1E-3", 0.001},
        {L"1e3", 1000.0},
        {L"1.5E+2", 150.0},
        {L"-2,5", -2.5},
        {L"+2.5", 2.5},
        {L".5", 0.5},
        {L"5.", 5.0},
        {L"007", 7.0},
        {L"0", 0.0},
        {L"1E308", 1E308},
        {L"5E-324", 5E-324},
    };
    for (Row const & row : c_rows) {
        double value = 42.0;
        EXPECT_TRUE(localeTolerantLexicalCast(row.text, value)) << row.text;
        EXPECT_EQ(value, row.value) << row.text;
    }
}

TEST(UtilityTests, WhatIsNotANumberKeepsTheDouble) {
    for (wchar_t const * const text :
         {L"",      L" ",      L"abc", L"1,234.5", L"1.234.5", L"1,2,3",    L"1 000",
          L" 1",    L"1 ",     L"inf", L"INF",     L"nan",     L"infinity", L"0x10",
          L"1E999", L"-1E999", L"1E",  L"E5",      L".",       L",",        L"+",
          L"-",     L"+-1",    L"--1", L"1.5f",    L"1'000",   L"\x0661",   L"1e-99999"}) {
        double value = 42.0;
        EXPECT_FALSE(localeTolerantLexicalCast(text, value)) << text;
        EXPECT_EQ(value, 42.0) << text;
    }
}

TEST(UtilityTests, AWholeNumberIsDecimalDigits) {
    struct Row {
        wchar_t const * text;
        int value;
    };
    constexpr Row c_rows[] = {
        {L"0", 0},  {L"5", 5},   {L"-5", -5},
        {L"+5", 5}, {L"007", 7}, {L"2147483647", std::numeric_limits<int>::max()},
        {L"-0", 0}, {L"12", 12}, {L"-2147483648", std::numeric_limits<int>::min()},
    };
    for (Row const & row : c_rows) {
        int value = 42;
        EXPECT_TRUE(wholeNumberLexicalCast(row.text, value)) << row.text;
        EXPECT_EQ(value, row.value) << row.text;
    }
    for (wchar_t const * const text :
         {L"", L"abc", L"5.0", L"5,0", L"99999999999", L"2147483648", L" 5", L"5 ", L"1e3", L"0x1",
          L"+-5", L"--5", L"-", L"+", L"1,000"}) {
        int value = 42;
        EXPECT_FALSE(wholeNumberLexicalCast(text, value)) << text;
        EXPECT_EQ(value, 42) << text;
    }
}

TEST(UtilityTests, ATextHasTheFewestDigitsAndNoExponent) {
    struct Row {
        double value;
        wchar_t const * text;
    };
    constexpr Row c_rows[] = {
        {9999.9999, L"9999.9999"},
        {0.00000001, L"0.00000001"},
        {0.001, L"0.001"},
        {10000.0, L"10000"},
        {0.0, L"0"},
        {-0.0, L"-0"},
        {-2.5, L"-2.5"},
        {0.1, L"0.1"},
        {1E23, L"100000000000000000000000"},
        {123456789.0, L"123456789"},
        {99999999.9999, L"99999999.9999"},
    };
    for (Row const & row : c_rows) EXPECT_EQ(decimalText(row.value), row.text);
    EXPECT_EQ(decimalText(1E308), L'1' + std::wstring(308, L'0'));
    EXPECT_EQ(decimalText(5E-324), L"0." + std::wstring(323, L'0') + L'5');
}

TEST(UtilityTests, AnyFiniteDoubleReadsBack) {
    std::mt19937_64 random(7);
    for (int i = 0; i < 100000; ++i) {
        std::uint64_t const bits = random();
        double value = 0.0;
        std::memcpy(&value, &bits, sizeof value);
        if (!std::isfinite(value)) continue;
        double read = 42.0;
        ASSERT_TRUE(localeTolerantLexicalCast(decimalText(value), read)) << value;
        ASSERT_EQ(std::memcmp(&read, &value, sizeof value), 0) << value;
    }
}

TEST(UtilityTests, NoLocaleIsAsked) {
    std::string const before = std::setlocale(LC_ALL, nullptr);
    if (!std::setlocale(LC_ALL, "de_DE.UTF-8")) GTEST_SKIP() << "no German locale here";
    double value = 0.0;
    EXPECT_TRUE(localeTolerantLexicalCast(L"1.5", value));
    EXPECT_EQ(value, 1.5);
    EXPECT_EQ(decimalText(1.5), L"1.5");
    std::setlocale(LC_ALL, before.c_str());
}

TEST(UtilityTests, EqualIsWithinAHundredMillionth) {
    EXPECT_TRUE(essentiallyEqual(0.000000001, 0.00000001));
    EXPECT_TRUE(essentiallyEqual(1.0, 1.0 + 9E-9));
    EXPECT_FALSE(essentiallyEqual(1.0, 1.0 + 2E-8));
    EXPECT_FALSE(essentiallyEqual(0.0, std::numeric_limits<double>::quiet_NaN()));
}

} // namespace

} // namespace Vn::Utility
