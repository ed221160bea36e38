#include "Samples/Blocks/Lengths.h"

#include <cmath>
#include <string>

#include "Tests/Samples/Blocks/BlocksTesting.h"

namespace Vn::Blocks::Testing {

namespace {

Length read(std::wstring const & text, wchar_t const * unit) {
    Length length;
    Status const status =
        readLength(text, ELength::Coordinate, Units::UnitContext(unit), length, nullptr);
    EXPECT_TRUE(status) << status.toString();
    return length;
}

TEST(Lengths, ABareNumberIsInTheUnitsOfTheDocument) {
    EXPECT_DOUBLE_EQ(read(L"2", L"in").value, 5.08);
    EXPECT_DOUBLE_EQ(read(L"2", L"mm").value, 0.2);
    EXPECT_DOUBLE_EQ(read(L"2 m", L"in").value, 200);
}

TEST(Lengths, TheTextThatIsKeptMeansTheSameInAllUnits) {
    for (wchar_t const * const typed :
         {L"2", L"2*2", L"1/128", L"1 + 1/128", L"1' 3/8\"", L"2 m + 3", L"0.123456789012",
          L"-1e-9", L"3 * sin(90)", L"1/3", L"sqrt(2)", L"4 m^2 / 3 m"}) {
        for (wchar_t const * const unit : {L"cm", L"in", L"ft", L"m", L"mm"}) {
            Length const length = read(typed, unit);
            for (wchar_t const * const other : {L"cm", L"in", L"ft", L"m", L"mm"})
                EXPECT_NEAR(read(length.text, other).value, length.value,
                            1e-12 * std::abs(length.value))
                    << Text::toUtf8(typed) << " in " << Text::toUtf8(unit) << " is kept as "
                    << Text::toUtf8(length.text);
        }
    }
}

TEST(Lengths, WhatIsntALengthIsRefusedWithThePlaceAndTheReason) {
    struct Row {
        wchar_t const * text;
        wchar_t const * excerpt;
        wchar_t const * reason;
    };
    for (Row const & row : {
             Row{L"2 +* 3", L"2 +* 3\n  ^", L"Parse error"},
             Row{L"", L"\n^", L"Empty"},
             Row{L"3 kg", L"3 kg\n^", L"mismatch"},
             Row{L"0", L"0\n^", L"it is zero"},
             Row{L"2 - 2", L"2 - 2\n^", L"it is zero"},
             Row{L"-1", L"-1\n^", L"it is negative"},
             Row{L"1e7 + 1", L"1e7 + 1\n^", L"longer than 100 km"},
             Row{L"1/0", L"1/0\n^", L"no value"},
             Row{L"2 m CM", L"2 m CM\n    ^", L"CM"},
         }) {
        Length length{7, L"as it was"};
        Fault fault;
        Status const status =
            readLength(row.text, ELength::Size, Units::UnitContext(L"cm"), length, &fault);
        EXPECT_EQ(status.code(), StatusInvalidArgument) << Text::toUtf8(row.text);
        EXPECT_EQ(Text::toUtf8(fault.excerpt()), Text::toUtf8(row.excerpt));
        EXPECT_NE(fault.reason.find(row.reason), fault.reason.npos)
            << Text::toUtf8(row.text) << ": " << Text::toUtf8(fault.reason);
        EXPECT_EQ(length.value, 7);
    }
}

TEST(Lengths, OfALongTextThePieceAtThePlaceIsShown) {
    std::wstring text(1'000'000, L'1');
    for (std::size_t i = 1; i < text.size(); i += 2) text[i] = L'+';
    text += L"* \x1b";
    Length length;
    Fault fault;
    EXPECT_FALSE(readLength(text, ELength::Size, Units::UnitContext(L"cm"), length, &fault));
    std::wstring const excerpt = fault.excerpt();
    EXPECT_LT(excerpt.size(), 200U);
    EXPECT_EQ(excerpt.find(L'\x1b'), excerpt.npos);
}

TEST(Lengths, CoordinatesMayBeZeroAndNegative) {
    EXPECT_EQ(read(L"0", L"cm").value, 0);
    EXPECT_EQ(read(L"-3", L"cm").value, -3);
    Length length;
    EXPECT_FALSE(
        readLength(L"-1e8", ELength::Coordinate, Units::UnitContext(L"cm"), length, nullptr));
}

} // namespace

} // namespace Vn::Blocks::Testing
