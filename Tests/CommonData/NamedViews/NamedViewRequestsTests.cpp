#include "Server/CommonData/NamedViews/NamedViewRequests.h"

#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "Platform/Base/InterfaceId.h"
#include "Platform/DataModel/AssetAdapter.h"
#include "Platform/DataModel/EntityEvents.h"
#include "Tests/CommonData/Managed/ManagedTesting.h"
#include "Tests/CommonData/NamedViews/NamedViewsTesting.h"

namespace Vn::NameView {

namespace {

using Managed::Testing::Leaf;
using Managed::Testing::Recorder;
using Names = std::vector<std::wstring>;

class NamedViewRequestsTests : public testing::Test {
protected:
    void make(Names const & names) {
        for (std::wstring const & name : names) ASSERT_TRUE(m_document.make(name));
        m_document.history().clear();
    }
    Request * newView(double seed) {
        return NewNamedViewRequest::make(&m_document.asset(), source(seed));
    }
    StrongRef<Camera> source(double seed) {
        m_rSource = m_document.camera(seed);
        m_document.history().clear();
        return m_rSource;
    }
    Request * paste(std::vector<unsigned> const & moved, unsigned target, bool insertAfter,
                    bool reorder = true) {
        std::vector<ObjectPath> paths;
        for (unsigned const index : moved) paths.push_back(m_document.path(index));
        return NamedViewPasteRequest::make(&m_document.asset(), paths, m_document.path(target),
                                           insertAfter, true, reorder);
    }
    // Runs a request that must leave everything as it is.
    void runInVain(Request * request) {
        ViewStates const before = m_document.state();
        std::size_t const steps = m_document.history().undoSteps();
        std::size_t const entities = m_document.asset().entities();
        m_document.run(request);
        EXPECT_EQ(m_document.state(), before);
        EXPECT_EQ(m_document.history().undoSteps(), steps);
        EXPECT_EQ(m_document.asset().entities(), entities);
    }
    // Runs a request that is one step of that name, undoes and redoes it, also over files.
    void runAsStep(Request * request, wchar_t const * name) {
        ViewStates const before = m_document.state();
        std::size_t const steps = m_document.history().undoSteps();
        m_document.run(request);
        ViewStates const after = m_document.state();
        EXPECT_NE(after, before);
        ASSERT_EQ(m_document.history().undoSteps(), steps + 1);
        EXPECT_EQ(m_document.history().undoNames().front(), name);
        EXPECT_EQ(savedState(m_document), after);
        m_document.undo();
        EXPECT_EQ(m_document.state(), before);
        EXPECT_EQ(savedState(m_document), before);
        m_document.redo();
        EXPECT_EQ(m_document.state(), after);
        EXPECT_EQ(savedState(m_document), after);
    }

    ViewDocument m_document;
    StrongRef<Camera> m_rSource;
};

TEST_F(NamedViewRequestsTests, ANewViewKeepsTheCameraOfTheMoment) {
    std::unique_ptr<Request> request(newView(5));
    CameraValues(6).applyTo(*m_rSource); // it is the moment of the run that counts
    EXPECT_TRUE(m_document.asset().run(std::move(request)));
    CameraValues(7).applyTo(*m_rSource);
    ASSERT_EQ(m_document.names(), Names{L"NamedView"});
    EXPECT_NE(m_document.view(0)->camera(), m_rSource);
    EXPECT_EQ(CameraValues(*m_document.view(0)->camera()), CameraValues(6));
    EXPECT_FALSE(m_document.view(0)->isFixed());
}

TEST_F(NamedViewRequestsTests, TwoNewViewsInARowAreNumbered) {
    m_document.run(newView(1));
    m_document.run(newView(2));
    EXPECT_EQ(m_document.names(), (Names{L"NamedView", L"NamedView_1"}));
}

TEST_F(NamedViewRequestsTests, ADeleteOfANameThatIsGoneChangesNothing) {
    make({L"a"});
    runInVain(DeleteNamedViewRequest::make(&m_document.asset(), L"b"));
    runInVain(DeleteNamedViewRequest::make(&m_document.asset(), L"A"));
}

TEST_F(NamedViewRequestsTests, ARenameToANameInUseGetsASuffix) {
    make({L"a", L"b"});
    runAsStep(UpdateNamedViewNameRequest::make(&m_document.asset(), L"a", L"b"), L"Rename View");
    EXPECT_EQ(m_document.names(), (Names{L"b_1", L"b"}));
}

TEST_F(NamedViewRequestsTests, APasteWithoutReorderLeavesTheOrderAlone) {
    make({L"a", L"b", L"c"});
    runInVain(paste({0}, 2, true, false));
}

TEST_F(NamedViewRequestsTests, EachIsOneStep) {
    make({L"a", L"b", L"c"});
    runAsStep(newView(4), L"New View");
    runAsStep(DeleteNamedViewRequest::make(&m_document.asset(), L"b"), L"Delete View");
    runAsStep(UpdateNamedViewNameRequest::make(&m_document.asset(), L"c", L"d"), L"Rename View");
    runAsStep(paste({0}, 1, true), L"Move Views");
    EXPECT_EQ(m_document.names(), (Names{L"d", L"a", L"NamedView"}));
    m_document.undo();
    m_document.undo();
    m_document.undo();
    m_document.undo();
    EXPECT_EQ(m_document.names(), (Names{L"a", L"b", L"c"}));
}

TEST_F(NamedViewRequestsTests, ARenameToTheOwnNameIsAStep) {
    make({L"a"});
    runAsStep(UpdateNamedViewNameRequest::make(&m_document.asset(), L"a", L"a"), L"Rename View");
    EXPECT_EQ(m_document.names(), Names{L"a_1"});
}

TEST_F(NamedViewRequestsTests, ARenameOfAFixedViewOrOfNoneChangesNothing) {
    NamedViews::makeDefaultNamedViews(m_document.views());
    m_document.history().clear();
    runInVain(UpdateNamedViewNameRequest::make(&m_document.asset(), L"HOME", L"a"));
    runInVain(UpdateNamedViewNameRequest::make(&m_document.asset(), L"none", L"a"));
}

TEST_F(NamedViewRequestsTests, ABuiltInViewCanBeDeletedAndComesBackFixed) {
    NamedViews::makeDefaultNamedViews(m_document.views());
    m_document.history().clear();
    runAsStep(DeleteNamedViewRequest::make(&m_document.asset(), L"TOP"), L"Delete View");
    m_document.undo();
    EXPECT_TRUE(m_document.view(0)->isFixed());
}

TEST_F(NamedViewRequestsTests, BuiltInViewsAreReordered) {
    NamedViews::makeDefaultNamedViews(m_document.views());
    m_document.history().clear();
    runAsStep(paste({3}, 0, false), L"Move Views");
    EXPECT_EQ(m_document.names(), (Names{L"HOME", L"TOP", L"FRONT", L"RIGHT"}));
}

TEST_F(NamedViewRequestsTests, ANewViewNeedsACamera) {
    runInVain(NewNamedViewRequest::make(&m_document.asset(), nullptr));
    StrongRef<Camera> camera;
    m_document.step([&] { camera = m_document.camera(1); });
    m_document.undo();
    ASSERT_FALSE(camera->isAlive());
    runInVain(NewNamedViewRequest::make(&m_document.asset(), camera));
    EXPECT_TRUE(m_document.history().canRedo());
    {
        ViewDocument const closed;
        camera = closed.camera(2);
    }
    runInVain(NewNamedViewRequest::make(&m_document.asset(), camera));
}

TEST_F(NamedViewRequestsTests, TheCameraMayBeOfAnotherDocument) {
    ViewDocument const other;
    m_document.run(NewNamedViewRequest::make(&m_document.asset(), other.camera(3)));
    EXPECT_EQ(CameraValues(*m_document.view(0)->camera()), CameraValues(3));
    EXPECT_EQ(m_document.view(0)->camera()->asset(), &m_document.asset());
}

TEST_F(NamedViewRequestsTests, ARequestThatHoldsTheLastReferenceToItsCameraLeavesNoStepInVain) {
    m_document.settings().namedViews(nullptr);
    StrongRef<Camera> camera = m_document.camera(1);
    m_document.history().clear();
    m_document.run(NewNamedViewRequest::make(&m_document.asset(), std::exchange(camera, nullptr)));
    EXPECT_FALSE(m_document.history().canUndo());
}

// What each request does when it doesn't find the views.
TEST_F(NamedViewRequestsTests, WithoutViewsNothingIsDone) {
    make({L"a", L"b"});
    Asset & asset = m_document.asset();
    StrongRef<Camera> const camera = source(1);
    StrongRef<Entity> const leaf = Leaf::make(m_document.segment());
    auto const runAll = [&] {
        m_document.history().clear();
        runInVain(NewNamedViewRequest::make(&asset, camera));
        runInVain(DeleteNamedViewRequest::make(&asset, L"a"));
        runInVain(UpdateNamedViewNameRequest::make(&asset, L"a", L"c"));
    };
    m_document.settings().namedViews(nullptr);
    runAll();
    StrongRef<Entity> const settings(&m_document.settings());
    asset.segment(1U)->addRoot(leaf, AssetSettings::segmentRootId());
    runAll();
    asset.segment(1U)->addRoot(nullptr, AssetSettings::segmentRootId());
    runAll();
    asset.adapter(nullptr);
    runAll();
}

TEST_F(NamedViewRequestsTests, ARequestOutlivesItsDocument) {
    std::vector<std::unique_ptr<Request>> requests;
    {
        ViewDocument const document(ViewDocument::BuiltIn);
        Asset * const asset = &document.asset();
        requests.emplace_back(NewNamedViewRequest::make(asset, document.camera(1)));
        requests.emplace_back(DeleteNamedViewRequest::make(asset, L"TOP"));
        requests.emplace_back(UpdateNamedViewNameRequest::make(asset, L"TOP", L"a"));
        requests.emplace_back(NamedViewPasteRequest::make(asset, {document.path(0)},
                                                          document.path(1), true, true, true));
    }
    requests.emplace_back(NewNamedViewRequest::make(nullptr, nullptr));
    requests.emplace_back(NamedViewPasteRequest::make(nullptr, {}, ObjectPath(), true, true, true));
    for (auto const & request : requests) EXPECT_TRUE(request->execute());
}

TEST_F(NamedViewRequestsTests, AViewsOwnPasteRequestMovesItsLikes) {
    make({L"a", L"b", L"c"});
    std::unique_ptr<IPasteRequest> request = m_document.view(2)->providePasteRequest(
        {m_document.path(0)}, m_document.path(2), true, false, true);
    ASSERT_TRUE(request);
    EXPECT_EQ(request->asset(0), &m_document.asset());
    EXPECT_TRUE(request->insertAfter());
    EXPECT_FALSE(request->isCut());
    EXPECT_TRUE(m_document.asset().run(std::move(request)));
    EXPECT_EQ(m_document.names(), (Names{L"b", L"c", L"a"}));
    m_document.undo();
    EXPECT_TRUE(m_document.asset().run(m_document.view(2)->providePasteRequest(
        {m_document.path(0)}, m_document.path(2), true, false, false)));
    EXPECT_EQ(m_document.names(), (Names{L"a", L"b", L"c"}));
}

struct PasteRow {
    std::vector<unsigned> moved;
    unsigned target;
    bool insertAfter;
    std::wstring expected; // the names one after the other
};

TEST_F(NamedViewRequestsTests, PathsAreMovedOneByOneNextToTheTarget) {
    PasteRow const rows[] = {{{0, 1}, 2, true, L"TBAx"},  // T stands for the target
                             {{0, 1}, 2, false, L"ABTx"}, // where they are already
                             {{3, 0}, 2, false, L"BxAT"},    {{3, 0}, 2, true, L"BTAx"},
                             {{0, 1, 3}, 2, false, L"ABxT"}, {{1, 0}, 2, false, L"BATx"},
                             {{2}, 2, true, L"ABTx"},        {{2, 0}, 2, false, L"BATx"},
                             {{0, 0}, 2, true, L"BTAx"}};
    for (PasteRow const & row : rows) {
        ViewDocument const document;
        for (wchar_t const * const name : {L"A", L"B", L"T", L"x"}) document.make(name);
        std::vector<ObjectPath> paths;
        for (unsigned const index : row.moved) paths.push_back(document.path(index));
        document.run(NamedViewPasteRequest::make(
            &document.asset(), paths, document.path(row.target), row.insertAfter, true, true));
        std::wstring names;
        for (std::wstring const & name : document.names()) names += name;
        EXPECT_EQ(names, row.expected);
    }
}

TEST_F(NamedViewRequestsTests, APasteThatMovesNothingIsNoStep) {
    make({L"a", L"b", L"c"});
    runInVain(paste({1}, 2, false));
    runInVain(paste({1}, 0, true));
    runInVain(paste({1}, 1, true));
    runInVain(paste({}, 1, true));
}

TEST_F(NamedViewRequestsTests, APasteOntoAGroupOrNowhereChangesNothing) {
    make({L"a", L"b"});
    Asset * const asset = &m_document.asset();
    ObjectPath const group(m_document.segment(), {Onk(L"NamedViews")});
    ObjectPath const beyond(m_document.segment(), {Onk(L"NamedViews"), Onk(L"CmnData", 7)});
    for (ObjectPath const & target : {group, beyond, ObjectPath()}) {
        runInVain(
            NamedViewPasteRequest::make(asset, {m_document.path(0)}, target, true, true, true));
        runInVain(
            NamedViewPasteRequest::make(asset, {target}, m_document.path(1), true, true, true));
    }
}

TEST_F(NamedViewRequestsTests, APasteOntoAViewThatIsGoneChangesNothing) {
    make({L"a", L"b", L"c"});
    ObjectPath target = m_document.path(2);
    target.bind();
    m_document.views()->removeNamedView(L"c");
    ASSERT_TRUE(m_document.make(L"d"));
    runInVain(NamedViewPasteRequest::make(&m_document.asset(), {m_document.path(0)}, target, true,
                                          true, true));
}

TEST_F(NamedViewRequestsTests, APathIntoAnotherDocumentIsPassedOver) {
    make({L"a", L"b", L"c"});
    ViewDocument const other(ViewDocument::BuiltIn);
    Asset * const asset = &m_document.asset();
    runInVain(
        NamedViewPasteRequest::make(asset, {other.path(0)}, m_document.path(1), true, true, true));
    runInVain(
        NamedViewPasteRequest::make(asset, {m_document.path(0)}, other.path(1), true, true, true));
    runInVain(NamedViewPasteRequest::make(asset, {other.path(0)}, other.path(2), true, true, true));
    EXPECT_EQ(other.names(), (Names{L"TOP", L"FRONT", L"RIGHT", L"HOME"}));
    m_document.run(NamedViewPasteRequest::make(asset, {other.path(0), m_document.path(0)},
                                               m_document.path(2), true, true, true));
    EXPECT_EQ(m_document.names(), (Names{L"b", L"c", L"a"}));
}

TEST_F(NamedViewRequestsTests, WhatIsNoViewIsNotMoved) {
    make({L"a", L"b"});
    StrongRef<Leaf> const leaf = Leaf::make(PassiveRef<Entity>(m_document.views()));
    m_document.run(paste({2}, 0, false));
    EXPECT_EQ(m_document.views()->child(2), leaf);
    m_document.run(paste({0}, 2, true)); // but it may be the target
    EXPECT_EQ(m_document.views()->child(1), leaf);
}

TEST_F(NamedViewRequestsTests, AViewMovesIntoTheGroupOfTheTarget) {
    make({L"a", L"b"});
    StrongRef<NamedViews> const others = NamedViews::make(m_document.segment());
    m_document.segment()->addRoot(others, "Others");
    StrongRef<NamedView> const target = NamedView::make(others, L"c", nullptr);
    StrongRef<NamedView> const moved = m_document.view(1);
    ObjectPath const path(m_document.segment(), {Onk(L"Others"), Onk(L"CmnData", 0)});
    m_document.run(NamedViewPasteRequest::make(&m_document.asset(), {m_document.path(1)}, path,
                                               false, true, true));
    EXPECT_EQ(m_document.names(), Names{L"a"});
    EXPECT_EQ(others->child(0), moved);
    EXPECT_EQ(moved->parent(), m_document.views());
    m_document.undo();
    EXPECT_EQ(m_document.names(), (Names{L"a", L"b"}));
    EXPECT_EQ(others->children(), 1U);
}

TEST_F(NamedViewRequestsTests, AnObserverMayTakeAwayWhatIsStillToBeMoved) {
    make({L"a", L"b", L"c", L"d"});
    Recorder recorder(*m_document.views());
    bool isFirst = true;
    recorder.m_onPost = [&](DataChange *) {
        if (std::exchange(isFirst, false)) m_document.views()->removeNamedView(L"b");
    };
    m_document.run(paste({0, 1}, 3, true));
    EXPECT_EQ(m_document.names(), (Names{L"c", L"d", L"a"}));
    m_document.views()->unsubscribe(&recorder);
    m_document.undo();
    EXPECT_EQ(m_document.names(), (Names{L"a", L"b", L"c", L"d"}));
}

// Throws at the n-th thing that it is told.
class Thrower : public IEntityObserver, public EntityEventSite {
public:
    explicit Thrower(unsigned at) : m_left(at) {}

    void preChange(Entity *, DataChange::ETransact transact, DataChange::EChangeType,
                   DataChange *) override {
        told(transact);
    }
    void postChange(Entity *, DataChange::ETransact transact, DataChange::EChangeType,
                    DataChange *) override {
        told(transact);
    }
    void preDeletion(Entity *, DataChange::ETransact transact) override { told(transact); }
    void postCreate(EntityEvent * event) override {
        told(event->transact());
        event->entity()->subscribe(this);
    }
    void preDelete(EntityEvent * event) override { told(event->transact()); }

    bool hasThrown() const { return m_left == 0; }

private:
    void told(DataChange::ETransact transact) {
        if (DataChange::test(transact, DataChange::TransactReplay) || m_left == 0) return;
        if (--m_left == 0) throw std::runtime_error("test");
    }

    unsigned m_left;
};

struct RequestRow {
    char const * name;
    Request * (*make)(ViewDocument const & document, StrongRef<Camera> const & camera);
};
void PrintTo(RequestRow const & row, std::ostream * out) { *out << row.name; }

class ThrowingHookTests : public testing::TestWithParam<RequestRow> {};

INSTANTIATE_TEST_SUITE_P(
    Requests, ThrowingHookTests,
    testing::Values(
        RequestRow{
            "New",
            [](ViewDocument const & document, StrongRef<Camera> const & camera) -> Request * {
                return NewNamedViewRequest::make(&document.asset(), camera);
            }},
        RequestRow{"Delete",
                   [](ViewDocument const & document, StrongRef<Camera> const &) -> Request * {
                       return DeleteNamedViewRequest::make(&document.asset(), L"b");
                   }},
        RequestRow{"Rename",
                   [](ViewDocument const & document, StrongRef<Camera> const &) -> Request * {
                       return UpdateNamedViewNameRequest::make(&document.asset(), L"a", L"b");
                   }},
        RequestRow{"Paste",
                   [](ViewDocument const & document, StrongRef<Camera> const &) -> Request * {
                       return NamedViewPasteRequest::make(&document.asset(),
                                                          {document.path(0), document.path(1)},
                                                          document.path(2), true, true, true);
                   }}),
    [](auto const & row) { return std::string(row.param.name); });

TEST_P(ThrowingHookTests, TheDocumentIsBeforeOrAfter) {
    for (unsigned n = 1;; ++n) {
        SCOPED_TRACE(n);
        ViewDocument const document;
        StrongRef<Camera> const camera = document.camera(9);
        for (wchar_t const * const name : {L"a", L"b", L"c"}) document.make(name);
        document.history().clear();
        document.step([&] { document.view(2)->name(L"d"); });
        ViewStates const before = document.state();
        std::size_t const entities = document.asset().entities();
        Thrower thrower(n);
        for (Entity * const entity : document.asset().allEntities()) entity->subscribe(&thrower);
        EntityEventSource & events = *document.segment()->entityEventSource();
        events.subscribe(&thrower, MetaTypeFilter::make(nullptr));
        std::unique_ptr<Request> request(GetParam().make(document, camera));
        bool hasThrown = false;
        try {
            EXPECT_TRUE(document.asset().run(std::move(request)));
        } catch (std::runtime_error const &) {
            hasThrown = true;
        }
        events.unsubscribe(&thrower);
        for (Entity * const entity : document.asset().allEntities()) entity->unsubscribe(&thrower);
        // What a hook of a deletion throws goes no further, and the deletion stands.
        EXPECT_TRUE(thrower.hasThrown() || !hasThrown);
        if (hasThrown) {
            EXPECT_EQ(document.state(), before);
            EXPECT_EQ(document.asset().entities(), entities);
            EXPECT_EQ(document.history().undoSteps(), 1U);
        } else {
            ViewStates const after = document.state();
            EXPECT_NE(after, before);
            EXPECT_EQ(document.history().undoSteps(), 2U);
            document.undo();
            EXPECT_EQ(document.state(), before);
            document.redo();
            EXPECT_EQ(document.state(), after);
            document.undo();
        }
        document.undo();
        EXPECT_EQ(document.names(), (Names{L"a", L"b", L"c"}));
        if (!thrower.hasThrown()) {
            EXPECT_GT(n, 2U);
            break;
        }
    }
}

} // namespace

} // namespace Vn::NameView
