#include "Platform/Scene/Camera.h"

#include <atomic>
#include <bit>
#include <cstdint>
#include <limits>
#include <stdexcept>
#include <string>
#include <thread>

#include <gtest/gtest.h>

#include "Platform/DataModel/Asset.h"
#include "Platform/DataModel/DocumentFile.h"
#include "Platform/DataModel/GeometryMetaTypes.h"
#include "Platform/DataModel/IEntityObserver.h"
#include "Platform/DataModel/MetaType.h"
#include "Tests/DataModel/DocumentSql.h"
#include "Tests/Support/Exactly.h"
#include "Tests/Support/FreshProcess.h"
#include "Tests/Support/TemporaryDirectory.h"

namespace Vn::Scene {

namespace {

constexpr double c_nan = std::numeric_limits<double>::quiet_NaN();
constexpr double c_inf = std::numeric_limits<double>::infinity();

class Watch : public IEntityObserver {
public:
    explicit Watch(Entity & entity) : m_entity(entity) { entity.subscribe(this); }
    ~Watch() { m_entity.unsubscribe(this); }

    void preChange(Entity *, DataChange::ETransact, DataChange::EChangeType,
                   DataChange *) override {}
    void postChange(Entity *, DataChange::ETransact, DataChange::EChangeType type,
                    DataChange *) override {
        EXPECT_EQ(type, DataChange::ChangeValue);
        ++m_changes;
    }
    void preDeletion(Entity *, DataChange::ETransact) override {}

    int m_changes = 0;

private:
    Entity & m_entity;
};

class CameraTests : public testing::Test {
protected:
    CameraTests() {
        m_rCamera = Camera::make(m_rAsset->segment(SegmentType::DesignSegment));
        m_rAsset->segment(SegmentType::DesignSegment)->addRoot(m_rCamera, "Camera");
        m_rAsset->history().clear();
    }

    template <class Work>
    void step(Work && work) {
        Transaction transaction(*m_rAsset, L"Step");
        work();
        transaction.commit();
    }

    StrongRef<Asset> m_rAsset = Asset::make(nullptr);
    StrongRef<Camera> m_rCamera;
};

TEST_F(CameraTests, TheMembersAreThoseOfDocuments) {
    EntityMetaType & type = *Camera::s_metaType();
    EXPECT_EQ(type.identifier(), "F0C5C2D4-8F0E-4E5B-9C35-1B0D4A7C6E21");
    EXPECT_EQ(type.version(), 0U);
    MemberSet const & set = *type.memberSet(c_latestVersion);
    ASSERT_EQ(set.members(), 5U);
    struct Row {
        char const * name;
        MemberMetaType * kind;
    };
    Row const rows[] = {{"position", TgPoint3dMetaType::get()},
                        {"target", TgPoint3dMetaType::get()},
                        {"up", TgVector3dMetaType::get()},
                        {"extentsWidth", IntrinsicMetaType<double>::get()},
                        {"extentsHeight", IntrinsicMetaType<double>::get()}};
    for (unsigned i = 0; i < 5; ++i) {
        EXPECT_EQ(set.member(i).name(), rows[i].name);
        EXPECT_EQ(set.member(i).type(), rows[i].kind) << rows[i].name;
    }
}

TEST_F(CameraTests, ANewOneLooksDownTheAxisOfZ) {
    EXPECT_EQ(exactly(m_rCamera->position()), exactly(TgPoint3d(0, 0, 0)));
    EXPECT_EQ(exactly(m_rCamera->target()), exactly(TgPoint3d(0, 0, -1)));
    EXPECT_EQ(exactly(m_rCamera->up()), exactly(TgVector3d(0, 1, 0)));
    EXPECT_EQ(m_rCamera->extentsWidth(), 1);
    EXPECT_EQ(m_rCamera->extentsHeight(), 1);
    EXPECT_FALSE(StrongRef<Camera>(Camera::make(nullptr)));
}

TEST_F(CameraTests, EachSetterIsAChangeOfItsOwnThatIsUndone) {
    Watch const watch(*m_rCamera);
    step([&] {
        m_rCamera->position({1, 2, 3});
        m_rCamera->target({4, 5, 6});
        m_rCamera->up({0, 0, 2});
        m_rCamera->extentsWidth(7);
        m_rCamera->extentsHeight(8);
    });
    EXPECT_EQ(watch.m_changes, 5);
    ASSERT_TRUE(m_rAsset->history().undo());
    EXPECT_EQ(exactly(m_rCamera->target()), exactly(TgPoint3d(0, 0, -1)));
    EXPECT_EQ(m_rCamera->extentsHeight(), 1);
    ASSERT_TRUE(m_rAsset->history().redo());
    EXPECT_EQ(exactly(m_rCamera->position()), exactly(TgPoint3d(1, 2, 3)));
    EXPECT_EQ(exactly(m_rCamera->up()), exactly(TgVector3d(0, 0, 2)));
    EXPECT_EQ(m_rCamera->extentsWidth(), 7);
}

TEST_F(CameraTests, TheSameValueIsNoChange) {
    Watch const watch(*m_rCamera);
    step([&] {
        m_rCamera->position({0, 9e-11, -0.0});
        m_rCamera->target({0, 0, -1 - 9e-11});
        m_rCamera->up({0, 1, 0});
        m_rCamera->extentsWidth(1);
        m_rCamera->extentsHeight(1);
    });
    EXPECT_EQ(watch.m_changes, 0);
    EXPECT_EQ(m_rAsset->history().undoSteps(), 0U);
    EXPECT_EQ(exactly(m_rCamera->position()), exactly(TgPoint3d(0, 0, 0)));
}

TEST_F(CameraTests, NaNIsAlwaysAChange) {
    m_rCamera->extentsWidth(c_nan);
    m_rCamera->up({c_nan, 0, 0});
    Watch const watch(*m_rCamera);
    m_rCamera->extentsWidth(c_nan);
    m_rCamera->up({c_nan, 0, 0});
    m_rCamera->extentsWidth(1 + std::numeric_limits<double>::epsilon());
    EXPECT_EQ(watch.m_changes, 3);
}

TEST_F(CameraTests, WhatIsSavedIsReadBackToTheLastBit) {
    Vn::Testing::TemporaryFile const file;
    for (double const odd : {0.1, c_nan, c_inf, -c_inf, 1e308, 5e-324, -0.0}) {
        m_rCamera->position({odd, 1, 2});
        m_rCamera->up({1, odd, 2});
        m_rCamera->extentsHeight(odd);
        ASSERT_TRUE(DocumentFile::saveAs(*m_rAsset, file.path()));
        StrongRef<Asset> asset;
        ASSERT_TRUE(DocumentFile::load(file.path(), nullptr, asset));
        StrongRef<Entity> const root =
            asset->segment(SegmentType::DesignSegment)->rootEntity("Camera");
        auto const * const read = query<Camera>(root.get());
        ASSERT_NE(read, nullptr);
        EXPECT_EQ(exactly(read->position()), exactly(m_rCamera->position())) << odd;
        EXPECT_EQ(exactly(read->up()), exactly(m_rCamera->up())) << odd;
        EXPECT_EQ(std::bit_cast<std::uint64_t>(read->extentsHeight()),
                  std::bit_cast<std::uint64_t>(m_rCamera->extentsHeight()))
            << odd;
    }
}

TEST_F(CameraTests, AnObserverThatThrowsBeforeKeepsTheValue) {
    struct Thrower : Watch {
        using Watch::Watch;
        void preChange(Entity *, DataChange::ETransact, DataChange::EChangeType,
                       DataChange *) override {
            throw std::runtime_error("no");
        }
    };
    Thrower const thrower(*m_rCamera);
    EXPECT_THROW(m_rCamera->position({1, 2, 3}), std::runtime_error);
    EXPECT_THROW(m_rCamera->extentsWidth(5), std::runtime_error);
    EXPECT_EQ(exactly(m_rCamera->position()), exactly(TgPoint3d(0, 0, 0)));
    EXPECT_EQ(m_rCamera->extentsWidth(), 1);
}

TEST_F(CameraTests, SettersOutliveTheDocument) {
    m_rAsset.reset();
    m_rCamera->position({1, 2, 3});
    EXPECT_EQ(exactly(m_rCamera->position()), exactly(TgPoint3d(1, 2, 3)));
}

TEST_F(CameraTests, ALaterVersionIsRefused) {
    Vn::Testing::TemporaryFile const file;
    ASSERT_TRUE(DocumentFile::saveAs(*m_rAsset, file.path()));
    Vn::Testing::Sql(file.path()).run("UPDATE types SET version = 1 WHERE name = 'CameraMetaType'");
    StrongRef<Asset> asset;
    EXPECT_EQ(DocumentFile::load(file.path(), nullptr, asset).code(), StatusNewerFormat);
    EXPECT_FALSE(asset);
}

TEST_F(CameraTests, ItIsFoundByTheIdsOfItsClass) {
    EXPECT_EQ(Camera::interfaceId()->string(), "Vn::Scene::Camera");
    EXPECT_EQ(query<Camera>(static_cast<Entity *>(m_rCamera.get())), m_rCamera.get());
    EXPECT_EQ(m_rCamera->metaType(), Camera::s_metaType());
    EXPECT_EQ(m_rCamera->queryMTInterface(Camera::s_metaType()), m_rCamera.get());
}

TEST(CameraThreadTests, TwoThreadsThatMakeTheFirstCamerasFillTheMemberSetOnce) {
    Units::expectInFreshProcess([] {
        std::atomic<int> ready = 0;
        auto const make = [&] {
            StrongRef<Asset> const asset = Asset::make(nullptr);
            Segment * const segment = asset->segment(SegmentType::DesignSegment);
            ++ready;
            while (ready < 2) std::this_thread::yield();
            EXPECT_TRUE(Camera::make(segment));
        };
        std::thread other(make);
        make();
        other.join();
        MemberSet const & set = *Camera::s_metaType()->memberSet(c_latestVersion);
        ASSERT_EQ(set.members(), 5U);
        EXPECT_EQ(set.member(0).name(), "position");
        EXPECT_EQ(set.member(4).name(), "extentsHeight");
    });
}

TEST_F(CameraTests, TheTextNamesTheClassAndTheBase) {
    EXPECT_EQ(m_rCamera->toString().find(L"Camera (base "), 0U);
}

} // namespace

} // namespace Vn::Scene
