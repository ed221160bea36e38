#include "Platform/Scene/Camera.h"

#include <array>
#include <atomic>
#include <cmath>
#include <cstddef>
#include <functional>
#include <limits>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "Platform/DataModel/Asset.h"
#include "Platform/DataModel/ChangeHistory.h"
#include "Platform/DataModel/DocumentFile.h"
#include "Platform/DataModel/GeometryMetaTypes.h"
#include "Platform/DataModel/IEntityObserver.h"
#include "Platform/DataModel/MemberSet.h"
#include "Platform/DataModel/MetaType.h"
#include "Platform/DataModel/Segment.h"
#include "Tests/DataModel/DocumentSql.h"
#include "Tests/Support/Exactly.h"
#include "Tests/Support/FreshProcess.h"
#include "Tests/Support/TemporaryDirectory.h"

namespace Vn::Scene {

namespace {

using Vn::Testing::Sql;
using Vn::Testing::TemporaryFile;

constexpr double c_nan = std::numeric_limits<double>::quiet_NaN();
constexpr double c_infinity = std::numeric_limits<double>::infinity();

// The values of a camera, bit by bit.
struct Values {
    explicit Values(Camera const & camera)
        : places{exactly(camera.position()),
                 exactly(camera.target()),
                 exactly(camera.up()),
                 {{camera.extentsWidth(), camera.extentsHeight(), 0}}} {}
    bool operator==(Values const &) const = default;

    std::array<ExactPlace, 4> places;
};

// Counts what it is told.
class Observer : public IEntityObserver {
public:
    explicit Observer(Entity & entity) { entity.subscribe(this); }

    void preChange(Entity *, DataChange::ETransact, DataChange::EChangeType type,
                   DataChange *) override {
        EXPECT_EQ(type, DataChange::ChangeValue);
        ++m_pre;
        if (m_onPre) m_onPre();
    }
    void postChange(Entity *, DataChange::ETransact, DataChange::EChangeType,
                    DataChange *) override {
        ++m_post;
    }
    void preDeletion(Entity *, DataChange::ETransact) override {}

    unsigned m_pre = 0;
    unsigned m_post = 0;
    std::function<void()> m_onPre;
};

class CameraTests : public testing::Test {
protected:
    CameraTests() { segment()->addRoot(m_rCamera, "Camera"); }

    Segment * segment() const { return m_rAsset->segment(1U); }
    template <class Work>
    void step(Work && work) const {
        Transaction transaction(*m_rAsset, L"Step");
        work();
        transaction.commit();
    }
    // The camera in a file.
    static StrongRef<Camera> cameraIn(std::filesystem::path const & file,
                                      StrongRef<Asset> & asset) {
        Status const status = DocumentFile::load(file, nullptr, asset);
        EXPECT_TRUE(status) << status.toString();
        if (!asset) return nullptr;
        StrongRef<Entity> const root = asset->segment(1U)->rootEntity("Camera");
        return StrongRef<Camera>(query<Camera>(root.get()));
    }

    StrongRef<Asset> m_rAsset = Asset::make(nullptr);
    StrongRef<Camera> m_rCamera = Camera::make(segment());
};

TEST_F(CameraTests, TheClassIsThatOfTheDocuments) {
    EntityMetaType const & type = *Camera::s_metaType();
    EXPECT_EQ(type.identifier(), "F0C5C2D4-8F0E-4E5B-9C35-1B0D4A7C6E21");
    EXPECT_EQ(type.name(), "CameraMetaType");
    EXPECT_EQ(type.version(), 0U);
    EXPECT_EQ(type.baseIdentifier(), Entity::s_metaTypeId());
    EXPECT_EQ(m_rCamera->metaType(), &type);
    EXPECT_EQ(m_rCamera->queryMTInterface(Camera::s_metaType()), m_rCamera.get());
    EXPECT_EQ(Camera::interfaceId()->string(), "Vn::Scene::Camera");
    EXPECT_EQ(query<Camera>(static_cast<Entity *>(m_rCamera.get())), m_rCamera.get());

    std::vector<std::pair<std::string, MemberMetaType *>> const expected{
        {"position", TgPoint3dMetaType::get()},
        {"target", TgPoint3dMetaType::get()},
        {"up", TgVector3dMetaType::get()},
        {"extentsWidth", IntrinsicMetaType<double>::get()},
        {"extentsHeight", IntrinsicMetaType<double>::get()}};
    MemberSet const & set = *Camera::s_metaType()->memberSet(0xFFFFFFFF);
    EXPECT_EQ(set.className(), "Camera");
    ASSERT_EQ(set.members(), expected.size());
    for (unsigned i = 0; i < set.members(); ++i) {
        EXPECT_EQ(set.member(i).name(), expected[i].first);
        EXPECT_EQ(set.member(i).type(), expected[i].second);
    }
}

TEST_F(CameraTests, ANewOneLooksDownTheAxisOfZ) {
    EXPECT_EQ(exactly(m_rCamera->position()), exactly(TgPoint3d(0, 0, 0)));
    EXPECT_EQ(exactly(m_rCamera->target()), exactly(TgPoint3d(0, 0, -1)));
    EXPECT_EQ(exactly(m_rCamera->up()), exactly(TgVector3d(0, 1, 0)));
    EXPECT_EQ(m_rCamera->extentsWidth(), 1);
    EXPECT_EQ(m_rCamera->extentsHeight(), 1);
}

TEST_F(CameraTests, MakeWithoutASegmentMakesNothing) { EXPECT_FALSE(Camera::make(nullptr)); }

// What the setters have in common.
struct Setter {
    char const * name;
    void (*set)(Camera & camera);
};
std::vector<Setter> const c_setters{
    {"Position", [](Camera & camera) { camera.position(TgPoint3d(1, 2, 3)); }},
    {"Target", [](Camera & camera) { camera.target(TgPoint3d(4, 5, 6)); }},
    {"Up", [](Camera & camera) { camera.up(TgVector3d(0, 0, 2)); }},
    {"Width", [](Camera & camera) { camera.extentsWidth(0.4); }},
    {"Height", [](Camera & camera) { camera.extentsHeight(-7); }}};

class CameraSetterTests : public CameraTests, public testing::WithParamInterface<Setter> {};

INSTANTIATE_TEST_SUITE_P(Setters, CameraSetterTests, testing::ValuesIn(c_setters),
                         [](auto const & row) { return std::string(row.param.name); });

TEST_P(CameraSetterTests, IsOneStepThatIsToldOnceUndoneAndDoneAgain) {
    Values const before(*m_rCamera);
    Observer const observer(*m_rCamera);
    step([&] { GetParam().set(*m_rCamera); });
    Values const after(*m_rCamera);
    EXPECT_NE(after, before);
    EXPECT_EQ(observer.m_pre, 1U);
    EXPECT_EQ(observer.m_post, 1U);
    EXPECT_EQ(m_rAsset->history().undoSteps(), 1U);
    ASSERT_TRUE(m_rAsset->history().undo());
    EXPECT_EQ(Values(*m_rCamera), before);
    ASSERT_TRUE(m_rAsset->history().redo());
    EXPECT_EQ(Values(*m_rCamera), after);
}

TEST_P(CameraSetterTests, TheValueThatItHasIsNoChange) {
    GetParam().set(*m_rCamera);
    TemporaryFile const file;
    ASSERT_TRUE(DocumentFile::saveAs(*m_rAsset, file.path()));
    Observer const observer(*m_rCamera);
    step([&] { GetParam().set(*m_rCamera); });
    EXPECT_EQ(observer.m_pre, 0U);
    EXPECT_FALSE(m_rAsset->history().canUndo());
    EXPECT_FALSE(m_rAsset->isDirty());
}

TEST_P(CameraSetterTests, AnObserverThatThrowsBeforeKeepsTheValue) {
    Values const before(*m_rCamera);
    Observer observer(*m_rCamera);
    observer.m_onPre = [] { throw std::runtime_error("no"); };
    EXPECT_THROW(GetParam().set(*m_rCamera), std::runtime_error);
    EXPECT_EQ(Values(*m_rCamera), before);
}

TEST_P(CameraSetterTests, WhatItStoresIsSavedAndLoaded) {
    GetParam().set(*m_rCamera);
    TemporaryFile const file;
    ASSERT_TRUE(DocumentFile::saveAs(*m_rAsset, file.path()));
    StrongRef<Asset> asset;
    StrongRef<Camera> const loaded = cameraIn(file.path(), asset);
    ASSERT_TRUE(loaded);
    EXPECT_EQ(Values(*loaded), Values(*m_rCamera));
}

TEST_F(CameraTests, PlacesWithinTheToleranceAreNoChange) {
    Values const before(*m_rCamera);
    Observer const observer(*m_rCamera);
    m_rCamera->position(TgPoint3d(9e-11, 0, 0));
    m_rCamera->target(TgPoint3d(-0.0, -0.0, -1));
    m_rCamera->up(TgVector3d(0, 1, 5e-11));
    EXPECT_EQ(observer.m_pre, 0U);
    EXPECT_EQ(Values(*m_rCamera), before);
    m_rCamera->extentsWidth(std::nextafter(1, 2)); // numbers have no tolerance
    EXPECT_EQ(observer.m_pre, 1U);
}

TEST_F(CameraTests, WhatIsNotANumberIsAlwaysAChange) {
    for (int round = 0; round < 2; ++round) {
        Observer const observer(*m_rCamera);
        m_rCamera->position(TgPoint3d(c_nan, 0, 0));
        m_rCamera->up(TgVector3d(0, c_infinity, 0));
        m_rCamera->extentsHeight(c_nan);
        EXPECT_EQ(observer.m_pre, 3U);
        m_rCamera->unsubscribe(const_cast<Observer *>(&observer));
    }
    m_rCamera->extentsWidth(c_infinity);
    Observer const observer(*m_rCamera);
    m_rCamera->extentsWidth(c_infinity); // an infinity is one number
    EXPECT_EQ(observer.m_pre, 0U);
}

TEST_F(CameraTests, OddNumbersAreSavedAndLoadedAsTheyAre) {
    m_rCamera->position(TgPoint3d(c_infinity, -c_infinity, 1e308));
    m_rCamera->target(TgPoint3d(std::numeric_limits<double>::denorm_min(), -1e308, 0.1 + 0.2));
    m_rCamera->up(TgVector3d(-0.0, 0, 0));
    m_rCamera->extentsWidth(-0.0);
    m_rCamera->extentsHeight(c_nan);
    TemporaryFile const file;
    ASSERT_TRUE(DocumentFile::saveAs(*m_rAsset, file.path()));
    StrongRef<Asset> asset;
    StrongRef<Camera> const loaded = cameraIn(file.path(), asset);
    ASSERT_TRUE(loaded);
    EXPECT_TRUE(std::isnan(loaded->extentsHeight()));
    loaded->extentsHeight(0);
    m_rCamera->extentsHeight(0);
    EXPECT_EQ(Values(*loaded), Values(*m_rCamera));
}

TEST_F(CameraTests, ALaterVersionIsRefused) {
    TemporaryFile const file;
    ASSERT_TRUE(DocumentFile::saveAs(*m_rAsset, file.path()));
    Sql(file.path()).run("UPDATE types SET version = 1 WHERE name = 'CameraMetaType'");
    StrongRef<Asset> asset;
    EXPECT_FALSE(DocumentFile::load(file.path(), nullptr, asset));
    EXPECT_FALSE(asset);
}

TEST_F(CameraTests, TheTextHasThatOfTheEntity) {
    std::wstring const text = m_rCamera->toString();
    EXPECT_EQ(text.substr(0, 13), L"Camera (base ");
    EXPECT_GT(text.size(), 14U);
    EXPECT_EQ(text.back(), L')');
}

TEST_F(CameraTests, SettersOutliveTheDocument) {
    m_rAsset.reset();
    m_rCamera->position(TgPoint3d(1, 2, 3));
    EXPECT_EQ(exactly(m_rCamera->position()), exactly(TgPoint3d(1, 2, 3)));
}

TEST(CameraThreadTests, TwoThreadsThatMakeTheFirstCamerasFillTheMemberSetOnce) {
    Units::expectInFreshProcess([] {
        std::atomic<int> ready = 0;
        auto const make = [&] {
            StrongRef<Asset> const asset = Asset::make(nullptr);
            Segment * const segment = asset->segment(1U);
            ++ready;
            while (ready < 2) std::this_thread::yield();
            EXPECT_TRUE(Camera::make(segment));
        };
        std::thread other(make);
        make();
        other.join();
        MemberSet const & set = *Camera::s_metaType()->memberSet(0xFFFFFFFF);
        ASSERT_EQ(set.members(), 5U);
        EXPECT_EQ(set.member(0).name(), "position");
        EXPECT_EQ(set.member(4).name(), "extentsHeight");
    });
}

} // namespace

} // namespace Vn::Scene
