// Documents, their segments, and what the data model knows of classes.

#include "Platform/DataModel/Asset.h"

#include <stdexcept>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Platform/DataModel/ActiveAsset.h"
#include "Platform/DataModel/AssetAdapter.h"
#include "Platform/DataModel/EntityTableInternal.h"
#include "Platform/DataModel/GeometryMetaTypes.h"
#include "Platform/DataModel/Request.h"
#include "Tests/DataModel/TestEntities.h"

namespace Vn::Testing {
namespace {

using ::testing::ElementsAre;

TEST(AssetTests, ANewDocumentHasADesignSegmentAndNothingToSave) {
    StrongRef<Asset> const asset = Asset::make(nullptr);
    EXPECT_EQ(asset->assetType(), nullptr);
    EXPECT_EQ(asset->segments(), 1U);
    EXPECT_EQ(asset->segment(SegmentTypeMgr::get()->segmentType(1)), asset->segmentAt(0));
    EXPECT_EQ(asset->segment(2U), nullptr);
    EXPECT_FALSE(asset->isDirty());
    EXPECT_TRUE(asset->file().empty());
    EXPECT_EQ(asset->adapter(), nullptr);
}

TEST(AssetTests, ADocumentIsActiveUntilAnotherIsOrItIsClosed) {
    EXPECT_EQ(ActiveAsset::get(), nullptr);
    StrongRef<Asset> one = Asset::make(nullptr);
    StrongRef<Asset> other = Asset::make(nullptr);
    ActiveAsset::set(one.get());
    ActiveAsset::set(other.get());
    one.reset();
    EXPECT_EQ(ActiveAsset::get(), other.get());
    other.reset();
    EXPECT_EQ(ActiveAsset::get(), nullptr);
}

TEST(AssetTests, ThereIsOneSegmentOfEachKind) {
    StrongRef<Asset> const asset = Asset::make(nullptr);
    SegmentType * const transient = SegmentTypeMgr::get()->segmentType(2);
    Segment * const made = Segment::create(asset.get(), transient, true);
    EXPECT_EQ(Segment::create(asset.get(), transient, true), made);
    EXPECT_TRUE(made->isTransient());
    EXPECT_EQ(made->asset(), asset.get());
    EXPECT_EQ(Segment::create(nullptr, transient, true), nullptr);
    EXPECT_EQ(Segment::create(asset.get(), nullptr, true), nullptr);
    EXPECT_EQ(SegmentTypeMgr::get()->segmentType(0), nullptr);
    EXPECT_EQ(SegmentTypeMgr::get()->segmentType(4), nullptr);
}

TEST(AssetTests, WhatHappensInATransientSegmentMakesNothingToSave) {
    StrongRef<Asset> const asset = Asset::make(nullptr);
    Segment * const segment =
        Segment::create(asset.get(), SegmentTypeMgr::get()->segmentType(2), true);
    Transaction transaction(*asset, L"transient");
    StrongRef<Thing> const thing = Thing::make(segment);
    segment->addRoot(thing, "root");
    transaction.commit();
    EXPECT_FALSE(asset->isDirty());
    EXPECT_TRUE(asset->history().undo().ok());
    EXPECT_EQ(segment->rootEntity("root"), nullptr);
}

TEST(AssetTests, IdsAreNeverUsedAgain) {
    StrongRef<Asset> const asset = Asset::make(nullptr);
    auto const first = Thing::make(*asset)->id();
    auto const second = Thing::make(*asset)->id();
    EXPECT_LT(first, second);
    EXPECT_EQ(asset->entities(), 0U);
    EXPECT_EQ(asset->entity(first), nullptr);
    EXPECT_EQ(asset->entity(~0ULL), nullptr);
}

TEST(AssetTests, RootsKeepTheirOrder) {
    StrongRef<Asset> const asset = Asset::make(nullptr);
    Segment & segment = *asset->segment(1U);
    StrongRef<Thing> const thing = Thing::make(*asset);
    for (char const * key : {"b", "a", "c"}) segment.addRoot(thing, key);
    segment.addRoot(Thing::make(*asset), "a");
    std::vector<std::string> keys;
    segment.rootEntityIds(keys);
    EXPECT_THAT(keys, ElementsAre("b", "a", "c"));
    EXPECT_EQ(*segment.rootKey(thing.get()), "b");
    EXPECT_EQ(segment.rootKey(nullptr), nullptr);
    EXPECT_EQ(segment.rootEntity("d"), nullptr);
}

TEST(AssetTests, AnEntityOfAnotherDocumentIsNoRoot) {
    StrongRef<Asset> const asset = Asset::make(nullptr);
    StrongRef<Asset> const other = Asset::make(nullptr);
    asset->segment(1U)->addRoot(Thing::make(*other), "root");
    EXPECT_EQ(asset->segment(1U)->rootEntity("root"), nullptr);
}

TEST(AssetTests, AStrongReferenceIntoAnotherDocumentSurvivesUndo) {
    StrongRef<Asset> const asset = Asset::make(nullptr);
    StrongRef<Asset> other = Asset::make(nullptr);
    StrongRef<Thing> const thing = Thing::make(*asset);
    thing->m_rOwned = Thing::make(*other, L"foreign");
    PassiveRef<Thing> const foreign(thing->m_rOwned);
    Transaction transaction(*asset, L"let go");
    thing->set(&Thing::m_rOwned, StrongRef<Thing>());
    transaction.commit();
    EXPECT_TRUE(foreign);
    EXPECT_TRUE(asset->history().undo().ok());
    EXPECT_EQ(thing->m_rOwned->m_name, L"foreign");
    EXPECT_TRUE(asset->history().redo().ok());
    asset->history().clear();
    EXPECT_FALSE(foreign);
}

TEST(AssetTests, CyclesEndWithTheDocument) {
    StrongRef<Asset> asset = Asset::make(nullptr);
    StrongRef<Thing> a = Thing::make(*asset);
    StrongRef<Thing> const b = Thing::make(*asset);
    a->m_rOwned = b;
    b->m_rOwned = a;
    PassiveRef<Thing> const passive(a);
    a.reset();
    EXPECT_TRUE(passive);
    asset.reset();
    EXPECT_FALSE(passive);
    EXPECT_EQ(b->segment(), nullptr);
    EXPECT_EQ(b->asset(), nullptr);
}

class Counting : public Request {
public:
    Counting(Asset * asset, std::string & told, bool fail, bool raise)
        : Request(asset, L"Count"), m_told(told), m_bFail(fail), m_bRaise(raise) {}

private:
    void onPreExecute(Status & status) override {
        Request::onPreExecute(status);
        m_told += "pre ";
    }
    void onExecute(Status & status) override {
        Request::onExecute(status);
        m_told += "execute ";
        asset(0)->segment(1U)->addRoot(Thing::make(*asset(0)), "made");
        if (m_bRaise) throw std::runtime_error("no");
        if (m_bFail) status = Status::failed("count");
    }
    void onPostExecute(Status & status) override {
        Request::onPostExecute(status);
        m_told += "post ";
    }
    void onCancel() override {
        Request::onCancel();
        m_told += "cancel ";
    }
    std::string & m_told;
    bool const m_bFail;
    bool const m_bRaise;
};

TEST(AssetTests, ARequestIsOneStep) {
    StrongRef<Asset> const asset = Asset::make(nullptr);
    std::string told;
    EXPECT_TRUE(asset->run(std::make_unique<Counting>(asset.get(), told, false, false)).ok());
    EXPECT_EQ(told, "pre execute post ");
    EXPECT_THAT(asset->history().undoNames(), ElementsAre(L"Count"));
    EXPECT_TRUE(asset->history().undo().ok());
    EXPECT_EQ(asset->entities(), 0U);
    EXPECT_FALSE(asset->run(nullptr).ok());
}

TEST(AssetTests, ARequestThatFailsOrThrowsIsTakenBackWhole) {
    StrongRef<Asset> const asset = Asset::make(nullptr);
    std::string told;
    EXPECT_FALSE(asset->run(std::make_unique<Counting>(asset.get(), told, true, false)).ok());
    EXPECT_EQ(told, "pre execute cancel ");
    told.clear();
    EXPECT_THROW(asset->run(std::make_unique<Counting>(asset.get(), told, false, true)),
                 std::runtime_error);
    EXPECT_EQ(told, "pre execute cancel ");
    EXPECT_EQ(asset->entities(), 0U);
    EXPECT_EQ(asset->segment(1U)->rootEntity("made"), nullptr);
    EXPECT_FALSE(asset->history().canUndo());
}

TEST(MetaTypeTests, TypesAreFoundByTheirIds) {
    EXPECT_EQ(MetaTypeMgr::get()->metaType("Test-Thing"), Thing::s_metaType());
    EXPECT_EQ(MetaTypeMgr::get()->metaType("test-thing"), nullptr);
    EXPECT_EQ(MetaTypeMgr::get()->entityMetaType("TgPoint3d"), nullptr);
    EXPECT_NE(MetaTypeMgr::get()->metaType("TgPoint3d"), nullptr);
    EXPECT_TRUE(Thing::s_metaType()->isA(Thing::s_metaType()));
    EXPECT_FALSE(Thing::s_metaType()->isA(AssetSettings::s_metaType()));
}

TEST(MetaTypeTests, MembersStandInTheOrderOfTheirAddition) {
    StrongRef<Asset> const asset = Asset::make(nullptr);
    StrongRef<Thing> const thing = Thing::make(*asset);
    MemberSet const & set = *Thing::s_metaType()->memberSet(c_latestVersion);
    EXPECT_TRUE(set.initialized());
    EXPECT_EQ(set.className(), "Thing");
    ASSERT_EQ(set.members(), 16U);
    EXPECT_EQ(set.member(0).name(), "bool");
    EXPECT_EQ(set.member(15).name(), "words");
    EXPECT_EQ(set.find("double")->type(), IntrinsicMetaType<double>::get());
    EXPECT_EQ(set.find("double")->offset(),
              reinterpret_cast<char *>(&thing->m_double) - reinterpret_cast<char *>(thing.get()));
    EXPECT_EQ(set.find("nothing"), nullptr);
}

TEST(MetaTypeTests, OptionsOfAMemberAreBits) {
    MemberSet set(Thing::s_metaType());
    struct {
        double m_value = 0;
    } object;
    set.initialize(&object, "Object");
    StrongRef<Asset> const asset = Asset::make(nullptr);
    Member member("value", 0, false, "double", IntrinsicMetaType<double>::get(), nullptr);
    EXPECT_TRUE(member.test(Member::OptionFollowed));
    member.clear(16);
    EXPECT_FALSE(member.test(Member::OptionFollowed));
    EXPECT_TRUE(member.test(Member::OptionPersisted));
    EXPECT_TRUE(member.test(Member::OptionUndoable));
    EXPECT_EQ(member.set(16).options(), Member::OptionsDefault);
}

TEST(MetaTypeTests, KindsAreFoundByTheirNames) {
    EXPECT_EQ(MemberMetaType::find("double"), IntrinsicMetaType<double>::get());
    EXPECT_EQ(MemberMetaType::find("StrongRef"), StrongRefMetaType::get());
    EXPECT_EQ(MemberMetaType::find("Vector")->kind(), EMemberKind::Vector);
    EXPECT_EQ(MemberMetaType::find("TgVector3d"), TgVector3dMetaType::get());
    EXPECT_EQ(MemberMetaType::find("none"), nullptr);
}

TEST(MetaTypeTests, TheFunctionsOfAVectorHandleIt) {
    std::unique_ptr<TemplatizedFunctions> const functions(
        TemplatizedFunctions::makeVector<std::string>(IntrinsicMetaType<std::string>::get()));
    EXPECT_EQ(functions->memberBytes(0), sizeof(std::string));
    EXPECT_EQ(functions->memberBytes(3), 3 * sizeof(std::string));
    alignas(std::vector<std::string>) std::byte memory[2 * sizeof(std::vector<std::string>)];
    functions->constructElements(memory, 2);
    auto & vector = *reinterpret_cast<std::vector<std::string> *>(memory);
    functions->appendElements(&vector, 3);
    vector = {"a", "b", "c"};
    TemplatizedFunctions::instances elements;
    functions->listElements(&vector, elements);
    ASSERT_EQ(elements.size(), 3U);
    EXPECT_EQ(elements[2], &vector[2]);
    EXPECT_EQ(functions->firstElement(&vector), vector.data());
    functions->insertElements(&vector, 1, 2);
    EXPECT_THAT(vector, ElementsAre("a", "", "", "b", "c"));
    functions->eraseElements(&vector, 0, 3);
    EXPECT_THAT(vector, ElementsAre("b", "c"));
    EXPECT_EQ(functions->elementCount(&vector), 2U);
    EXPECT_EQ(functions->elementFunctions(), nullptr);
    functions->destroyContainer(memory, 2);
}

TEST(MetaTypeTests, FiltersLetDerivedTypesPass) {
    StrongRef<MetaTypeFilter> const all(MetaTypeFilter::make(nullptr));
    StrongRef<MetaTypeFilter> const things(MetaTypeFilter::make(Thing::s_metaType()));
    EXPECT_TRUE(all->matches(Thing::s_metaType()));
    EXPECT_TRUE(things->matches(Thing::s_metaType()));
    EXPECT_FALSE(things->matches(AssetSettings::s_metaType()));
    EXPECT_FALSE(things->matches(nullptr));
}

TEST(EntityTableTests, IdsNearAndFarAreFound) {
    DataModel::EntityTable table;
    StrongRef<Asset> const asset = Asset::make(nullptr);
    std::vector<StrongRef<Thing>> things;
    std::vector<unsigned long long> const ids = {1, 127, 128, 1000000, 1ULL << 28, ~0ULL >> 1};
    for (auto const id : ids) {
        things.push_back(Thing::make(*asset));
        table.add(id, things.back().get());
    }
    EXPECT_EQ(table.size(), ids.size());
    for (std::size_t i = 0; i < ids.size(); ++i) EXPECT_EQ(table.find(ids[i]), things[i].get());
    EXPECT_EQ(table.find(2), nullptr);
    EXPECT_EQ(table.find(~0ULL), nullptr);
    std::vector<Entity *> seen;
    table.forEach([&](Entity & entity) { seen.push_back(&entity); });
    ASSERT_EQ(seen.size(), ids.size());
    for (std::size_t i = 0; i < ids.size(); ++i) EXPECT_EQ(seen[i], things[i].get());
    table.remove(128);
    table.remove(1ULL << 28);
    EXPECT_EQ(table.find(128), nullptr);
    EXPECT_EQ(table.find(1ULL << 28), nullptr);
    EXPECT_EQ(table.size(), 4U);
}

} // namespace
} // namespace Vn::Testing
