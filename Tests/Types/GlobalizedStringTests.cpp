#include "Platform/Types/GlobalizedString.h"

#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "Platform/Base/StringTable.h"

namespace {

using Vn::GlobalizedString;
using Vn::StringTable;

class GlobalizedStringTests : public testing::Test {
protected:
    static void SetUpTestSuite() { StringTable::catalogueDirectory(VN_TEST_CATALOGUES); }
    ~GlobalizedStringTests() override { StringTable::language(""); }

    static GlobalizedString modelingLength() {
        return GlobalizedString("VnTypesTests", "modelingLengthName", L"Modeling Length");
    }
};

TEST_F(GlobalizedStringTests, PlainTextStaysAsItIs) {
    GlobalizedString const text(L"Modeling Length");
    EXPECT_FALSE(text.isGlobalized());
    EXPECT_EQ(text.value(), L"Modeling Length");
    EXPECT_EQ(text.defaultText(), L"Modeling Length");
    EXPECT_EQ(text.module(), "");
    EXPECT_EQ(text.key(), "");
}

TEST_F(GlobalizedStringTests, DefaultIsAnEmptyPlainText) {
    GlobalizedString const text;
    EXPECT_FALSE(text.isGlobalized());
    EXPECT_EQ(text.value(), L"");
    EXPECT_EQ(text, GlobalizedString(L""));
}

TEST_F(GlobalizedStringTests, ReadsInEnglishByDefault) {
    GlobalizedString const text = modelingLength();
    EXPECT_TRUE(text.isGlobalized());
    EXPECT_EQ(text.module(), "VnTypesTests");
    EXPECT_EQ(text.key(), "modelingLengthName");
    EXPECT_EQ(text.defaultText(), L"Modeling Length");
    EXPECT_EQ(text.value(), L"Modeling Length");
}

TEST_F(GlobalizedStringTests, EqualityIsOfOriginNotOfWording) {
    GlobalizedString const text = modelingLength();
    EXPECT_EQ(text, modelingLength());
    EXPECT_NE(text, GlobalizedString(L"Modeling Length"));
    EXPECT_NE(text, GlobalizedString("VnTypesTests", "otherName", L"Modeling Length"));
    EXPECT_NE(text, GlobalizedString("Other", "modelingLengthName", L"Modeling Length"));
    EXPECT_NE(text, GlobalizedString("VnTypesTests", "modelingLengthName", L"Modelling Length"));
    EXPECT_EQ(GlobalizedString(L"a"), GlobalizedString(L"a"));
    EXPECT_NE(GlobalizedString(L"a"), GlobalizedString(L"b"));
    EXPECT_NE(GlobalizedString(), GlobalizedString("", "", L""));
}

TEST_F(GlobalizedStringTests, CopiesMovesAndAssigns) {
    GlobalizedString a = modelingLength();
    GlobalizedString b(L"plain");
    b = a;
    EXPECT_EQ(b, a);
    GlobalizedString const c = std::move(a);
    EXPECT_EQ(c, b);
    a = GlobalizedString(L"again");
    EXPECT_EQ(a.value(), L"again");
}

TEST_F(GlobalizedStringTests, FollowsTheLanguage) {
    GlobalizedString const text = modelingLength();
    GlobalizedString const copy = text;
    std::wstring const & english = text.value();
    EXPECT_EQ(english, L"Modeling Length");
    StringTable::language("de");
    EXPECT_EQ(text.value(), L"Modellierma\u00DF");
    EXPECT_EQ(copy.value(), L"Modellierma\u00DF");
    EXPECT_EQ(english, L"Modeling Length"); // which who has it may still read
    StringTable::language("");
    EXPECT_EQ(&text.value(), &english);
    EXPECT_EQ(&copy.value(), &english);
    EXPECT_EQ(copy.defaultText(), L"Modeling Length");
    // The language in which it was looked up isn't part of what it is.
    EXPECT_EQ(text, modelingLength());
}

TEST_F(GlobalizedStringTests, ThreadsReadOneText) {
    StringTable::language("de");
    GlobalizedString const text = modelingLength();
    std::vector<std::jthread> threads;
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([&text] { EXPECT_EQ(text.value(), L"Modellierma\u00DF"); });
}

} // namespace
