// The laws of ChangeHistory.h.

#include <array>
#include <limits>
#include <memory>
#include <stdexcept>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Platform/DataModel/IEntityObserver.h"
#include "Tests/DataModel/TestEntities.h"
#include "Tests/Support/SmallStack.h"

namespace Vn::Testing {
namespace {

using ::testing::Each;
using ::testing::ElementsAre;

// Won't have a change.
struct Thrower : IEntityObserver {
    void preChange(Entity *, DataChange::ETransact, DataChange::EChangeType,
                   DataChange *) override {
        throw std::runtime_error("no");
    }
    void postChange(Entity *, DataChange::ETransact, DataChange::EChangeType,
                    DataChange *) override {}
    void preDeletion(Entity *, DataChange::ETransact) override {}
};

// Has more members than a record of the log has bits for.
class Wide : public Entity {
public:
    static constexpr std::size_t c_members = 70;

    static std::string s_metaTypeId() { return "Test-Wide"; }
    static StrongRef<Wide> make(Segment * segment) {
        StrongRef<Wide> made(new Wide(segment));
        made->postCreation(DataChange::TransactDirect);
        return made;
    }
    explicit Wide(Segment * segment) : Entity(segment) {
        MemberSet * const set = onMetaType()->memberSet(c_latestVersion);
        if (set->initialized()) return;
        set->initialize(this, "Wide");
        for (std::size_t i = 0; i < c_members; ++i)
            set->addNewMember(("number" + std::to_string(i)).c_str(), &m_numbers[i], "double",
                              IntrinsicMetaType<double>::get(), nullptr, nullptr);
    }
    Wide(Segment * segment, unsigned long long id) : Entity(segment, id) {}

    void set(std::size_t i, double value) {
        EntityChange const change(this, DataChange::TransactDirect, DataChange::ChangeValue,
                                  DataChange::TimingPreAndPost, nullptr, true);
        m_numbers[i] = value;
    }

    std::array<double, c_members> m_numbers{};

private:
    EntityMetaType * onMetaType() const override;
};

class WideMetaType : public EntityMetaType {
public:
    WideMetaType()
        : EntityMetaType("Test", Wide::s_metaTypeId(), "WideMetaType", 0, Entity::s_metaTypeId(),
                         TypeConcrete) {}

private:
    void onMigratingMemberSet(Entity *, unsigned, MemberSet *) override {}
    StrongRef<Entity> onCreateEntity(Segment * segment, unsigned long long id) override {
        return StrongRef<Entity>(new Wide(segment, id));
    }
    std::size_t onInstanceSize() const override { return sizeof(Wide); }
};
WideMetaType s_wideMetaType;

EntityMetaType * Wide::onMetaType() const { return &s_wideMetaType; }

class HistoryTests : public ::testing::Test {
protected:
    HistoryTests() {
        StrongRef<Asset> made = Asset::make(nullptr);
        m_rAsset = made;
        m_rRoot = Thing::make(*m_rAsset, L"root");
        m_rAsset->segment(SegmentType::DesignSegment)->addRoot(m_rRoot, "root");
        m_rAsset->history().markClean();
    }
    ~HistoryTests() override { Thing::s_log = nullptr; }

    Asset & asset() { return *m_rAsset; }
    ChangeHistory & history() { return m_rAsset->history(); }
    Thing & root() { return *m_rRoot; }
    void undo() { ASSERT_TRUE(history().undo().ok()); }
    void redo() { ASSERT_TRUE(history().redo().ok()); }

    // Runs `work` in a transaction, and sees that undo, redo and undo bring back what was.
    template <class Work>
    void expectReversible(Work && work) {
        std::wstring const before = dump(asset());
        {
            Transaction transaction(asset(), L"work");
            work();
            transaction.commit();
        }
        std::wstring const after = dump(asset());
        EXPECT_NE(before, after);
        for (int i = 0; i < 3; ++i) {
            undo();
            EXPECT_EQ(dump(asset()), before);
            redo();
            EXPECT_EQ(dump(asset()), after);
        }
        undo();
        EXPECT_EQ(dump(asset()), before);
    }

    StrongRef<Asset> m_rAsset;
    StrongRef<Thing> m_rRoot;
};

TEST_F(HistoryTests, AnOpenTransactionTellsWhetherItHasChanges) {
    EXPECT_FALSE(asset().history().hasOpenChanges());
    Transaction transaction(asset(), L"Step");
    EXPECT_FALSE(asset().history().hasOpenChanges());
    root().set(&Thing::m_int, root().m_int);
    EXPECT_FALSE(asset().history().hasOpenChanges());
    root().set(&Thing::m_int, 5);
    EXPECT_TRUE(asset().history().hasOpenChanges());
    {
        Transaction inner(asset(), L"Inner");
        EXPECT_FALSE(asset().history().hasOpenChanges());
        inner.commit();
    }
    EXPECT_TRUE(asset().history().hasOpenChanges());
    transaction.commit();
    EXPECT_FALSE(asset().history().hasOpenChanges());
}

TEST_F(HistoryTests, UndoAndRedoRestoreEveryKindOfMember) {
    StrongRef<Thing> const other = Thing::make(asset(), L"other");
    Thing & t = root();
    expectReversible([&] { t.set(&Thing::m_bool, true); });
    expectReversible([&] { t.set(&Thing::m_int, -7); });
    expectReversible([&] { t.set(&Thing::m_unsigned, 4294967295U); });
    expectReversible([&] { t.set(&Thing::m_int64, std::numeric_limits<long long>::min()); });
    expectReversible([&] { t.set(&Thing::m_unsigned64, ~0ULL); });
    expectReversible([&] { t.set(&Thing::m_float, -0.0F); });
    expectReversible([&] { t.set(&Thing::m_double, std::numeric_limits<double>::quiet_NaN()); });
    expectReversible([&] { t.set(&Thing::m_string, std::string("a\0b", 3)); });
    expectReversible([&] { t.set(&Thing::m_name, std::wstring(1000, L'\u00E4')); });
    expectReversible([&] { t.set(&Thing::m_text, GlobalizedString(L"text")); });
    expectReversible([&] { t.set(&Thing::m_rOwned, Thing::make(asset(), L"new")); });
    expectReversible([&] { t.set(&Thing::m_rFriend, PassiveRef<Entity>(other)); });
    expectReversible([&] {
        t.set(&Thing::m_friends, std::vector<PassiveRef<Entity>>{PassiveRef<Entity>(other),
                                                                 PassiveRef<Entity>(m_rRoot)});
    });
    expectReversible([&] { t.set(&Thing::m_numbers, std::vector<double>{1, -0.0, 3}); });
    expectReversible([&] { t.set(&Thing::m_words, std::vector<std::wstring>{L"", L"zwei"}); });
    expectReversible([&] { t.set(&Thing::m_children, std::vector<StrongRef<Thing>>{other}); });
    expectReversible([&] { t.add(Thing::make(asset(), L"child")); });
}

TEST_F(HistoryTests, UndoneCreationComesBackWithTheSameObjectIdAndPassiveReferences) {
    PassiveRef<Thing> child;
    {
        Transaction transaction(asset(), L"make");
        root().add(Thing::make(asset(), L"child"));
        child = PassiveRef<Thing>(root().m_children[0]);
        transaction.commit();
    }
    Thing * const object = child.get();
    auto const id = object->id();
    undo();
    EXPECT_FALSE(child);
    EXPECT_FALSE(child.lock());
    EXPECT_EQ(asset().entity(id), nullptr);
    EXPECT_FALSE(object->isAlive());
    redo();
    EXPECT_EQ(child.get(), object);
    EXPECT_EQ(child.lock(), object);
    EXPECT_EQ(asset().entity(id).get(), object);
    EXPECT_EQ(object->m_name, L"child");
    EXPECT_EQ(object->refCount(), 1U);
}

TEST_F(HistoryTests, UndoneDeletionComesBackWithEverythingBelow) {
    {
        Transaction transaction(asset(), L"make");
        StrongRef<Thing> const group = Thing::make(asset(), L"group");
        root().add(group);
        for (int i = 0; i < 5; ++i) group->add(Thing::make(asset(), std::to_wstring(i)));
        group->m_children[1]->set(&Thing::m_rFriend, PassiveRef<Entity>(group->m_children[3]));
        transaction.commit();
    }
    expectReversible([&] { root().remove(0); });
    EXPECT_EQ(root().m_children[0]->m_children.size(), 5U);
}

TEST_F(HistoryTests, WhatMovesFromOneOwnerToAnotherStaysAlive) {
    Transaction making(asset(), L"make");
    root().add(Thing::make(asset(), L"a"));
    root().add(Thing::make(asset(), L"b"));
    root().m_children[0]->add(Thing::make(asset(), L"moved"));
    making.commit();
    Thing & a = *root().m_children[0];
    Thing & b = *root().m_children[1];
    PassiveRef<Thing> const moved(a.m_children[0]);
    std::vector<std::string> heard;
    expectReversible([&] {
        StrongRef<Thing> const held = moved.lock();
        a.remove(0);
        b.add(held);
    });
    Thing::s_log = &heard;
    redo();
    undo();
    EXPECT_TRUE(moved);
    for (std::string const & line : heard)
        EXPECT_EQ(line.find("delete"), std::string::npos) << line;
}

TEST_F(HistoryTests, AMemberIsRecordedOnceWithinATransaction) {
    std::size_t once = 0;
    for (int const times : {1, 1000}) {
        Transaction transaction(asset(), L"change");
        for (int i = 0; i < times; ++i) root().set(&Thing::m_double, 1.5 + i);
        std::size_t const bytes = history().bytes();
        if (times == 1)
            once = bytes;
        else {
            EXPECT_EQ(bytes, once);
        }
        transaction.abort();
    }
    EXPECT_EQ(root().m_double, 0);
    // And of what came within the transaction, nothing but that.
    Transaction transaction(asset(), L"make");
    StrongRef<Thing> const made = Thing::make(asset());
    std::size_t const bytes = history().bytes();
    made->set(&Thing::m_name, std::wstring(5000, L'x'));
    EXPECT_EQ(history().bytes(), bytes);
}

TEST_F(HistoryTests, ALogFollowsTheSizeOfTheChange) {
    {
        Transaction transaction(asset(), L"make");
        for (int i = 0; i < 10000; ++i) root().add(Thing::make(asset()));
        root().set(&Thing::m_name, std::wstring(10000, L'x'));
        transaction.commit();
    }
    std::size_t const before = history().bytes();
    Transaction transaction(asset(), L"one");
    root().m_children[5000]->set(&Thing::m_double, 2.0);
    transaction.commit();
    EXPECT_LT(history().bytes() - before, 200U);
    Transaction adding(asset(), L"another child");
    root().insert(Thing::make(asset()), 77);
    adding.commit();
    EXPECT_LT(history().bytes() - before, 600U);
    undo();
    undo();
    EXPECT_EQ(root().m_children.size(), 10000U);
}

TEST_F(HistoryTests, SplicesOfOneTransactionAreUndoneInTheirOrder) {
    Transaction making(asset(), L"make");
    for (int i = 0; i < 6; ++i) root().add(Thing::make(asset(), std::to_wstring(i)));
    making.commit();
    expectReversible([&] {
        StrongRef<Thing> const two = root().m_children[2];
        root().remove(2);
        root().insert(two, 4);
        root().remove(0);
        root().remove(0);
        root().insert(Thing::make(asset(), L"x"), 1);
        root().insert(Thing::make(asset(), L"y"), 2);
        root().insert(Thing::make(asset(), L"z"), 1);
        root().remove(3);
        root().set(&Thing::m_double, 3.0);
        root().set(&Thing::m_children, std::vector<StrongRef<Thing>>{two});
        root().add(Thing::make(asset(), L"last"));
    });
}

TEST_F(HistoryTests, AnOuterBracketWithoutSplicesRecordsTheWholeVector) {
    Transaction making(asset(), L"make");
    for (int i = 0; i < 3; ++i) root().add(Thing::make(asset(), std::to_wstring(i)));
    making.commit();
    expectReversible([&] {
        EntityChange const outer(&root(), DataChange::TransactDirect, DataChange::ChangeValue,
                                 DataChange::TimingPreAndPost, nullptr, true);
        root().remove(1);
        root().add(Thing::make(asset(), L"new"));
        std::swap(root().m_children[0], root().m_children[1]);
    });
}

TEST_F(HistoryTests, ATransactionThatIsNotCommittedLeavesNothing) {
    std::wstring const before = dump(asset());
    {
        Transaction const transaction(asset(), L"dropped");
        root().set(&Thing::m_int, 5);
        root().add(Thing::make(asset()));
        root().m_children[0]->add(Thing::make(asset()));
    }
    EXPECT_EQ(dump(asset()), before);
    EXPECT_EQ(asset().entities(), 1U);
    EXPECT_FALSE(history().canUndo());
    EXPECT_TRUE(history().isClean());
    // The same when an exception leaves it, from within a bracket.
    try {
        Transaction const transaction(asset(), L"thrown");
        EntityChange const change(&root(), DataChange::TransactDirect, DataChange::ChangeValue,
                                  DataChange::TimingPreAndPost, nullptr, true);
        root().m_int = 6;
        throw std::runtime_error("on the way");
    } catch (std::runtime_error const &) {}
    EXPECT_EQ(dump(asset()), before);
    EXPECT_EQ(root().outerChange(), nullptr);
}

TEST_F(HistoryTests, TransactionsNest) {
    std::wstring const before = dump(asset());
    StrongRef<Thing> born;
    {
        Transaction outer(asset(), L"outer");
        root().set(&Thing::m_int, 1);
        born = Thing::make(asset(), L"born");
        root().add(born);
        {
            Transaction inner(asset(), L"inner");
            root().set(&Thing::m_int, 2);
            root().set(&Thing::m_unsigned, 9U);
            born->set(&Thing::m_int, 3);
            inner.commit();
        }
        {
            Transaction const inner(asset(), L"dropped");
            root().set(&Thing::m_int, 4);
            root().set(&Thing::m_double, 4.0);
            born->set(&Thing::m_int, 5);
            root().remove(0);
        }
        EXPECT_EQ(root().m_int, 2);
        EXPECT_EQ(root().m_double, 0);
        EXPECT_EQ(born->m_int, 3);
        EXPECT_EQ(root().m_children.size(), 1U);
        root().set(&Thing::m_double, 5.0);
        outer.commit();
    }
    EXPECT_THAT(history().undoNames(), ElementsAre(L"outer"));
    std::wstring const after = dump(asset());
    std::vector<std::string> heard;
    Thing::s_log = &heard;
    undo();
    EXPECT_EQ(dump(asset()), before);
    EXPECT_EQ(std::count(heard.begin(), heard.end(), "pre 1 replay"), 1);
    redo();
    EXPECT_EQ(dump(asset()), after);
}

TEST_F(HistoryTests, AReplayTellsEachEntityOnce) {
    {
        Transaction transaction(asset(), L"make");
        root().add(Thing::make(asset()));
        transaction.commit();
    }
    {
        Transaction transaction(asset(), L"change");
        root().set(&Thing::m_int, 1);
        root().m_children[0]->set(&Thing::m_int, 1);
        root().set(&Thing::m_double, 1.0);
        root().add(Thing::make(asset()));
        root().set(&Thing::m_bool, true);
        transaction.commit();
    }
    std::vector<std::string> heard;
    Thing::s_log = &heard;
    undo();
    EXPECT_THAT(heard, ElementsAre("pre 1 replay", "post 1 replay", "delete 3 replay",
                                   "pre 2 replay", "post 2 replay"));
    heard.clear();
    redo();
    EXPECT_THAT(heard, ElementsAre("create 3 replay", "pre 2 replay", "post 2 replay",
                                   "pre 1 replay", "post 1 replay"));
}

TEST_F(HistoryTests, AReplayOfNumbersTellsEachEntityOnceAndInTurn) {
    StrongRef<Thing> const other = Thing::make(asset());
    {
        Transaction transaction(asset(), L"change");
        root().set(&Thing::m_int, 1);
        other->set(&Thing::m_int, 1);
        root().set(&Thing::m_double, 1.0);
        transaction.commit();
    }
    std::vector<std::string> heard;
    Thing::s_log = &heard;
    for (int i = 0; i < 2; ++i) {
        undo();
        EXPECT_THAT(heard,
                    ElementsAre("pre 1 replay", "post 1 replay", "pre 2 replay", "post 2 replay"));
        heard.clear();
        redo();
        EXPECT_THAT(heard,
                    ElementsAre("pre 2 replay", "post 2 replay", "pre 1 replay", "post 1 replay"));
        heard.clear();
    }
    Thing::s_log = nullptr;
}

TEST_F(HistoryTests, ANumberThatChangesAgainWithinANestedTransactionComesBack) {
    expectReversible([&] {
        root().set(&Thing::m_int, 1);
        {
            Transaction inner(asset(), L"inner");
            root().set(&Thing::m_int, 2);
            inner.commit();
        }
        root().set(&Thing::m_int, 3);
    });
}

TEST_F(HistoryTests, MembersBeyondTheBitsOfARecordComeBack) {
    StrongRef<Wide> const wide = Wide::make(asset().segment(SegmentType::DesignSegment));
    {
        Transaction transaction(asset(), L"change");
        for (double const round : {1.0, 2.0, 3.0})
            for (std::size_t i = 0; i < Wide::c_members; ++i)
                wide->set(i, round * static_cast<double>(i + 1));
        transaction.commit();
    }
    auto const after = wide->m_numbers;
    for (int i = 0; i < 2; ++i) {
        undo();
        EXPECT_THAT(wide->m_numbers, Each(0.0));
        redo();
        EXPECT_EQ(wide->m_numbers, after);
    }
}

// The step is of numbers only until the hook has its say.
TEST_F(HistoryTests, WhatHooksDoWithinAReplayOfNumbersIsTakenBackWithIt) {
    struct Rooter : IEntityObserver {
        void preChange(Entity *, DataChange::ETransact, DataChange::EChangeType,
                       DataChange *) override {}
        void postChange(Entity * entity, DataChange::ETransact, DataChange::EChangeType,
                        DataChange *) override {
            if (!m_rHeld) return;
            entity->segment()->addRoot(m_rHeld, "hook");
            m_rDropped.reset();
            m_rHeld.reset();
        }
        void preDeletion(Entity *, DataChange::ETransact) override {}
        StrongRef<Thing> m_rHeld;
        StrongRef<Thing> m_rDropped;
    } rooter;
    StrongRef<Thing> rooted = Thing::make(asset(), L"rooted");
    StrongRef<Thing> dropped = Thing::make(asset(), L"dropped");
    {
        Transaction transaction(asset(), L"change");
        root().set(&Thing::m_int, 1);
        transaction.commit();
    }
    rooter.m_rHeld = std::move(rooted);
    rooter.m_rDropped = std::move(dropped);
    root().subscribe(&rooter);
    undo();
    root().unsubscribe(&rooter);
    std::wstring const after = dump(asset());
    EXPECT_EQ(asset().entities(), 2U);
    EXPECT_EQ(root().m_int, 0);
    for (int i = 0; i < 2; ++i) {
        redo(); // now nobody owns the two
        EXPECT_EQ(asset().entities(), 1U);
        EXPECT_EQ(root().m_int, 1);
        undo();
        EXPECT_EQ(dump(asset()), after);
    }
}

TEST_F(HistoryTests, NothingBeginsWithinAReplay) {
    struct Meddler : IEntityObserver {
        void preChange(Entity *, DataChange::ETransact, DataChange::EChangeType,
                       DataChange *) override {
            Asset & asset = *m_rRoot->asset();
            EXPECT_TRUE(asset.history().isReplaying());
            EXPECT_FALSE(asset.history().undo().ok());
            EXPECT_FALSE(asset.history().redo().ok());
            Transaction const transaction(asset, L"refused");
            EXPECT_FALSE(transaction.isOpen());
            ++m_told;
        }
        void postChange(Entity *, DataChange::ETransact, DataChange::EChangeType,
                        DataChange *) override {}
        void preDeletion(Entity *, DataChange::ETransact) override {}
        StrongRef<Thing> m_rRoot;
        int m_told = 0;
    } meddler;
    {
        Transaction transaction(asset(), L"change");
        root().set(&Thing::m_int, 1);
        EXPECT_FALSE(history().undo().ok());
        transaction.commit();
    }
    meddler.m_rRoot = m_rRoot;
    root().subscribe(&meddler);
    undo();
    root().unsubscribe(&meddler);
    EXPECT_EQ(meddler.m_told, 1);
    EXPECT_TRUE(history().canRedo());
}

TEST_F(HistoryTests, WhatAHookOfAReplayThrowsComesOutAfterIt) {
    Thrower thrower;
    Transaction transaction(asset(), L"change");
    root().set(&Thing::m_int, 1);
    transaction.commit();
    root().subscribe(&thrower);
    EXPECT_THROW(static_cast<void>(history().undo()), std::runtime_error);
    root().unsubscribe(&thrower);
    EXPECT_EQ(root().m_int, 0);
    redo();
    EXPECT_EQ(root().m_int, 1);
}

TEST_F(HistoryTests, ABracketWhoseHookThrowsIsNotOpened) {
    Thrower thrower;
    root().subscribe(&thrower);
    EXPECT_THROW(root().set(&Thing::m_int, 1), std::runtime_error);
    root().unsubscribe(&thrower);
    EXPECT_EQ(root().m_int, 0);
    EXPECT_EQ(root().outerChange(), nullptr);
    expectReversible([&] { root().set(&Thing::m_int, 2); });
}

TEST_F(HistoryTests, AKeptEntityOutlivesItsReferences) {
    StrongRef<Thing> held;
    {
        Transaction transaction(asset(), L"make");
        held = Thing::make(asset(), L"held");
        root().add(held);
        transaction.commit();
    }
    undo(); // gone from the document, although it is held
    EXPECT_FALSE(held->isAlive());
    held.reset();
    redo();
    EXPECT_EQ(root().m_children[0]->m_name, L"held");
    undo();
    history().clear(); // and now for good
    EXPECT_EQ(asset().entities(), 1U);
}

TEST_F(HistoryTests, WhoeverHoldsAnEntityPastItsEndHoldsTheObject) {
    StrongRef<Thing> held;
    {
        Transaction transaction(asset(), L"make");
        held = Thing::make(asset(), L"held");
        root().add(held);
        transaction.commit();
    }
    undo();
    history().clear();
    EXPECT_EQ(held->m_name, L"held");
    EXPECT_FALSE(held->isAlive());
    m_rRoot.reset();
    m_rAsset.reset();
    EXPECT_EQ(held->m_name, L"held");
}

TEST_F(HistoryTests, ADeathAfterATransactionBelongsToItsStep) {
    StrongRef<Thing> held;
    {
        Transaction transaction(asset(), L"make");
        held = Thing::make(asset(), L"held");
        root().add(held);
        transaction.commit();
    }
    std::wstring const before = dump(asset());
    {
        Transaction transaction(asset(), L"remove");
        root().remove(0);
        transaction.commit();
    }
    EXPECT_TRUE(held->isAlive());
    held.reset();
    EXPECT_EQ(asset().entities(), 1U);
    EXPECT_EQ(history().undoSteps(), 2U);
    undo();
    EXPECT_EQ(dump(asset()), before);
    redo();
    EXPECT_EQ(asset().entities(), 1U);
    undo();
    EXPECT_EQ(dump(asset()), before);
}

TEST_F(HistoryTests, AChangeOutsideATransactionEndsTheHistory) {
    Transaction transaction(asset(), L"change");
    root().set(&Thing::m_int, 1);
    transaction.commit();
    EXPECT_TRUE(history().canUndo());
    root().set(&Thing::m_double, 1.0);
    EXPECT_FALSE(history().canUndo());
    EXPECT_TRUE(asset().isDirty());
    EXPECT_EQ(history().bytes(), 0U);
}

TEST_F(HistoryTests, ALongChainIsDeletedOnASmallStack) {
    onSmallStack([this] {
        {
            Transaction transaction(asset(), L"make");
            Thing * last = &root();
            for (int i = 0; i < 100000; ++i) {
                StrongRef<Thing> const next = Thing::make(asset());
                last->add(next);
                last = next.get();
            }
            transaction.commit();
        }
        std::size_t const all = asset().entities();
        {
            Transaction transaction(asset(), L"delete");
            root().remove(0);
            transaction.commit();
        }
        EXPECT_EQ(asset().entities(), 1U);
        undo();
        EXPECT_EQ(asset().entities(), all);
        undo();
        EXPECT_EQ(asset().entities(), 1U);
        redo();
        m_rRoot.reset();
        m_rAsset.reset();
    });
}

TEST_F(HistoryTests, TheCleanMarkIsFoundAgain) {
    EXPECT_FALSE(asset().isDirty());
    for (int i = 1; i <= 3; ++i) {
        Transaction transaction(asset(), L"change");
        root().set(&Thing::m_int, i);
        EXPECT_TRUE(asset().isDirty());
        transaction.commit();
    }
    undo();
    history().markClean();
    redo();
    EXPECT_TRUE(asset().isDirty());
    undo();
    EXPECT_FALSE(asset().isDirty());
    undo();
    EXPECT_TRUE(asset().isDirty());
    {
        Transaction transaction(asset(), L"other");
        root().set(&Thing::m_int, 2); // the same value by another road is another state
        transaction.commit();
    }
    EXPECT_TRUE(asset().isDirty());
}

TEST_F(HistoryTests, ATransactionWithoutChangesLeavesNoStep) {
    Transaction transaction(asset(), L"nothing");
    root().set(&Thing::m_int, root().m_int);
    transaction.commit();
    EXPECT_FALSE(history().canUndo());
    EXPECT_FALSE(asset().isDirty());
    EXPECT_EQ(history().undo().code(), StatusNotFound);
}

TEST_F(HistoryTests, TheOldestStepsGoWhenALimitIsReached) {
    history().stepLimit(3);
    for (int i = 1; i <= 5; ++i) {
        Transaction transaction(asset(), std::to_wstring(i));
        root().set(&Thing::m_int, i);
        transaction.commit();
    }
    EXPECT_THAT(history().undoNames(), ElementsAre(L"5", L"4", L"3"));
    while (history().canUndo()) undo();
    EXPECT_EQ(root().m_int, 2);
    EXPECT_TRUE(asset().isDirty()); // the clean state is out of reach
    history().stepLimit(0);
    history().byteLimit(100000);
    for (int i = 0; i < 100; ++i) {
        Transaction transaction(asset(), L"long");
        root().set(&Thing::m_string, std::string(10000, static_cast<char>('a' + i % 26)));
        transaction.commit();
    }
    EXPECT_LE(history().bytes(), 100000U);
    EXPECT_GE(history().undoSteps(), 5U);
    Transaction transaction(asset(), L"larger than the limit");
    root().set(&Thing::m_string, std::string(200000, 'x'));
    transaction.commit();
    Transaction again(asset(), L"again");
    root().set(&Thing::m_string, std::string());
    again.commit();
    EXPECT_THAT(history().undoNames(), ElementsAre(L"again"));
}

TEST_F(HistoryTests, RedoIsGivenUpByTheNextChange) {
    for (int i = 1; i <= 2; ++i) {
        Transaction transaction(asset(), std::to_wstring(i));
        root().add(Thing::make(asset()));
        transaction.commit();
    }
    undo();
    EXPECT_THAT(history().redoNames(), ElementsAre(L"2"));
    Transaction transaction(asset(), L"3");
    root().set(&Thing::m_int, 1);
    transaction.commit();
    EXPECT_FALSE(history().canRedo());
    EXPECT_EQ(history().redo().code(), StatusNotFound);
}

TEST_F(HistoryTests, RootsAreUndone) {
    Segment & segment = *asset().segment(SegmentType::DesignSegment);
    expectReversible([&] { segment.addRoot(Thing::make(asset(), L"second"), "second"); });
    expectReversible([&] { segment.addRoot(Thing::make(asset(), L"instead"), "root"); });
    expectReversible([&] { segment.addRoot(nullptr, "root"); });
    EXPECT_EQ(segment.rootEntity("root").get(), &root());
}

TEST_F(HistoryTests, EventsAreRaisedByReplaysToo) {
    struct Site : EntityEventSite {
        void postCreate(EntityEvent * e) override {
            m_heard.push_back("create " + std::to_string(e->entity()->id()) +
                              (e->transact() == DataChange::TransactReplay ? " replay" : ""));
        }
        void preDelete(EntityEvent * e) override {
            m_heard.push_back("delete " + std::to_string(e->entity()->id()) +
                              (e->transact() == DataChange::TransactReplay ? " replay" : ""));
        }
        std::vector<std::string> m_heard;
    } site;
    EntityEventSource & source = *asset().segment(SegmentType::DesignSegment)->entityEventSource();
    source.subscribe(&site, MetaTypeFilter::make(Thing::s_metaType()));
    source.subscribe(&site, MetaTypeFilter::make(Thing::s_metaType())); // once is enough
    Transaction transaction(asset(), L"make");
    root().add(Thing::make(asset()));
    transaction.commit();
    Transaction removing(asset(), L"remove");
    root().remove(0);
    removing.commit();
    undo();
    undo();
    redo();
    source.unsubscribe(&site, MetaTypeFilter::make(Thing::s_metaType()));
    redo();
    EXPECT_THAT(site.m_heard, ElementsAre("create 2", "delete 2", "create 2 replay",
                                          "delete 2 replay", "create 2 replay"));
}

TEST_F(HistoryTests, AnEntityMadeAndDroppedWithinATransactionLeavesNoTrace) {
    expectReversible([&] {
        root().set(&Thing::m_int, 1);
        root().add(Thing::make(asset(), L"short-lived"));
        root().remove(0);
    });
    EXPECT_EQ(asset().entities(), 1U);
}

} // namespace
} // namespace Vn::Testing
