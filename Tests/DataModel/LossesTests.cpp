// What a host hears of changes outside of transactions.

#include <stdexcept>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "Platform/DataModel/ChangeHistory.h"
#include "Tests/DataModel/TestEntities.h"

namespace Vn::Testing {
namespace {

class LossesTests : public ::testing::Test {
protected:
    LossesTests() : m_rAsset(Asset::make(nullptr)), m_rRoot(Thing::make(*m_rAsset, L"root")) {
        m_rAsset->segment(SegmentType::DesignSegment)->addRoot(m_rRoot, "root");
        history().takeUnrecorded();
    }

    ChangeHistory & history() { return m_rAsset->history(); }
    Thing & root() { return *m_rRoot; }
    void step() {
        Transaction transaction(*m_rAsset, L"step");
        root().set(&Thing::m_int, root().m_int + 1);
        transaction.commit();
    }
    void changeOutside() { root().set(&Thing::m_double, root().m_double + 1); }
    // Writes down what is told from here on.
    void listen() {
        history().onUnrecorded(
            [this](UnrecordedChanges const & changes) { m_told.push_back(changes); });
    }

    StrongRef<Asset> m_rAsset;
    StrongRef<Thing> m_rRoot;
    std::vector<UnrecordedChanges> m_told;
};

TEST_F(LossesTests, AHostThatAsksIsTold) {
    step();
    step();
    ASSERT_TRUE(history().undo().ok());
    EXPECT_TRUE(history().takeUnrecorded().status().ok());
    changeOutside();
    changeOutside();
    UnrecordedChanges const changes = history().takeUnrecorded();
    EXPECT_EQ(changes.changes, 2U);
    EXPECT_EQ(changes.undoSteps, 1U);
    EXPECT_EQ(changes.redoSteps, 1U);
    EXPECT_EQ(changes.entity, root().id());
    EXPECT_EQ(changes.interfaceId, root().getInterfaceId());
    EXPECT_EQ(changes.status().code(), StatusFailed);
    EXPECT_EQ(changes.status().subject(),
              root().getInterfaceId()->string() + ' ' + std::to_string(root().id()));
    EXPECT_EQ(changes.status().cause(), "changed outside of a transaction (2 changes): lost 1 step "
                                        "to undo and 1 to redo");
    EXPECT_TRUE(history().takeUnrecorded().status().ok());
}

TEST_F(LossesTests, ChangesWithinTransactionsAndReplaysAreNone) {
    listen();
    step();
    {
        Transaction aborted(*m_rAsset, L"aborted");
        changeOutside();
    }
    ASSERT_TRUE(history().undo().ok());
    ASSERT_TRUE(history().redo().ok());
    EXPECT_TRUE(m_told.empty());
    EXPECT_EQ(history().takeUnrecorded().changes, 0U);
    EXPECT_EQ(history().undoSteps(), 1U);
}

TEST_F(LossesTests, WhatIsNotUndoableTakesNothing) {
    step();
    {
        EntityChange const change(&root(), DataChange::TransactDirect, DataChange::ChangeValue,
                                  DataChange::TimingPreAndPost, nullptr, false);
    }
    EXPECT_EQ(history().takeUnrecorded().changes, 0U);
    EXPECT_EQ(history().undoSteps(), 1U);
}

TEST_F(LossesTests, ALossIsToldOnce) {
    listen();
    changeOutside(); // the first, though there are no steps
    changeOutside();
    ASSERT_EQ(m_told.size(), 1U);
    EXPECT_EQ(m_told[0].undoSteps, 0U);
    step();
    EXPECT_EQ(m_told.size(), 1U);
    changeOutside();
    changeOutside();
    ASSERT_EQ(m_told.size(), 2U);
    EXPECT_EQ(m_told[1].changes, 1U);
    EXPECT_EQ(m_told[1].undoSteps, 1U);
    EXPECT_EQ(history().takeUnrecorded().changes, 4U);
}

TEST_F(LossesTests, ItIsToldOnceAllBracketsAreClosed) {
    StrongRef<Thing> const other = Thing::make(*m_rAsset, L"other");
    step();
    bool isOpen = false;
    history().onUnrecorded([&](UnrecordedChanges const & changes) {
        m_told.push_back(changes);
        isOpen = isOpen || root().outerChange() || other->outerChange();
    });
    {
        EntityChange const outer(&root(), DataChange::TransactDirect, DataChange::ChangeValue,
                                 DataChange::TimingPreAndPost, nullptr, true);
        other->set(&Thing::m_int, 1);
        EXPECT_TRUE(m_told.empty());
    }
    ASSERT_EQ(m_told.size(), 1U);
    EXPECT_EQ(m_told[0].changes, 2U);
    EXPECT_EQ(m_told[0].entity, other->id());
    EXPECT_FALSE(isOpen);
}

TEST_F(LossesTests, EntitiesAndRootsCountToo) {
    step();
    listen();
    StrongRef<Thing> const made = Thing::make(*m_rAsset, L"made");
    ASSERT_EQ(m_told.size(), 1U);
    EXPECT_EQ(m_told[0].entity, made->id());
    EXPECT_EQ(m_told[0].undoSteps, 1U);
    step();
    m_rAsset->segment(SegmentType::DesignSegment)->addRoot(made, "made");
    ASSERT_EQ(m_told.size(), 2U);
    EXPECT_EQ(m_told[1].entity, 0U);
    EXPECT_EQ(m_told[1].status().subject(), "roots");
}

TEST_F(LossesTests, TheFunctionMayChangeTheDocument) {
    step();
    int calls = 0;
    history().onUnrecorded([&](UnrecordedChanges const &) {
        ++calls;
        step();
        changeOutside(); // counted, and not told
        step();
    });
    changeOutside();
    EXPECT_EQ(calls, 1);
    EXPECT_EQ(history().undoSteps(), 1U);
    UnrecordedChanges const changes = history().takeUnrecorded();
    EXPECT_EQ(changes.changes, 2U);
    EXPECT_EQ(changes.undoSteps, 2U);
    changeOutside();
    EXPECT_EQ(calls, 2);
}

TEST_F(LossesTests, TheFunctionMayEndOrReplaceItself) {
    int first = 0;
    int second = 0;
    history().onUnrecorded([&](UnrecordedChanges const &) {
        ++first;
        history().onUnrecorded([&](UnrecordedChanges const &) {
            ++second;
            history().onUnrecorded({});
        });
    });
    for (int i = 0; i < 3; ++i) {
        step();
        changeOutside();
    }
    EXPECT_EQ(first, 1);
    EXPECT_EQ(second, 1);
}

TEST_F(LossesTests, WhatTheFunctionThrowsGoesNoFurther) {
    step();
    int calls = 0;
    history().onUnrecorded([&](UnrecordedChanges const &) {
        ++calls;
        throw std::runtime_error("no");
    });
    EXPECT_NO_THROW(changeOutside());
    EXPECT_EQ(root().m_double, 1.0);
    step();
    EXPECT_NO_THROW(changeOutside());
    EXPECT_EQ(calls, 2);
}

TEST_F(LossesTests, TheFunctionMayLetGoOfTheDocument) {
    PassiveRef<Asset> const document(m_rAsset);
    step();
    history().onUnrecorded([&](UnrecordedChanges const &) { m_rAsset.reset(); });
    changeOutside();
    EXPECT_FALSE(m_rAsset);
    EXPECT_FALSE(document);
    EXPECT_EQ(root().m_double, 1.0); // held, without a document
}

} // namespace
} // namespace Vn::Testing
