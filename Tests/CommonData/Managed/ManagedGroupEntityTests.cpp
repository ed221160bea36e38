#include "Server/CommonData/Managed/ManagedGroupEntity.h"

#include <algorithm>
#include <cstddef>
#include <memory>
#include <set>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "Platform/DataModel/DocumentFile.h"
#include "Platform/DataModel/ObjectPath.h"
#include "Server/CommonData/Managed/ManagedEntityUtils.h"
#include "Tests/CommonData/Managed/ManagedTesting.h"

namespace Vn::Managed::Testing {

namespace {

using Details = ManagedGroupEntityChangeDetails;
using Difference = ManagedGroupEntityTransactChangeDetails;
using Raw = std::vector<ManagedEntity *>;
using ManagedEntityUtils::reorderEntity;

class ManagedGroupEntityTests : public testing::Test {
protected:
    ManagedGroupEntityTests() : m_rGroup(Group::make(m_document.segment())) {}

    Document const m_document;
    StrongRef<Group> const m_rGroup;
};

// Keeps a copy of the details that go with a change.
template <class T>
struct Catcher : Recorder {
    explicit Catcher(Entity & entity) : Recorder(entity), m_entity(entity) {
        m_onPost = [this](DataChange * details) {
            DataChange * const found = details ? details->find(T::interfaceId()) : nullptr;
            if (found)
                m_caught.emplace_back(*static_cast<T *>(found->queryInterface(T::interfaceId())));
        };
    }
    ~Catcher() override { m_entity.unsubscribe(this); }

    std::vector<T> m_caught;
    Entity & m_entity;
};

TEST_F(ManagedGroupEntityTests, AddChildPutsTheChildAtTheEndAndTellsOfIt) {
    auto const leaves = makeLeaves(m_rGroup, 1);
    StrongRef<Leaf> const leaf = Leaf::make(m_document.segment());
    Catcher<Details> catcher(*m_rGroup);
    m_rGroup->addChild(leaf);
    EXPECT_EQ(m_rGroup->childrenVector(), (Children{leaves[0], leaf}));
    ASSERT_EQ(catcher.m_told.size(), 2U);
    for (Told const & told : catcher.m_told) {
        EXPECT_EQ(told.type, DataChange::ChangeChildren);
        EXPECT_EQ(told.transact, DataChange::TransactDirect);
    }
    ASSERT_EQ(catcher.m_caught.size(), 1U);
    EXPECT_EQ(catcher.m_caught[0].managedEntity(), leaf);
    EXPECT_EQ(catcher.m_caught[0].changeType(), Details::ChildAdded);
    EXPECT_EQ(catcher.m_caught[0].insertionIndex(), 0xFFFFFFFFU);
}

TEST_F(ManagedGroupEntityTests, AddChildBecomesTheParentOfAParentlessChildInABracketOfTheChild) {
    StrongRef<Leaf> const leaf = Leaf::make(m_document.segment());
    Recorder recorder(*leaf);
    m_rGroup->addChild(leaf);
    EXPECT_EQ(leaf->parent(), m_rGroup);
    ASSERT_EQ(recorder.m_told.size(), 2U);
    EXPECT_EQ(recorder.m_told[0].type, DataChange::ChangeStructural);
    leaf->unsubscribe(&recorder);
}

TEST_F(ManagedGroupEntityTests, AddChildOfAnotherGroupsChildListsItAndLeavesItsParent) {
    StrongRef<Group> const other = Group::make(m_document.segment());
    StrongRef<Leaf> const leaf = Leaf::make(PassiveRef<Entity>(other));
    Recorder recorder(*leaf);
    m_rGroup->addChild(leaf);
    EXPECT_EQ(m_rGroup->childrenVector(), Children{leaf});
    EXPECT_EQ(leaf->parent(), other);
    EXPECT_TRUE(recorder.m_told.empty());
    leaf->unsubscribe(&recorder);
}

TEST_F(ManagedGroupEntityTests, AddChildOfAPlainParentsChildTakesItOver) {
    StrongRef<Plain> const plain = Plain::make(m_document.segment());
    StrongRef<Leaf> const leaf = Leaf::make(PassiveRef<Entity>(plain));
    m_rGroup->addChild(leaf);
    EXPECT_EQ(leaf->parent(), m_rGroup);
}

TEST_F(ManagedGroupEntityTests, AddChildTwiceListsTheChildTwice) {
    auto const leaves = makeLeaves(m_rGroup, 1);
    m_rGroup->addChild(leaves[0]);
    EXPECT_EQ(m_rGroup->childrenVector(), pick(leaves, {0, 0}));
}

TEST_F(ManagedGroupEntityTests, AddChildTakesAnElementOfItsOwnList) {
    auto const leaves = makeLeaves(m_rGroup, 1);
    for (int i = 0; i < 100; ++i) m_rGroup->addChild(m_rGroup->child(0));
    ASSERT_EQ(m_rGroup->children(), 101U);
    EXPECT_EQ(m_rGroup->child(100), leaves[0]);
}

TEST_F(ManagedGroupEntityTests, AddChildOfNullIsIgnored) {
    Recorder recorder(*m_rGroup);
    m_rGroup->addChild(nullptr);
    EXPECT_EQ(m_rGroup->children(), 0U);
    EXPECT_TRUE(recorder.m_told.empty());
    m_rGroup->unsubscribe(&recorder);
}

// An observer that hears of the new parent takes the child out of the list that the caller named it
// by.
TEST_F(ManagedGroupEntityTests, AddChildAddsTheChildWhateverHappensToTheListThatItIsTakenFrom) {
    StrongRef<Leaf> const first = Leaf::make(m_document.segment());
    StrongRef<Leaf> const second = Leaf::make(m_document.segment());
    m_rGroup->insertChild(first, 0);
    m_rGroup->insertChild(second, 1);
    StrongRef<Group> const other = Group::make(m_document.segment());
    Recorder recorder(*first);
    recorder.m_onPost = [&](DataChange *) { m_rGroup->removeChild(first); };
    other->addChild(m_rGroup->child(0));
    EXPECT_EQ(other->childrenVector(), Children{first});
    EXPECT_EQ(m_rGroup->childrenVector(), Children{second});
    first->unsubscribe(&recorder);
}

TEST_F(ManagedGroupEntityTests, InsertChildIsAStructuralChangeWithTheIndex) {
    auto const leaves = makeLeaves(m_rGroup, 2);
    StrongRef<Leaf> const leaf = Leaf::make(m_document.segment());
    Catcher<Details> catcher(*m_rGroup);
    m_rGroup->insertChild(leaf, 1);
    EXPECT_EQ(m_rGroup->childrenVector(), (Children{leaves[0], leaf, leaves[1]}));
    ASSERT_EQ(catcher.m_told.size(), 2U);
    EXPECT_EQ(catcher.m_told[0].type, DataChange::ChangeStructural);
    ASSERT_EQ(catcher.m_caught.size(), 1U);
    EXPECT_EQ(catcher.m_caught[0].managedEntity(), leaf);
    EXPECT_EQ(catcher.m_caught[0].changeType(), Details::ChildInserted);
    EXPECT_EQ(catcher.m_caught[0].insertionIndex(), 1U);
}

TEST_F(ManagedGroupEntityTests, AnInsertionIntoAListThatAHookHasShortenedGoesToItsEnd) {
    auto const leaves = makeLeaves(m_rGroup, 3);
    StrongRef<Leaf> const fresh = Leaf::make(m_document.segment());
    Recorder recorder(*m_rGroup);
    recorder.m_onPre = [&](DataChange *) {
        if (recorder.m_told.size() != 1) return;
        m_rGroup->removeChild(leaves[0]);
        m_rGroup->removeChild(leaves[2]);
    };
    m_document.step([&] { m_rGroup->insertChild(fresh, 3); });
    m_rGroup->unsubscribe(&recorder);
    EXPECT_EQ(m_rGroup->childrenVector(), (Children{leaves[1], fresh}));
    m_document.undo();
    EXPECT_EQ(m_rGroup->childrenVector(), pick(leaves, {0, 1, 2}));
    m_document.redo();
    EXPECT_EQ(m_rGroup->childrenVector(), (Children{leaves[1], fresh}));
}

TEST_F(ManagedGroupEntityTests, ANullChildIsPassedOverByAllThatWalk) {
    auto const leaves = makeLeaves(m_rGroup, 2);
    m_document.step([&] { m_rGroup->insertChild(nullptr, 1); });
    Children const all{leaves[0], nullptr, leaves[1]};
    ASSERT_EQ(m_rGroup->childrenVector(), all);
    Onk onk;
    leaves[1]->getOnk(onk);
    EXPECT_EQ(onk, Onk(L"CmnData", 2));
    ObjectPath const path;
    EXPECT_EQ(m_rGroup->getChildObject(Onk(L"CmnData", 1), path), nullptr);
    EXPECT_EQ(m_rGroup->getChildObject(Onk(L"CmnData", 2), path),
              static_cast<IScriptableObject *>(leaves[1].get()));
    EXPECT_NE(m_rGroup->toString().find(L"children : 3"), std::wstring::npos);
    reorderEntity(nullptr, leaves[0], true);
    reorderEntity(leaves[0], nullptr, true);
    EXPECT_EQ(m_rGroup->childrenVector(), all);
    m_document.step([&] { reorderEntity(leaves[1], leaves[0], false); });
    EXPECT_EQ(m_rGroup->childrenVector(), (Children{leaves[1], leaves[0], nullptr}));
    m_document.undo();
    EXPECT_EQ(m_rGroup->childrenVector(), all);
    m_document.undo();
    EXPECT_EQ(m_rGroup->childrenVector(), pick(leaves, {0, 1}));
    m_document.redo();
    EXPECT_EQ(m_rGroup->childrenVector(), all);
    m_document.step([&] { m_rGroup->removeChild(nullptr); });
    EXPECT_EQ(m_rGroup->childrenVector(), pick(leaves, {0, 1}));
}

TEST_F(ManagedGroupEntityTests, AGroupWithANullChildIsSavedAndLoaded) {
    auto const leaves = makeLeaves(m_rGroup, 2);
    m_document.segment()->addRoot(m_rGroup, "Top");
    m_rGroup->insertChild(nullptr, 1);
    TemporaryFile const file;
    Status const saved = DocumentFile::saveAs(m_document.asset(), file.path());
    ASSERT_TRUE(saved) << saved.toString();
    StrongRef<Asset> asset;
    Status const loaded = DocumentFile::load(file.path(), nullptr, asset);
    ASSERT_TRUE(loaded) << loaded.toString();
    StrongRef<Entity> const root = asset->segment(1U)->rootEntity("Top");
    auto const * const group = query<ManagedGroupEntity>(root.get());
    ASSERT_NE(group, nullptr);
    ASSERT_EQ(group->children(), 3U);
    EXPECT_EQ(group->child(1), nullptr);
    Onk onk;
    group->child(2)->getOnk(onk);
    EXPECT_EQ(onk, Onk(L"CmnData", 2));
}

TEST_F(ManagedGroupEntityTests, InsertChildDoesNotTouchTheParentLink) {
    StrongRef<Leaf> const leaf = Leaf::make(m_document.segment());
    m_rGroup->insertChild(leaf, 0);
    EXPECT_EQ(leaf->parent(), nullptr);
}

TEST_F(ManagedGroupEntityTests, RemoveChildTakesTheFirstPlaceAndTellsOfIt) {
    auto const leaves = makeLeaves(m_rGroup, 3);
    m_rGroup->addChild(leaves[1]);
    Catcher<Details> catcher(*m_rGroup);
    m_rGroup->removeChild(leaves[1]);
    EXPECT_EQ(m_rGroup->childrenVector(), pick(leaves, {0, 2, 1}));
    ASSERT_EQ(catcher.m_told.size(), 2U);
    EXPECT_EQ(catcher.m_told[0].type, DataChange::ChangeChildren);
    ASSERT_EQ(catcher.m_caught.size(), 1U);
    EXPECT_EQ(catcher.m_caught[0].managedEntity(), leaves[1]);
    EXPECT_EQ(catcher.m_caught[0].changeType(), Details::ChildRemoved);
    EXPECT_EQ(catcher.m_caught[0].insertionIndex(), 0xFFFFFFFFU);
}

TEST_F(ManagedGroupEntityTests, RemoveChildLeavesTheParentLink) {
    auto const leaves = makeLeaves(m_rGroup, 1);
    m_rGroup->removeChild(leaves[0]);
    EXPECT_EQ(leaves[0]->parent(), m_rGroup);
}

TEST_F(ManagedGroupEntityTests, RemoveChildOfAChildNotListedMakesNoChangeRecord) {
    StrongRef<Leaf> const leaf = Leaf::make(m_document.segment());
    makeLeaves(m_rGroup, 2);
    m_document.asset().history().clear();
    Recorder recorder(*m_rGroup);
    m_document.step([&] { m_rGroup->removeChild(leaf); });
    m_document.step([&] { m_rGroup->removeChild(nullptr); });
    EXPECT_TRUE(recorder.m_told.empty());
    EXPECT_FALSE(m_document.asset().history().canUndo());
    m_rGroup->unsubscribe(&recorder);
}

TEST_F(ManagedGroupEntityTests, RemoveChildTakesAnElementOfItsOwnList) {
    auto const leaves = makeLeaves(m_rGroup, 2);
    m_rGroup->removeChild(m_rGroup->child(0));
    EXPECT_EQ(m_rGroup->childrenVector(), pick(leaves, {1}));
}

// What a hook takes out shifts what stands after it.
TEST_F(ManagedGroupEntityTests, RemoveChildTakesItsChildWhateverAHookHasRemovedMeanwhile) {
    auto const leaves = makeLeaves(m_rGroup, 3);
    for (std::size_t const other : {0, 1, 2}) {
        Recorder recorder(*m_rGroup);
        recorder.m_onPre = [&](DataChange *) {
            if (recorder.m_told.size() == 1) m_rGroup->removeChild(leaves[other]);
        };
        m_document.step([&] { m_rGroup->removeChild(m_rGroup->child(1)); });
        m_rGroup->unsubscribe(&recorder);
        Children const left = other == 0   ? pick(leaves, {2})
                              : other == 1 ? pick(leaves, {0, 2})
                                           : pick(leaves, {0});
        EXPECT_EQ(m_rGroup->childrenVector(), left);
        m_document.undo();
        EXPECT_EQ(m_rGroup->childrenVector(), pick(leaves, {0, 1, 2}));
        m_document.redo();
        EXPECT_EQ(m_rGroup->childrenVector(), left);
        m_document.undo();
    }
}

TEST_F(ManagedGroupEntityTests, ChildrenVectorCopiesTheListInPlaceOfTheOld) {
    auto const leaves = makeLeaves(m_rGroup, 2);
    Children out{leaves[1], leaves[1], leaves[1]};
    m_rGroup->childrenVector(out);
    EXPECT_EQ(out, pick(leaves, {0, 1}));
}

TEST_F(ManagedGroupEntityTests, GetChildObjectLooksAtTheRepetitionAndNotAtTheWord) {
    auto const leaves = makeLeaves(m_rGroup, 2);
    ObjectPath const path;
    EXPECT_EQ(m_rGroup->getChildObject(Onk(L"Other", 1), path),
              static_cast<IScriptableObject *>(leaves[1].get()));
    EXPECT_EQ(m_rGroup->getChildObject(Onk(L"CmnData", 2), path), nullptr);
    EXPECT_EQ(m_rGroup->getChildObject(Onk(L"CmnData", -1), path), nullptr);
    EXPECT_EQ(m_rGroup->getChildObject(Onk(L"CmnData"), path), nullptr);
}

TEST_F(ManagedGroupEntityTests, TheDebugLineNestsTheBaseAndCountsTheChildren) {
    makeLeaves(m_rGroup, 2);
    EXPECT_EQ(m_rGroup->toString(), L"ManagedGroupEntity (base ManagedEntity (base " +
                                        m_rGroup->entityText() + L") : HasParent: 0) children : 2");
}

TEST_F(ManagedGroupEntityTests, EveryChangeOfTheListIsUndoneAndRedone) {
    auto const leaves = makeLeaves(m_rGroup, 4);
    std::vector<Children> states{m_rGroup->childrenVector()};
    auto const step = [&](auto && work) {
        m_document.step(work);
        states.push_back(m_rGroup->childrenVector());
    };
    StrongRef<Leaf> const leaf = Leaf::make(m_document.segment());
    step([&] { m_rGroup->addChild(leaf); });
    step([&] { m_rGroup->insertChild(leaf, 2); });
    step([&] { m_rGroup->removeChild(leaves[1]); });
    step([&] {
        m_rGroup->removeChild(leaf);
        m_rGroup->insertChild(leaves[1], 0);
        m_rGroup->addChild(leaves[1]);
    });
    for (std::size_t i = states.size() - 1; i-- > 0;) {
        m_document.undo();
        EXPECT_EQ(m_rGroup->childrenVector(), states[i]);
    }
    for (std::size_t i = 1; i < states.size(); ++i) {
        m_document.redo();
        EXPECT_EQ(m_rGroup->childrenVector(), states[i]);
    }
}

TEST_F(ManagedGroupEntityTests, AGroupThatGoesGivesUpItsChildrenInListOrder) {
    struct Order : Recorder {
        void preDeletion(Entity * entity, DataChange::ETransact) override {
            m_gone.push_back(entity->id());
        }
        std::vector<unsigned long long> m_gone;
    } order;
    std::vector<unsigned long long> expected;
    {
        StrongRef<Group> const group = Group::make(m_document.segment());
        for (StrongRef<Leaf> const & leaf : makeLeaves(group, 3)) {
            leaf->subscribe(&order);
            expected.push_back(leaf->id());
        }
    }
    EXPECT_EQ(order.m_gone, expected);
    EXPECT_EQ(m_document.asset().entities(), 1U);
}

TEST_F(ManagedGroupEntityTests, AGroupThatGoesIsToldOfItAfterItsChildrenAndThemTheyOutlive) {
    StrongRef<Group> group = Group::make(m_document.segment());
    auto const leaves = makeLeaves(group, 2);
    struct Watcher : Recorder {
        explicit Watcher(Group & watched) : Recorder(watched), m_watched(watched) {}
        void preDeletion(Entity *, DataChange::ETransact) override {
            m_children = m_watched.children();
        }
        Group & m_watched;
        unsigned m_children = 99;
    } watcher(*group);
    group.reset();
    EXPECT_EQ(watcher.m_children, 0U);
    EXPECT_TRUE(leaves[0]->isAlive());
    EXPECT_EQ(leaves[0]->parent(), nullptr);
}

TEST_F(ManagedGroupEntityTests, AGroupThatWentComesBackWithItsChildrenInOrder) {
    m_document.step([&] { m_rGroup->addChild(Group::make(m_document.segment())); });
    auto * const group = static_cast<Group *>(m_rGroup->child(0).get());
    std::vector<unsigned long long> ids;
    m_document.step([&] {
        for (StrongRef<Leaf> const & leaf : makeLeaves(StrongRef<Group>(group), 3))
            ids.push_back(leaf->id());
    });
    m_document.step([&] { m_rGroup->removeChild(m_rGroup->child(0)); });
    EXPECT_EQ(m_document.asset().entities(), 1U);
    m_document.undo();
    ASSERT_EQ(m_rGroup->children(), 1U);
    auto const & back = *static_cast<Group *>(m_rGroup->child(0).get());
    ASSERT_EQ(back.children(), 3U);
    for (unsigned i = 0; i < 3; ++i) {
        EXPECT_EQ(back.child(i)->id(), ids[i]);
        EXPECT_EQ(back.child(i)->managedParent().get(), &back);
    }
}

// --- Differences --------------------------------------------------------------------------------

Raw raw(Children const & children) {
    Raw all;
    for (auto const & child : children) all.push_back(child.get());
    return all;
}

class DifferenceTests : public ManagedGroupEntityTests {
protected:
    DifferenceTests() : m_leaves(makeLeaves(m_rGroup, 4)) {}

    // From one list of leaves to another.
    Difference difference(std::initializer_list<std::size_t> before,
                          std::initializer_list<std::size_t> after) const {
        Difference made(pick(m_leaves, before));
        made.calculateChildrenDiff(pick(m_leaves, after));
        return made;
    }
    Raw some(std::initializer_list<int> places) const {
        Raw all;
        for (int const place : places)
            all.push_back(place < 0 ? nullptr : m_leaves[static_cast<std::size_t>(place)].get());
        return all;
    }

    std::vector<StrongRef<Leaf>> const m_leaves;
};

TEST_F(DifferenceTests, NothingChangedLeavesBothEmpty) {
    Difference const same = difference({0, 1, 2}, {0, 1, 2});
    EXPECT_TRUE(same.addedChildren().empty());
    EXPECT_TRUE(same.removedChildren().empty());
}

TEST_F(DifferenceTests, ASwapReportsAllAsAddedInTheNewOrderAndAllAsRemovedInTheOld) {
    Difference const swapped = difference({0, 1, 2}, {0, 2, 1});
    EXPECT_EQ(swapped.addedChildren(), some({0, 2, 1}));
    EXPECT_EQ(swapped.removedChildren(), some({0, 1, 2}));
}

TEST_F(DifferenceTests, RemovingTheMiddleGivesTwoNullsAndOneRemoved) {
    Difference const shorter = difference({0, 1, 2}, {0, 2});
    EXPECT_EQ(shorter.addedChildren(), some({-1, -1}));
    EXPECT_EQ(shorter.removedChildren(), some({1}));
}

TEST_F(DifferenceTests, AddingAtTheEndGivesTwoNullsAndTheNewChild) {
    Difference const longer = difference({0, 1}, {0, 1, 2});
    EXPECT_EQ(longer.addedChildren(), some({-1, -1, 2}));
    EXPECT_TRUE(longer.removedChildren().empty());
}

TEST_F(DifferenceTests, AReplacementOfTheSameLengthKeepsTheSlotsAndCompactsTheRemoved) {
    Difference const replaced = difference({0, 1, 2}, {3, 0, 2});
    EXPECT_EQ(replaced.addedChildren(), some({3, -1, -1}));
    EXPECT_EQ(replaced.removedChildren(), some({1}));
}

TEST_F(DifferenceTests, SeveralRemovedKeepTheirOldOrder) {
    Difference const fewer = difference({3, 2, 1, 0}, {2});
    EXPECT_EQ(fewer.addedChildren(), some({-1}));
    EXPECT_EQ(fewer.removedChildren(), some({3, 1, 0}));
}

TEST_F(DifferenceTests, FromAndToAnEmptyList) {
    EXPECT_EQ(difference({}, {1, 0}).addedChildren(), some({1, 0}));
    EXPECT_TRUE(difference({}, {1, 0}).removedChildren().empty());
    EXPECT_TRUE(difference({1, 0}, {}).addedChildren().empty());
    EXPECT_EQ(difference({1, 0}, {}).removedChildren(), some({1, 0}));
}

// The same set and the same length count as a change of order, whatever is listed twice.
TEST_F(DifferenceTests, OtherDuplicatesOfTheSameSetAreAChangeOfOrder) {
    Difference const other = difference({0, 0, 1}, {0, 1, 1});
    EXPECT_EQ(other.addedChildren(), some({0, 1, 1}));
    EXPECT_EQ(other.removedChildren(), some({0, 0, 1}));
}

// The steps as they are told, without a thought of cost.
void referenceDifference(Raw const & snapshot, Raw const & current, Raw & added, Raw & removed) {
    added.clear();
    removed.clear();
    if (current == snapshot) return;
    added = current;
    removed = snapshot;
    if (current.size() == snapshot.size() &&
        std::set<ManagedEntity *>(current.begin(), current.end()) ==
            std::set<ManagedEntity *>(snapshot.begin(), snapshot.end()))
        return;
    for (ManagedEntity * const e : current) {
        if (std::find(snapshot.begin(), snapshot.end(), e) == snapshot.end()) continue;
        *std::find(added.begin(), added.end(), e) = nullptr;
        auto const gone = std::find(removed.begin(), removed.end(), e);
        if (gone != removed.end()) removed.erase(gone);
    }
}

// All pairs of lists of up to four places filled with three children.
TEST_F(DifferenceTests, EveryPairOfShortListsAgreesWithTheStepsAsTheyAreTold) {
    std::vector<Children> lists{{}};
    for (std::size_t begin = 0, length = 0; length < 4; ++length) {
        std::size_t const end = lists.size();
        for (; begin < end; ++begin)
            for (std::size_t i = 0; i < 3; ++i) {
                Children longer = lists[begin];
                longer.push_back(m_leaves[i]);
                lists.push_back(std::move(longer));
            }
    }
    ASSERT_EQ(lists.size(), 1U + 3U + 9U + 27U + 81U);
    Raw added;
    Raw removed;
    for (Children const & before : lists)
        for (Children const & after : lists) {
            Difference made(before);
            made.calculateChildrenDiff(after);
            referenceDifference(raw(before), raw(after), added, removed);
            ASSERT_EQ(made.addedChildren(), added);
            ASSERT_EQ(made.removedChildren(), removed);
        }
}

// A place without a child comes and goes without being told as a child.
TEST_F(DifferenceTests, NullChildrenAreNeitherAddedNorRemoved) {
    Children const plain = pick(m_leaves, {0, 1});
    Children const holed{m_leaves[0], nullptr, m_leaves[1]};
    Difference gone(holed);
    gone.calculateChildrenDiff(plain);
    EXPECT_EQ(gone.addedChildren(), some({-1, -1}));
    EXPECT_TRUE(gone.removedChildren().empty());
    Difference come(plain);
    come.calculateChildrenDiff(holed);
    EXPECT_EQ(come.addedChildren(), some({-1, -1, -1}));
    EXPECT_TRUE(come.removedChildren().empty());
    Difference turned(holed);
    turned.calculateChildrenDiff(Children{m_leaves[1], nullptr, m_leaves[0]});
    EXPECT_EQ(turned.addedChildren(), some({1, -1, 0}));
    EXPECT_EQ(turned.removedChildren(), some({0, 1}));
}

TEST_F(DifferenceTests, CopiesAndClonesHaveAllThreeLists) {
    Difference const made = difference({0, 1}, {1, 2, 3});
    Difference copy(made);
    EXPECT_EQ(copy.addedChildren(), made.addedChildren());
    EXPECT_EQ(copy.removedChildren(), made.removedChildren());
    std::unique_ptr<DataChange> const clone = made.clone();
    auto * const cloned = query<Difference>(clone.get());
    ASSERT_NE(cloned, nullptr);
    EXPECT_EQ(cloned->addedChildren(), made.addedChildren());
    // The snapshot too: from it to the list as it was then is no difference but one of before.
    cloned->calculateChildrenDiff(pick(m_leaves, {0}));
    EXPECT_EQ(cloned->addedChildren(), some({-1}));
    EXPECT_EQ(cloned->removedChildren(), some({1}));
    Difference assigned(Children{});
    assigned = made;
    EXPECT_EQ(assigned.removedChildren(), made.removedChildren());
}

TEST_F(DifferenceTests, DetailsTellTheirClass) {
    Details const details(m_leaves[0], Details::ChildInserted, 3);
    EXPECT_EQ(details.toString(), "ManagedGroupEntityChangeDetails");
    EXPECT_EQ(Difference(Children{}).toString(), "ManagedGroupEntityTransactChangeDetails");
    EXPECT_EQ(static_cast<int>(Details::ChildAdded), 0);
    EXPECT_EQ(static_cast<int>(Details::ChildRemoved), 1);
    EXPECT_EQ(static_cast<int>(Details::ChildInserted), 2);
    EXPECT_EQ(details.queryInterface(Details::interfaceId()), &details);
    EXPECT_EQ(details.queryInterface(DataChange::interfaceId()), &details);
    EXPECT_EQ(details.queryInterface(Difference::interfaceId()), nullptr);
    EXPECT_EQ(Details::interfaceId()->string(), "Vn::Managed::ManagedGroupEntityChangeDetails");
    EXPECT_EQ(Difference::interfaceId()->string(),
              "Vn::Managed::ManagedGroupEntityTransactChangeDetails");
    std::unique_ptr<DataChange> const clone = details.clone();
    auto const * const cloned = query<Details>(clone.get());
    ASSERT_NE(cloned, nullptr);
    EXPECT_EQ(cloned->managedEntity(), m_leaves[0]);
    EXPECT_EQ(cloned->changeType(), Details::ChildInserted);
    EXPECT_EQ(cloned->insertionIndex(), 3U);
}

// --- Replays ------------------------------------------------------------------------------------

class ReplayTests : public DifferenceTests {};

TEST_F(ReplayTests, AReplayStandsAsTheDetailsOfItsChange) {
    m_document.step([&] { m_rGroup->removeChild(m_leaves[1]); });
    Catcher<Difference> catcher(*m_rGroup);
    m_document.undo();
    ASSERT_EQ(catcher.m_told.size(), 2U);
    for (Told const & told : catcher.m_told)
        EXPECT_TRUE(DataChange::test(told.transact, DataChange::TransactReplay));
    ASSERT_EQ(catcher.m_caught.size(), 1U);
    EXPECT_EQ(catcher.m_caught[0].addedChildren(), some({-1, 1, -1, -1}));
    EXPECT_TRUE(catcher.m_caught[0].removedChildren().empty());
    m_document.redo();
    ASSERT_EQ(catcher.m_caught.size(), 2U);
    EXPECT_EQ(catcher.m_caught[1].addedChildren(), some({-1, -1, -1}));
    EXPECT_EQ(catcher.m_caught[1].removedChildren(), some({1}));
}

TEST_F(ReplayTests, AReplayOfASwapReportsAllChildren) {
    m_document.step([&] { reorderEntity(m_leaves[0], m_leaves[3], true); });
    Catcher<Difference> catcher(*m_rGroup);
    m_document.undo();
    ASSERT_EQ(catcher.m_caught.size(), 1U);
    EXPECT_EQ(catcher.m_caught[0].addedChildren(), some({0, 1, 2, 3}));
    EXPECT_EQ(catcher.m_caught[0].removedChildren(), some({1, 2, 3, 0}));
}

TEST_F(ReplayTests, AReplayThatChangesOnlyTheParentTellsOfNoChildren) {
    StrongRef<Group> const outer = Group::make(m_document.segment());
    m_document.step([&] { outer->addChild(m_rGroup); });
    Catcher<Difference> catcher(*m_rGroup);
    m_document.undo();
    ASSERT_EQ(catcher.m_caught.size(), 1U);
    EXPECT_TRUE(catcher.m_caught[0].addedChildren().empty());
    EXPECT_TRUE(catcher.m_caught[0].removedChildren().empty());
}

// A replay with details of its own, as a host may have.
TEST_F(ReplayTests, ADifferenceIsAttachedToDetailsThatAreThere) {
    DataChange host;
    Catcher<Difference> catcher(*m_rGroup);
    {
        EntityChange const change(m_rGroup.get(), DataChange::TransactReplay,
                                  DataChange::ChangeChildren, DataChange::TimingPreAndPost, &host,
                                  true);
    }
    ASSERT_EQ(host.dataChanges(), 1U);
    EXPECT_NE(query<Difference>(host.dataChange(0)), nullptr);
    EXPECT_EQ(catcher.m_caught.size(), 1U);
}

TEST_F(ReplayTests, ADirectChangeHasNoDifference) {
    Catcher<Difference> catcher(*m_rGroup);
    m_rGroup->removeChild(m_leaves[1]);
    EXPECT_EQ(catcher.m_told.size(), 2U);
    EXPECT_TRUE(catcher.m_caught.empty());
}

// What it does isn't recorded, so that there are fewer children than the steps know of.
TEST_F(ReplayTests, AHookThatTakesChildrenOutInAReplayLeavesAListThatCanStillBeReplayed) {
    StrongRef<Leaf> const first = Leaf::make(m_document.segment());
    StrongRef<Leaf> const second = Leaf::make(m_document.segment());
    m_document.step([&] { m_rGroup->addChild(first); });
    m_document.step([&] { m_rGroup->addChild(second); });
    Recorder recorder(*m_rGroup);
    recorder.m_onPost = [&](DataChange * details) {
        if (!details->find(Difference::interfaceId())) return;
        for (std::size_t i = 0; i < 4; ++i) m_rGroup->removeChild(m_leaves[i]);
    };
    m_document.undo();
    EXPECT_EQ(m_rGroup->childrenVector(), Children{first});
    m_document.redo();
    EXPECT_EQ(m_rGroup->childrenVector(), (Children{first, second}));
    m_document.undo();
    EXPECT_EQ(m_rGroup->childrenVector(), Children{first});
    m_document.undo();
    EXPECT_EQ(m_rGroup->childrenVector(), Children{first});
    m_rGroup->unsubscribe(&recorder);
}

TEST_F(ReplayTests, AHookThatTakesOutWhatAnUndoIsToTakeOutLeavesNothingElseToTakeOut) {
    StrongRef<Leaf> const leaf = Leaf::make(m_document.segment());
    Children const rest = m_rGroup->childrenVector();
    m_document.step([&] { m_rGroup->addChild(leaf); });
    Recorder recorder(*m_rGroup);
    bool first = true;
    recorder.m_onPre = [&](DataChange *) {
        if (std::exchange(first, false)) m_rGroup->removeChild(leaf);
    };
    m_document.undo();
    EXPECT_EQ(m_rGroup->childrenVector(), rest);
    m_document.redo();
    EXPECT_EQ(m_rGroup->childrenVector(), rest);
    m_rGroup->unsubscribe(&recorder);
}

// --- Changes of order ---------------------------------------------------------------------------

class ReorderTests : public ManagedGroupEntityTests {
protected:
    ReorderTests() : m_leaves(makeLeaves(m_rGroup, 3)) {}

    // The order after one of the leaves was moved.
    void expectMoved(std::size_t moved, std::size_t target, bool after,
                     std::initializer_list<std::size_t> order) {
        reorderEntity(m_leaves[moved], m_leaves[target], after);
        EXPECT_EQ(m_rGroup->childrenVector(), pick(m_leaves, order));
    }

    std::vector<StrongRef<Leaf>> const m_leaves;
};

TEST_F(ReorderTests, TheFirstBeforeTheSecondIsThereAlready) {
    Recorder recorder(*m_rGroup);
    expectMoved(0, 1, false, {0, 1, 2});
    EXPECT_TRUE(recorder.m_told.empty());
    m_rGroup->unsubscribe(&recorder);
}

TEST_F(ReorderTests, TheFirstAfterTheLastGoesToTheEnd) { expectMoved(0, 2, true, {1, 2, 0}); }
TEST_F(ReorderTests, TheLastBeforeTheFirstGoesToTheBeginning) {
    expectMoved(2, 0, false, {2, 0, 1});
}
TEST_F(ReorderTests, TheLastAfterTheFirstGoesBetween) { expectMoved(2, 0, true, {0, 2, 1}); }
TEST_F(ReorderTests, TheFirstBeforeTheLastGoesBetween) { expectMoved(0, 2, false, {1, 0, 2}); }
TEST_F(ReorderTests, TheFirstAfterTheSecondChangesPlacesWithIt) {
    expectMoved(0, 1, true, {1, 0, 2});
}
TEST_F(ReorderTests, TheSecondAfterTheFirstIsThereAlready) { expectMoved(1, 0, true, {0, 1, 2}); }
TEST_F(ReorderTests, AChildBeforeOrAfterItselfStays) {
    expectMoved(1, 1, false, {0, 1, 2});
    expectMoved(1, 1, true, {0, 1, 2});
}

TEST_F(ReorderTests, AMoveIsARemovalAndAnInsertion) {
    Catcher<Details> catcher(*m_rGroup);
    expectMoved(0, 2, true, {1, 2, 0});
    ASSERT_EQ(catcher.m_caught.size(), 2U);
    EXPECT_EQ(catcher.m_caught[0].changeType(), Details::ChildRemoved);
    EXPECT_EQ(catcher.m_caught[1].changeType(), Details::ChildInserted);
    EXPECT_EQ(catcher.m_caught[1].insertionIndex(), 2U);
}

TEST_F(ReorderTests, AcrossParentsTheSameArithmeticMovesTheChildWhichKeepsItsParent) {
    StrongRef<Group> const other = Group::make(m_document.segment());
    auto const others = makeLeaves(other, 2);
    reorderEntity(m_leaves[2], others[0], true);
    EXPECT_EQ(other->childrenVector(), (Children{others[0], m_leaves[2], others[1]}));
    EXPECT_EQ(m_rGroup->childrenVector(), pick(m_leaves, {0, 1}));
    EXPECT_EQ(m_leaves[2]->parent(), m_rGroup);
    // The other stands at 2 there, which isn't below 0 here: the place is 2, before the other.
    reorderEntity(m_leaves[0], others[1], true);
    EXPECT_EQ(other->childrenVector(), (Children{others[0], m_leaves[2], m_leaves[0], others[1]}));
}

TEST_F(ReorderTests, AHookThatShortensTheListLeavesTheMovedChildAtItsEnd) {
    Recorder recorder(*m_rGroup);
    recorder.m_onPost = [&](DataChange *) {
        if (recorder.m_told.size() != 2) return; // the removal is over
        m_rGroup->removeChild(m_leaves[1]);
        m_rGroup->removeChild(m_leaves[2]);
    };
    m_document.step([&] { reorderEntity(m_leaves[0], m_leaves[2], true); });
    m_rGroup->unsubscribe(&recorder);
    EXPECT_EQ(m_rGroup->childrenVector(), pick(m_leaves, {0}));
    m_document.undo();
    EXPECT_EQ(m_rGroup->childrenVector(), pick(m_leaves, {0, 1, 2}));
}

TEST_F(ReorderTests, NullsAndChildrenWithoutParentOrPlaceChangeNothing) {
    StrongRef<Leaf> const orphan = Leaf::make(m_document.segment());
    StrongRef<Plain> const plain = Plain::make(m_document.segment());
    StrongRef<Leaf> const below = Leaf::make(PassiveRef<Entity>(plain));
    StrongRef<Leaf> const unlisted = Leaf::make(PassiveRef<Entity>(m_rGroup));
    m_rGroup->removeChild(unlisted);
    for (StrongRef<ManagedEntity> const & bad :
         {StrongRef<ManagedEntity>(), StrongRef<ManagedEntity>(orphan),
          StrongRef<ManagedEntity>(below), StrongRef<ManagedEntity>(unlisted)}) {
        reorderEntity(bad, m_leaves[1], true);
        reorderEntity(m_leaves[0], bad, true);
        EXPECT_EQ(m_rGroup->childrenVector(), pick(m_leaves, {0, 1, 2}));
    }
}

// --- Other documents ----------------------------------------------------------------------------

TEST_F(ManagedGroupEntityTests, AChildOfAnotherDocumentIsIgnored) {
    auto const leaves = makeLeaves(m_rGroup, 2);
    Document const other;
    StrongRef<Leaf> const stranger = Leaf::make(other.segment());
    StrongRef<Leaf> const closed = Leaf::make(Document().segment());
    Recorder recorder(*m_rGroup);
    for (StrongRef<Leaf> const & child : {stranger, closed}) {
        m_rGroup->addChild(child);
        m_rGroup->insertChild(child, 0);
        EXPECT_EQ(child->parent(), nullptr);
    }
    EXPECT_EQ(m_rGroup->childrenVector(), pick(leaves, {0, 1}));
    EXPECT_TRUE(recorder.m_told.empty());
    m_rGroup->unsubscribe(&recorder);
}

TEST_F(ManagedGroupEntityTests, AParentOfAnotherDocumentIsIgnored) {
    StrongRef<Leaf> const leaf = Leaf::make(PassiveRef<Entity>(m_rGroup));
    Document const other;
    leaf->parent(StrongRef<Entity>(Group::make(other.segment())));
    EXPECT_EQ(leaf->parent(), m_rGroup);
    leaf->parent(nullptr);
    EXPECT_EQ(leaf->parent(), nullptr);
}

TEST_F(ManagedGroupEntityTests, AChildWhoseMakingIsUndoneIsIgnored) {
    StrongRef<Leaf> undone;
    m_document.step([&] { undone = Leaf::make(m_document.segment()); });
    m_document.undo();
    m_rGroup->addChild(undone);
    m_rGroup->insertChild(undone, 0);
    EXPECT_EQ(m_rGroup->children(), 0U);
}

} // namespace

} // namespace Vn::Managed::Testing
