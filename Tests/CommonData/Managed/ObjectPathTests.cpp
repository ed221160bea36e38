#include "Platform/DataModel/ObjectPath.h"

#include <limits>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "Platform/DataModel/LogicalSelection.h"
#include "Server/CommonData/Managed/ManagedEntityUtils.h"
#include "Tests/CommonData/Managed/ManagedTesting.h"

namespace Vn::Managed::Testing {

namespace {

using ManagedEntityUtils::objectPath;

TEST(OnkTests, ARepetitionIsANumberOrAText) {
    Onk onk;
    EXPECT_EQ(onk.strName(), L"");
    EXPECT_EQ(onk.repAsInt(), -1);
    onk.strName(L"CmnData");
    onk.rep(12);
    EXPECT_EQ(onk.rep(), L"12");
    EXPECT_EQ(onk.repAsInt(), 12);
    onk.rep(std::wstring(L"left"));
    EXPECT_EQ(onk.repAsInt(), -1);
    onk.rep(-5);
    EXPECT_EQ(onk.repAsInt(), -1);
    onk.rep(std::numeric_limits<int>::max());
    EXPECT_EQ(onk.repAsInt(), std::numeric_limits<int>::max());
    onk.rep(std::wstring(L"2147483648"));
    EXPECT_EQ(onk.repAsInt(), -1);
    onk.rep(std::wstring(L"1 "));
    EXPECT_EQ(onk.repAsInt(), -1);
}

TEST(OnkTests, TextIsTheWordWithTheRepetitionInBrackets) {
    EXPECT_EQ(Onk(L"CmnData", 3).toString(), L"CmnData[3]");
    EXPECT_EQ(Onk(L"NamedViews").toString(), L"NamedViews");
    EXPECT_EQ(Onk(L"a/b[c]\\", 1).toString(), L"a\\/b\\[c\\]\\\\[1]");
}

TEST(OnkTests, TextReadsBack) {
    Onk text(L"a/b[c]\\");
    text.rep(std::wstring(L"x]y"));
    for (Onk const & onk :
         {Onk(L"CmnData", 3), Onk(L"NamedViews"), Onk(L"\u00e4 \u00df", 0), text}) {
        Onk read(L"other");
        EXPECT_TRUE(Onk::fromString(onk.toString(), read));
        EXPECT_EQ(read, onk);
    }
}

TEST(OnkTests, MalformedTextIsRefused) {
    for (wchar_t const * const text : {L"", L"[3]", L"a[", L"a[3", L"a[]", L"a[3]b", L"a]", L"a/b",
                                       L"a\\", L"a\\b", L"a[3][4]", L"a[[3]]"}) {
        Onk onk(L"kept", 1);
        EXPECT_FALSE(Onk::fromString(text, onk)) << text;
        EXPECT_EQ(onk, Onk(L"kept", 1));
    }
}

class ObjectPathTests : public testing::Test {
protected:
    ObjectPathTests()
        : m_rRoot(Group::make(m_document.segment())),
          m_rInner(Group::make(PassiveRef<Entity>(m_rRoot))), m_leaves(makeLeaves(m_rInner, 3)) {
        m_document.segment()->addRoot(m_rRoot, "Things");
    }
    ObjectPath read(std::wstring_view text) const {
        ObjectPath path;
        EXPECT_TRUE(ObjectPath::fromString(text, m_document.segment(), path));
        return path;
    }

    Document const m_document;
    StrongRef<Group> const m_rRoot;
    StrongRef<Group> const m_rInner;
    std::vector<StrongRef<Leaf>> m_leaves;
};

TEST_F(ObjectPathTests, APathLeadsFromTheKeyOfARootDownByThePlaces) {
    EXPECT_EQ(read(L"Things").leaf(), m_rRoot);
    EXPECT_EQ(read(L"Things/CmnData[0]").leaf(), m_rInner);
    EXPECT_EQ(read(L"Things/CmnData[0]/CmnData[2]").leaf(), m_leaves[2]);
}

TEST_F(ObjectPathTests, APathThatLeadsNowhereHasNoLeaf) {
    EXPECT_EQ(ObjectPath().leaf(), nullptr);
    EXPECT_EQ(read(L"Others").leaf(), nullptr);
    EXPECT_EQ(read(L"Things[0]").leaf(), nullptr);
    EXPECT_EQ(read(L"Things/CmnData[1]").leaf(), nullptr);
    EXPECT_EQ(read(L"Things/CmnData").leaf(), nullptr);
    EXPECT_EQ(read(L"Things/CmnData[0]/CmnData[3]").leaf(), nullptr);
    EXPECT_EQ(ObjectPath(nullptr, {Onk(L"Things")}).leaf(), nullptr);
}

TEST_F(ObjectPathTests, ThePathOfAnEntityLeadsBackToIt) {
    ObjectPath const path = objectPath(*m_leaves[1]);
    EXPECT_EQ(path.toString(), L"Things/CmnData[0]/CmnData[1]");
    EXPECT_EQ(path.leaf(), m_leaves[1]);
    EXPECT_EQ(objectPath(*m_rRoot).toString(), L"Things");
    EXPECT_EQ(read(path.toString()), path);
}

TEST_F(ObjectPathTests, AnEntityWithoutARootAboveItHasNoPath) {
    StrongRef<Group> const group = Group::make(m_document.segment());
    StrongRef<Leaf> const below = Leaf::make(PassiveRef<Entity>(group));
    EXPECT_TRUE(objectPath(*group).empty());
    EXPECT_TRUE(objectPath(*below).empty());
    m_rInner->removeChild(m_leaves[0]);
    EXPECT_TRUE(objectPath(*m_leaves[0]).empty());
}

TEST_F(ObjectPathTests, APathFollowsThePlaceAndABoundOneTheObject) {
    ObjectPath const path = objectPath(*m_leaves[1]);
    ObjectPath bound = path;
    bound.bind();
    m_rInner->removeChild(m_leaves[0]);
    EXPECT_EQ(path.leaf(), m_leaves[2]);
    EXPECT_EQ(bound.leaf(), m_leaves[1]);
    EXPECT_EQ(bound, path);
}

TEST_F(ObjectPathTests, ABoundPathLeadsNowhereOnceItsObjectIsGone) {
    ObjectPath bound = objectPath(*m_leaves[1]);
    ObjectPath beyond = read(L"Things/CmnData[0]/CmnData[3]");
    bound.bind();
    beyond.bind();
    m_document.step([&] {
        m_rInner->removeChild(m_leaves[1]);
        m_leaves[1].reset();
        makeLeaves(m_rInner, 2);
    });
    EXPECT_EQ(m_rInner->children(), 4U);
    EXPECT_EQ(bound.leaf(), nullptr);
    EXPECT_EQ(beyond.leaf(), nullptr);
    m_document.undo();
    EXPECT_EQ(bound.leaf(), m_rInner->child(1));
}

TEST_F(ObjectPathTests, PathsAreEqualInSegmentAndNames) {
    Document const other;
    EXPECT_EQ(read(L"Things/CmnData[0]"), objectPath(*m_rInner));
    EXPECT_FALSE(read(L"Things") == read(L"Others"));
    EXPECT_FALSE(ObjectPath(other.segment(), {Onk(L"Things")}) == read(L"Things"));
}

TEST_F(ObjectPathTests, APathOutlivesItsDocument) {
    ObjectPath path;
    {
        Document const other;
        StrongRef<Group> const group = Group::make(other.segment());
        other.segment()->addRoot(group, "Root");
        path = objectPath(*group);
        EXPECT_EQ(path.leaf(), group);
    }
    EXPECT_EQ(path.leaf(), nullptr);
    EXPECT_EQ(path.toString(), L"Root");
}

TEST_F(ObjectPathTests, AKeyOfAnyCharactersReadsBack) {
    StrongRef<Group> const group = Group::make(m_document.segment());
    m_document.segment()->addRoot(group, "a/b[\xc3\xa4]");
    ObjectPath const path = objectPath(*group);
    EXPECT_EQ(path.toString(), L"a\\/b\\[\u00e4\\]");
    EXPECT_EQ(read(path.toString()).leaf(), group);
}

TEST_F(ObjectPathTests, MalformedTextIsRefused) {
    for (wchar_t const * const text : {L"", L"/", L"Things/", L"/Things", L"Things//CmnData[0]",
                                       L"Things/CmnData[0", L"Things]"}) {
        ObjectPath path = objectPath(*m_rInner);
        EXPECT_FALSE(ObjectPath::fromString(text, m_document.segment(), path)) << text;
        EXPECT_EQ(path, objectPath(*m_rInner));
    }
}

// A selection without a better name.
class Picked : public LogicalSelection {
public:
    explicit Picked(ObjectPath const & path) : LogicalSelection(path) {}
};

TEST_F(ObjectPathTests, ASelectionLeadsToItsObjectAsLongAsThatIsThere) {
    StrongRef<Picked> const picked(new Picked(objectPath(*m_rInner)));
    EXPECT_EQ(picked->logicalPath().leaf(), m_rInner);
    EXPECT_EQ(picked->userName(), L"Things/CmnData[0]");
    m_rRoot->removeChild(m_rInner);
    EXPECT_EQ(picked->logicalPath().leaf(), nullptr);
    EXPECT_EQ(picked->queryInterface(LogicalSelection::interfaceId()), picked.get());
    EXPECT_EQ(picked->queryInterface(Selection::interfaceId()), picked.get());
    EXPECT_EQ(picked->queryInterface(Entity::interfaceId()), nullptr);
    EXPECT_EQ(LogicalSelection::interfaceId()->string(), "Vn::LogicalSelection");
}

TEST_F(ObjectPathTests, ParentsInACircleHaveNoPath) {
    StrongRef<Group> const outer = Group::make(m_document.segment());
    StrongRef<Group> const inner = Group::make(PassiveRef<Entity>(outer));
    inner->addChild(outer); // each is the other's child and, by this, its parent
    ASSERT_EQ(outer->parent(), inner);
    EXPECT_TRUE(objectPath(*inner).empty());
}

} // namespace

} // namespace Vn::Managed::Testing
