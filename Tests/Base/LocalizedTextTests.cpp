// In English; the translations are tested with their catalogues.

#include "Platform/Base/LocalizedText.h"

#include <gtest/gtest.h>

namespace {

using Vn::localizable;
using Vn::localized;
using Vn::localizedIn;

TEST(LocalizedTextTests, EnglishIsAsItIsWritten) {
    EXPECT_EQ(localized("it isn't a file"), "it isn't a file");
    EXPECT_EQ(localized(L"it isn't a file"), L"it isn't a file");
    EXPECT_EQ(localized(localizable("it isn't a file")), "it isn't a file");
    EXPECT_EQ(localized(""), "");
}

TEST(LocalizedTextTests, ValuesGoIntoTheirPlaces) {
    std::string const name = "W\u00FCrfel";
    EXPECT_EQ(localized("entity %1%, member %2%: %3%", 12, name, "why"),
              "entity 12, member W\u00FCrfel: why");
    EXPECT_EQ(localized("%2% of %1%", -1, 18446744073709551615ULL), "18446744073709551615 of -1");
    EXPECT_EQ(localized(L"%1% and %2%", std::wstring(L"a"), 3), L"a and 3");
}

TEST(LocalizedTextTests, WideAndNarrowValuesMix) {
    EXPECT_EQ(localized("%1%", L"\u65E5"), "\u65E5");
    EXPECT_EQ(localized(L"%1%", "\u65E5"), L"\u65E5");
}

TEST(LocalizedTextTests, APlaceInAValueIsNone) {
    EXPECT_EQ(localized("%1% %2%", "%2%", "b"), "%2% b");
    EXPECT_EQ(localized("%1% %2%", "a"), "a %2%");
}

TEST(LocalizedTextTests, ATextOfTheSystemStaysAsItIs) {
    EXPECT_EQ(localizedIn("OperatingSystem", "%1%", "No such file or directory"),
              "No such file or directory");
}

TEST(LocalizedTextTests, BrokenBytesBecomeSigns) {
    EXPECT_EQ(localized("%1%", "a\xFF"), "a\uFFFD");
}

} // namespace
