#include "Samples/Blocks/Item.h"

#include <map>
#include <string>

#include "Platform/DataModel/EntityChange.h"
#include "Tests/Samples/Blocks/BlocksTesting.h"

namespace Vn::Blocks::Testing {

namespace {

TEST(Item, AMassIsTheVolumeTimesTheDensityOfTheMaterial) {
    Document document;
    Measures const measures = document.make(EShape::Block, {L"2", L"3", L"4"})->measures();
    EXPECT_DOUBLE_EQ(*measures.volume, 24);
    EXPECT_DOUBLE_EQ(*measures.area, 52);
    EXPECT_DOUBLE_EQ(*measures.density, 0.00785);
    EXPECT_DOUBLE_EQ(*measures.mass, 24 * 0.00785);
    EXPECT_EQ(measures.material->name(), L"Steel");
}

TEST(Item, OverridesAreHeeded) {
    Document document;
    StrongRef<Part> const block = document.make(EShape::Block, {L"1", L"1", L"10"});
    CommonData::MassProperties record;
    record.installOwner(block.get());
    record.overrideVolume(20);
    EXPECT_DOUBLE_EQ(record.volume(nullptr, true), 20);
    EXPECT_DOUBLE_EQ(record.mass(nullptr, true), 20 * 0.00785);
    record.overrideArea(5);
    EXPECT_DOUBLE_EQ(block->measures(record).area.value(), 5);
    record.overrideDensity(0.5);
    EXPECT_DOUBLE_EQ(record.density(nullptr, true), 0.5);
    EXPECT_DOUBLE_EQ(record.mass(nullptr, true), 10);
    record.overrideMass(3);
    EXPECT_DOUBLE_EQ(record.mass(nullptr, true), 3);
    EXPECT_DOUBLE_EQ(record.density(nullptr, true), 0.5);
    record.clearDensityOverride();
    EXPECT_DOUBLE_EQ(record.density(nullptr, true), 3.0 / 20);
    record.overrideVolume(0);
    EXPECT_EQ(record.density(nullptr, true), -1.0);
}

TEST(Item, AnAssemblySumsAndTellsTheMaterialThatAllHave) {
    Document document;
    StrongRef<Part> const one = document.makeBlock(L"1");
    StrongRef<Part> const two = document.makeBlock(L"2");
    StrongRef<Assembly> const inner = document.makeAssembly({two});
    StrongRef<Assembly> const outer = document.makeAssembly({one, inner});
    EXPECT_DOUBLE_EQ(*outer->measures().volume, 9);
    EXPECT_DOUBLE_EQ(*outer->measures().area, 30);
    EXPECT_DOUBLE_EQ(*outer->measures().mass, 9 * 0.00785);
    EXPECT_NEAR(*outer->measures().density, 0.00785, 1e-15);
    EXPECT_EQ(outer->measures().material, findMaterial("steel"));

    ASSERT_TRUE(setMaterial(*two, "oak"));
    EXPECT_DOUBLE_EQ(*outer->measures().mass, 0.00785 + 8 * 0.0007);
    EXPECT_EQ(outer->measures().material, nullptr);
    std::map<std::wstring, std::wstring> shown;
    outer->massProperties().getAllMassProperties(shown, nullptr, nullptr, true);
    EXPECT_EQ(shown[L"Material"], L"(Various)");

    // An assembly within may say what it weighs.
    {
        EntityChange const change(inner.get(), DataChange::TransactDirect, DataChange::ChangeValue,
                                  DataChange::TimingPreAndPost, nullptr, true);
        inner->massProperties().overrideMass(1);
    }
    EXPECT_DOUBLE_EQ(*outer->measures().mass, 1.00785);
}

TEST(Item, AnEmptyAssemblyHasNoDensity) {
    Document document;
    Measures const measures = document.makeAssembly()->measures();
    EXPECT_EQ(measures.mass, 0.0);
    EXPECT_EQ(measures.volume, 0.0);
    EXPECT_FALSE(measures.density);
    EXPECT_EQ(measures.parts, 0U);
}

TEST(Item, ThereAreTenMaterials) {
    EXPECT_TRUE(materialsStatus()) << materialsStatus().toString();
    EXPECT_EQ(materials().size(), 10U);
    EXPECT_EQ(findMaterial("unobtainium"), nullptr);
}

TEST(Assembly, IsToldOfAChangeOfAPartOncePerBracketAndNotOfAMove) {
    Document document;
    StrongRef<Part> const block = document.makeBlock(L"1");
    StrongRef<Assembly> const inner = document.makeAssembly({block});
    StrongRef<Assembly> const outer = document.makeAssembly({inner});
    auto const told = [](StrongRef<Assembly> const & assembly) {
        return std::pair(assembly->summaries().before, assembly->summaries().after);
    };
    EXPECT_EQ(told(inner), std::pair(std::size_t{0}, std::size_t{0}));
    ASSERT_TRUE(setSize(*block, "width", L"2", nullptr));
    EXPECT_EQ(told(inner), std::pair(std::size_t{1}, std::size_t{1}));
    {
        EntityChange const change(block.get(), DataChange::TransactDirect, DataChange::ChangeValue,
                                  DataChange::TimingPreAndPost, nullptr, true);
        ASSERT_TRUE(setSize(*block, "width", L"3", nullptr));
        ASSERT_TRUE(setMaterial(*block, "oak"));
    }
    EXPECT_EQ(told(inner), std::pair(std::size_t{2}, std::size_t{2}));
    ASSERT_TRUE(moveItem(*block, outer.get()));
    ASSERT_TRUE(moveItem(*block, nullptr));
    ASSERT_TRUE(moveItem(*block, inner.get()));
    EXPECT_EQ(told(inner), std::pair(std::size_t{2}, std::size_t{2}));
    EXPECT_EQ(told(outer), std::pair(std::size_t{0}, std::size_t{0}));
}

} // namespace

} // namespace Vn::Blocks::Testing
