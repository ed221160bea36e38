#include "Server/CommonData/NamedViews/NamedViewSelections.h"

#include <vector>

#include <gtest/gtest.h>

#include "Platform/Base/InterfaceId.h"
#include "Platform/Base/StringTable.h"
#include "Tests/CommonData/NamedViews/NamedViewsTesting.h"

namespace Vn::NameView {

namespace {

using CommonData::NamedViewSelection;
using CommonData::NamedViewsSelection;

class NamedViewSelectionsTests : public testing::Test {
protected:
    ViewDocument m_document{ViewDocument::BuiltIn};
};

TEST_F(NamedViewSelectionsTests, AViewMakesItsSelection) {
    ObjectPath const path = m_document.path(1);
    StrongRef<LogicalSelection> const made = m_document.view(1)->createLogicalSelection(path);
    auto * const selection = query<NamedViewSelection>(made.get());
    ASSERT_TRUE(selection);
    EXPECT_EQ(selection->logicalPath(), path);
    EXPECT_EQ(selection->namedView(), m_document.view(1));
    EXPECT_EQ(made->userName(), L"NamedView");
    EXPECT_EQ(query<NamedViewsSelection>(made.get()), nullptr);
    EXPECT_EQ(query<LogicalSelection>(selection), made.get());
    EXPECT_EQ(made->getInterfaceId()->string(), "Vn::CommonData::NamedViewSelection");
}

TEST_F(NamedViewSelectionsTests, TheGroupMakesItsSelection) {
    ObjectPath const path(m_document.segment(), {Onk(L"NamedViews")});
    StrongRef<LogicalSelection> const made = m_document.views()->createLogicalSelection(path);
    auto * const selection = query<NamedViewsSelection>(made.get());
    ASSERT_TRUE(selection);
    EXPECT_EQ(selection->namedViews(), m_document.views());
    EXPECT_EQ(made->userName(), L"NamedViews");
    EXPECT_EQ(made->getInterfaceId()->string(), "Vn::CommonData::NamedViewsSelection");
}

TEST_F(NamedViewSelectionsTests, ASelectionIsOfWhatItsPathLeadsTo) {
    StrongRef<NamedViewSelection> const selection =
        NamedViewSelection::make(m_document.path(0), m_document.view(3));
    EXPECT_EQ(selection->namedView(), m_document.view(0));
    StrongRef<NamedViewSelection> const nowhere = NamedViewSelection::make(ObjectPath(), nullptr);
    EXPECT_FALSE(nowhere->namedView());
    ObjectPath const group(m_document.segment(), {Onk(L"NamedViews")});
    StrongRef<NamedViewSelection> const ofGroup = NamedViewSelection::make(group, nullptr);
    EXPECT_FALSE(ofGroup->namedView());
    StrongRef<NamedViewsSelection> const ofView =
        NamedViewsSelection::make(m_document.path(0), nullptr);
    EXPECT_FALSE(ofView->namedViews());
}

TEST_F(NamedViewSelectionsTests, ASelectionIsOfThePlaceAndNotOfTheView) {
    StrongRef<NamedViewSelection> const selection =
        NamedViewSelection::make(m_document.path(3), nullptr);
    EXPECT_EQ(selection->namedView()->name(), L"HOME");
    m_document.run(NamedViewPasteRequest::make(&m_document.asset(), {m_document.path(0)},
                                               m_document.path(3), true, false, true));
    EXPECT_EQ(selection->namedView()->name(), L"TOP");
    m_document.views()->removeNamedView(L"HOME");
    EXPECT_FALSE(selection->namedView());
}

TEST_F(NamedViewSelectionsTests, ASelectionOutlivesItsDocument) {
    StrongRef<NamedViewSelection> selection;
    {
        ViewDocument const document(ViewDocument::BuiltIn);
        selection = NamedViewSelection::make(document.path(0), document.view(0));
        EXPECT_TRUE(selection->namedView());
    }
    EXPECT_FALSE(selection->namedView());
}

TEST_F(NamedViewSelectionsTests, AViewIsSelectedByItself) {
    StrongRef<NamedView> const view = m_document.view(0);
    EXPECT_TRUE(view->isFinalLogicalSelectionSource());
    std::vector<ObjectPath> leaves{m_document.path(1)};
    view->leafObjectPaths(m_document.path(0), leaves);
    EXPECT_EQ(leaves, (std::vector<ObjectPath>{m_document.path(1), m_document.path(0)}));
}

} // namespace

} // namespace Vn::NameView
