#include "Samples/Blocks/TextCommands.h"

#include <string>

#include "Platform/Base/StringTable.h"
#include "Platform/Base/TextCommandService.h"
#include "Platform/DataModel/ActiveAsset.h"
#include "Tests/Samples/Blocks/BlocksTesting.h"

namespace Vn::Blocks::Testing {

namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

class TextCommandsTest : public ::testing::Test {
protected:
    TextCommandsTest() { ActiveAsset::set(document.asset.get()); }

    // The answer of a command that has to be good.
    static std::string good(std::wstring const & line) {
        TextCommandResult const result = TextCommandService::get().run(line);
        EXPECT_EQ(result.status, 0) << Text::toUtf8(line) << ": " << Text::toUtf8(result.text);
        return Text::toUtf8(result.text);
    }
    // The refusal of one that mustn't be.
    static std::string bad(std::wstring const & line) {
        TextCommandResult const result = TextCommandService::get().run(line);
        EXPECT_EQ(result.status, 1) << Text::toUtf8(line) << ": " << Text::toUtf8(result.text);
        return Text::toUtf8(result.text);
    }

    Document document{L"in"};
    BlocksTextCommands const commands;
};

TEST_F(TextCommandsTest, ADeletionThatIsUndoneLeavesNothingToSave) {
    good(L"Blocks.New block 2 1 1");
    good(L"Blocks.Assemble Rack 1");
    Vn::Testing::TemporaryFile const file;
    ASSERT_TRUE(DocumentFile::saveAs(*document.asset, file.path()));
    for (wchar_t const * const path : {L"1/1", L"1"}) {
        document.history().clear(); // as if it were opened: no step names the items
        good(std::wstring(L"Blocks.Delete ") + path);
        EXPECT_TRUE(document.asset->isDirty());
        ASSERT_TRUE(document.history().undo());
        EXPECT_FALSE(document.asset->isDirty());
    }
}

TEST_F(TextCommandsTest, PartsAreMadeChangedAndListed) {
    EXPECT_EQ(good(L"Blocks.New block 2 1 \"1 ft\""),
              "1  Block, 2.00 in x 1.00 in x 12.00 in, Steel, at (0.00 in; 0.00 in; 0.00 in)");
    EXPECT_EQ(good(L"Blocks.New sphere \"2 cm\" 1 2 -3"),
              "2  Sphere, 0.787 in, Steel, at (1.00 in; 2.00 in; -3.00 in)");
    EXPECT_EQ(good(L"Blocks.Set 1 depth 2*3"),
              "1  Block, 2.00 in x 6.00 in x 12.00 in, Steel, at (0.00 in; 0.00 in; 0.00 in)");
    EXPECT_EQ(good(L"Blocks.Material 2 oak"),
              "2  Sphere, 0.787 in, Oak, at (1.00 in; 2.00 in; -3.00 in)");
    EXPECT_EQ(good(L"Blocks.Place 1 0 0 1/2"),
              "1  Block, 2.00 in x 6.00 in x 12.00 in, Steel, at (0.00 in; 0.00 in; 0.50 in)");
    EXPECT_EQ(good(L"Blocks.Assemble \"My table\" 2 1"),
              "1  Assembly \"My table\" at (0.00 in; 0.00 in; 0.00 in)");
    EXPECT_EQ(good(L"Blocks.Duplicate 1/2 2"), "1/3 to 1/4");
    EXPECT_EQ(good(L"Blocks.Delete 1/3"), "");
    EXPECT_EQ(good(L"Blocks.Move 1/3"),
              "2  Block, 2.00 in x 6.00 in x 12.00 in, Steel, at (0.00 in; 0.00 in; 0.50 in)");
    EXPECT_EQ(good(L"Blocks.List /Typed"),
              "1  Assembly \"My table\" at (0.00 in; 0.00 in; 0.00 in)\n"
              "  1/1  Sphere, 0.787 in, Oak, at (1.00 in; 2.00 in; -3.00 in)  = 2 cm (1 in; 2 in; "
              "-3 in)\n"
              "  1/2  Block, 2.00 in x 6.00 in x 12.00 in, Steel, at (0.00 in; 0.00 in; 0.50 in)"
              "  = 2 in x ( 2 * 3 ) * 1 in x 1 ft (0 in; 0 in; 1/2\")\n"
              "2  Block, 2.00 in x 6.00 in x 12.00 in, Steel, at (0.00 in; 0.00 in; 0.50 in)"
              "  = 2 in x ( 2 * 3 ) * 1 in x 1 ft (0 in; 0 in; 1/2\")\n");
    EXPECT_EQ(document.history().undoSteps(), 9U);
    EXPECT_EQ(document.history().undoNames().front(), L"Move");
    EXPECT_EQ(document.graph(), document.graphOpenedAnew());
}

TEST_F(TextCommandsTest, ARefusalHasTheReasonAndACaret) {
    EXPECT_THAT(bad(L"Blocks.New sphere \"2 +* 3\""), HasSubstr("\n2 +* 3\n  ^"));
    EXPECT_EQ(bad(L"Blocks.New sphere -2"), "it is negative, and a size is above zero\n-2\n^");
    EXPECT_THAT(bad(L"Blocks.New block 2 in 3 in 4 in"), HasSubstr("goes in quotes"));
    EXPECT_THAT(bad(L"Blocks.New cylinder 2 in"), HasSubstr("goes in quotes"));
    EXPECT_THAT(bad(L"Blocks.New cone 1"), HasSubstr("\"cone\" is none of"));
    EXPECT_THAT(bad(L"Blocks.Delete 7"), HasSubstr("no item 7"));
    EXPECT_THAT(bad(L"Blocks.List 7"), HasSubstr("too much"));
    EXPECT_THAT(bad(L"Blocks.Set 1"), HasSubstr("PATH SIZE EXPRESSION"));
    good(L"Blocks.New sphere 2");
    EXPECT_THAT(bad(L"Blocks.Set 1 width 2"), HasSubstr("no size \"width\""));
    EXPECT_THAT(bad(L"Blocks.Material 1 cheese"), HasSubstr("\"cheese\" isn't a material"));
    EXPECT_THAT(bad(L"Blocks.Move 1 1"), HasSubstr("is a part"));
    good(L"Blocks.Assemble A 1");
    good(L"Blocks.Assemble B 1");
    EXPECT_THAT(bad(L"Blocks.Move 1 1/1"), HasSubstr("within itself"));
    EXPECT_EQ(document.history().undoSteps(), 3U);
    ActiveAsset::set(nullptr);
    EXPECT_EQ(bad(L"Blocks.List"), "no document is open");
}

TEST_F(TextCommandsTest, MaterialsAreNamedInTheLanguageOfTheMoment) {
    good(L"Blocks.New sphere 2");
    EXPECT_THAT(good(L"Blocks.List"), HasSubstr("Steel"));
    StringTable::catalogueDirectory(VN_BLOCKS_ROOT "/share/locale");
    StringTable::language("de");
    std::string const german = good(L"Blocks.List");
    std::string const mass = good(L"Blocks.Mass");
    StringTable::language("");
    EXPECT_THAT(german, HasSubstr("Stahl"));
    EXPECT_THAT(mass, HasSubstr("Stahl"));
}

TEST_F(TextCommandsTest, WhatIsNoItemIsNotListedAndKeepsItsPlace) {
    good(L"Blocks.New sphere 1");
    {
        Transaction transaction(*document.asset, L"Add a stranger");
        StrongRef<CommonData::CommonBaseGroupEntity> const stranger =
            CommonData::CommonBaseGroupEntity::make(
                PassiveRef<Entity>(Workbench::find(*document.asset)));
        ASSERT_TRUE(stranger);
        transaction.commit();
    }
    EXPECT_THAT(good(L"Blocks.New sphere 3"), HasSubstr("3  Sphere, 3.00 in"));
    EXPECT_THAT(good(L"Blocks.Set 3 diameter 4"), HasSubstr("3  Sphere, 4.00 in"));
    EXPECT_THAT(bad(L"Blocks.Delete 2"), HasSubstr("no item 2"));
    EXPECT_EQ(good(L"Blocks.List"), "1  Sphere, 1.00 in, Steel, at (0.00 in; 0.00 in; 0.00 in)\n"
                                    "3  Sphere, 4.00 in, Steel, at (0.00 in; 0.00 in; 0.00 in)\n");
}

TEST_F(TextCommandsTest, AMassIsTold) {
    EXPECT_EQ(good(L"Blocks.Mass"), "Material: none, for there are no parts\n"
                                    "Volume: 0.00 in^3\nArea: 0.00 in^2\nMass: 0.00 kg\n"
                                    "Density: none, for there are no parts\n");
    good(L"Blocks.New block 10 10 10");
    good(L"Blocks.New block 10 10 10");
    good(L"Blocks.Material 2 copper");
    EXPECT_EQ(good(L"Blocks.Mass 1"),
              "Material: Steel\nVolume: 1000.00 in^3\nArea: 600.00 in^2\nMass: 128.638 kg\n"
              "Density: 0.129 kg / in^3\n");
    EXPECT_THAT(good(L"Blocks.Mass"), HasSubstr("Material: (Various)\nVolume: 2000.00 in^3"));
}

TEST_F(TextCommandsTest, SummariesCanBeRead) {
    good(L"Blocks.New block 1 1 1");
    good(L"Blocks.Assemble A 1");
    good(L"Blocks.Set 1/1 width 2");
    EXPECT_EQ(good(L"Blocks.Summaries"),
              "1  \"A\" was told 1 times before and 1 times after a change\n");
}

TEST_F(TextCommandsTest, WordsAreCompleted) {
    TextCommandService const & service = TextCommandService::get();
    good(L"Blocks.New cylinder 1 2");
    good(L"Blocks.Assemble A 1");
    EXPECT_THAT(service.completions(L"Blocks.New"), ElementsAre(L"block", L"cylinder", L"sphere"));
    EXPECT_THAT(service.completions(L"Blocks.Set"), ElementsAre(L"1/1"));
    EXPECT_THAT(service.completions(L"Blocks.Set 1/1"), ElementsAre(L"diameter", L"height"));
    EXPECT_THAT(service.completions(L"Blocks.Move 1/1"), ElementsAre(L"1"));
    EXPECT_EQ(service.completions(L"Blocks.Material 1/1").size(), 10U);
    EXPECT_TRUE(service.completions(L"Blocks.Set 9").empty());
    EXPECT_TRUE(service.completions(L"Blocks.Nothing").empty());
}

} // namespace

} // namespace Vn::Blocks::Testing
