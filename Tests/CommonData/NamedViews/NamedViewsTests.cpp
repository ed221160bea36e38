#include "Server/CommonData/NamedViews/NamedViews.h"

#include <algorithm>
#include <limits>
#include <locale>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "Platform/Base/InterfaceId.h"
#include "Platform/DataModel/AssetAdapter.h"
#include "Platform/DataModel/EntityEvents.h"
#include "Platform/DataModel/MemberSet.h"
#include "Tests/CommonData/Managed/ManagedTesting.h"
#include "Tests/CommonData/NamedViews/NamedViewsTesting.h"

namespace Vn::NameView {

namespace {

using Managed::Testing::Recorder;
using Names = std::vector<std::wstring>;

CameraValues values(TgPoint3d const & position, TgPoint3d const & target, TgVector3d const & up,
                    double extents = 0.4) {
    CameraValues made;
    made.m_values = {position.x, position.y, position.z, target.x, target.y, target.z,
                     up.x,       up.y,       up.z,       extents,  extents};
    return made;
}

class NamedViewsTests : public testing::Test {
protected:
    void make(Names const & names) {
        for (std::wstring const & name : names) ASSERT_TRUE(m_document.make(name));
    }
    // The camera of a view.
    CameraValues camera(std::wstring const & name) const {
        return CameraValues(*m_rViews->find(name)->camera());
    }

    ViewDocument m_document;
    StrongRef<NamedViews> m_rViews = m_document.views();
};

TEST_F(NamedViewsTests, TheSchemaIsThatOfTheDocuments) {
    EntityMetaType const & type = *NamedViews::s_metaType();
    EXPECT_EQ(NamedViews::s_metaTypeId(), "88A5C187-5E68-4318-8A33-3AAA72F9DDB1");
    EXPECT_EQ(type.name(), "NamedViewsMetaType");
    EXPECT_EQ(type.version(), 0U);
    EXPECT_EQ(type.baseIdentifier(), Managed::ManagedGroupEntity::s_metaTypeId());
    EXPECT_EQ(m_rViews->memberSet()->members(), 0U);
    EXPECT_EQ(m_rViews->memberSet()->className(), "NamedViews");
    EXPECT_EQ(NamedViews::interfaceId()->string(), "Vn::NameView::NamedViews");
}

TEST_F(NamedViewsTests, AnswersForItsInterfaces) {
    NamedViews * const views = m_rViews.get();
    EXPECT_EQ(query<NamedViews>(views), views);
    EXPECT_EQ(query<Managed::ManagedGroupEntity>(views), views);
    EXPECT_EQ(query<ILogicalSelectionSource>(views), static_cast<ILogicalSelectionSource *>(views));
    EXPECT_EQ(query<DataModel::IRenameTarget>(views), nullptr);
}

TEST_F(NamedViewsTests, MakeMakesNoRoot) {
    StrongRef<NamedViews> const group = NamedViews::make(m_document.segment());
    EXPECT_EQ(group->children(), 0U);
    EXPECT_EQ(m_document.segment()->rootKey(group.get()), nullptr);
    EXPECT_FALSE(NamedViews::make(nullptr));
}

TEST_F(NamedViewsTests, TheBuiltInViewsAreNamed) {
    EXPECT_EQ(NamedViews::c_home, L"HOME");
    EXPECT_EQ(NamedViews::c_top, L"TOP");
    EXPECT_EQ(NamedViews::c_front, L"FRONT");
    EXPECT_EQ(NamedViews::c_right, L"RIGHT");
}

TEST_F(NamedViewsTests, DefaultViewsAreMadeInOrderAndFixed) {
    NamedViews::makeDefaultNamedViews(m_rViews);
    EXPECT_EQ(m_document.names(), (Names{L"TOP", L"FRONT", L"RIGHT", L"HOME"}));
    for (unsigned i = 0; i < 4; ++i) EXPECT_TRUE(m_document.view(i)->isFixed());
    EXPECT_EQ(camera(L"TOP"), values({0, 44.36, 0}, {}, {0, 0, -1}));
    EXPECT_EQ(camera(L"FRONT"), values({0, 0, 44.36}, {}, {0, 1, 0}));
    EXPECT_EQ(camera(L"RIGHT"), values({44.36, 0, 0}, {}, {0, 1, 0}));
    EXPECT_EQ(camera(L"HOME"), values({25.61, 25.61, 25.61}, {}, {0, 1, 0}));
}

// Notes the views as they come.
class Arrivals : public EntityEventSite {
public:
    void postCreate(EntityEvent * event) override {
        if (auto const * const view = query<NamedView>(event->entity().get()))
            m_fixed.push_back(view->isFixed());
    }
    void preDelete(EntityEvent *) override {}

    std::vector<bool> m_fixed;
};

TEST_F(NamedViewsTests, ABuiltInViewIsFixedOnlyAfterItWasMade) {
    Arrivals arrivals;
    EntityEventSource & source = *m_document.segment()->entityEventSource();
    source.subscribe(&arrivals, MetaTypeFilter::make(NamedView::s_metaType()));
    NamedViews::makeDefaultNamedViews(m_rViews);
    source.unsubscribe(&arrivals);
    EXPECT_EQ(arrivals.m_fixed, std::vector<bool>(4, false));
}

TEST_F(NamedViewsTests, ATakenNameKeepsNoOtherBuiltInViewFromBeingMade) {
    make({L"FRONT"});
    NamedViews::makeDefaultNamedViews(m_rViews);
    EXPECT_EQ(m_document.names(), (Names{L"FRONT", L"TOP", L"RIGHT", L"HOME"}));
    EXPECT_FALSE(m_document.view(0)->isFixed());
}

TEST_F(NamedViewsTests, ABuiltInViewOfATakenNameLeavesNothingBehind) {
    NamedViews::makeDefaultNamedViews(m_rViews);
    m_document.history().clear();
    m_document.step([&] { m_document.make(L"a"); });
    std::size_t const entities = m_document.asset().entities();
    Arrivals arrivals;
    m_document.segment()->entityEventSource()->subscribe(&arrivals, MetaTypeFilter::make(nullptr));
    m_document.step([&] {
        EXPECT_FALSE(NamedViews::makeTopNamedView(m_rViews));
        EXPECT_FALSE(NamedViews::makeFrontNamedView(m_rViews));
        EXPECT_FALSE(NamedViews::makeRightNamedView(m_rViews));
        EXPECT_FALSE(NamedViews::makeHomeNamedView(m_rViews));
        NamedViews::makeDefaultNamedViews(m_rViews);
    });
    m_document.segment()->entityEventSource()->unsubscribe(&arrivals);
    EXPECT_EQ(m_document.asset().entities(), entities);
    EXPECT_EQ(m_document.history().undoSteps(), 1U);
    EXPECT_FALSE(NamedViews::makeTopNamedView(m_rViews)); // nor does it end the history
    EXPECT_EQ(m_document.history().undoSteps(), 1U);
}

TEST_F(NamedViewsTests, BuiltInViewsNeedAGroup) {
    EXPECT_FALSE(NamedViews::makeTopNamedView(nullptr));
    NamedViews::makeDefaultNamedViews(nullptr);
    StrongRef<NamedViews> group;
    m_document.step([&] { group = NamedViews::make(m_document.segment()); });
    m_document.undo();
    std::size_t const entities = m_document.asset().entities();
    NamedViews::makeDefaultNamedViews(group);
    EXPECT_EQ(group->children(), 0U);
    EXPECT_EQ(m_document.asset().entities(), entities);
    EXPECT_TRUE(m_document.history().canRedo());
}

TEST_F(NamedViewsTests, FindIsCaseSensitive) {
    NamedViews::makeDefaultNamedViews(m_rViews);
    EXPECT_FALSE(m_rViews->find(L"home"));
    EXPECT_EQ(m_rViews->find(L"HOME"), m_document.view(3));
    EXPECT_FALSE(m_rViews->find(L""));
}

TEST_F(NamedViewsTests, PlacesWithoutAViewAreNull) {
    make({L"a"});
    StrongRef<Managed::ManagedEntity> const other =
        Managed::Testing::Leaf::make(PassiveRef<Entity>(m_rViews));
    m_rViews->insertChild(nullptr, 0);
    EXPECT_EQ(m_rViews->children(), 3U);
    EXPECT_FALSE(m_rViews->namedView(0));
    EXPECT_TRUE(m_rViews->namedView(1));
    EXPECT_FALSE(m_rViews->namedView(2));
    EXPECT_FALSE(m_rViews->namedView(3));
    EXPECT_FALSE(m_rViews->namedView(std::numeric_limits<unsigned>::max()));
    EXPECT_EQ(m_rViews->find(L"a"), m_rViews->namedView(1));
    EXPECT_EQ(m_rViews->generateNamedViewName(L"a"), L"a_1");
    EXPECT_EQ(m_document.path(1).toString(), L"NamedViews/CmnData[1]");
}

TEST_F(NamedViewsTests, AHeldGroupOfAClosedDocumentHasPlacesWithoutViews) {
    StrongRef<NamedViews> held;
    {
        ViewDocument const document(ViewDocument::BuiltIn);
        held = document.views();
    }
    EXPECT_FALSE(held->find(L"HOME"));
    EXPECT_FALSE(held->namedView(0));
    EXPECT_EQ(held->generateNamedViewName(L"HOME"), L"HOME");
    held->removeNamedView(L"HOME");
    held->updateNamedViewName(L"HOME", L"X");
    held->synchonizeHomeNamedView();
    NamedViews::makeDefaultNamedViews(held);
    EXPECT_FALSE(held->find(L"HOME"));
}

TEST_F(NamedViewsTests, GenerateNamedViewNameTakesTheFirstFreeNumber) {
    make({L"NamedView", L"NamedView_1"});
    EXPECT_EQ(m_rViews->generateNamedViewName(L"NamedView"), L"NamedView_2");
    m_rViews->removeNamedView(L"NamedView_1");
    make({L"NamedView_2"});
    EXPECT_EQ(m_rViews->generateNamedViewName(L"NamedView"), L"NamedView_1");
    EXPECT_EQ(m_rViews->generateNamedViewName(L"Other"), L"Other");
}

// The steps of the description, which try one number after the other.
std::wstring oneByOne(NamedViews const & views, std::wstring const & base) {
    std::wstring result = base;
    for (unsigned n = 1; views.find(result); ++n) result = base + L"_" + std::to_wstring(n);
    return result;
}

TEST_F(NamedViewsTests, GenerateNamedViewNameAgreesWithTryingOneByOne) {
    make({L"a",
          L"a_1",
          L"a_2",
          L"a_4",
          L"a_02",
          L"a_+3",
          L"a_3 ",
          L"a_-1",
          L"a_0",
          L"a_",
          L"_1",
          L"",
          L"a_1_1",
          L"a_1_2",
          L"a_2_1",
          L"a_18446744073709551617",
          L"a_4294967299",
          L"a_9",
          L"a_10",
          L"A",
          L"%1%_%2%",
          L"%1%_%2%_1",
          L"a/b[2]",
          L"a/b[2]_1",
          L"a_\u0663",
          L"_",
          L"__1",
          std::wstring(1, L'\0'),
          std::wstring(L"\0_1", 3)});
    for (std::wstring const & base :
         Names{L"a", L"a_", L"a_1", L"a_2", L"A", L"", L"_", L"%1%_%2%", L"a/b[2]", L"b", L"a_4",
               std::wstring(1, L'\0'), L"__", L"a_10", L"a_9"})
        EXPECT_EQ(m_rViews->generateNamedViewName(base), oneByOne(*m_rViews, base))
            << std::string(base.begin(), base.end());
    EXPECT_EQ(m_rViews->generateNamedViewName(L"a"), L"a_3");
    EXPECT_EQ(m_rViews->generateNamedViewName(L"%1%_%2%"), L"%1%_%2%_2");
}

TEST_F(NamedViewsTests, ADuplicateCountsOnce) {
    make({L"a", L"b"});
    m_document.view(1)->name(L"a");
    EXPECT_EQ(m_rViews->generateNamedViewName(L"a"), L"a_1");
}

TEST_F(NamedViewsTests, UnpairedSurrogatesAreNames) {
    std::wstring const high{L'x', static_cast<wchar_t>(0xD83D)};
    std::wstring const low{static_cast<wchar_t>(0xDE00)};
    make({high, low});
    EXPECT_EQ(m_rViews->generateNamedViewName(high), high + L"_1");
    EXPECT_EQ(m_rViews->find(low), m_document.view(1));
    EXPECT_EQ(savedState(m_document), m_document.state());
}

TEST_F(NamedViewsTests, ANameOfTenMillionCharactersIsAName) {
    std::wstring const name(10'000'000, L'n');
    make({name, name + L"_1"});
    m_document.history().clear();
    m_document.step([&] { m_rViews->updateNamedViewName(name, name); });
    EXPECT_TRUE(m_document.view(0)->name() == name + L"_2");
    m_document.undo();
    EXPECT_TRUE(m_document.view(0)->name() == name);
    EXPECT_TRUE(savedState(m_document) == m_document.state());
}

// Groups the digits of numbers, as some languages do.
class Grouping : public std::numpunct<wchar_t> {
    wchar_t do_thousands_sep() const override { return L'.'; }
    std::string do_grouping() const override { return "\3"; }
};

TEST_F(NamedViewsTests, TheNumberOfANameIsPrintedWithoutALocale) {
    std::locale const before =
        std::locale::global(std::locale(std::locale::classic(), new Grouping));
    make({L"NamedView"});
    for (int n = 1; n < 1000; ++n) m_document.make(L"NamedView_" + std::to_wstring(n));
    std::wstring const name = m_rViews->generateNamedViewName(L"NamedView");
    std::locale::global(before);
    EXPECT_EQ(name, L"NamedView_1000");
}

TEST_F(NamedViewsTests, RemoveTakesTheFirstOfTheName) {
    make({L"a", L"b", L"c"});
    m_document.view(2)->name(L"a");
    m_document.step([&] { m_rViews->removeNamedView(L"a"); });
    EXPECT_EQ(m_document.names(), (Names{L"b", L"a"}));
    m_document.undo();
    EXPECT_EQ(m_document.names(), (Names{L"a", L"b", L"a"}));
    m_document.step([&] { m_rViews->removeNamedView(L"none"); });
    EXPECT_TRUE(m_document.history().canRedo());
}

TEST_F(NamedViewsTests, AViewLivesUntilTheGroupLetsItGo) {
    make({L"a"});
    PassiveRef<NamedView> const view(m_document.view(0));
    PassiveRef<Camera> const camera(view->camera());
    m_document.step([&] { m_rViews->removeNamedView(view->name()); });
    EXPECT_FALSE(view);
    EXPECT_FALSE(camera);
    m_document.undo();
    ASSERT_TRUE(view);
    EXPECT_EQ(view->camera(), camera.lock());
}

TEST_F(NamedViewsTests, TheGroupGivesUpItsViews) {
    PassiveRef<NamedViews> group;
    {
        StrongRef<NamedViews> const made = NamedViews::make(m_document.segment());
        NamedViews::makeDefaultNamedViews(made);
        m_document.segment()->addRoot(made, "Others");
        group = PassiveRef<NamedViews>(made);
    }
    PassiveRef<NamedView> const top(group->namedView(0));
    std::size_t const entities = m_document.asset().entities();
    m_document.step([&] { m_document.segment()->addRoot(nullptr, "Others"); });
    EXPECT_FALSE(group);
    EXPECT_FALSE(top);
    EXPECT_EQ(m_document.asset().entities(), entities - 9);
    m_document.undo();
    ASSERT_TRUE(group);
    EXPECT_EQ(group->children(), 4U);
    EXPECT_EQ(group->namedView(0), top.lock());
}

TEST_F(NamedViewsTests, UpdateNamedViewNameLeavesABuiltInViewItsName) {
    NamedViews::makeDefaultNamedViews(m_rViews);
    m_document.history().clear();
    m_document.step([&] { m_rViews->updateNamedViewName(L"HOME", L"X"); });
    EXPECT_EQ(m_document.names(), (Names{L"TOP", L"FRONT", L"RIGHT", L"HOME"}));
    EXPECT_FALSE(m_document.history().canUndo());
}

TEST_F(NamedViewsTests, UpdateNamedViewNameTakesAFreeName) {
    make({L"a", L"b"});
    m_rViews->updateNamedViewName(L"a", L"b");
    EXPECT_EQ(m_document.names(), (Names{L"b_1", L"b"}));
    m_rViews->updateNamedViewName(L"b", L"b");
    EXPECT_EQ(m_document.names(), (Names{L"b_1", L"b_2"}));
    m_rViews->updateNamedViewName(m_document.view(0)->name(), m_document.view(1)->name());
    EXPECT_EQ(m_document.names(), (Names{L"b_2_1", L"b_2"}));
    m_rViews->updateNamedViewName(L"none", L"c");
    EXPECT_EQ(m_document.names(), (Names{L"b_2_1", L"b_2"}));
}

TEST_F(NamedViewsTests, RemoveNamedViewTakesABuiltInViewOut) {
    NamedViews::makeDefaultNamedViews(m_rViews);
    m_rViews->removeNamedView(L"HOME");
    EXPECT_FALSE(m_rViews->find(L"HOME"));
    ViewStates const before = m_document.state();
    m_rViews->synchonizeHomeNamedView();
    EXPECT_EQ(m_document.state(), before);
}

TEST_F(NamedViewsTests, UpdateNamedViewCameraLeavesAFixedViewAloneAndSynchronisationDoesNot) {
    NamedViews::makeDefaultNamedViews(m_rViews);
    CameraValues const before = camera(L"HOME");
    m_rViews->updateNamedViewCamera(L"HOME", m_document.camera(5));
    EXPECT_EQ(camera(L"HOME"), before);
    m_rViews->synchonizeHomeNamedView();
    EXPECT_NE(camera(L"HOME"), before);
    make({L"a"});
    m_rViews->updateNamedViewCamera(L"a", m_document.camera(5));
    EXPECT_EQ(camera(L"a"), CameraValues(5));
    m_rViews->updateNamedViewCamera(L"none", m_document.camera(6));
}

TEST_F(NamedViewsTests, SynchronisationGivesTopTheAxesOfTheScene) {
    NamedViews::makeDefaultNamedViews(m_rViews);
    m_document.settings().sceneUp({0, 0, 1});
    m_document.settings().sceneFront({0, -1, 0});
    m_rViews->synchonizeTopNamedView();
    EXPECT_EQ(camera(L"TOP"), values({}, {0, 0, -1}, {0, -1, 0}));
    m_rViews->synchonizeFrontNamedView();
    EXPECT_EQ(camera(L"FRONT"), values({}, {0, -1, 0}, {0, 0, 1}));
    m_rViews->synchonizeRightNamedView();
    EXPECT_EQ(camera(L"RIGHT"), values({}, {1, 0, 0}, {0, 0, 1}));
}

TEST_F(NamedViewsTests, OnlyTheTargetOfTopIsNormalized) {
    NamedViews::makeDefaultNamedViews(m_rViews);
    m_document.settings().sceneUp({0, 0, 2});
    m_document.settings().sceneFront({0, -3, 0});
    m_rViews->synchonizeTopNamedView();
    m_rViews->synchonizeFrontNamedView();
    m_rViews->synchonizeRightNamedView();
    EXPECT_EQ(camera(L"TOP"), values({}, {0, 0, -1}, {0, -3, 0}));
    EXPECT_EQ(camera(L"FRONT"), values({}, {0, -3, 0}, {0, 0, 2}));
    EXPECT_EQ(camera(L"RIGHT"), values({}, {6, 0, 0}, {0, 0, 2}));
}

TEST_F(NamedViewsTests, WithoutAnUpVectorTopAndRightLookNowhere) {
    NamedViews::makeDefaultNamedViews(m_rViews);
    m_document.settings().sceneUp({0, 0, 0});
    m_document.settings().sceneFront({0, -3, 0});
    m_rViews->synchonizeTopNamedView();
    m_rViews->synchonizeFrontNamedView();
    m_rViews->synchonizeRightNamedView();
    EXPECT_EQ(camera(L"TOP"), values({}, {}, {0, -3, 0}));
    EXPECT_EQ(camera(L"FRONT"), values({}, {0, -3, 0}, {}));
    EXPECT_EQ(camera(L"RIGHT"), values({}, {}, {}));
}

TEST_F(NamedViewsTests, HomeFollowsTheCurrentHomeCameraAndKeepsItsExtents) {
    NamedViews::makeDefaultNamedViews(m_rViews);
    m_document.settings().currentHomePosition({1, 2, 3});
    m_document.settings().currentHomeTarget({4, 5, 6});
    m_document.settings().currentHomeUp({7, 8, 9});
    m_rViews->synchonizeHomeNamedView();
    EXPECT_EQ(camera(L"HOME"), values({1, 2, 3}, {4, 5, 6}, {7, 8, 9}));
}

using Synchronize = void (NamedViews::*)();
struct Synchronized {
    wchar_t const * name;
    Synchronize operation;
};
Synchronized const c_synchronized[] = {{L"HOME", &NamedViews::synchonizeHomeNamedView},
                                       {L"TOP", &NamedViews::synchonizeTopNamedView},
                                       {L"FRONT", &NamedViews::synchonizeFrontNamedView},
                                       {L"RIGHT", &NamedViews::synchonizeRightNamedView}};

TEST_F(NamedViewsTests, SynchronisationWritesTargetPositionUp) {
    NamedViews::makeDefaultNamedViews(m_rViews);
    m_document.settings().sceneUp({0, 0.6, 0.8});
    m_document.settings().sceneFront({0.5, -0.8, 0.6});
    for (auto const & [name, operation] : c_synchronized) {
        StrongRef<Camera> const written = m_rViews->find(name)->camera();
        StrongRef<NamedView> const view = m_rViews->find(name);
        CameraValues last(*written);
        std::vector<std::size_t> order;
        Recorder recorder(*written);
        Recorder ofView(*view);
        recorder.m_onPost = [&](DataChange *) {
            CameraValues const now(*written);
            auto const differs =
                std::mismatch(now.m_values.begin(), now.m_values.end(), last.m_values.begin());
            order.push_back(static_cast<std::size_t>(differs.first - now.m_values.begin()) / 3);
            last = now;
        };
        ((*m_rViews).*operation)();
        EXPECT_EQ(order, (std::vector<std::size_t>{1, 0, 2}));
        EXPECT_TRUE(ofView.m_told.empty());
        order.clear();
        ((*m_rViews).*operation)(); // nothing differs
        EXPECT_TRUE(order.empty());
        written->unsubscribe(&recorder);
        view->unsubscribe(&ofView);
    }
}

TEST_F(NamedViewsTests, SynchronisationIsUndoneWithItsTransaction) {
    NamedViews::makeDefaultNamedViews(m_rViews);
    m_document.history().clear();
    ViewStates const before = m_document.state();
    auto const synchronize = [&] {
        for (auto const & row : c_synchronized) ((*m_rViews).*row.operation)();
    };
    m_document.step(synchronize);
    ViewStates const after = m_document.state();
    EXPECT_NE(after, before);
    m_document.step(synchronize);
    EXPECT_EQ(m_document.history().undoSteps(), 1U);
    m_document.undo();
    EXPECT_EQ(m_document.state(), before);
    EXPECT_EQ(savedState(m_document), before);
    m_document.redo();
    EXPECT_EQ(m_document.state(), after);
    EXPECT_EQ(savedState(m_document), after);
}

TEST_F(NamedViewsTests, SynchronisationHoldsOddNumbers) {
    NamedViews::makeDefaultNamedViews(m_rViews);
    double const infinity = std::numeric_limits<double>::infinity();
    double const nan = std::numeric_limits<double>::quiet_NaN();
    m_document.settings().sceneUp({0, 1e308, -1e308});
    m_document.settings().sceneFront({nan, infinity, 5e-324});
    m_document.settings().currentHomePosition({-infinity, nan, 1e308});
    for (auto const & row : c_synchronized) ((*m_rViews).*row.operation)();
    EXPECT_EQ(m_rViews->find(L"FRONT")->camera()->up().y, 1e308);
    EXPECT_EQ(m_rViews->find(L"FRONT")->camera()->target().z, 5e-324);
    EXPECT_EQ(m_rViews->find(L"HOME")->camera()->position().x, -infinity);
    EXPECT_EQ(savedState(m_document), m_document.state());
}

TEST_F(NamedViewsTests, SynchronisationNeedsTheSettings) {
    NamedViews::makeDefaultNamedViews(m_rViews);
    ViewStates const before = m_document.state();
    StrongRef<Entity> const other = Managed::Testing::Leaf::make(m_document.segment());
    m_document.segment()->addRoot(other, AssetSettings::segmentRootId());
    for (auto const & row : c_synchronized) ((*m_rViews).*row.operation)();
    m_document.segment()->addRoot(nullptr, AssetSettings::segmentRootId());
    for (auto const & row : c_synchronized) ((*m_rViews).*row.operation)();
    m_document.asset().adapter(nullptr);
    for (auto const & row : c_synchronized) ((*m_rViews).*row.operation)();
    EXPECT_EQ(m_document.state(), before);
}

TEST_F(NamedViewsTests, SynchronisationOutlivesAnObserverThatTakesTheViewOut) {
    NamedViews::makeDefaultNamedViews(m_rViews);
    StrongRef<Camera> const home = m_rViews->find(L"HOME")->camera();
    Recorder recorder(*home);
    recorder.m_onPost = [&](DataChange *) {
        m_rViews->removeNamedView(L"HOME");
        m_document.segment()->addRoot(nullptr, AssetSettings::segmentRootId());
    };
    m_rViews->synchonizeHomeNamedView();
    EXPECT_EQ(m_document.names(), (Names{L"TOP", L"FRONT", L"RIGHT"}));
    home->unsubscribe(&recorder);
}

} // namespace

} // namespace Vn::NameView
