#include "Platform/Graphics/NodeObservers.h"

#include <functional>
#include <stdexcept>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

namespace Vrx::Graphics {

namespace {

using Vn::StrongRef;
using Told = std::vector<std::pair<ARenderNode *, int>>;

// Writes down what it is told, and does what a test wants meanwhile.
class Recorder : public INodeObserver {
public:
    void nodesChanged(std::span<ChangedNode const> nodes) override {
        Told told;
        for (ChangedNode const & change : nodes) told.emplace_back(change.node(), change.changes());
        m_told.push_back(std::move(told));
        if (m_then) m_then();
    }

    std::vector<Told> m_told;
    std::function<void()> m_then;
};

// A chain of three groups, the top one watched.
class NodeObserversTests : public testing::Test {
protected:
    NodeObserversTests() {
        m_rTop->observers(m_rObservers);
        m_rTop->addChild(m_rMiddle.get());
        m_rMiddle->addChild(m_rLeaf.get());
        m_rObservers->subscribe(&m_recorder);
        m_changes.reserve(100);
    }

    StrongRef<GroupNode> const m_rTop = GroupNode::make();
    StrongRef<GroupNode> const m_rMiddle = GroupNode::make();
    StrongRef<GroupNode> const m_rLeaf = GroupNode::make();
    StrongRef<NodeObservers> const m_rObservers = NodeObservers::make();
    Recorder m_recorder;
    NodeChanges m_changes;
};

TEST_F(NodeObserversTests, EachNodeIsToldOnceWithAllThatChanged) {
    m_changes.note(m_rLeaf.get(), ChangeEffect);
    m_changes.note(m_rTop.get(), ChangeChildren);
    m_changes.note(m_rLeaf.get(), ChangePlace);
    m_changes.note(nullptr, ChangeAll);
    m_changes.tell();
    EXPECT_EQ(m_recorder.m_told, (std::vector<Told>{{{m_rLeaf.get(), ChangeEffect | ChangePlace},
                                                     {m_rTop.get(), ChangeChildren}}}));
    m_changes.tell();
    EXPECT_EQ(m_recorder.m_told.size(), 1U); // nothing new
}

TEST_F(NodeObserversTests, ANodeIsToldToTheNearestWhoWatch) {
    Recorder nearer;
    StrongRef<NodeObservers> const others = NodeObservers::make();
    others->subscribe(&nearer);
    m_rMiddle->observers(others);
    StrongRef<GroupNode> const nowhere = GroupNode::make();
    m_changes.note(nowhere.get(), ChangeAll);
    m_changes.note(m_rLeaf.get(), ChangeEffect);
    m_changes.note(m_rTop.get(), ChangeEffect);
    m_changes.note(m_rMiddle.get(), ChangeVisibility);
    m_changes.tell();
    EXPECT_EQ(nearer.m_told, (std::vector<Told>{{{m_rLeaf.get(), ChangeEffect},
                                                 {m_rMiddle.get(), ChangeVisibility}}}));
    EXPECT_EQ(m_recorder.m_told, (std::vector<Told>{{{m_rTop.get(), ChangeEffect}}}));
}

TEST_F(NodeObserversTests, NotesWithoutRoomAndNotesThatNobodyTellsLeaveNoTrace) {
    {
        NodeChanges forgotten;
        forgotten.reserve(1);
        forgotten.note(m_rLeaf.get(), ChangeEffect);
        forgotten.note(m_rMiddle.get(), ChangeEffect);
    }
    m_changes.note(m_rMiddle.get(), ChangePlace);
    m_changes.note(m_rLeaf.get(), ChangePlace);
    m_changes.tell();
    EXPECT_EQ(m_recorder.m_told,
              (std::vector<Told>{{{m_rMiddle.get(), ChangePlace}, {m_rLeaf.get(), ChangePlace}}}));
}

TEST_F(NodeObserversTests, ObserversComeAndGoWhileTheyAreTold) {
    Recorder second;
    Recorder newcomer;
    m_rObservers->subscribe(&second);
    m_rObservers->subscribe(&second);
    m_rObservers->subscribe(nullptr);
    EXPECT_EQ(m_rObservers->observers(), 2U);
    m_recorder.m_then = [&] {
        m_rObservers->unsubscribe(&m_recorder);
        m_rObservers->unsubscribe(&second);
        m_rObservers->subscribe(&newcomer);
    };
    for (int i = 0; i < 2; ++i) {
        m_changes.note(m_rTop.get(), ChangeEffect);
        m_changes.tell();
        m_changes.reserve(10);
    }
    EXPECT_EQ(m_recorder.m_told.size(), 1U);
    EXPECT_EQ(second.m_told.size(), 0U);
    EXPECT_EQ(newcomer.m_told.size(), 1U);
    EXPECT_EQ(m_rObservers->observers(), 1U);
}

TEST_F(NodeObserversTests, WhatAnObserverThrowsDoesNotKeepOthersFromHearing) {
    Recorder second;
    m_rObservers->subscribe(&second);
    m_recorder.m_then = [] { throw std::runtime_error("no"); };
    m_changes.note(m_rTop.get(), ChangeEffect);
    EXPECT_NO_THROW(m_changes.tell());
    EXPECT_EQ(second.m_told.size(), 1U);
}

TEST_F(NodeObserversTests, AnObserverMayTakeTheGraphAndItsObserversApart) {
    StrongRef<GroupNode> top = GroupNode::make();
    StrongRef<NodeObservers> observers = NodeObservers::make();
    Recorder first;
    Recorder second;
    top->observers(observers);
    observers->subscribe(&first);
    observers->subscribe(&second);
    first.m_then = [&] {
        top.reset();
        observers.reset();
    };
    m_changes.note(top.get(), ChangeEffect);
    m_changes.tell();
    EXPECT_EQ(second.m_told.size(), 1U);
}

TEST(NodeObserversListeningTests, SomebodyListensAsLongAsOneIsSubscribed) {
    bool const before = NodeChanges::anybodyListens();
    Recorder recorder;
    {
        StrongRef<NodeObservers> const observers = NodeObservers::make();
        observers->subscribe(&recorder);
        EXPECT_TRUE(NodeChanges::anybodyListens());
        observers->unsubscribe(&recorder);
        observers->unsubscribe(&recorder);
        EXPECT_EQ(NodeChanges::anybodyListens(), before);
        observers->subscribe(&recorder);
    }
    EXPECT_EQ(NodeChanges::anybodyListens(), before);
}

// Were each node to climb to the top, this would take hours.
TEST_F(NodeObserversTests, AMillionChangesInAChainOfAMillionAreTold) {
    constexpr std::size_t c_count = 1'000'000;
    std::vector<GroupNode *> chain{m_rLeaf.get()};
    while (chain.size() < c_count) {
        StrongRef<GroupNode> const next = GroupNode::make();
        chain.back()->addChild(next.get());
        chain.push_back(next.get());
    }
    m_changes.reserve(c_count);
    for (std::size_t i = 0; i < c_count; ++i) // each other from below, and the rest from above
        m_changes.note(chain[i < c_count / 2 ? c_count - 1 - 2 * i : 2 * (i - c_count / 2)],
                       ChangeEffect);
    m_changes.tell();
    ASSERT_EQ(m_recorder.m_told.size(), 1U);
    EXPECT_EQ(m_recorder.m_told[0].size(), c_count);
    EXPECT_EQ(m_recorder.m_told[0][0].first, chain.back());
}

} // namespace

} // namespace Vrx::Graphics
