#include "Server/CommonData/Expressions/Vocabulary.h"

#include "Platform/Base/Initializer.h"
#include "Server/CommonData/Units/UnitLookup.h"
#include "Tests/CommonData/Expressions/ExpressionsTesting.h"

namespace Vn::Expressions {

namespace {

TEST(VocabularyTests, EveryWordIsUnderstoodByExpressions) {
    Initializer::runAll();
    std::size_t functions = 0;
    for (Vocabulary::Word const & word : Vocabulary::get().words()) {
        EXPECT_TRUE(Vocabulary::isKnown(word.text)) << Text::toUtf8(word.text);
        if (word.kind == Vocabulary::EKind::Function) {
            ++functions;
            continue;
        }
        // A unit may share its spelling with a function, but not after a number.
        bool const isConstant = word.kind == Vocabulary::EKind::Constant;
        EXPECT_TRUE(Expression(isConstant ? word.text : L"1 " + word.text))
            << Text::toUtf8(word.text);
    }
    EXPECT_EQ(functions, 22u);
}

TEST(VocabularyTests, LookingWordsUpMakesNoUnits) {
    Initializer::runAll();
    Vocabulary const & vocabulary = Vocabulary::get();
    auto const units = [] { return Units::listUnits().size(); };
    std::size_t const before = units();
    EXPECT_TRUE(Vocabulary::isKnown(L"attohenry"));
    EXPECT_TRUE(Vocabulary::isKnown(L"Es"));
    vocabulary.nearest(L"ATTOHENRI");
    EXPECT_EQ(units(), before);
}

TEST(VocabularyTests, WhatCannotBeTypedIsNotSuggested) {
    for (Vocabulary::Word const & word : Vocabulary::get().words()) {
        EXPECT_EQ(word.text.find(L'_'), std::wstring::npos) << Text::toUtf8(word.text);
        EXPECT_NE(word.text, L"\"");
    }
}

TEST(VocabularyTests, WhatCannotStandAtAPlaceIsNotSuggested) {
    using EPlace = Vocabulary::EPlace;
    Vocabulary const & vocabulary = Vocabulary::get();
    using Words = std::vector<std::wstring>;
    EXPECT_EQ(vocabulary.nearest(L"Gravitty", EPlace::Any), Words{L"Gravity"});
    EXPECT_EQ(vocabulary.nearest(L"Gravitty", EPlace::Unit), Words{});
    EXPECT_EQ(vocabulary.nearest(L"squrt", EPlace::Function), Words{L"sqrt"});
    EXPECT_EQ(vocabulary.nearest(L"squrt", EPlace::Any), Words{});
    EXPECT_EQ(vocabulary.nearest(L"metr", EPlace::Unit), Words{L"meter"});
    EXPECT_EQ(vocabulary.nearest(L"metr", EPlace::Function), Words{});
}

TEST(VocabularyTests, AShortNameMustBeRightButForItsCase) {
    using Words = std::vector<std::wstring>;
    Vocabulary const & vocabulary = Vocabulary::get();
    EXPECT_EQ(vocabulary.nearest(L"KG"), Words{L"kg"});
    EXPECT_EQ(vocabulary.nearest(L"MM"), (Words{L"mm", L"Mm"}));
    for (wchar_t const * const name : {L"", L"G", L"EUR", L"Nx", L"kWh", L"foo", L"km2"})
        EXPECT_EQ(vocabulary.nearest(name), Words{}) << Text::toUtf8(name);
}

TEST(VocabularyTests, LongNamesAreNearNothing) {
    EXPECT_TRUE(Vocabulary::get().nearest(std::wstring(10000000, L'm')).empty());
}

} // namespace

} // namespace Vn::Expressions
