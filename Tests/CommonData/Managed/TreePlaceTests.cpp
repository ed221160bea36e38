#include "Server/CommonData/Managed/TreePlace.h"

#include <stdexcept>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "Platform/Base/Text.h"
#include "Platform/DataModel/Segment.h"
#include "Server/CommonData/Managed/ManagedEntityUtils.h"
#include "Tests/CommonData/Managed/ManagedTesting.h"

namespace Vn::Managed::Testing {

namespace {

using ManagedEntityUtils::objectPath;

// A root "Things" with three leaves and, at its end, a group with two.
class TreePlaceTests : public ::testing::Test {
protected:
    TreePlaceTests()
        : m_rRoot(Group::make(m_document.segment())), m_leaves(makeLeaves(m_rRoot, 3)),
          m_rInner(Group::make(PassiveRef<Entity>(m_rRoot))), m_below(makeLeaves(m_rInner, 2)) {
        m_document.segment()->addRoot(m_rRoot, "Things");
        m_document.asset().history().clear();
    }

    Segment & segment() const { return *m_document.segment(); }
    ChangeHistory & history() const { return m_document.asset().history(); }
    PathEnd follow(std::wstring const & text) const {
        ObjectPath path;
        EXPECT_TRUE(ObjectPath::fromString(text, &segment(), path)) << Text::toUtf8(text);
        return followPath(segment(), path);
    }
    Status move(StrongRef<Entity> const & moved, EMove where, StrongRef<Entity> const & target) {
        return moveEntity(moved, where, target, L"move");
    }
    EMoveFault fault(StrongRef<Entity> const & moved, EMove where,
                     StrongRef<Entity> const & target) const {
        return whyNotMove(placeOf(moved), where, placeOf(target));
    }
    // A move that is refused tells why and changes nothing.
    void expectRefused(StrongRef<Entity> const & moved, EMove where,
                       StrongRef<Entity> const & target, EMoveFault wanted) {
        EXPECT_EQ(fault(moved, where, target), wanted);
        std::size_t const steps = history().undoSteps();
        Status const status = move(moved, where, target);
        EXPECT_EQ(status.code(), StatusInvalidArgument);
        EXPECT_EQ(status.operation(), "move the entity");
        EXPECT_NE(status.cause(), "");
        EXPECT_EQ(history().undoSteps(), steps);
    }

    Document m_document;
    StrongRef<Group> m_rRoot;
    std::vector<StrongRef<Leaf>> m_leaves;
    StrongRef<Group> m_rInner;
    std::vector<StrongRef<Leaf>> m_below;
};

TEST_F(TreePlaceTests, AnEntityStandsInTheGroupThatIsItsParent) {
    EXPECT_EQ(placeOf(m_below[0]).entity, m_below[0]);
    EXPECT_EQ(placeOf(m_below[0]).group, m_rInner);
    EXPECT_EQ(placeOf(m_rRoot).group, nullptr);
    EXPECT_EQ(placeOf(nullptr).entity, nullptr);
    StrongRef<Plain> const plain = Plain::make(m_document.segment());
    EXPECT_EQ(placeOf(plain).group, nullptr);
    // A root stands in no list, even if it has a parent.
    segment().addRoot(m_rInner, "Inner");
    EXPECT_EQ(placeOf(m_rInner).group, nullptr);
}

TEST_F(TreePlaceTests, WithinIsWhatStandsBelowAndTheEntityItself) {
    EXPECT_TRUE(isWithin(*m_below[1], *m_rRoot));
    EXPECT_TRUE(isWithin(*m_below[1], *m_rInner));
    EXPECT_TRUE(isWithin(*m_rInner, *m_rInner));
    EXPECT_FALSE(isWithin(*m_rRoot, *m_rInner));
    EXPECT_FALSE(isWithin(*m_leaves[0], *m_rInner));
}

TEST_F(TreePlaceTests, ParentsInACircleAreWithinEachOtherAndNothingElse) {
    StrongRef<Leaf> const one = Leaf::make(m_document.segment());
    StrongRef<Leaf> const other = Leaf::make(PassiveRef<Entity>(one));
    one->parent(other);
    EXPECT_TRUE(isWithin(*one, *other));
    EXPECT_TRUE(isWithin(*other, *one));
    EXPECT_FALSE(isWithin(*one, *m_rRoot));
    one->nullParent();
}

TEST_F(TreePlaceTests, ASiblingIsNamedByItsNumber) {
    EXPECT_EQ(siblingIndex(Onk(L"CmnData", 2)), 2);
    EXPECT_EQ(siblingIndex(Onk(L"2")), 2);
    EXPECT_EQ(siblingIndex(Onk(L"CmnData")), -1);
    EXPECT_EQ(siblingIndex(Onk(L"2", 3)), -1);
    EXPECT_EQ(siblingIndex(Onk(L"Other", 2)), -1);
    EXPECT_EQ(siblingIndex(Onk(L"99999999999")), -1);
}

TEST_F(TreePlaceTests, APathLeadsThroughTheListsOfGroups) {
    PathEnd const root = follow(L"Things");
    ASSERT_TRUE(root);
    EXPECT_EQ(root.place.entity, m_rRoot);
    EXPECT_EQ(root.place.group, nullptr);
    for (wchar_t const * const text : {L"Things/CmnData[3]/CmnData[1]", L"Things/3/1"}) {
        PathEnd const end = follow(text);
        ASSERT_TRUE(end);
        EXPECT_EQ(end.place.entity, m_below[1]);
        EXPECT_EQ(end.place.group, m_rInner);
        EXPECT_EQ(end.onks, 3U);
        EXPECT_TRUE(end.status(objectPath(*m_below[1])).ok());
    }
}

TEST_F(TreePlaceTests, APathThatLeadsNowhereTellsHowFarItLeads) {
    struct {
        wchar_t const * path;
        EPathFault fault;
        std::size_t onks;
        Entity * last;
    } const rows[] = {
        {L"Other/CmnData[0]", EPathFault::NoRoot, 0, nullptr},
        {L"Things[1]", EPathFault::NoRoot, 0, nullptr},
        {L"Things/0/1", EPathFault::NotAGroup, 2, m_leaves[0].get()},
        {L"Things/3/2", EPathFault::NoChild, 2, m_rInner.get()},
        {L"Things/Leaf[0]", EPathFault::NoChild, 1, m_rRoot.get()},
        {L"Things/4", EPathFault::EmptyPlace, 1, m_rRoot.get()},
    };
    m_rRoot->insertChild(nullptr, 4);
    for (auto const & row : rows) {
        PathEnd const end = follow(row.path);
        EXPECT_FALSE(end) << Text::toUtf8(row.path);
        EXPECT_EQ(end.fault, row.fault) << Text::toUtf8(row.path);
        EXPECT_EQ(end.onks, row.onks) << Text::toUtf8(row.path);
        EXPECT_EQ(end.place.entity.get(), row.last) << Text::toUtf8(row.path);
        ObjectPath path;
        ASSERT_TRUE(ObjectPath::fromString(row.path, &segment(), path));
        Status const status = end.status(path);
        EXPECT_EQ(status.code(), StatusNotFound);
        EXPECT_EQ(status.subject(), Text::toUtf8(row.path));
        EXPECT_NE(status.cause(), "");
    }
    EXPECT_EQ(followPath(segment(), ObjectPath()).fault, EPathFault::NoRoot);
}

TEST_F(TreePlaceTests, AMoveAcrossGroupsIsOneStep) {
    ASSERT_TRUE(move(m_leaves[0], EMove::Before, m_below[1]).ok());
    Children const moved{m_below[0], m_leaves[0], m_below[1]};
    EXPECT_EQ(m_rInner->childrenVector(), moved);
    EXPECT_EQ(m_leaves[0]->parent(), m_rInner);
    EXPECT_EQ(m_rRoot->children(), 3U);
    ASSERT_EQ(history().undoSteps(), 1U);
    EXPECT_EQ(history().undoNames().front(), L"move");
    m_document.undo();
    EXPECT_EQ(m_rRoot->child(0), m_leaves[0]);
    EXPECT_EQ(m_leaves[0]->parent(), m_rRoot);
    EXPECT_EQ(m_rInner->childrenVector(), pick(m_below, {0, 1}));
    m_document.redo();
    EXPECT_EQ(m_rInner->childrenVector(), moved);
}

TEST_F(TreePlaceTests, AMoveAfterAndIntoGoesWhereItSays) {
    ASSERT_TRUE(move(m_leaves[2], EMove::After, m_below[0]).ok());
    EXPECT_EQ(m_rInner->childrenVector(), (Children{m_below[0], m_leaves[2], m_below[1]}));
    ASSERT_TRUE(move(m_below[0], EMove::Into, m_rRoot).ok());
    EXPECT_EQ(m_rRoot->childrenVector(),
              (Children{m_leaves[0], m_leaves[1], m_rInner, m_below[0]}));
    // Into its own group it goes to the end.
    ASSERT_TRUE(move(m_leaves[0], EMove::Into, m_rRoot).ok());
    EXPECT_EQ(m_rRoot->childrenVector(),
              (Children{m_leaves[1], m_rInner, m_below[0], m_leaves[0]}));
}

TEST_F(TreePlaceTests, AMoveToWhereTheEntityStandsLeavesNoStep) {
    EXPECT_TRUE(move(m_leaves[0], EMove::Before, m_leaves[1]).ok());
    EXPECT_TRUE(move(m_leaves[1], EMove::After, m_leaves[0]).ok());
    EXPECT_TRUE(move(m_rInner, EMove::Into, m_rRoot).ok());
    EXPECT_EQ(history().undoSteps(), 0U);
}

TEST_F(TreePlaceTests, AMoveWithinATransactionIsAPartOfIt) {
    m_document.step([&] {
        EXPECT_TRUE(move(m_leaves[0], EMove::Into, m_rInner).ok());
        EXPECT_TRUE(move(m_leaves[1], EMove::Into, m_rInner).ok());
    });
    EXPECT_EQ(history().undoSteps(), 1U);
    m_document.undo();
    EXPECT_EQ(m_rRoot->children(), 4U);
}

TEST_F(TreePlaceTests, ObserversAreToldOfTheRemovalTheParentsAndTheAddition) {
    Recorder root(*m_rRoot);
    Recorder inner(*m_rInner);
    Recorder leaf(*m_leaves[0]);
    ASSERT_TRUE(move(m_leaves[0], EMove::Into, m_rInner).ok());
    auto const types = [](Recorder const & recorder) {
        std::vector<DataChange::EChangeType> told;
        for (Told const & one : recorder.m_told)
            if (one.what == Told::Post) told.push_back(one.type);
        return told;
    };
    using Types = std::vector<DataChange::EChangeType>;
    EXPECT_EQ(types(root), Types{DataChange::ChangeChildren});
    EXPECT_EQ(types(leaf), (Types{DataChange::ChangeStructural, DataChange::ChangeStructural}));
    EXPECT_EQ(types(inner), Types{DataChange::ChangeChildren});
    m_rRoot->unsubscribe(&root);
    m_rInner->unsubscribe(&inner);
    m_leaves[0]->unsubscribe(&leaf);
}

TEST_F(TreePlaceTests, AMoveOfWhatAHookThrowsAtIsTakenBack) {
    Recorder recorder(*m_rInner);
    recorder.m_onPost = [](DataChange *) { throw std::runtime_error("no"); };
    EXPECT_THROW(static_cast<void>(move(m_leaves[0], EMove::Into, m_rInner)), std::runtime_error);
    recorder.m_onPost = nullptr;
    m_rInner->unsubscribe(&recorder);
    EXPECT_EQ(m_rRoot->child(0), m_leaves[0]);
    EXPECT_EQ(m_leaves[0]->parent(), m_rRoot);
    EXPECT_EQ(m_rInner->childrenVector(), pick(m_below, {0, 1}));
    EXPECT_EQ(history().undoSteps(), 0U);
}

TEST_F(TreePlaceTests, WhatCannotBeMovedIsRefused) {
    expectRefused(m_leaves[0], EMove::Before, m_leaves[0], EMoveFault::Same);
    expectRefused(m_rInner, EMove::Into, m_rInner, EMoveFault::Same);
    expectRefused(m_rRoot, EMove::Into, m_rInner, EMoveFault::Root);
    expectRefused(m_leaves[0], EMove::Into, m_leaves[1], EMoveFault::NotAGroup);
    expectRefused(m_leaves[0], EMove::After, m_rRoot, EMoveFault::NoSiblings);
    expectRefused(m_rInner, EMove::Before, m_below[0], EMoveFault::Within);
    StrongRef<Group> const inmost = Group::make(PassiveRef<Entity>(m_rInner));
    expectRefused(m_rInner, EMove::Into, inmost, EMoveFault::Within);
    expectRefused(nullptr, EMove::Into, m_rInner, EMoveFault::Dead);
    expectRefused(m_leaves[0], EMove::Into, nullptr, EMoveFault::Dead);
}

TEST_F(TreePlaceTests, ADeadEntityIsNeitherMovedNorATarget) {
    StrongRef<Group> dead;
    m_document.step([&] { dead = Group::make(PassiveRef<Entity>(m_rRoot)); });
    m_document.undo();
    ASSERT_FALSE(dead->isAlive());
    expectRefused(m_leaves[0], EMove::Into, dead, EMoveFault::Dead);
    expectRefused(dead, EMove::Into, m_rInner, EMoveFault::Dead);
}

TEST_F(TreePlaceTests, AnotherDocumentIsRefused) {
    Document const other;
    StrongRef<Group> const group = Group::make(other.segment());
    expectRefused(m_leaves[0], EMove::Into, group, EMoveFault::OtherDocument);
}

TEST_F(TreePlaceTests, AnEntityIsMovedOnlyFromTheGroupThatIsItsParentAndListsIt) {
    m_rInner->addChild(m_leaves[0]); // whose parent stays the root
    TreePlace const foreign{m_leaves[0], m_rInner};
    EXPECT_EQ(whyNotMove(foreign, EMove::Into, placeOf(m_rRoot)), EMoveFault::Foreign);
    EXPECT_EQ(whyNotMove(placeOf(m_leaves[1]), EMove::After, foreign), EMoveFault::TargetForeign);
    EXPECT_EQ(whyNotMove(placeOf(m_leaves[0]), EMove::Into, placeOf(m_rInner)), EMoveFault::None);
    m_rRoot->removeChild(m_leaves[0]);
    expectRefused(m_leaves[0], EMove::Into, m_rInner, EMoveFault::Foreign);
    expectRefused(m_leaves[1], EMove::After, m_leaves[0], EMoveFault::TargetForeign);
}

} // namespace

} // namespace Vn::Managed::Testing
