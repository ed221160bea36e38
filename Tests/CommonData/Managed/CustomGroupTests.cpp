#include "Server/CommonData/Managed/CustomGroup.h"

#include <memory>
#include <vector>

#include <gtest/gtest.h>

#include "Server/CommonData/Managed/CustomGroupDeleteRequest.h"
#include "Server/CommonData/Managed/CustomGroups.h"
#include "Server/CommonData/Managed/ManagedEntityUtils.h"
#include "Tests/CommonData/Managed/ManagedTesting.h"

namespace Vn::Managed::Testing {

namespace {

using Details = ManagedGroupEntityChangeDetails;
using Difference = ManagedGroupEntityTransactChangeDetails;
using ManagedEntityUtils::reorderGroupedEntity;

// A leaf that can be grouped.
class Grouped : public Persisted<Grouped, ManagedEntity, ICustomGroupChild> {
public:
    static constexpr PersistedClass c_class{"Vn::Managed::Testing::Grouped",
                                            "1A5B0C3E-0001-4000-8000-000000000006", 0};
    static EntityMetaType * s_metaType();
    static StrongRefCreator<Grouped> make(PassiveRef<Entity> const & parent) {
        return create(parent);
    }
    void groupParent(ICustomGroupParent * parent) override {
        EntityChange const change(this, DataChange::TransactDirect, DataChange::ChangeStructural,
                                  DataChange::TimingPreAndPost, nullptr, true);
        m_rGroupParent = PassiveRef<Entity>(query<Entity>(parent));
    }
    ICustomGroupParent * groupParent() const override {
        return query<ICustomGroupParent>(m_rGroupParent.get());
    }

private:
    friend PersistedAccess;
    explicit Grouped(PassiveRef<Entity> const & parent) : Persisted(parent) {
        initializeMemberSetIfNeeded();
    }
    Grouped(Segment * segment, unsigned long long id) : Persisted(segment, id) {
        initializeMemberSetIfNeeded();
    }
    void initializeMemberSet(unsigned, MemberSet * set) {
        addMember(set, "rGroupParent", m_rGroupParent, PassiveRefMetaType::get());
    }

    PassiveRef<Entity> m_rGroupParent;
};

class GroupedMetaType final : public PersistedMetaType<Grouped> {
} s_grouped;

EntityMetaType * Grouped::s_metaType() { return &s_grouped; }

class CustomGroupTests : public testing::Test {
protected:
    CustomGroupTests()
        : m_rTree(Group::make(m_document.segment())),
          m_rGroups(CustomGroups::make(PassiveRef<Entity>(m_rTree))),
          m_rTop(CustomGroup::make(m_rGroups, &m_nobody)) {
        for (int i = 0; i < 3; ++i) m_things.push_back(Grouped::make(PassiveRef<Entity>(m_rTree)));
    }

    std::vector<ICustomGroupChild *> members(CustomGroup const & group) const {
        std::vector<ICustomGroupChild *> all;
        for (unsigned i = 0; i < group.groupChildren(); ++i) all.push_back(group.groupChild(i));
        return all;
    }
    std::vector<ICustomGroupChild *> things(std::initializer_list<std::size_t> places) const {
        std::vector<ICustomGroupChild *> all;
        for (std::size_t const place : places) all.push_back(m_things[place].get());
        return all;
    }
    void addAll() const {
        for (auto const & thing : m_things) m_rTop->addGroupChild(thing.get());
    }

    // A holder that isn't a managed entity.
    struct Nobody : ICustomGroupParent {
        void addGroupChild(ICustomGroupChild *) override {}
        void removeGroupChild(ICustomGroupChild *) override {}
        void insertGroupChild(ICustomGroupChild *, unsigned) override {}
        bool canAddGroupChild(ICustomGroupChild const *) const override { return false; }
        unsigned groupChildren() const override { return 0; }
        ICustomGroupChild * groupChild(unsigned) const override { return nullptr; }
    };

    Nobody m_nobody;
    Document const m_document;
    StrongRef<Group> const m_rTree;
    StrongRef<CustomGroups> const m_rGroups;
    StrongRef<CustomGroup> const m_rTop;
    std::vector<StrongRef<Grouped>> m_things;
};

TEST_F(CustomGroupTests, AGroupIsListedUnderTheGroupsAndNotByItsGroupParent) {
    StrongRef<CustomGroup> const inner = CustomGroup::make(m_rGroups, m_rTop.get());
    EXPECT_EQ(m_rGroups->groups(), 2U);
    EXPECT_EQ(m_rGroups->group(1), inner);
    EXPECT_EQ(inner->parent(), m_rGroups);
    EXPECT_EQ(inner->groupParent(), m_rTop.get());
    EXPECT_EQ(m_rTop->groupChildren(), 0U);
}

TEST_F(CustomGroupTests, ChildrenAndParentsOfAnotherDocumentAreIgnored) {
    Document const other;
    StrongRef<Group> const tree = Group::make(other.segment());
    StrongRef<Grouped> const thing = Grouped::make(PassiveRef<Entity>(tree));
    StrongRef<CustomGroups> const groups = CustomGroups::make(PassiveRef<Entity>(tree));
    StrongRef<CustomGroup> const stranger = CustomGroup::make(groups, m_rTop.get());
    EXPECT_EQ(stranger->groupParent(), nullptr);
    m_rTop->addGroupChild(thing.get());
    m_rTop->insertGroupChild(thing.get(), 0);
    EXPECT_EQ(m_rTop->groupChildren(), 0U);
    EXPECT_EQ(thing->groupParent(), nullptr);
    m_rTop->groupParent(stranger.get());
    EXPECT_EQ(m_rTop->groupParent(), nullptr);
}

TEST_F(CustomGroupTests, NumbersAreNeverUsedAgain) {
    StrongRef<CustomGroup> second = CustomGroup::make(m_rGroups, m_rTop.get());
    StrongRef<CustomGroup> const third = CustomGroup::make(m_rGroups, m_rTop.get());
    EXPECT_EQ(m_rTop->creationIndex(), 1U);
    EXPECT_EQ(second->creationIndex(), 2U);
    EXPECT_EQ(third->creationIndex(), 3U);
    m_rTop->addGroupChild(second.get());
    auto request = CustomGroupDeleteRequest::make(&m_document.asset(), second);
    PassiveRef<Entity> const gone(std::exchange(second, nullptr));
    ASSERT_TRUE(m_document.asset().run(std::move(request)).ok());
    EXPECT_FALSE(gone);
    StrongRef<CustomGroup> const fourth = CustomGroup::make(m_rGroups, m_rTop.get());
    EXPECT_EQ(fourth->creationIndex(), 4U);
}

TEST_F(CustomGroupTests, GetNextIdIsAStructuralChangeThatCanBeUndone) {
    Recorder recorder(*m_rGroups);
    m_document.step([&] { EXPECT_EQ(m_rGroups->getNextID(), 2); });
    ASSERT_EQ(recorder.m_told.size(), 2U);
    EXPECT_EQ(recorder.m_told[0].type, DataChange::ChangeStructural);
    m_document.undo();
    EXPECT_EQ(m_rGroups->getNextID(), 2);
    m_rGroups->unsubscribe(&recorder);
}

TEST_F(CustomGroupTests, AReplayRestoresNumbersWithoutTheCounter) {
    PassiveRef<Entity> made;
    m_document.step([&] { made = StrongRef<Entity>(CustomGroup::make(m_rGroups, m_rTop.get())); });
    m_document.undo();
    EXPECT_FALSE(made);
    m_document.redo();
    ASSERT_TRUE(made);
    EXPECT_EQ(query<CustomGroup>(made.get())->creationIndex(), 2U);
    EXPECT_EQ(m_rGroups->getNextID(), 3);
}

TEST_F(CustomGroupTests, GroupsWithoutAParentArentMade) {
    EXPECT_FALSE(CustomGroups::make(nullptr));
}

TEST_F(CustomGroupTests, AddGroupChildSetsTheGroupParentBeforeTheListChanges) {
    ICustomGroupParent * at = nullptr;
    unsigned count = 99;
    Recorder recorder(*m_rTop);
    recorder.m_onPre = [&](DataChange * details) {
        at = m_things[0]->groupParent();
        count = m_rTop->groupChildren();
        auto const * const found = query<Details>(details);
        ASSERT_NE(found, nullptr);
        EXPECT_EQ(found->managedEntity(), m_things[0]);
        EXPECT_EQ(found->changeType(), Details::ChildAdded);
        EXPECT_EQ(found->insertionIndex(), 0xFFFFFFFFU);
    };
    m_rTop->addGroupChild(m_things[0].get());
    EXPECT_EQ(at, m_rTop.get());
    EXPECT_EQ(count, 0U);
    ASSERT_EQ(recorder.m_told.size(), 2U);
    EXPECT_EQ(recorder.m_told[0].type, DataChange::ChangeChildren);
    EXPECT_EQ(members(*m_rTop), things({0}));
    m_rTop->unsubscribe(&recorder);
}

TEST_F(CustomGroupTests, AddingElsewhereDoesNotTellTheOldGroupParent) {
    StrongRef<CustomGroup> const other = CustomGroup::make(m_rGroups, m_rTop.get());
    m_rTop->addGroupChild(m_things[0].get());
    other->addGroupChild(m_things[0].get());
    EXPECT_EQ(members(*m_rTop), things({0}));
    EXPECT_EQ(members(*other), things({0}));
    EXPECT_EQ(m_things[0]->groupParent(), other.get());
}

TEST_F(CustomGroupTests, InsertGroupChildIsAStructuralChangeAndSetsTheGroupParent) {
    m_rTop->addGroupChild(m_things[0].get());
    m_rTop->addGroupChild(m_things[1].get());
    Recorder recorder(*m_rTop);
    recorder.m_onPost = [&](DataChange * details) {
        auto const * const found = query<Details>(details);
        ASSERT_NE(found, nullptr);
        EXPECT_EQ(found->changeType(), Details::ChildInserted);
        EXPECT_EQ(found->insertionIndex(), 1U);
    };
    m_rTop->insertGroupChild(m_things[2].get(), 1);
    ASSERT_EQ(recorder.m_told.size(), 2U);
    EXPECT_EQ(recorder.m_told[0].type, DataChange::ChangeStructural);
    EXPECT_EQ(members(*m_rTop), things({0, 2, 1}));
    EXPECT_EQ(m_things[2]->groupParent(), m_rTop.get());
    m_rTop->unsubscribe(&recorder);
}

TEST_F(CustomGroupTests, InsertGroupChildAtTheEndDiffersFromAddGroupChildInTheTypeOnly) {
    m_rTop->addGroupChild(m_things[0].get());
    Recorder recorder(*m_rTop);
    m_rTop->insertGroupChild(m_things[1].get(), 1);
    m_rTop->addGroupChild(m_things[2].get());
    EXPECT_EQ(members(*m_rTop), things({0, 1, 2}));
    EXPECT_EQ(m_things[1]->groupParent(), m_things[2]->groupParent());
    ASSERT_EQ(recorder.m_told.size(), 4U);
    EXPECT_EQ(recorder.m_told[0].type, DataChange::ChangeStructural);
    EXPECT_EQ(recorder.m_told[2].type, DataChange::ChangeChildren);
    m_rTop->unsubscribe(&recorder);
}

TEST_F(CustomGroupTests, RemoveGroupChildTakesTheFirstPlaceAndLeavesTheGroupParent) {
    addAll();
    m_rTop->addGroupChild(m_things[1].get());
    Recorder recorder(*m_rTop);
    m_rTop->removeGroupChild(m_things[1].get());
    EXPECT_EQ(members(*m_rTop), things({0, 2, 1}));
    EXPECT_EQ(m_things[1]->groupParent(), m_rTop.get());
    ASSERT_EQ(recorder.m_told.size(), 2U);
    EXPECT_EQ(recorder.m_told[0].type, DataChange::ChangeChildren);
    m_rTop->unsubscribe(&recorder);
}

// What a hook takes out shifts what stands after it.
TEST_F(CustomGroupTests, RemoveGroupChildTakesItsMemberWhateverAHookHasRemovedMeanwhile) {
    addAll();
    for (std::size_t const other : {0, 1, 2}) {
        Recorder recorder(*m_rTop);
        recorder.m_onPre = [&](DataChange *) {
            if (recorder.m_told.size() == 1) m_rTop->removeGroupChild(m_things[other].get());
        };
        m_document.step([&] { m_rTop->removeGroupChild(m_things[1].get()); });
        m_rTop->unsubscribe(&recorder);
        auto const left = other == 0 ? things({2}) : other == 1 ? things({0, 2}) : things({0});
        EXPECT_EQ(members(*m_rTop), left);
        m_document.undo();
        EXPECT_EQ(members(*m_rTop), things({0, 1, 2}));
        m_document.redo();
        EXPECT_EQ(members(*m_rTop), left);
        m_document.undo();
    }
}

TEST_F(CustomGroupTests, AnInsertionIntoAListThatAHookHasShortenedGoesToItsEnd) {
    m_rTop->addGroupChild(m_things[0].get());
    m_rTop->addGroupChild(m_things[1].get());
    Recorder recorder(*m_rTop);
    recorder.m_onPre = [&](DataChange *) {
        if (recorder.m_told.size() == 1) m_rTop->removeGroupChild(m_things[0].get());
    };
    m_document.step([&] { m_rTop->insertGroupChild(m_things[2].get(), 2); });
    m_rTop->unsubscribe(&recorder);
    EXPECT_EQ(members(*m_rTop), things({1, 2}));
    m_document.undo();
    EXPECT_EQ(members(*m_rTop), things({0, 1}));
    m_document.redo();
    EXPECT_EQ(members(*m_rTop), things({1, 2}));
}

TEST_F(CustomGroupTests, AHookThatEndsTheGroupOfTheTargetDoesNoHarmToAMove) {
    addAll();
    StrongRef<CustomGroup> other = CustomGroup::make(m_rGroups, m_rTop.get());
    StrongRef<Grouped> const target = Grouped::make(PassiveRef<Entity>(m_rTree));
    StrongRef<Grouped> const further = Grouped::make(PassiveRef<Entity>(m_rTree));
    other->addGroupChild(target.get());
    other->addGroupChild(further.get());
    PassiveRef<CustomGroup> const passive(other);
    Recorder recorder(*m_rTop);
    recorder.m_onPost = [&](DataChange *) {
        if (!other) return;
        m_rGroups->removeChild(other);
        other.reset();
    };
    reorderGroupedEntity(m_things[0].get(), further.get(), true);
    m_rTop->unsubscribe(&recorder);
    EXPECT_EQ(members(*m_rTop), things({1, 2}));
    EXPECT_FALSE(passive);
}

TEST_F(CustomGroupTests, NullAndAbsentMembersAreIgnored) {
    m_rTop->addGroupChild(m_things[0].get());
    Recorder recorder(*m_rTop);
    m_rTop->addGroupChild(nullptr);
    m_rTop->insertGroupChild(nullptr, 0);
    m_rTop->removeGroupChild(nullptr);
    m_rTop->removeGroupChild(m_things[1].get());
    EXPECT_TRUE(recorder.m_told.empty());
    EXPECT_EQ(members(*m_rTop), things({0}));
    m_rTop->unsubscribe(&recorder);
}

TEST_F(CustomGroupTests, AnythingMayBeAddedEvenTheGroupItself) {
    EXPECT_TRUE(m_rTop->canAddGroupChild(m_things[0].get()));
    EXPECT_TRUE(m_rTop->canAddGroupChild(m_rTop.get()));
    EXPECT_TRUE(m_rTop->canAddGroupChild(nullptr));
    m_rTop->addGroupChild(m_rTop.get());
    EXPECT_EQ(m_rTop->groupParent(), m_rTop.get());
}

TEST_F(CustomGroupTests, AMemberThatHasDiedLeavesASlotWhichReplaysSkip) {
    addAll();
    Grouped * const second = m_things[1].get();
    m_rTree->removeChild(m_things[1]);
    m_things[1].reset();
    ASSERT_EQ(m_rTop->groupChildren(), 3U);
    EXPECT_EQ(m_rTop->groupChild(1), nullptr);
    EXPECT_FALSE(m_rTop->groupChildrenVector()[1]);
    m_document.asset().history().clear();
    m_document.step([&] { m_rTop->removeGroupChild(m_things[2].get()); });
    unsigned compared = 0;
    Recorder recorder(*m_rTop);
    recorder.m_onPost = [&](DataChange * details) {
        auto const * const found = query<Difference>(details->find(Difference::interfaceId()));
        ASSERT_NE(found, nullptr);
        EXPECT_EQ(found->addedChildren(),
                  (std::vector<ManagedEntity *>{nullptr, m_things[2].get()}));
        for (ManagedEntity * const added : found->addedChildren()) EXPECT_NE(added, second);
        EXPECT_TRUE(found->removedChildren().empty());
        ++compared;
    };
    m_document.undo();
    EXPECT_EQ(compared, 1U);
    EXPECT_EQ(m_rTop->groupChildren(), 3U);
    m_rTop->unsubscribe(&recorder);
}

// The details are those of the members, with those of the managed children attached.
TEST_F(CustomGroupTests, AReplayTellsOfMembersAndOfManagedChildren) {
    addAll();
    m_document.step([&] { m_rTop->removeGroupChild(m_things[1].get()); });
    Recorder recorder(*m_rTop);
    unsigned compared = 0;
    recorder.m_onPost = [&](DataChange * details) {
        auto const * const ofMembers = query<Difference>(details);
        ASSERT_NE(ofMembers, nullptr);
        EXPECT_EQ(ofMembers->addedChildren(),
                  (std::vector<ManagedEntity *>{nullptr, m_things[1].get(), nullptr}));
        ASSERT_EQ(ofMembers->dataChanges(), 1U);
        auto const * const ofChildren = query<Difference>(ofMembers->dataChange(0));
        ASSERT_NE(ofChildren, nullptr);
        EXPECT_TRUE(ofChildren->addedChildren().empty());
        EXPECT_TRUE(ofChildren->removedChildren().empty());
        ++compared;
    };
    m_document.undo();
    EXPECT_EQ(compared, 1U);
    EXPECT_EQ(members(*m_rTop), things({0, 1, 2}));
    m_rTop->unsubscribe(&recorder);
}

TEST_F(CustomGroupTests, EveryChangeOfTheMembersIsUndoneAndRedone) {
    std::vector<std::vector<ICustomGroupChild *>> states{members(*m_rTop)};
    auto const step = [&](auto && work) {
        m_document.step(work);
        states.push_back(members(*m_rTop));
    };
    step([&] { addAll(); });
    step([&] { m_rTop->removeGroupChild(m_things[0].get()); });
    step([&] { m_rTop->insertGroupChild(m_things[0].get(), 1); });
    step([&] { reorderGroupedEntity(m_things[2].get(), m_things[1].get(), false); });
    for (std::size_t i = states.size() - 1; i-- > 0;) {
        m_document.undo();
        EXPECT_EQ(members(*m_rTop), states[i]);
    }
    EXPECT_EQ(m_things[0]->groupParent(), nullptr);
    for (std::size_t i = 1; i < states.size(); ++i) {
        m_document.redo();
        EXPECT_EQ(members(*m_rTop), states[i]);
    }
    EXPECT_EQ(m_things[0]->groupParent(), m_rTop.get());
}

TEST_F(CustomGroupTests, GroupParentIsSetInAStructuralChange) {
    StrongRef<CustomGroup> const inner = CustomGroup::make(m_rGroups, m_rTop.get());
    StrongRef<CustomGroup> const other = CustomGroup::make(m_rGroups, m_rTop.get());
    Recorder recorder(*inner);
    inner->groupParent(other.get());
    EXPECT_EQ(inner->groupParent(), other.get());
    ASSERT_EQ(recorder.m_told.size(), 2U);
    EXPECT_EQ(recorder.m_told[0].type, DataChange::ChangeStructural);
    inner->unsubscribe(&recorder);
}

TEST_F(CustomGroupTests, ADeletedGroupLeavesItsMembersInTheTreeWithoutAGroup) {
    StrongRef<CustomGroup> inner = CustomGroup::make(m_rGroups, m_rTop.get());
    m_rTop->addGroupChild(inner.get());
    for (auto const & thing : m_things) inner->addGroupChild(thing.get());
    auto request = CustomGroupDeleteRequest::make(&m_document.asset(), inner);
    EXPECT_EQ(request->asset(0), &m_document.asset());
    auto const index = inner->creationIndex();
    PassiveRef<Entity> const gone(std::exchange(inner, nullptr));
    ASSERT_TRUE(m_document.asset().run(std::move(request)).ok());
    EXPECT_FALSE(gone);
    EXPECT_EQ(m_rGroups->groups(), 1U);
    EXPECT_EQ(m_rTop->groupChildren(), 0U);
    for (auto const & thing : m_things) {
        EXPECT_EQ(thing->groupParent(), nullptr);
        EXPECT_EQ(thing->parent(), m_rTree);
    }
    m_document.undo();
    ASSERT_TRUE(gone);
    auto * const back = query<CustomGroup>(gone.get());
    EXPECT_EQ(back->creationIndex(), index);
    EXPECT_EQ(members(*back), things({0, 1, 2}));
    EXPECT_EQ(m_things[0]->groupParent(), back);
    EXPECT_EQ(m_rTop->groupChild(0), back);
}

TEST_F(CustomGroupTests, ADeleteRequestForAGroupWithoutAGroupParentChangesNothing) {
    ASSERT_EQ(m_rTop->groupParent(), nullptr);
    m_document.asset().history().clear();
    ASSERT_TRUE(
        m_document.asset().run(CustomGroupDeleteRequest::make(&m_document.asset(), m_rTop)).ok());
    EXPECT_EQ(m_rGroups->groups(), 1U);
    EXPECT_FALSE(m_document.asset().history().canUndo());
}

TEST_F(CustomGroupTests, ADeleteRequestForNoGroupChangesNothing) {
    m_document.asset().history().clear();
    ASSERT_TRUE(
        m_document.asset().run(CustomGroupDeleteRequest::make(&m_document.asset(), nullptr)).ok());
    EXPECT_FALSE(m_document.asset().history().canUndo());
}

TEST_F(CustomGroupTests, MembersAreMovedByTheArithmeticOfChildren) {
    addAll();
    auto const expectMoved = [&](std::size_t moved, std::size_t target, bool after,
                                 std::initializer_list<std::size_t> order) {
        reorderGroupedEntity(m_things[moved].get(), m_things[target].get(), after);
        EXPECT_EQ(members(*m_rTop), things(order));
    };
    expectMoved(0, 1, false, {0, 1, 2});
    expectMoved(0, 2, true, {1, 2, 0});
    expectMoved(0, 1, false, {0, 1, 2});
    expectMoved(2, 0, true, {0, 2, 1});
    expectMoved(0, 1, false, {2, 0, 1});
    expectMoved(1, 1, true, {2, 0, 1});
}

TEST_F(CustomGroupTests, AMemberThatIsMovedToAnotherGroupHasThatAsItsGroupParent) {
    StrongRef<CustomGroup> const other = CustomGroup::make(m_rGroups, m_rTop.get());
    m_rTop->addGroupChild(m_things[0].get());
    other->addGroupChild(m_things[1].get());
    reorderGroupedEntity(m_things[0].get(), m_things[1].get(), false);
    // The other stands at 0 there, as does this one here: it is taken to be there already.
    EXPECT_EQ(members(*m_rTop), things({0}));
    reorderGroupedEntity(m_things[0].get(), m_things[1].get(), true);
    EXPECT_EQ(members(*m_rTop), things({0}));
    other->insertGroupChild(m_things[2].get(), 0);
    reorderGroupedEntity(m_things[0].get(), m_things[1].get(), true);
    EXPECT_EQ(members(*other), things({2, 0, 1}));
    EXPECT_TRUE(members(*m_rTop).empty());
    EXPECT_EQ(m_things[0]->groupParent(), other.get());
}

TEST_F(CustomGroupTests, NullsAndThingsWithoutAGroupAreNotMoved) {
    m_rTop->addGroupChild(m_things[0].get());
    reorderGroupedEntity(nullptr, m_things[0].get(), true);
    reorderGroupedEntity(m_things[0].get(), nullptr, true);
    reorderGroupedEntity(m_things[1].get(), m_things[0].get(), true);
    reorderGroupedEntity(m_things[0].get(), m_things[1].get(), true);
    EXPECT_EQ(members(*m_rTop), things({0}));
}

TEST_F(CustomGroupTests, QueryInterfaceGoesFromTheGroupToTheTwoInterfaces) {
    EXPECT_EQ(m_rTop->queryInterface(CustomGroup::interfaceId()), m_rTop.get());
    EXPECT_EQ(m_rTop->queryInterface(ManagedGroupEntity::interfaceId()), m_rTop.get());
    EXPECT_EQ(m_rTop->queryInterface(ICustomGroupParent::interfaceId()),
              static_cast<ICustomGroupParent *>(m_rTop.get()));
    EXPECT_EQ(m_rTop->queryInterface(ICustomGroupChild::interfaceId()),
              static_cast<ICustomGroupChild *>(m_rTop.get()));
    EXPECT_EQ(
        static_cast<ICustomGroupChild *>(m_rTop.get())->queryInterface(CustomGroups::interfaceId()),
        nullptr);
}

TEST_F(CustomGroupTests, TheDebugLines) {
    std::wstring const groups = m_rGroups->toString();
    EXPECT_EQ(groups.find(L"CustomGroups (base CommonBaseEntData (base ManagedGroupEntity (base "
                          L"ManagedEntity (base "),
              0U);
    std::wstring const tail = L") : HasParent: 1) children : 1) HasClientObject: 0)";
    EXPECT_EQ(groups.substr(groups.size() - tail.size()), tail);
    // A group has no line of its own.
    EXPECT_EQ(m_rTop->toString().find(L"ManagedGroupEntity (base "), 0U);
}

} // namespace

} // namespace Vn::Managed::Testing
