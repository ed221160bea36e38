#include "Server/CommonData/AddIn/CommonDataAssetSettings.h"

#include <bit>
#include <cmath>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <functional>
#include <limits>
#include <sstream>
#include <string>
#include <type_traits>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Platform/DataModel/Asset.h"
#include "Platform/DataModel/DocumentFile.h"
#include "Platform/DataModel/EntityChange.h"
#include "Platform/DataModel/GeometryMetaTypes.h"
#include "Platform/DataModel/IEntityObserver.h"
#include "Platform/DataModel/MetaType.h"
#include "Server/CommonData/NamedViews/NamedViews.h"
#include "Server/CommonData/Units/UnitSystem.h"
#include "Tests/DataModel/DocumentSql.h"
#include "Tests/Support/Exactly.h"
#include "Tests/Support/TemporaryDirectory.h"

namespace Vn::CommonData {

namespace {

using NameView::NamedViews;
using Settings = CommonDataAssetSettings;
using ::testing::HasSubstr;
using Units::UnitSystem;
using Units::UnitSystems;
using Vn::Testing::Sql;
using Vn::Testing::TemporaryFile;

constexpr double c_nan = std::numeric_limits<double>::quiet_NaN();
constexpr double c_inf = std::numeric_limits<double>::infinity();

// Whether two values are the same to the last bit.
template <class Value>
bool isSame(Value const & a, Value const & b) {
    if constexpr (std::is_same_v<Value, double>)
        return std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b);
    else if constexpr (std::is_class_v<Value>)
        return exactly(a) == exactly(b);
    else
        return a == b;
}

template <class Value>
MemberMetaType * kindOf() {
    if constexpr (std::is_same_v<Value, TgPoint3d>)
        return TgPoint3dMetaType::get();
    else if constexpr (std::is_same_v<Value, TgVector3d>)
        return TgVector3dMetaType::get();
    else
        return IntrinsicMetaType<Value>::get();
}

// A plain setting, as the table on paper has it.
struct Row {
    unsigned number; // counted from 1, in the order of registration
    char const * member;
    MemberMetaType * kind;
    std::function<bool(Settings const &)> isStandard;
    std::function<bool(Settings const &)> isOther;
    std::function<void(Settings &)> setStandard;
    std::function<void(Settings &)> setOther;
};

void PrintTo(Row const & row, std::ostream * out) { *out << row.member; }

template <class Value>
Row row(unsigned number, char const * member, Value (Settings::*get)() const,
        void (Settings::*set)(Value), Value standard, Value other) {
    return {number,
            member,
            kindOf<Value>(),
            [=](Settings const & s) { return isSame((s.*get)(), standard); },
            [=](Settings const & s) { return isSame((s.*get)(), other); },
            [=](Settings & s) { (s.*set)(standard); },
            [=](Settings & s) { (s.*set)(other); }};
}

template <class Value>
Row changed(unsigned number, char const * member, Value (Settings::*get)() const,
            void (Settings::*set)(Value), Value standard) {
    if constexpr (std::is_same_v<Value, bool>)
        return row<Value>(number, member, get, set, standard, !standard);
    else if constexpr (std::is_class_v<Value>)
        return row<Value>(number, member, get, set, standard, Value(-1e-3, 1e300, 7));
    else
        return row<Value>(number, member, get, set, standard, 77);
}

using S = Settings;
using V = TgVector3d;
using P = TgPoint3d;

std::vector<Row> rows() {
    return {
        changed<V>(3, "defaultSceneFront", &S::defaultSceneFront, &S::defaultSceneFront,
                   {-1, 0, 0}),
        changed<V>(4, "sceneFront", &S::sceneFront, &S::sceneFront, {-1, 0, 0}),
        changed<V>(5, "defaultSceneUp", &S::defaultSceneUp, &S::defaultSceneUp, {0, 0, 1}),
        changed<V>(6, "sceneUp", &S::sceneUp, &S::sceneUp, {0, 0, 1}),
        changed<double>(7, "sceneBoundRadius", &S::sceneBoundRadius, &S::sceneBoundRadius, 1.8),
        changed<double>(8, "globalBoundRadius", &S::globalBoundRadius, &S::globalBoundRadius, 1.8),
        changed<P>(9, "sceneBoundBoxCenter", &S::sceneBoundBoxCenter, &S::sceneBoundBoxCenter,
                   {0, 0, 0}),
        changed<V>(10, "sceneBoundBoxExtent", &S::sceneBoundBoxExtent, &S::sceneBoundBoxExtent,
                   {1.8, 1.8, 1.8}),
        changed<bool>(11, "locktoSelection", &S::locktoSelection, &S::locktoSelection, false),
        changed<bool>(12, "fitHome", &S::fitHome, &S::fitHome, true),
        changed<bool>(13, "perspWithOrthoFaces", &S::perspWithOrthoFaces, &S::perspWithOrthoFaces,
                      false),
        changed<P>(14, "defaultHomePos", &S::defaultHomePosition, &S::defaultHomePosition,
                   {11.75, -3.15, 6.75}),
        changed<P>(15, "defaultHomeTarget", &S::defaultHomeTarget, &S::defaultHomeTarget,
                   {-1.5, 5.45, 2.0}),
        changed<V>(16, "defaultHomeUp", &S::defaultHomeUp, &S::defaultHomeUp, {0, 0, 1}),
        changed<unsigned>(17, "defaultHomeProjection", &S::defaultHomeProjection,
                          &S::defaultHomeProjection, 2),
        changed<double>(18, "defaultHomeExtentsWidth", &S::defaultHomeExtentsWidth,
                        &S::defaultHomeExtentsWidth, 0.6),
        changed<double>(19, "defaultHomeExtentsHeight", &S::defaultHomeExtentsHeight,
                        &S::defaultHomeExtentsHeight, 0.6),
        changed<P>(20, "currHomePos", &S::currentHomePosition, &S::currentHomePosition,
                   {11.75, -3.15, 6.75}),
        changed<P>(21, "currHomeTarget", &S::currentHomeTarget, &S::currentHomeTarget,
                   {-1.5, 5.45, 2.0}),
        changed<V>(22, "currHomeUp", &S::currentHomeUp, &S::currentHomeUp, {0, 0, 1}),
        changed<unsigned>(23, "currHomeProjection", &S::currHomeProjection, &S::currHomeProjection,
                          2),
        changed<double>(24, "currHomeExtentsWidth", &S::currHomeExtentsWidth,
                        &S::currHomeExtentsWidth, 0.6),
        changed<double>(25, "currHomeExtentsHeight", &S::currHomeExtentsHeight,
                        &S::currHomeExtentsHeight, 0.6),
    };
}

// Counts what it is told.
class Watch : public IEntityObserver {
public:
    explicit Watch(Entity & entity) : m_entity(entity) { entity.subscribe(this); }
    ~Watch() { m_entity.unsubscribe(this); }

    void preChange(Entity *, DataChange::ETransact, DataChange::EChangeType,
                   DataChange *) override {}
    void postChange(Entity *, DataChange::ETransact, DataChange::EChangeType type,
                    DataChange *) override {
        ++m_changes;
        m_type = type;
    }
    void preDeletion(Entity *, DataChange::ETransact) override {}

    int m_changes = 0;
    DataChange::EChangeType m_type = DataChange::ChangeStructural;

private:
    Entity & m_entity;
};

// A document with settings, which was saved once.
class SettingsDocument {
public:
    SettingsDocument() {
        m_rSettings = Settings::make(design());
        EXPECT_TRUE(DocumentFile::saveAs(*m_rAsset, m_file.path()));
    }

    Segment * design() const { return m_rAsset->segment(SegmentType::DesignSegment); }
    ChangeHistory & history() const { return m_rAsset->history(); }
    template <class Work>
    void step(Work && work) const {
        Transaction transaction(*m_rAsset, L"Step");
        work();
        transaction.commit();
    }
    // The settings of the file.
    StrongRef<Settings> read() {
        EXPECT_TRUE(DocumentFile::load(m_file.path(), nullptr, m_rRead));
        return settingsOf(m_rRead);
    }
    StrongRef<Settings> saved() {
        EXPECT_TRUE(DocumentFile::save(*m_rAsset));
        return read();
    }
    static StrongRef<Settings> settingsOf(StrongRef<Asset> const & asset) {
        if (!asset) return nullptr;
        StrongRef<Entity> const root =
            asset->segment(SegmentType::DesignSegment)->rootEntity("AssetSettings");
        return StrongRef<Settings>(query<Settings>(root.get()));
    }

    TemporaryFile m_file;
    StrongRef<Asset> m_rAsset = Asset::make(nullptr);
    StrongRef<Asset> m_rRead;
    StrongRef<Settings> m_rSettings;
};

// --- The table ---------------------------------------------------------------------------------

class SettingTests : public testing::TestWithParam<Row> {
protected:
    SettingsDocument m_document;
    Settings & m_settings = *m_document.m_rSettings;
};

INSTANTIATE_TEST_SUITE_P(Table, SettingTests, testing::ValuesIn(rows()),
                         [](auto const & each) { return std::string(each.param.member); });

TEST_P(SettingTests, IsAMemberOfItsKindAtItsPlace) {
    MemberSet const & set = *m_settings.memberSet();
    ASSERT_EQ(set.members(), 26U);
    Member const & member = set.member(GetParam().number - 1);
    EXPECT_EQ(member.name(), GetParam().member);
    EXPECT_EQ(member.type(), GetParam().kind);
    EXPECT_EQ(member.options(), Member::OptionsDefault);
}

TEST_P(SettingTests, StartsAsTheDefault) { EXPECT_TRUE(GetParam().isStandard(m_settings)); }

TEST_P(SettingTests, IsSetToldAndUndoneAsOneStep) {
    Watch const watch(m_settings);
    m_document.step([&] { GetParam().setOther(m_settings); });
    EXPECT_TRUE(GetParam().isOther(m_settings));
    EXPECT_EQ(watch.m_changes, 1);
    EXPECT_EQ(watch.m_type, DataChange::ChangeValue);
    ASSERT_EQ(m_document.history().undoSteps(), 1U);
    ASSERT_TRUE(m_document.history().undo());
    EXPECT_TRUE(GetParam().isStandard(m_settings));
    ASSERT_TRUE(m_document.history().redo());
    EXPECT_TRUE(GetParam().isOther(m_settings));
}

TEST_P(SettingTests, TheSameValueIsNoChange) {
    Watch const watch(m_settings);
    m_document.step([&] { GetParam().setStandard(m_settings); });
    EXPECT_EQ(watch.m_changes, 0);
    EXPECT_EQ(m_document.history().undoSteps(), 0U);
    EXPECT_FALSE(m_document.m_rAsset->isDirty());
}

TEST_P(SettingTests, IsSavedAndNoOtherFollowsIt) {
    m_document.step([&] { GetParam().setOther(m_settings); });
    StrongRef<Settings> const read = m_document.saved();
    ASSERT_TRUE(read);
    for (Row const & row : rows())
        EXPECT_TRUE(row.number == GetParam().number ? row.isOther(*read) : row.isStandard(*read))
            << row.member;
}

TEST(CommonDataAssetSettingsTests, TheMembersStandInTheirOrder) {
    SettingsDocument const document;
    MemberSet const & set = *document.m_rSettings->memberSet();
    EXPECT_EQ(set.className(), "CommonDataAssetSettings");
    EXPECT_EQ(set.member(0).name(), "activeUnitSystem");
    EXPECT_EQ(set.member(0).type(), PassiveRefMetaType::get());
    EXPECT_EQ(set.member(1).name(), "settingsInitialized");
    EXPECT_EQ(set.member(1).type(), IntrinsicMetaType<bool>::get());
    EXPECT_EQ(set.member(25).name(), "namedViews");
    EXPECT_EQ(set.member(25).type(), StrongRefMetaType::get());
    EXPECT_EQ(set.base(), AssetSettings::s_metaType()->memberSet(c_latestVersion));
}

TEST(CommonDataAssetSettingsTests, OnlyTheActiveUnitSystemIsntFollowed) {
    SettingsDocument const document;
    MemberSet const & set = *document.m_rSettings->memberSet();
    EXPECT_EQ(set.member(0).options(), Member::OptionsDefault & ~16U);
    for (unsigned i = 1; i < set.members(); ++i)
        EXPECT_EQ(set.member(i).options(), Member::OptionsDefault) << set.member(i).name();
}

TEST(CommonDataAssetSettingsTests, TheMetaTypeIsAsDocumentsKnowIt) {
    EntityMetaType const & type = *Settings::s_metaType();
    EXPECT_EQ(type.identifier(), "23FD63FB-4EBE-4c85-A42B-5D9809AA3499");
    EXPECT_EQ(type.name(), "CommonDataAssetSettingsMetaType");
    EXPECT_EQ(type.addInIdentifier(), "CommonData");
    EXPECT_EQ(type.version(), 1U);
    EXPECT_EQ(type.type(), 2);
    EXPECT_EQ(type.base(), AssetSettings::s_metaType());
    EXPECT_FALSE(StrongRef<Settings>(Settings::make(nullptr)));
}

TEST(CommonDataAssetSettingsTests, TheTextNamesTheBase) {
    SettingsDocument const document;
    std::wstring const text = document.m_rSettings->toString();
    EXPECT_EQ(text.find(L"CommonDataAssetSettings (base "), 0U);
    EXPECT_EQ(text.back(), L')');
}

// --- What counts as a change -------------------------------------------------------------------

TEST(CommonDataAssetSettingsTests, SettingSceneBoundRadiusToItsPresentValueIsNotTold) {
    SettingsDocument const document;
    Settings & settings = *document.m_rSettings;
    Watch const watch(settings);
    settings.sceneBoundRadius(1.8);
    EXPECT_EQ(watch.m_changes, 0);
    settings.sceneBoundRadius(c_nan);
    settings.sceneBoundRadius(c_nan);
    settings.sceneBoundRadius(1.8);
    EXPECT_EQ(watch.m_changes, 3);
    settings.sceneBoundRadius(std::nextafter(1.8, 2.0));
    EXPECT_EQ(watch.m_changes, 4);
    settings.sceneBoundRadius(0.0);
    settings.sceneBoundRadius(-0.0);
    EXPECT_EQ(watch.m_changes, 5);
}

TEST(CommonDataAssetSettingsTests, AVectorWithinTheToleranceLeavesTheStoredOne) {
    SettingsDocument const document;
    Settings & settings = *document.m_rSettings;
    Watch const watch(settings);
    settings.sceneUp({0, 9e-11, 1});
    settings.currentHomePosition({11.75 + 9e-11, -3.15, 6.75});
    EXPECT_EQ(watch.m_changes, 0);
    EXPECT_TRUE(isSame(settings.sceneUp(), TgVector3d(0, 0, 1)));
    EXPECT_TRUE(isSame(settings.currentHomePosition(), TgPoint3d(11.75, -3.15, 6.75)));
}

TEST(CommonDataAssetSettingsTests, StepsBelowTheToleranceDontAddUp) {
    SettingsDocument const document;
    Settings & settings = *document.m_rSettings;
    settings.sceneUp({0, 6e-11, 1});
    settings.sceneUp({0, 12e-11, 1});
    EXPECT_TRUE(isSame(settings.sceneUp(), TgVector3d(0, 12e-11, 1)));
    settings.sceneUp({0, 18e-11, 1});
    EXPECT_TRUE(isSame(settings.sceneUp(), TgVector3d(0, 12e-11, 1)));
}

TEST(CommonDataAssetSettingsTests, AVectorThatIsntFiniteIsAlwaysAChange) {
    SettingsDocument const document;
    Settings & settings = *document.m_rSettings;
    Watch const watch(settings);
    settings.sceneFront({c_nan, 0, 0});
    settings.sceneFront({c_nan, 0, 0});
    settings.defaultHomeTarget({0, c_inf, 0});
    settings.defaultHomeTarget({0, c_inf, 0});
    EXPECT_EQ(watch.m_changes, 4);
}

TEST(CommonDataAssetSettingsTests, OddNumbersAreKeptSavedAndReadAsTheyWere) {
    for (double const odd : {c_nan, c_inf, -c_inf, 1e308, -1e308, 5e-324, -5e-324, -0.0}) {
        SettingsDocument document;
        Settings & settings = *document.m_rSettings;
        document.step([&] {
            settings.globalBoundRadius(odd);
            settings.sceneUp({odd, 5, odd});
            settings.sceneBoundBoxCenter({1, odd, 3});
        });
        StrongRef<Settings> const read = document.saved();
        ASSERT_TRUE(read);
        EXPECT_TRUE(isSame(read->globalBoundRadius(), odd)) << odd;
        EXPECT_TRUE(isSame(read->sceneUp(), TgVector3d(odd, 5, odd))) << odd;
        EXPECT_TRUE(isSame(read->sceneBoundBoxCenter(), TgPoint3d(1, odd, 3))) << odd;
        ASSERT_TRUE(document.history().undo());
        EXPECT_TRUE(isSame(settings.sceneUp(), TgVector3d(0, 0, 1)));
        ASSERT_TRUE(document.history().redo());
        EXPECT_TRUE(isSame(settings.sceneUp(), TgVector3d(odd, 5, odd))) << odd;
    }
}

// --- The grid ----------------------------------------------------------------------------------

TEST(CommonDataAssetSettingsTests, TheGridIsToldAndNeitherUndoneNorSaved) {
    SettingsDocument document;
    Settings & settings = *document.m_rSettings;
    double first = 0;
    double second = 0;
    EXPECT_EQ(settings.gridSize(first, second), 0);
    EXPECT_EQ(first, 20.0);
    EXPECT_EQ(second, 20.0);
    {
        Watch const watch(settings);
        document.step([&] { settings.gridSize(5, 1.5, c_nan); });
        EXPECT_EQ(watch.m_changes, 1);
        settings.gridSize(5, 1.5, 2.5);
        settings.gridSize(5, 1.5, 2.5);
        EXPECT_EQ(watch.m_changes, 2);
    }
    EXPECT_EQ(document.history().undoSteps(), 0U);
    EXPECT_FALSE(document.m_rAsset->isDirty());
    EXPECT_EQ(settings.gridSize(first, second), 5);
    EXPECT_EQ(first, 1.5);
    EXPECT_EQ(second, 2.5);
    StrongRef<Settings> const read = document.saved();
    ASSERT_TRUE(read);
    EXPECT_EQ(read->gridSize(first, second), 0);
    EXPECT_EQ(first, 20.0);
    EXPECT_EQ(second, 20.0);
}

// --- Setters without a change ------------------------------------------------------------------

TEST(CommonDataAssetSettingsTests, SettingsInitializedIsNotUndoableAndIsSaved) {
    SettingsDocument document;
    Settings & settings = *document.m_rSettings;
    {
        Watch const watch(settings);
        document.step([&] { settings.settingsInitialized(true); });
        EXPECT_EQ(watch.m_changes, 0);
    }
    EXPECT_EQ(document.history().undoSteps(), 0U);
    EXPECT_TRUE(document.m_rAsset->isDirty());
    StrongRef<Settings> const read = document.saved();
    ASSERT_TRUE(read);
    EXPECT_TRUE(read->settingsInitialized());
    EXPECT_FALSE(document.m_rAsset->isDirty());
}

TEST(CommonDataAssetSettingsTests, AnAbortOrAnUndoKeepsTheMark) {
    SettingsDocument const document;
    Settings & settings = *document.m_rSettings;
    {
        Transaction transaction(*document.m_rAsset, L"Aborted");
        settings.settingsInitialized(true);
    }
    EXPECT_TRUE(settings.settingsInitialized());
    document.step([&] {
        settings.fitHome(false);
        settings.settingsInitialized(false);
    });
    ASSERT_TRUE(document.history().undo());
    EXPECT_TRUE(settings.fitHome());
    EXPECT_FALSE(settings.settingsInitialized());
}

TEST(CommonDataAssetSettingsTests, NamedViewsAreOwnedWithoutAChange) {
    SettingsDocument document;
    Settings & settings = *document.m_rSettings;
    StrongRef<NamedViews> views = NamedViews::make(document.design());
    {
        Watch const watch(settings);
        document.step([&] { settings.namedViews(views); });
        EXPECT_EQ(watch.m_changes, 0);
    }
    EXPECT_EQ(document.history().undoSteps(), 0U);
    EXPECT_TRUE(document.m_rAsset->isDirty());
    PassiveRef<NamedViews> const alive = views;
    views.reset();
    EXPECT_TRUE(alive);
    StrongRef<Settings> const read = document.saved();
    ASSERT_TRUE(read);
    ASSERT_TRUE(read->namedViews());
    EXPECT_EQ(read->namedViews()->id(), settings.namedViews()->id());
    settings.namedViews(settings.namedViews());
    EXPECT_FALSE(document.m_rAsset->isDirty());
    settings.namedViews(nullptr);
    EXPECT_FALSE(alive);
    EXPECT_EQ(document.saved()->namedViews(), nullptr);
}

TEST(CommonDataAssetSettingsTests, ViewsWhoseMakingIsUndoneAreNullUntilARedo) {
    SettingsDocument document;
    Settings & settings = *document.m_rSettings;
    StrongRef<NamedViews> views;
    document.step([&] {
        views = NamedViews::make(document.design());
        document.design()->addRoot(views, "NamedViews");
        settings.namedViews(views);
    });
    ASSERT_TRUE(document.history().undo());
    EXPECT_EQ(settings.namedViews(), nullptr);
    EXPECT_EQ(document.saved()->namedViews(), nullptr);
    ASSERT_TRUE(document.history().redo());
    EXPECT_EQ(settings.namedViews(), views);
    ASSERT_TRUE(document.saved());
    EXPECT_TRUE(document.read()->namedViews());
}

// --- The active unit system --------------------------------------------------------------------

class ActiveUnitSystemTests : public testing::Test {
protected:
    ActiveUnitSystemTests() {
        m_rSystems = UnitSystems::make(m_document.design());
        m_rFirst = UnitSystem::make(m_rSystems, L"First", "first");
        m_rSecond = UnitSystem::make(m_rSystems, L"Second", "second");
        m_document.history().clear();
    }

    SettingsDocument m_document;
    Settings & m_settings = *m_document.m_rSettings;
    StrongRef<UnitSystems> m_rSystems;
    StrongRef<UnitSystem> m_rFirst;
    StrongRef<UnitSystem> m_rSecond;
};

TEST_F(ActiveUnitSystemTests, ThereIsNoneUntilOneIsActivated) {
    EXPECT_EQ(m_settings.activeUnitSystem(), nullptr);
    m_settings.activateUnitSystem(m_rFirst);
    EXPECT_EQ(m_settings.activeUnitSystem(), m_rFirst);
}

TEST_F(ActiveUnitSystemTests, ActivatingTheActiveOneDoesNothing) {
    m_settings.activateUnitSystem(m_rFirst);
    Watch const watch(m_settings);
    m_document.step([&] { m_settings.activateUnitSystem(m_rFirst); });
    EXPECT_EQ(watch.m_changes, 0);
    EXPECT_EQ(m_document.history().undoSteps(), 0U);
}

TEST_F(ActiveUnitSystemTests, ItIsUndoneAndSavedLikeEveryMember) {
    m_document.step([&] { m_settings.activateUnitSystem(m_rFirst); });
    m_document.step([&] { m_settings.activateUnitSystem(m_rSecond); });
    ASSERT_TRUE(m_document.history().undo());
    EXPECT_EQ(m_settings.activeUnitSystem(), m_rFirst);
    StrongRef<Settings> const read = m_document.saved();
    ASSERT_TRUE(read && read->activeUnitSystem());
    EXPECT_EQ(read->activeUnitSystem()->id(), "first");
    ASSERT_TRUE(m_document.history().undo());
    EXPECT_EQ(m_settings.activeUnitSystem(), nullptr);
}

TEST_F(ActiveUnitSystemTests, NullDeactivatesWithinABracket) {
    m_settings.activateUnitSystem(m_rFirst);
    Watch const watch(m_settings);
    m_document.step([&] { m_settings.activateUnitSystem(nullptr); });
    EXPECT_EQ(watch.m_changes, 1);
    EXPECT_EQ(m_settings.activeUnitSystem(), nullptr);
    ASSERT_TRUE(m_document.history().undo());
    EXPECT_EQ(m_settings.activeUnitSystem(), m_rFirst);
}

TEST_F(ActiveUnitSystemTests, NullWithoutAnActiveOneDoesNothing) {
    Watch const watch(m_settings);
    m_settings.activateUnitSystem(nullptr);
    EXPECT_EQ(watch.m_changes, 0);
    m_settings.activateUnitSystem(m_rFirst);
    m_rSystems->removeChild(m_rFirst);
    m_rFirst.reset();
    EXPECT_EQ(m_settings.activeUnitSystem(), nullptr);
    int const before = watch.m_changes;
    m_settings.activateUnitSystem(nullptr);
    EXPECT_EQ(watch.m_changes, before);
}

// --- Documents ---------------------------------------------------------------------------------

TEST(CommonDataAssetSettingsTests, TheFirstAreTheDocumentsAndASecondIsFoundByNobody) {
    SettingsDocument const document;
    StrongRef<Settings> const second = Settings::make(document.design());
    ASSERT_TRUE(second);
    EXPECT_EQ(SettingsDocument::settingsOf(document.m_rAsset), document.m_rSettings);
    EXPECT_EQ(document.design()->rootKey(second.get()), nullptr);
}

TEST(CommonDataAssetSettingsTests, UndoAndRedoOfTheMakingLeaveOne) {
    StrongRef<Asset> const asset = Asset::make(nullptr);
    Segment * const design = asset->segment(SegmentType::DesignSegment);
    StrongRef<Settings> settings;
    {
        Transaction transaction(*asset, L"Make");
        settings = Settings::make(design);
        transaction.commit();
    }
    for (int round = 0; round < 3; ++round) {
        ASSERT_TRUE(asset->history().undo());
        EXPECT_EQ(SettingsDocument::settingsOf(asset), nullptr);
        ASSERT_TRUE(asset->history().redo());
        EXPECT_EQ(SettingsDocument::settingsOf(asset), settings);
    }
}

class OlderSettingsTests : public testing::Test {
protected:
    // A document that the first version of the class wrote, with `sceneUp` and `fitHome` changed.
    OlderSettingsTests() {
        std::ifstream stream(VN_SETTINGS_OF_VERSION_0, std::ios::binary);
        std::ostringstream text;
        text << stream.rdbuf();
        EXPECT_FALSE(text.str().empty());
        std::filesystem::remove(m_file.path());
        Sql(m_file.path()).run(text.str());
    }

    // Takes a member out of the file, as if it had never been in it.
    void lose(std::string const & name) {
        Sql const sql(m_file.path());
        std::string const position =
            sql.query("SELECT position FROM members WHERE name='" + name + "'").at(0).at(0);
        sql.run("DELETE FROM members WHERE name='" + name + "'");
        // By a detour, since no two members may have one position at any time.
        sql.run("UPDATE members SET position=-position WHERE position>" + position);
        sql.run("UPDATE members SET position=-position-1 WHERE position<0");
        sql.run("ALTER TABLE CommonDataAssetSettings DROP COLUMN \"CommonDataAssetSettings." +
                name + "\"");
    }

    TemporaryFile m_file;
    StrongRef<Asset> m_rAsset;
};

TEST_F(OlderSettingsTests, Version0LoadsWithoutViewsAndIsSavedAsVersion1) {
    Status const status = DocumentFile::load(m_file.path(), nullptr, m_rAsset);
    ASSERT_TRUE(status) << status.toString();
    StrongRef<Settings> const settings = SettingsDocument::settingsOf(m_rAsset);
    ASSERT_TRUE(settings);
    EXPECT_EQ(settings->namedViews(), nullptr);
    EXPECT_EQ(settings->version(), 1U);
    for (Row const & row : rows())
        if (row.number == 6)
            EXPECT_TRUE(isSame(settings->sceneUp(), TgVector3d(0, 1, 0)));
        else if (row.number == 12)
            EXPECT_FALSE(settings->fitHome());
        else
            EXPECT_TRUE(row.isStandard(*settings)) << row.member;

    settings->namedViews(NamedViews::make(m_rAsset->segment(SegmentType::DesignSegment)));
    ASSERT_TRUE(DocumentFile::save(*m_rAsset));
    StrongRef<Asset> again;
    ASSERT_TRUE(DocumentFile::load(m_file.path(), nullptr, again));
    EXPECT_TRUE(SettingsDocument::settingsOf(again)->namedViews());
}

TEST_F(OlderSettingsTests, Version0HasTheFirst25Members) {
    ASSERT_TRUE(DocumentFile::load(m_file.path(), nullptr, m_rAsset));
    MemberSet const & older = *Settings::s_metaType()->memberSet(0);
    MemberSet const & latest = *Settings::s_metaType()->memberSet(c_latestVersion);
    ASSERT_EQ(older.members(), 25U);
    for (unsigned i = 0; i < 25; ++i) {
        EXPECT_EQ(older.member(i).name(), latest.member(i).name());
        EXPECT_EQ(older.member(i).options(), latest.member(i).options());
    }
}

TEST_F(OlderSettingsTests, WhatAFileLacksIsZeroAndNotTheDefault) {
    for (char const * const name : {"fitHome", "sceneBoundRadius", "currHomeProjection",
                                    "sceneUp.x", "sceneUp.y", "sceneUp.z"})
        lose(name);
    Status const status = DocumentFile::load(m_file.path(), nullptr, m_rAsset);
    ASSERT_TRUE(status) << status.toString();
    StrongRef<Settings> const settings = SettingsDocument::settingsOf(m_rAsset);
    ASSERT_TRUE(settings);
    EXPECT_FALSE(settings->fitHome());
    EXPECT_EQ(settings->sceneBoundRadius(), 0);
    EXPECT_TRUE(isSame(settings->sceneUp(), TgVector3d()));
    EXPECT_EQ(settings->currHomeProjection(), 0U);
    EXPECT_EQ(settings->defaultHomeProjection(), 2U);
}

TEST_F(OlderSettingsTests, Version2IsRefused) {
    Sql(m_file.path()).run("UPDATE types SET version=2 WHERE name LIKE 'CommonDataAssetSettings%'");
    Status const status = DocumentFile::load(m_file.path(), nullptr, m_rAsset);
    EXPECT_EQ(status.code(), StatusNewerFormat) << status.toString();
    EXPECT_EQ(m_rAsset, nullptr);
}

TEST(CommonDataAssetSettingsTests, ViewsOfAnotherClassAreRefused) {
    SettingsDocument document;
    document.m_rSettings->namedViews(NamedViews::make(document.design()));
    ASSERT_TRUE(document.saved());
    Sql(document.m_file.path())
        .run("UPDATE CommonDataAssetSettings SET \"CommonDataAssetSettings.namedViews\"=id");
    StrongRef<Asset> read;
    Status const status = DocumentFile::load(document.m_file.path(), nullptr, read);
    EXPECT_EQ(status.code(), StatusCorrupt) << status.toString();
    EXPECT_EQ(read, nullptr);
}

} // namespace

} // namespace Vn::CommonData
