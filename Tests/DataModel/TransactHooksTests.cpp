// What entities are told once a transaction or a replay is over, and right before they leave.

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "Tests/DataModel/TestEntities.h"

namespace Vn::Testing {
namespace {

// A thing that writes down what it hears.
class Hearer : public Thing {
public:
    static StrongRef<Hearer> make(Asset & asset) {
        StrongRef<Hearer> made(new Hearer(asset.segment(SegmentType::DesignSegment)));
        made->postCreation(DataChange::TransactDirect);
        return made;
    }

    static inline std::vector<std::string> s_heard;
    static inline std::function<void()> s_whenChanged;
    static inline std::function<void(Hearer &)> s_whenDeleted;

private:
    explicit Hearer(Segment * segment) : Thing(segment) {}
    void hear(std::string const & what, DataChange::ETransact transact) {
        s_heard.push_back(
            what + (DataChange::test(transact, DataChange::TransactReplay) ? " replay" : ""));
    }
    void onPreDelete() override {
        Thing::onPreDelete();
        s_heard.push_back("preDelete");
    }
    void onPreDeletion(DataChange::ETransact transact) override {
        hear("preDeletion", transact);
        if (s_whenDeleted) s_whenDeleted(*this);
        Thing::onPreDeletion(transact);
    }
    void onPostTransactChange(DataChange::ETransact transact) override {
        Thing::onPostTransactChange(transact);
        hear("changed", transact);
        if (s_whenChanged) s_whenChanged();
    }
    void onPostTransactCreation(DataChange::ETransact transact) override {
        Thing::onPostTransactCreation(transact);
        hear("came", transact);
    }
};

using Heard = std::vector<std::string>;

class TransactHooksTests : public ::testing::Test {
protected:
    TransactHooksTests() : m_rAsset(Asset::make(nullptr)), m_rRoot(Hearer::make(*m_rAsset)) {
        m_rAsset->segment(SegmentType::DesignSegment)->addRoot(m_rRoot, "root");
        m_rAsset->history().clear();
        heard();
    }
    ~TransactHooksTests() override {
        Hearer::s_whenChanged = nullptr;
        Hearer::s_whenDeleted = nullptr;
    }

    ChangeHistory & history() { return m_rAsset->history(); }
    // What was heard since the last call.
    Heard heard() { return std::exchange(Hearer::s_heard, {}); }
    template <class Work>
    void step(Work && work) {
        Transaction transaction(*m_rAsset, L"step");
        work();
        transaction.commit();
    }

    StrongRef<Asset> m_rAsset;
    StrongRef<Hearer> m_rRoot;
};

TEST_F(TransactHooksTests, AnEntityThatChangedIsToldOnceAfterTheOutermostTransaction) {
    step([&] {
        m_rRoot->set(&Thing::m_int, 1);
        step([&] { m_rRoot->set(&Thing::m_name, std::wstring(L"name")); });
        m_rRoot->set(&Thing::m_int, 2);
        EXPECT_EQ(heard(), Heard());
    });
    EXPECT_EQ(heard(), Heard{"changed"});
    EXPECT_TRUE(history().undo());
    EXPECT_EQ(heard(), Heard{"changed replay"});
    EXPECT_TRUE(history().redo());
    EXPECT_EQ(heard(), Heard{"changed replay"});
}

TEST_F(TransactHooksTests, AStepOfNumbersTellsToo) {
    step([&] { m_rRoot->set(&Thing::m_int, 1); });
    EXPECT_EQ(heard(), Heard{"changed"});
    EXPECT_TRUE(history().undo());
    EXPECT_EQ(heard(), Heard{"changed replay"});
}

TEST_F(TransactHooksTests, AnEntityThatCameIsToldThatAndNotThatItChanged) {
    step([&] {
        StrongRef<Hearer> const made = Hearer::make(*m_rAsset);
        m_rRoot->m_rOwned = made; // the root isn't told: nothing is recorded about it
        made->set(&Thing::m_int, 1);
    });
    EXPECT_EQ(heard(), Heard{"came"});
    EXPECT_TRUE(history().undo());
    EXPECT_EQ(heard(), (Heard{"preDelete", "preDeletion replay"}));
    EXPECT_TRUE(history().redo());
    EXPECT_EQ(heard(), Heard{"came replay"});
}

TEST_F(TransactHooksTests, WhatADeletionTookAwayCameWhenItIsUndone) {
    step([&] { m_rRoot->set(&Thing::m_rOwned, StrongRef<Thing>(Hearer::make(*m_rAsset))); });
    EXPECT_EQ(heard(), (Heard{"came", "changed"})); // in the order of what was recorded
    step([&] { m_rRoot->set(&Thing::m_rOwned, StrongRef<Thing>()); });
    EXPECT_EQ(heard(), (Heard{"preDelete", "preDeletion", "changed"}));
    EXPECT_TRUE(history().undo());
    EXPECT_EQ(heard(), (Heard{"changed replay", "came replay"}));
}

TEST_F(TransactHooksTests, AnAbortTellsNothing) {
    {
        Transaction transaction(*m_rAsset, L"aborted");
        m_rRoot->set(&Thing::m_int, 1);
    }
    EXPECT_EQ(heard(), Heard());
}

TEST_F(TransactHooksTests, WhatAnAbortBroughtBackIsNotToldByALaterReplay) {
    step([&] { m_rRoot->set(&Thing::m_rOwned, StrongRef<Thing>(Hearer::make(*m_rAsset))); });
    {
        Transaction transaction(*m_rAsset, L"aborted");
        m_rRoot->set(&Thing::m_rOwned, StrongRef<Thing>());
    }
    step([&] { m_rRoot->set(&Thing::m_rOwned, StrongRef<Thing>()); });
    history().clear(); // and its object goes
    step([&] { m_rRoot->set(&Thing::m_name, std::wstring(L"name")); });
    heard();
    EXPECT_TRUE(history().undo());
    EXPECT_EQ(heard(), Heard{"changed replay"});
}

TEST_F(TransactHooksTests, WhatAHookChangesThenIsNoPartOfTheStep) {
    step([&] { m_rRoot->set(&Thing::m_int, 1); });
    heard();
    Hearer::s_whenChanged = [&] {
        Hearer::s_whenChanged = nullptr;
        EXPECT_FALSE(history().undo()); // the commit isn't over
        step([&] { m_rRoot->set(&Thing::m_double, 1.0); });
    };
    step([&] { m_rRoot->set(&Thing::m_int, 2); });
    EXPECT_EQ(history().undoSteps(), 3U);
    EXPECT_TRUE(history().undo());
    EXPECT_EQ(m_rRoot->m_double, 0.0);
    EXPECT_EQ(m_rRoot->m_int, 2);
    Hearer::s_whenChanged = [&] {
        Hearer::s_whenChanged = nullptr;
        m_rRoot->set(&Thing::m_double, 2.0); // outside of a transaction
    };
    step([&] { m_rRoot->set(&Thing::m_int, 3); });
    EXPECT_EQ(history().undoSteps(), 0U);
    EXPECT_TRUE(m_rAsset->isDirty());
}

// --- What hooks of a deletion change -----------------------------------------------------------

class DeletionHooksTests : public TransactHooksTests {
protected:
    DeletionHooksTests() {
        step([&] {
            StrongRef<Hearer> const made = Hearer::make(*m_rAsset);
            m_rRoot->set(&Thing::m_rOwned, StrongRef<Thing>(made));
            made->m_int = 7;
            made->m_name = L"owned";
            made->m_rFriend = PassiveRef<Entity>(m_rRoot);
            made->m_numbers = {1, 2, 3};
            made->m_rOwned = Thing::make(*m_rAsset, L"below");
        });
    }

    Thing & owned() { return *m_rRoot->m_rOwned; }
    void removeOwned() {
        step([&] { m_rRoot->set(&Thing::m_rOwned, StrongRef<Thing>()); });
    }
    void expectAsItWas() {
        ASSERT_TRUE(m_rRoot->m_rOwned);
        EXPECT_EQ(owned().m_int, 7);
        EXPECT_EQ(owned().m_name, L"owned");
        EXPECT_EQ(owned().m_rFriend.get(), m_rRoot.get());
        EXPECT_EQ(owned().m_numbers, (std::vector<double>{1, 2, 3}));
        ASSERT_TRUE(owned().m_rOwned);
        EXPECT_EQ(owned().m_rOwned->m_name, L"below");
    }
    // By undo of the removal, by a second undo after a redo, and by redo of the making.
    void expectAsItWasAfterEachReturn() {
        removeOwned();
        EXPECT_TRUE(history().undo());
        expectAsItWas();
        EXPECT_TRUE(history().redo());
        EXPECT_TRUE(history().undo());
        expectAsItWas();
        EXPECT_TRUE(history().undo());
        EXPECT_FALSE(m_rRoot->m_rOwned);
        EXPECT_TRUE(history().redo());
        expectAsItWas();
    }
};

TEST_F(DeletionHooksTests, ReferencesAndListsThatAreLetGoComeBack) {
    Hearer::s_whenDeleted = [](Hearer & dying) {
        dying.m_rFriend.reset();
        dying.m_numbers.clear();
        dying.m_rOwned.reset();
    };
    expectAsItWasAfterEachReturn();
}

TEST_F(DeletionHooksTests, WhatIsChangedWithinBracketsComesBack) {
    Hearer::s_whenDeleted = [](Hearer & dying) {
        dying.set(&Thing::m_int, 8);
        dying.set(&Thing::m_name, std::wstring(L"dying"));
        dying.set(&Thing::m_rFriend, PassiveRef<Entity>());
        dying.set(&Thing::m_rOwned, StrongRef<Thing>());
    };
    expectAsItWasAfterEachReturn();
}

TEST_F(DeletionHooksTests, ANumberThatIsStoredWithoutABracketStays) {
    Hearer::s_whenDeleted = [](Hearer & dying) { dying.m_int = 8; };
    removeOwned();
    EXPECT_TRUE(history().undo());
    EXPECT_EQ(owned().m_int, 8);
}

TEST_F(DeletionHooksTests, ABracketThatIsOpenAlreadyCoversWhatTheHooksChange) {
    Hearer::s_whenDeleted = [](Hearer & dying) {
        dying.m_int = 8;
        dying.set(&Thing::m_name, std::wstring(L"dying"));
    };
    step([&] {
        EntityChange const change(&owned(), DataChange::TransactDirect, DataChange::ChangeValue,
                                  DataChange::TimingPreAndPost, nullptr, true);
        m_rRoot->set(&Thing::m_rOwned, StrongRef<Thing>());
    });
    EXPECT_TRUE(history().undo());
    expectAsItWas();
    EXPECT_TRUE(history().redo());
    EXPECT_FALSE(m_rRoot->m_rOwned);
    EXPECT_TRUE(history().undo());
    expectAsItWas();
}

// While one is dying, its hook takes back a transaction in which another died, whose hook changes
// it.
TEST_F(DeletionHooksTests, DeathsNestThroughATransactionThatIsTakenBack) {
    StrongRef<Hearer> outer = Hearer::make(*m_rAsset);
    StrongRef<Thing> const owner = Thing::make(*m_rAsset);
    owner->m_rOwned = outer;
    outer->m_int = 5;
    history().clear();
    Entity * const dyingFirst = outer.get();
    outer.reset();
    Hearer::s_whenDeleted = [&](Hearer & dying) {
        dying.set(&Thing::m_double, dying.m_double + 1);
        if (&dying != dyingFirst) return;
        Transaction transaction(*m_rAsset, L"taken back");
        m_rRoot->set(&Thing::m_rOwned, StrongRef<Thing>());
    };
    step([&] { owner->set(&Thing::m_rOwned, StrongRef<Thing>()); });
    Hearer::s_whenDeleted = nullptr;
    expectAsItWas();
    EXPECT_TRUE(history().undo());
    expectAsItWas();
    ASSERT_EQ(owner->m_rOwned.get(), dyingFirst);
    EXPECT_EQ(owner->m_rOwned->m_int, 5);
    EXPECT_EQ(owner->m_rOwned->m_double, 0.0);
}

// What is changed within a bracket that was open before such a transaction belongs to the step
// around it, and what it leads to is kept for the undo of that.
TEST_F(DeletionHooksTests, ADeathInATransactionThatIsTakenBackIsUndoneWithTheBracketAroundIt) {
    StrongRef<Hearer> child = Hearer::make(*m_rAsset);
    m_rRoot->m_children.push_back(child);
    history().clear();
    Hearer::s_whenDeleted = [&, dyingFirst = std::exchange(child, nullptr).get()](Hearer & dying) {
        if (&dying != dyingFirst) return;
        Transaction transaction(*m_rAsset, L"taken back");
        m_rRoot->set(&Thing::m_rOwned, StrongRef<Thing>());
    };
    step([&] { m_rRoot->remove(0); }); // whose bracket is open when the hook runs
    EXPECT_FALSE(m_rRoot->m_rOwned);
    EXPECT_TRUE(history().undo());
    expectAsItWas();
}

} // namespace
} // namespace Vn::Testing
