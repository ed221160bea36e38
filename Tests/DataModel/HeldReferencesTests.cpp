// References that callers keep beyond a step, and let go of at any time.

#include <cstdlib>
#include <iostream>
#include <random>

#include <gtest/gtest.h>

#include "Platform/DataModel/DocumentFile.h"
#include "Tests/DataModel/DocumentWalk.h"
#include "Tests/Support/TemporaryDirectory.h"

namespace Vn::Testing {
namespace {

// A document whose root, `top`, has the children `l` and `x`.
class HeldReferencesTests : public ::testing::Test {
protected:
    HeldReferencesTests() {
        m_rAsset = Asset::make(nullptr);
        m_rTop = Thing::make(asset(), L"top");
        m_rAsset->segment(SegmentType::DesignSegment)->addRoot(m_rTop, "top");
        m_rL = Thing::make(asset(), L"l");
        top().add(m_rL);
        top().add(Thing::make(asset(), L"x"));
        m_id = m_rL->id();
    }

    Asset & asset() { return *m_rAsset; }
    ChangeHistory & history() { return m_rAsset->history(); }
    Thing & top() { return *m_rTop; }

    template <class Work>
    void step(Work && work) {
        Transaction transaction(asset(), L"step");
        work();
        EXPECT_TRUE(transaction.commit());
    }
    void removeL() {
        step([&] { top().remove(0); });
    }
    void renameX(std::wstring const & name) {
        step([&] { top().m_children.back()->set(&Thing::m_name, name); });
    }
    void undo() { EXPECT_TRUE(history().undo()); }
    void redo() { EXPECT_TRUE(history().redo()); }
    void letGo() { m_rL.reset(); }

    void expectBothChildren() {
        ASSERT_EQ(top().m_children.size(), 2U);
        for (auto const & child : top().m_children) EXPECT_TRUE(child->isAlive());
        EXPECT_EQ(top().m_children[0]->id(), m_id);
        EXPECT_EQ(top().m_children[0]->m_name, L"l");
        EXPECT_EQ(top().m_children[1]->m_name, L"x");
        EXPECT_EQ(asset().entity(m_id).get(), top().m_children[0].get());
    }

    StrongRef<Asset> m_rAsset;
    StrongRef<Thing> m_rTop;
    StrongRef<Thing> m_rL;
    unsigned long long m_id = 0;
};

TEST_F(HeldReferencesTests, ARemovedEntityIsLetGoAfterAnotherStepAndBothAreUndone) {
    removeL();
    renameX(L"y");
    letGo();
    EXPECT_FALSE(asset().entity(m_id));
    undo();
    EXPECT_FALSE(asset().entity(m_id));
    undo();
    expectBothChildren();
    redo();
    EXPECT_FALSE(asset().entity(m_id));
    redo();
    undo();
    undo();
    expectBothChildren();
}

TEST_F(HeldReferencesTests, ARemovedEntityIsLetGoBetweenUndoneAndNewSteps) {
    removeL();
    renameX(L"y");
    letGo();
    undo();
    renameX(L"z");
    undo();
    undo();
    expectBothChildren();
}

TEST_F(HeldReferencesTests, LettingGoOutsideATransactionTakesNoRedoStepAway) {
    removeL();
    renameX(L"y");
    undo();
    letGo();
    EXPECT_EQ(history().redoSteps(), 1U);
    redo();
    EXPECT_EQ(top().m_children[0]->m_name, L"y");
    undo();
    undo();
    expectBothChildren();
}

TEST_F(HeldReferencesTests, WhatALetGoEntityOwnedComesBackWithIt) {
    step([&] { m_rL->add(Thing::make(asset(), L"below")); });
    StrongRef<Thing> below = m_rL->m_children[0];
    removeL();
    letGo();
    EXPECT_TRUE(below->isAlive());
    renameX(L"y");
    below.reset();
    EXPECT_EQ(asset().entities(), 2U);
    undo();
    undo();
    expectBothChildren();
    ASSERT_EQ(top().m_children[0]->m_children.size(), 1U);
    EXPECT_TRUE(top().m_children[0]->m_children[0]->isAlive());
    EXPECT_EQ(top().m_children[0]->m_children[0]->m_name, L"below");
}

TEST_F(HeldReferencesTests, AChangeOfAnEntityThatNothingOwnsIsUndoneAfterItIsLetGo) {
    removeL();
    step([&] { m_rL->set(&Thing::m_int, 7); }); // by an exchange of numbers
    step([&] { m_rL->set(&Thing::m_name, std::wstring(L"other")); });
    letGo();
    EXPECT_FALSE(asset().entity(m_id));
    undo();
    undo();
    EXPECT_FALSE(asset().entity(m_id));
    undo();
    expectBothChildren();
    EXPECT_EQ(top().m_children[0]->m_int, 0);
    redo();
    redo();
    redo();
    EXPECT_FALSE(asset().entity(m_id));
}

TEST_F(HeldReferencesTests, AnObserverKeepsAnEntityWhoseChangeItHeardOf) {
    struct Keeper : IEntityObserver {
        void preChange(Entity * entity, DataChange::ETransact, DataChange::EChangeType,
                       DataChange *) override {
            auto const & children = query<Thing>(entity)->m_children;
            if (!children.empty()) m_rKept = StrongRef<Entity>(children.front());
        }
        void postChange(Entity *, DataChange::ETransact, DataChange::EChangeType,
                        DataChange *) override {}
        void preDeletion(Entity *, DataChange::ETransact) override {}
        StrongRef<Entity> m_rKept;
    } keeper;
    top().subscribe(&keeper);
    letGo();
    removeL();
    EXPECT_TRUE(asset().entity(m_id)); // the observer keeps it
    top().unsubscribe(&keeper);
    renameX(L"y");
    keeper.m_rKept.reset();
    EXPECT_FALSE(asset().entity(m_id));
    undo();
    undo();
    expectBothChildren();
}

TEST_F(HeldReferencesTests, AnEntityWhoseMakingIsUndoneIsNoRoot) {
    StrongRef<Thing> made;
    step([&] {
        made = Thing::make(asset(), L"made");
        top().add(made);
    });
    undo();
    EXPECT_FALSE(made->isAlive());
    Segment & design = *asset().segment(SegmentType::DesignSegment);
    design.addRoot(made, "made");
    EXPECT_FALSE(design.rootEntity("made"));
    redo();
    EXPECT_TRUE(made->isAlive());
    design.addRoot(made, "made");
    EXPECT_EQ(design.rootEntity("made").get(), made.get());
}

// A class that takes whatever it is given may hold it; the object stays valid, and a redo brings it
// back.
TEST_F(HeldReferencesTests, AnEntityWhoseMakingIsUndoneStaysValidWhereAClassOwnsIt) {
    StrongRef<Thing> made;
    step([&] {
        made = Thing::make(asset(), L"made");
        top().add(made);
    });
    undo();
    top().m_rOwned = made; // without a bracket: the history doesn't hear of it
    made.reset();
    EXPECT_FALSE(top().m_rOwned->isAlive());
    redo();
    EXPECT_TRUE(top().m_rOwned->isAlive());
    EXPECT_EQ(top().m_children.back().get(), top().m_rOwned.get());
    undo();
    EXPECT_FALSE(top().m_rOwned->isAlive());
    removeL(); // which gives the redo up
    EXPECT_EQ(top().m_rOwned->m_name, L"made");
    undo();
    top().m_rOwned.reset();
    expectBothChildren();
}

TEST_F(HeldReferencesTests, ADeadEntityThatIsListedWithinATransactionIsSafeToUndo) {
    StrongRef<Thing> made;
    step([&] {
        made = Thing::make(asset(), L"made");
        top().add(made);
    });
    undo();
    step([&] { top().add(made); }); // which gives its making up
    made.reset();
    undo();
    expectBothChildren();
    redo();
    EXPECT_EQ(top().m_children.back()->m_name, L"made");
    undo();
}

TEST_F(HeldReferencesTests, CommitSaysWhetherAStepCameOfIt) {
    Transaction outer(asset(), L"outer");
    {
        Transaction inner(asset(), L"inner");
        top().set(&Thing::m_int, 1);
        EXPECT_FALSE(inner.commit()); // it is a part of the outer one
    }
    EXPECT_TRUE(outer.commit());
    Transaction nothing(asset(), L"nothing");
    EXPECT_FALSE(nothing.commit());
    EXPECT_FALSE(nothing.commit());
}

TEST_F(HeldReferencesTests, TheHistorySaysWhichStateWasMarked) {
    history().clear();
    history().markClean();
    EXPECT_EQ(history().cleanSteps(), 0U);
    removeL();
    renameX(L"y");
    EXPECT_EQ(history().cleanSteps(), 0U);
    history().markClean();
    EXPECT_EQ(history().cleanSteps(), 2U);
    undo();
    undo();
    EXPECT_EQ(history().cleanSteps(), 2U);
    renameX(L"z");
    EXPECT_EQ(history().cleanSteps(), std::nullopt);
}

// The walks take as long as they are many: VN_TEST_SEEDS sets how many there are, VN_TEST_SEED the
// first.
TEST(DocumentWalkTests, TheLawsHoldWhateverIsHeld) {
    char const * const many = std::getenv("VN_TEST_SEEDS");
    char const * const given = std::getenv("VN_TEST_SEED");
    unsigned const seeds = many ? static_cast<unsigned>(std::strtoul(many, nullptr, 10)) : 20;
    unsigned const first =
        given ? static_cast<unsigned>(std::strtoul(given, nullptr, 10)) : std::random_device()();
    std::cout << "seeds " << first << " to " << first + seeds - 1 << '\n';
    TemporaryFile const file;
    for (unsigned seed = first; seed != first + seeds; ++seed) {
        std::mt19937 random(seed);
        DocumentWalk walk([&](unsigned limit) { return static_cast<unsigned>(random() % limit); },
                          file.path());
        std::string way; // what was done
        for (int i = 0; i < 300; ++i) {
            bool const good = walk.step();
            way += std::to_string(i) + ": " + walk.did() + '\n';
            ASSERT_TRUE(good) << "seed " << seed << "\n" << way << "broken: " << walk.wrong();
        }
    }
}

} // namespace
} // namespace Vn::Testing
