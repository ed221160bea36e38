#include "Server/CommonData/NamedViews/NamedView.h"

#include <cmath>
#include <limits>
#include <ostream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "Platform/Base/InterfaceId.h"
#include "Platform/DataModel/DocumentFile.h"
#include "Platform/DataModel/EntityChange.h"
#include "Platform/DataModel/EntityMembers.h"
#include "Platform/DataModel/MemberSet.h"
#include "Platform/DataModel/MetaType.h"
#include "Tests/CommonData/Managed/ManagedTesting.h"
#include "Tests/CommonData/NamedViews/NamedViewsTesting.h"

namespace Vn::NameView {

namespace {

using DataModel::IPasteSink;
using DataModel::IPasteSource;
using DataModel::IRenameTarget;
using Managed::Testing::Recorder;
using Names = std::vector<std::wstring>;

class NamedViewTests : public testing::Test {
protected:
    ViewDocument m_document;
    StrongRef<NamedView> m_rView = m_document.make(L"View", 1);
};

TEST_F(NamedViewTests, TheSchemaIsThatOfTheDocuments) {
    EntityMetaType const & type = *NamedView::s_metaType();
    EXPECT_EQ(NamedView::s_metaTypeId(), "1787C882-91E2-4363-9C18-80C98EBE4C77");
    EXPECT_EQ(type.name(), "NamedViewMetaType");
    EXPECT_EQ(type.version(), 0U);
    EXPECT_EQ(type.addInIdentifier(), "CommonData");
    EXPECT_EQ(type.baseIdentifier(), Managed::ManagedEntity::s_metaTypeId());
    EXPECT_EQ(NamedView::interfaceId()->string(), "Vn::NameView::NamedView");
    MemberSet const & set = *m_rView->memberSet();
    EXPECT_EQ(set.className(), "NamedView");
    ASSERT_EQ(set.members(), 3U);
    EXPECT_EQ(set.member(0).name(), "m_name");
    EXPECT_EQ(set.member(0).type(), IntrinsicMetaType<std::wstring>::get());
    EXPECT_EQ(set.member(1).name(), "m_bEnableModify");
    EXPECT_EQ(set.member(1).type(), IntrinsicMetaType<bool>::get());
    EXPECT_EQ(set.member(2).name(), "m_rCamera");
    EXPECT_EQ(set.member(2).type(), StrongRefMetaType::get());
}

TEST_F(NamedViewTests, MakeListsTheViewAndFixesNothing) {
    StrongRef<Camera> const camera = m_document.camera(7);
    StrongRef<NamedView> const view = NamedView::make(m_document.views(), L"Second", camera);
    ASSERT_TRUE(view);
    EXPECT_EQ(m_document.names(), (Names{L"View", L"Second"}));
    EXPECT_EQ(view->parent(), m_document.views());
    EXPECT_EQ(view->camera(), camera);
    EXPECT_TRUE(view->enableModify());
    EXPECT_FALSE(view->isFixed());
}

TEST_F(NamedViewTests, MakeOfATakenNameMakesNothing) {
    std::size_t const entities = m_document.asset().entities();
    EXPECT_FALSE(NamedView::make(m_document.views(), L"View", nullptr));
    EXPECT_EQ(m_document.asset().entities(), entities);
    EXPECT_TRUE(NamedView::make(m_document.views(), L"view", nullptr));
}

TEST_F(NamedViewTests, MakeWithoutAGroupMakesNothing) {
    EXPECT_FALSE(NamedView::make(nullptr, L"a", nullptr));
    StrongRef<NamedViews> group;
    m_document.step([&] { group = NamedViews::make(m_document.segment()); });
    m_document.undo();
    ASSERT_FALSE(group->isAlive());
    EXPECT_FALSE(NamedView::make(group, L"a", nullptr));
    StrongRef<NamedViews> left;
    {
        ViewDocument const closed;
        left = closed.views();
    }
    EXPECT_FALSE(NamedView::make(left, L"a", nullptr));
}

TEST_F(NamedViewTests, AViewWithoutACameraIsTaken) {
    StrongRef<NamedView> const view = NamedView::make(m_document.views(), L"", nullptr);
    ASSERT_TRUE(view);
    EXPECT_FALSE(view->camera());
    view->updateCamera(m_document.camera(3));
    EXPECT_FALSE(view->camera());
    EXPECT_EQ(savedState(m_document), m_document.state());
}

TEST_F(NamedViewTests, ACameraOfAnotherDocumentIsNotTaken) {
    ViewDocument const other;
    StrongRef<NamedView> const view = NamedView::make(m_document.views(), L"a", other.camera(3));
    EXPECT_FALSE(view->camera());
    view->camera(m_document.camera(4));
    view->camera(other.camera(5));
    EXPECT_EQ(CameraValues(*view->camera()), CameraValues(4));
}

TEST_F(NamedViewTests, NameIsSetWithinABracket) {
    Recorder recorder(*m_rView);
    m_document.step([&] { m_rView->name(L"Other"); });
    ASSERT_EQ(recorder.m_told.size(), 2U);
    EXPECT_EQ(recorder.m_told[0].type, DataChange::ChangeValue);
    EXPECT_EQ(recorder.m_told[0].transact, DataChange::TransactDirect);
    EXPECT_FALSE(recorder.m_told[0].hasDetails);
    EXPECT_EQ(m_rView->name(), L"Other");
    m_document.undo();
    EXPECT_EQ(m_rView->name(), L"View");
    m_document.redo();
    EXPECT_EQ(m_rView->name(), L"Other");
    m_rView->unsubscribe(&recorder);
}

TEST_F(NamedViewTests, NameMayMakeADuplicate) {
    StrongRef<NamedView> const second = m_document.make(L"Second");
    second->name(L"View");
    EXPECT_EQ(m_document.names(), (Names{L"View", L"View"}));
    EXPECT_EQ(m_document.views()->find(L"View"), m_rView);
}

TEST_F(NamedViewTests, NameMayBeThatOfAViewThatAnObserverEnds) {
    StrongRef<NamedView> other = m_document.make(std::wstring(1000, L'x'));
    Recorder recorder(*m_rView);
    std::wstring const & name = other->name();
    recorder.m_onPre = [&](DataChange *) {
        m_document.views()->removeChild(other);
        other.reset();
    };
    m_rView->name(name);
    EXPECT_EQ(m_rView->name(), std::wstring(1000, L'x'));
    m_rView->unsubscribe(&recorder);
}

TEST_F(NamedViewTests, AFixedViewKeepsNameAndCamera) {
    StrongRef<Camera> const camera = m_rView->camera();
    m_rView->enableModify(false);
    Recorder recorder(*m_rView);
    Recorder ofCamera(*camera);
    StrongRef<Camera> const source = m_document.camera(9);
    m_document.step([&] {
        m_rView->name(L"Other");
        m_rView->rename(L"Other");
        m_rView->camera(nullptr);
        m_rView->updateCamera(source);
    });
    EXPECT_FALSE(m_document.history().canUndo());
    EXPECT_TRUE(m_rView->isFixed());
    EXPECT_FALSE(m_rView->canRename());
    EXPECT_EQ(m_rView->name(), L"View");
    EXPECT_EQ(m_rView->camera(), camera);
    EXPECT_EQ(CameraValues(*camera), CameraValues(1));
    EXPECT_TRUE(recorder.m_told.empty());
    EXPECT_TRUE(ofCamera.m_told.empty());
    m_rView->unsubscribe(&recorder);
    camera->unsubscribe(&ofCamera);
}

TEST_F(NamedViewTests, UpdateCameraCopiesFiveValuesInOrder) {
    StrongRef<Camera> const own = m_rView->camera();
    StrongRef<Camera> const source = m_document.camera(5);
    CameraValues const before(*own);
    std::vector<CameraValues> seen;
    Recorder ofView(*m_rView);
    Recorder ofCamera(*own);
    ofCamera.m_onPost = [&](DataChange *) { seen.emplace_back(*own); };
    m_document.step([&] { m_rView->updateCamera(source); });
    EXPECT_EQ(CameraValues(*own), CameraValues(5));
    EXPECT_EQ(m_rView->camera(), own);
    ASSERT_EQ(seen.size(), 5U);
    std::size_t changed = 0;
    for (std::size_t const upTo : {3U, 6U, 9U, 10U, 11U}) { // position, target, up, width, height
        CameraValues expected = before;
        for (std::size_t i = 0; i < upTo; ++i) expected.m_values[i] = CameraValues(5).m_values[i];
        EXPECT_EQ(seen[changed++], expected);
    }
    EXPECT_TRUE(ofView.m_told.empty());
    ofCamera.m_onPost = nullptr;
    m_document.undo();
    EXPECT_EQ(CameraValues(*own), before);
    m_document.redo();
    EXPECT_EQ(CameraValues(*own), CameraValues(5));
    m_rView->unsubscribe(&ofView);
    own->unsubscribe(&ofCamera);
}

TEST_F(NamedViewTests, UpdateCameraWithTheSameValuesIsNoStep) {
    StrongRef<Camera> const source = m_document.camera(1);
    m_document.step([&] {
        m_rView->updateCamera(source);
        m_rView->updateCamera(m_rView->camera());
        m_rView->updateCamera(nullptr);
    });
    EXPECT_FALSE(m_document.history().canUndo());
}

TEST_F(NamedViewTests, CamerasHoldOddNumbers) {
    constexpr double c_infinity = std::numeric_limits<double>::infinity();
    StrongRef<Camera> const source = m_document.camera(0);
    CameraValues odd;
    odd.m_values = {std::nan(""), c_infinity, -c_infinity, 1e308, -1e308,      5e-324,
                    -0.0,         0.0,        1e-300,      -0.0,  std::nan("")};
    odd.applyTo(*source);
    CameraValues const taken(*source); // -0 is 0 to a setter
    m_document.step([&] { m_rView->updateCamera(source); });
    EXPECT_EQ(CameraValues(*m_rView->camera()), taken);
    EXPECT_EQ(savedState(m_document), m_document.state());
    m_document.undo();
    EXPECT_EQ(CameraValues(*m_rView->camera()), CameraValues(1));
}

TEST_F(NamedViewTests, RenameTakesAFreeName) {
    m_document.make(L"Other");
    m_document.step([&] { m_rView->rename(L"Other"); });
    EXPECT_EQ(m_rView->name(), L"Other_1");
    EXPECT_EQ(m_rView->renameText(), L"Other_1");
    EXPECT_TRUE(m_rView->canRename());
    m_document.undo();
    EXPECT_EQ(m_rView->name(), L"View");
}

TEST_F(NamedViewTests, RenameToTheOwnNameGivesANumber) {
    m_rView->rename(L"View");
    EXPECT_EQ(m_rView->name(), L"View_1");
}

TEST_F(NamedViewTests, RenameOfAViewWithoutAGroupDoesNothing) {
    m_document.views()->removeChild(m_rView);
    m_rView->nullParent();
    m_rView->rename(L"Other");
    EXPECT_EQ(m_rView->name(), L"View");
}

TEST_F(NamedViewTests, RenameLeavesUniquenessToItself) {
    IRenameTarget & target = *query<IRenameTarget>(m_rView.get());
    EXPECT_TRUE(target.isUniqueName(L"View"));
    EXPECT_EQ(target.uniqueName(L"View"), L"View");
}

// A setter that is no step, and whether what it sets is there.
struct SilentSetter {
    char const * name;
    void (*set)(NamedView & view, StrongRef<Camera> const & camera);
    bool (*isSet)(NamedView const & view);
};
void PrintTo(SilentSetter const & setter, std::ostream * out) { *out << setter.name; }

class SilentSetterTests : public testing::TestWithParam<SilentSetter> {
protected:
    SilentSetterTests() {
        m_document.step([&] { m_rView->name(L"Named"); });
        EXPECT_TRUE(DocumentFile::saveAs(m_document.asset(), m_file.path()));
    }
    void set() { GetParam().set(*m_rView, m_rOther); }
    bool isSet() { return GetParam().isSet(*m_rView); }
    bool isSaved() {
        EXPECT_TRUE(DocumentFile::save(m_document.asset()));
        return GetParam().isSet(*ViewDocument(m_file.path()).view(0));
    }

    TemporaryFile const m_file;
    ViewDocument m_document;
    StrongRef<NamedView> m_rView = m_document.make(L"View", 1);
    StrongRef<Camera> m_rOther = m_document.camera(8);
};

INSTANTIATE_TEST_SUITE_P(
    Setters, SilentSetterTests,
    testing::Values(SilentSetter{"enableModify",
                                 [](NamedView & view, StrongRef<Camera> const &) {
                                     view.enableModify(false);
                                 },
                                 [](NamedView const & view) { return view.isFixed(); }},
                    SilentSetter{"camera",
                                 [](NamedView & view, StrongRef<Camera> const & camera) {
                                     view.camera(camera);
                                 },
                                 [](NamedView const & view) {
                                     return view.camera() &&
                                            CameraValues(*view.camera()) == CameraValues(8);
                                 }}),
    [](auto const & row) { return std::string(row.param.name); });

TEST_P(SilentSetterTests, TellsNobodyAndIsSaved) {
    Recorder recorder(*m_rView);
    EXPECT_FALSE(m_document.asset().isDirty());
    set();
    EXPECT_TRUE(isSet());
    EXPECT_TRUE(recorder.m_told.empty());
    EXPECT_TRUE(m_document.asset().isDirty());
    EXPECT_TRUE(isSaved());
    m_rView->unsubscribe(&recorder);
}

TEST_P(SilentSetterTests, IsNoStepAndStaysOverUndoAndRedo) {
    set();
    EXPECT_EQ(m_document.history().undoSteps(), 1U);
    m_document.undo();
    EXPECT_EQ(m_rView->name(), L"View");
    EXPECT_TRUE(isSet());
    EXPECT_TRUE(isSaved());
    m_document.redo();
    EXPECT_EQ(m_rView->name(), L"Named");
    EXPECT_TRUE(isSet());
    EXPECT_TRUE(isSaved());
}

TEST_P(SilentSetterTests, StaysWhenItsTransactionIsUndone) {
    m_document.step([&] {
        m_document.views()->find(L"Named")->name(L"Third");
        set();
    });
    m_document.undo();
    EXPECT_EQ(m_rView->name(), L"Named");
    EXPECT_TRUE(isSet());
    EXPECT_TRUE(isSaved());
}

TEST_P(SilentSetterTests, StaysWhenItsTransactionIsAborted) {
    {
        Transaction const transaction(m_document.asset(), L"Aborted");
        m_rView->enableModify(true);
        m_rView->name(L"Third");
        set();
    }
    EXPECT_EQ(m_rView->name(), L"Named");
    EXPECT_TRUE(isSet());
    EXPECT_TRUE(isSaved());
}

TEST_P(SilentSetterTests, StaysWhenABracketAroundItIsUndone) {
    m_document.step([&] {
        EntityChange const change(m_rView.get(), DataChange::TransactDirect,
                                  DataChange::ChangeValue, DataChange::TimingPreAndPost, nullptr,
                                  true);
        m_rView->name(L"Third");
        set();
    });
    m_document.undo();
    EXPECT_EQ(m_rView->name(), L"Named");
    EXPECT_TRUE(isSet());
    EXPECT_TRUE(isSaved());
}

TEST_P(SilentSetterTests, StaysOnAViewThatIsUnmadeAndComesBack) {
    m_document.step([&] { m_rView = m_document.make(L"Second", 2); });
    set();
    m_document.undo();
    m_document.redo();
    ASSERT_EQ(m_document.view(1), m_rView);
    EXPECT_TRUE(isSet());
    EXPECT_TRUE(DocumentFile::save(m_document.asset()));
    EXPECT_TRUE(GetParam().isSet(*ViewDocument(m_file.path()).view(1)));
}

TEST_F(NamedViewTests, ACameraWhoseMakingIsUndoneIsNullUntilARedo) {
    TemporaryFile const file;
    m_document.step([&] { m_rView->camera(m_document.camera(8)); });
    EXPECT_EQ(CameraValues(*m_rView->camera()), CameraValues(8));
    m_document.undo();
    EXPECT_FALSE(m_rView->camera());
    m_rView->updateCamera(m_document.camera(9));
    ASSERT_TRUE(DocumentFile::saveAs(m_document.asset(), file.path()));
    EXPECT_FALSE(ViewDocument(file.path()).view(0)->camera());
}

TEST_F(NamedViewTests, ARedoBringsTheCameraBack) {
    TemporaryFile const file;
    m_document.step([&] { m_rView->camera(m_document.camera(8)); });
    m_document.undo();
    ASSERT_TRUE(DocumentFile::saveAs(m_document.asset(), file.path()));
    m_document.redo();
    ASSERT_TRUE(m_rView->camera());
    EXPECT_EQ(CameraValues(*m_rView->camera()), CameraValues(8));
    ASSERT_TRUE(DocumentFile::save(m_document.asset()));
    EXPECT_EQ(ViewDocument(file.path()).state(), m_document.state());
}

TEST_F(NamedViewTests, AnswersForItsInterfaces) {
    NamedView * const view = m_rView.get();
    EXPECT_EQ(query<NamedView>(view), view);
    EXPECT_EQ(query<Managed::ManagedEntity>(view), view);
    EXPECT_EQ(query<Entity>(view), view);
    EXPECT_EQ(query<ILogicalSelectionSource>(view), static_cast<ILogicalSelectionSource *>(view));
    EXPECT_EQ(query<IRenameTarget>(view), static_cast<IRenameTarget *>(view));
    EXPECT_EQ(query<IPasteSink>(view), static_cast<IPasteSink *>(view));
    EXPECT_EQ(query<IPasteSource>(view), static_cast<IPasteSource *>(view));
    EXPECT_EQ(query<NamedView>(query<IPasteSource>(view)), view);
    EXPECT_EQ(query<NamedViews>(view), nullptr);
    EXPECT_EQ(view->queryMTInterface(Managed::ManagedEntity::s_metaType()), view);
    EXPECT_EQ(view->getInterfaceId(), NamedView::interfaceId());
}

TEST_F(NamedViewTests, ItCanBeMovedAndNeitherCutNorCopied) {
    EXPECT_FALSE(m_rView->canCut());
    EXPECT_FALSE(m_rView->canCopy());
    EXPECT_TRUE(m_rView->canReorder());
}

TEST_F(NamedViewTests, ItsHitIsTheOriginOfItsPlacement) {
    TgPoint3d point(1, 2, 3);
    TgMatrix3d out;
    TgMatrix3d const placement = TgMatrix3d::translation({4, 5, 6});
    EXPECT_TRUE(m_rView->provideNominalHitInfo(nullptr, placement, point, out));
    EXPECT_EQ(point, TgPoint3d::kOrigin);
    EXPECT_EQ(out, placement);
    out = TgMatrix3d();
    EXPECT_TRUE(m_document.views()->provideNominalHitInfo(nullptr, placement, point, out));
    EXPECT_EQ(out, placement);
}

TEST_F(NamedViewTests, ReorderNeedsAPathOfTheSameParentBeforeTheTarget) {
    for (wchar_t const * const name : {L"b", L"c"}) m_document.make(name);
    ObjectPath const target = m_document.path(0);
    ObjectPath const b = m_document.path(1);
    ObjectPath const c = m_document.path(2);
    ObjectPath group;
    ASSERT_TRUE(ObjectPath::fromString(L"NamedViews", m_document.segment(), group));
    ObjectPath nowhere;
    ASSERT_TRUE(ObjectPath::fromString(L"NamedViews/CmnData[9]", m_document.segment(), nowhere));
    EXPECT_TRUE(m_rView->canReorder({b}, target));
    EXPECT_TRUE(m_rView->canReorder({c, target}, target));
    EXPECT_FALSE(m_rView->canReorder({target, c}, target));
    EXPECT_FALSE(m_rView->canReorder({group, nowhere, ObjectPath()}, target));
    EXPECT_TRUE(m_rView->canReorder({group, nowhere, b}, target));
    EXPECT_FALSE(m_rView->canReorder({}, target));
    EXPECT_TRUE(m_rView->canPaste({b}, target));
    EXPECT_FALSE(m_rView->canPaste({target}, target));
}

TEST_F(NamedViewTests, ReorderNeedsTheSameParent) {
    StrongRef<NamedViews> const others = NamedViews::make(m_document.segment());
    m_document.segment()->addRoot(others, "Others");
    EXPECT_TRUE(NamedView::make(others, L"a", nullptr));
    ObjectPath other;
    ASSERT_TRUE(ObjectPath::fromString(L"Others/CmnData[0]", m_document.segment(), other));
    ASSERT_TRUE(other.leaf());
    EXPECT_FALSE(m_rView->canReorder({other}, m_document.path(0)));
}

TEST_F(NamedViewTests, TwoViewsWithoutAParentHaveEqualParents) {
    StrongRef<NamedView> const second = m_document.make(L"second");
    for (StrongRef<NamedView> const & view : {m_rView, second}) {
        m_document.views()->removeChild(view);
        view->nullParent();
    }
    m_document.segment()->addRoot(m_rView, "first");
    m_document.segment()->addRoot(second, "second");
    ObjectPath const first(m_document.segment(), {Onk(L"first")});
    EXPECT_TRUE(second->canReorder({first}, ObjectPath(m_document.segment(), {Onk(L"second")})));
}

TEST_F(NamedViewTests, AFixedViewRefusesANameByItsMember) {
    EntityMembers const members(m_rView);
    EXPECT_TRUE(members.set("m_name", L"Other"));
    EXPECT_EQ(m_rView->name(), L"Other");
    m_rView->enableModify(false);
    Status const status = members.set("m_name", L"Third");
    EXPECT_EQ(status.code(), StatusInvalidArgument);
    EXPECT_EQ(status.cause(), "a built-in view keeps its name");
    EXPECT_EQ(m_rView->name(), L"Other");
}

} // namespace

} // namespace Vn::NameView
