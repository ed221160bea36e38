#include "Server/CommonData/AddIn/CommonDataAssetSettings.h"

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "Platform/Base/InterfaceId.h"
#include "Platform/DataModel/EntityMembers.h"
#include "Platform/DataModel/MemberSet.h"
#include "Platform/DataModel/MetaType.h"
#include "Platform/DataModel/Segment.h"
#include "Platform/Scene/Camera.h"
#include "Server/CommonData/NamedViews/NamedView.h"
#include "Tests/CommonData/AddIn/SettingsTesting.h"
#include "Tests/CommonData/Managed/ManagedTesting.h"
#include "Tests/Support/Exactly.h"

namespace Vn::CommonData {

namespace {

using Managed::Testing::Recorder;
using Managed::Testing::Told;
using Settings = CommonDataAssetSettings;

constexpr double c_nan = std::numeric_limits<double>::quiet_NaN();
constexpr double c_infinity = std::numeric_limits<double>::infinity();

std::string nameOf(testing::TestParamInfo<Setting> const & info) { return info.param.name; }

// One setting at a time.
class SettingTests : public testing::TestWithParam<Setting> {
protected:
    Settings & settings() const { return m_document.settings(); }
    Bits value() const { return GetParam().get(settings()); }
    void change() const { GetParam().change(m_document); }
    // The place in the table.
    unsigned place() const {
        unsigned i = 0;
        while (allSettings()[i].name != GetParam().name) ++i;
        return i;
    }

    SettingsDocument m_document;
};

INSTANTIATE_TEST_SUITE_P(Table, SettingTests, testing::ValuesIn(allSettings()), nameOf);

TEST_P(SettingTests, StandsInItsPlaceAmongTheMembers) {
    MemberSet const & set = *settings().memberSet();
    ASSERT_EQ(set.members(), allSettings().size());
    Member const & member = set.member(place());
    EXPECT_EQ(member.name(), GetParam().name);
    EXPECT_EQ(member.type(), GetParam().kind);
    EXPECT_EQ(member.options(), GetParam().name == "activeUnitSystem"
                                    ? Member::OptionsDefault & ~16U
                                    : std::uint32_t{Member::OptionsDefault});
}

TEST_P(SettingTests, BeginsWithItsDefault) { EXPECT_EQ(value(), GetParam().standard); }

TEST_P(SettingTests, IsSetAndNoOtherFollows) {
    std::vector<Bits> expected = m_document.values();
    change();
    EXPECT_NE(value(), GetParam().standard);
    expected[place()] = value();
    EXPECT_EQ(m_document.values(), expected);
}

TEST_P(SettingTests, TellsOfItsChangeOnce) {
    Recorder recorder(settings());
    Bits before;
    Bits after;
    recorder.m_onPre = [&](DataChange *) { before = value(); };
    recorder.m_onPost = [&](DataChange *) { after = value(); };
    change();
    if (!GetParam().isChange) {
        EXPECT_TRUE(recorder.m_told.empty());
        return;
    }
    EXPECT_EQ(before, GetParam().standard);
    EXPECT_EQ(after, value());
    ASSERT_EQ(recorder.m_told.size(), 2U);
    EXPECT_EQ(recorder.m_told[0].what, Told::Pre);
    EXPECT_EQ(recorder.m_told[1].what, Told::Post);
    for (Told const & told : recorder.m_told) {
        EXPECT_EQ(told.entity, &settings());
        EXPECT_EQ(told.transact, DataChange::TransactDirect);
        EXPECT_EQ(told.type, DataChange::ChangeValue);
        EXPECT_FALSE(told.hasDetails);
    }
}

TEST_P(SettingTests, TheValueThatItHasIsNoChange) {
    change();
    TemporaryFile const file;
    m_document.saveAs(file);
    std::vector<Bits> const values = m_document.values();
    Recorder recorder(settings());
    m_document.step([&] { change(); });
    EXPECT_TRUE(recorder.m_told.empty());
    EXPECT_FALSE(m_document.history().canUndo());
    EXPECT_EQ(m_document.values(), values);
    // The mark is stored without a look at what it was.
    EXPECT_EQ(m_document.asset().isDirty(), GetParam().name == "settingsInitialized");
}

TEST_P(SettingTests, IsOneStepThatIsUndoneAndDoneAgain) {
    std::vector<Bits> const before = m_document.values();
    m_document.step([&] { change(); });
    std::vector<Bits> const after = m_document.values();
    EXPECT_EQ(m_document.history().undoSteps(), GetParam().isChange ? 1U : 0U);
    if (!GetParam().isChange) {
        EXPECT_NE(value(), GetParam().standard);
        return;
    }
    for (int round = 0; round < 3; ++round) {
        m_document.undo();
        EXPECT_EQ(m_document.values(), before);
        m_document.redo();
        EXPECT_EQ(m_document.values(), after);
    }
}

TEST_P(SettingTests, AnAbortTakesBackWhatIsAChange) {
    std::vector<Bits> const before = m_document.values();
    Transaction transaction(m_document.asset(), L"Step");
    change();
    std::vector<Bits> const after = m_document.values();
    transaction.abort();
    EXPECT_EQ(m_document.values(), GetParam().isChange ? before : after);
}

TEST_P(SettingTests, IsSavedAndLoaded) {
    change();
    TemporaryFile const file;
    m_document.saveAs(file);
    EXPECT_EQ(valuesIn(file.path()), m_document.values());
}

TEST_P(SettingTests, IsWrittenByTheNextSave) {
    TemporaryFile const file;
    m_document.saveAs(file);
    EXPECT_FALSE(m_document.asset().isDirty());
    change();
    EXPECT_TRUE(m_document.asset().isDirty());
    m_document.save();
    EXPECT_FALSE(m_document.asset().isDirty());
    EXPECT_EQ(valuesIn(file.path()), m_document.values());
    EXPECT_NE(valuesIn(file.path())[place()], GetParam().standard);
}

TEST_P(SettingTests, IsUndoneAndDoneAgainOverASave) {
    TemporaryFile const file;
    m_document.saveAs(file);
    std::vector<Bits> const before = m_document.values();
    m_document.step([&] { m_document.settings().gridSize(1, 1, 1); });
    m_document.step([&] { change(); });
    std::vector<Bits> const after = m_document.values();
    m_document.save();
    if (!GetParam().isChange) {
        EXPECT_FALSE(m_document.history().canUndo());
        return;
    }
    m_document.undo();
    m_document.save();
    EXPECT_EQ(valuesIn(file.path()), before);
    m_document.redo();
    m_document.save();
    EXPECT_EQ(valuesIn(file.path()), after);
}

TEST_P(SettingTests, IsReadByNameAsWell) {
    EntityMembers const members{StrongRef<Entity>(&settings())};
    std::string const name = GetParam().name + (GetParam().standard.size() == 3 ? ".x" : "");
    std::wstring before;
    std::wstring after;
    EXPECT_TRUE(members.get(name, before));
    change();
    EXPECT_TRUE(members.get(name, after));
    EXPECT_NE(before, after);
}

class CommonDataAssetSettingsTests : public testing::Test {
protected:
    Settings & settings() const { return m_document.settings(); }

    SettingsDocument m_document;
};

TEST_F(CommonDataAssetSettingsTests, TheClassIsThatOfTheDocuments) {
    EntityMetaType const & type = *Settings::s_metaType();
    EXPECT_EQ(Settings::s_metaTypeId(), "23FD63FB-4EBE-4c85-A42B-5D9809AA3499");
    EXPECT_EQ(type.identifier(), Settings::s_metaTypeId());
    EXPECT_EQ(type.name(), "CommonDataAssetSettingsMetaType");
    EXPECT_EQ(type.addInIdentifier(), "CommonData");
    EXPECT_EQ(type.version(), 1U);
    EXPECT_EQ(type.baseIdentifier(), AssetSettings::s_metaTypeId());
    EXPECT_EQ(static_cast<unsigned>(type.type()), 2U);
    EXPECT_EQ(settings().metaType(), &type);
    EXPECT_EQ(settings().memberSet()->className(), "CommonDataAssetSettings");
    EXPECT_EQ(settings().memberSet()->base(), AssetSettings::s_metaType()->memberSet(0xFFFFFFFF));
    EXPECT_EQ(settings().version(), 1U);
}

TEST_F(CommonDataAssetSettingsTests, IsFoundByTheIdsOfItsClassAndOfItsBases) {
    EXPECT_EQ(Settings::interfaceId()->string(), "Vn::CommonData::CommonDataAssetSettings");
    EXPECT_EQ(Settings::interfaceId(), Settings::interfaceId());
    EXPECT_EQ(settings().getInterfaceId(), Settings::interfaceId());
    Entity const & entity = settings();
    EXPECT_EQ(query<Settings>(&entity), &settings());
    EXPECT_EQ(query<AssetSettings>(&entity), &settings());
    EXPECT_EQ(query<NameView::NamedViews>(&entity), nullptr);
    EXPECT_EQ(settings().queryMTInterface(Settings::s_metaType()), &settings());
    EXPECT_EQ(settings().queryMTInterface(AssetSettings::s_metaType()), &settings());
    EXPECT_EQ(settings().queryMTInterface(NameView::NamedViews::s_metaType()), nullptr);
}

TEST_F(CommonDataAssetSettingsTests, TheTextHasThatOfTheBase) {
    std::wstring const text = settings().toString();
    EXPECT_EQ(text,
              L"CommonDataAssetSettings (base Entity " + std::to_wstring(settings().id()) + L')');
}

// As the data model makes one of a file that lacks members.
TEST_F(CommonDataAssetSettingsTests, OneThatIsBeingLoadedBeginsWithZeroes) {
    StrongRef<Entity> const made = Settings::s_metaType()->createEntity(m_document.segment(), 5000);
    auto const & loaded = *query<Settings>(made.get());
    for (Setting const & setting : allSettings())
        EXPECT_EQ(setting.get(loaded), Bits(setting.standard.size(), 0)) << setting.name;
    double first = 0;
    double second = 0;
    EXPECT_EQ(loaded.gridSize(first, second), 0);
    EXPECT_EQ(first, 20.0);
    EXPECT_EQ(second, 20.0);
}

TEST_F(CommonDataAssetSettingsTests, MakeWithoutASegmentMakesNothing) {
    EXPECT_FALSE(Settings::make(nullptr));
}

TEST_F(CommonDataAssetSettingsTests, MakeGivesADocumentItsSettings) {
    StrongRef<Asset> const asset = Asset::make(nullptr);
    Segment * const segment = asset->segment(1U);
    StrongRef<Settings> made;
    {
        Transaction transaction(*asset, L"Equip");
        made = Settings::make(segment);
        transaction.commit();
    }
    EXPECT_EQ(segment->rootEntity("AssetSettings"), made);
    ASSERT_TRUE(asset->history().undo());
    EXPECT_FALSE(segment->rootEntity("AssetSettings"));
    EXPECT_FALSE(made->isAlive());
    ASSERT_TRUE(asset->history().redo());
    EXPECT_EQ(segment->rootEntity("AssetSettings"), made);
    EXPECT_TRUE(made->fitHome());
}

TEST_F(CommonDataAssetSettingsTests, ASecondOneIsAnEntityThatNobodyFinds) {
    Settings * const first = &settings();
    StrongRef<Settings> const second = Settings::make(m_document.segment());
    ASSERT_TRUE(second);
    EXPECT_EQ(&settings(), first);
    EXPECT_EQ(m_document.segment()->rootKey(second.get()), nullptr);
    second->sceneUp(TgVector3d(0, 1, 0));
    EXPECT_EQ(exactly(first->sceneUp()), exactly(TgVector3d(0, 0, 1)));
}

TEST_F(CommonDataAssetSettingsTests, ADocumentMayHaveNone) {
    m_document.segment()->addRoot(nullptr, "AssetSettings");
    EXPECT_EQ(m_document.found(), nullptr);
}

TEST_F(CommonDataAssetSettingsTests, SettingTheBoundRadiusToItsValueTellsNobodyAndNaNAlwaysDoes) {
    Recorder recorder(settings());
    settings().sceneBoundRadius(1.8);
    EXPECT_TRUE(recorder.m_told.empty());
    settings().sceneBoundRadius(c_nan);
    EXPECT_EQ(recorder.m_told.size(), 2U);
    settings().sceneBoundRadius(c_nan);
    EXPECT_EQ(recorder.m_told.size(), 4U);
    settings().sceneBoundRadius(1.8);
    EXPECT_EQ(recorder.m_told.size(), 6U);
    settings().sceneBoundRadius(std::nextafter(1.8, 2)); // numbers have no tolerance
    EXPECT_EQ(recorder.m_told.size(), 8U);
    settings().sceneBoundRadius(0.0);
    settings().sceneBoundRadius(-0.0);
    EXPECT_EQ(recorder.m_told.size(), 10U);
}

TEST_F(CommonDataAssetSettingsTests, AVectorWithinTheToleranceIsNoChangeAndIsNotStored) {
    Recorder recorder(settings());
    TgVector3d const up = settings().sceneUp();
    settings().sceneUp(TgVector3d(1e-11, 0, 1));
    settings().sceneUp(TgVector3d(-0.0, -0.0, 1));
    EXPECT_EQ(exactly(settings().sceneUp()), exactly(up));
    TgPoint3d const home = settings().currentHomePosition();
    settings().currentHomePosition(home + TgVector3d(0, 9e-11, 0));
    EXPECT_EQ(exactly(settings().currentHomePosition()), exactly(home));
    EXPECT_TRUE(recorder.m_told.empty());
    settings().sceneUp(TgVector3d(2e-10, 0, 1));
    EXPECT_EQ(exactly(settings().sceneUp()), exactly(TgVector3d(2e-10, 0, 1)));
    EXPECT_EQ(recorder.m_told.size(), 2U);
}

TEST_F(CommonDataAssetSettingsTests, StepsBelowTheToleranceDoNotAddUp) {
    for (int i = 1; i <= 2; ++i) settings().sceneUp(TgVector3d(i * 4e-11, 0, 1));
    EXPECT_EQ(settings().sceneUp().x, 0);
    settings().sceneUp(TgVector3d(3 * 4e-11, 0, 1)); // from what is stored this is far enough
    EXPECT_EQ(settings().sceneUp().x, 3 * 4e-11);
}

TEST_F(CommonDataAssetSettingsTests, AVectorThatIsNotFiniteIsAlwaysAChange) {
    for (double const odd : {c_nan, c_infinity, -c_infinity}) {
        settings().sceneUp(TgVector3d(0, odd, 0));
        settings().defaultHomePosition(TgPoint3d(0, 0, odd));
        Recorder recorder(settings());
        settings().sceneUp(TgVector3d(0, odd, 0));
        settings().defaultHomePosition(TgPoint3d(0, 0, odd));
        EXPECT_EQ(recorder.m_told.size(), 4U) << odd;
        settings().unsubscribe(&recorder);
    }
}

TEST_F(CommonDataAssetSettingsTests, NothingIsNormalizedOrMadePerpendicular) {
    settings().sceneUp(TgVector3d(0, 0, 0));
    settings().sceneFront(TgVector3d(3, 4, 0));
    settings().sceneUp(TgVector3d(3, 4, 0));
    EXPECT_EQ(exactly(settings().sceneUp()), exactly(TgVector3d(3, 4, 0)));
    EXPECT_EQ(exactly(settings().sceneFront()), exactly(TgVector3d(3, 4, 0)));
    settings().sceneBoundRadius(-5);
    EXPECT_EQ(settings().sceneBoundRadius(), -5);
}

TEST_F(CommonDataAssetSettingsTests, GridSizeSurvivesNeitherSaveNorReload) {
    double first = 0;
    double second = 0;
    settings().gridSize(7, 1.5, 2.5);
    EXPECT_EQ(settings().gridSize(first, second), 7);
    EXPECT_EQ(first, 1.5);
    EXPECT_EQ(second, 2.5);
    TemporaryFile const file;
    m_document.saveAs(file);
    EXPECT_EQ(settings().gridSize(first, second), 7);
    SettingsDocument const loaded(file.path());
    EXPECT_EQ(loaded.settings().gridSize(first, second), 0);
    EXPECT_EQ(first, 20.0);
    EXPECT_EQ(second, 20.0);
}

TEST_F(CommonDataAssetSettingsTests, TheGridTellsObserversAndIsNoStep) {
    TemporaryFile const file;
    m_document.saveAs(file);
    Recorder recorder(settings());
    m_document.step([&] { settings().gridSize(0, 20.0, 20.0); });
    EXPECT_TRUE(recorder.m_told.empty());
    m_document.step([&] { settings().gridSize(1, 20.0, 20.0); });
    m_document.step([&] { settings().gridSize(1, 20.0, 5); });
    m_document.step([&] { settings().gridSize(1, c_nan, 5); });
    m_document.step([&] { settings().gridSize(1, c_nan, 5); });
    EXPECT_EQ(recorder.m_told.size(), 8U);
    EXPECT_EQ(recorder.m_told[0].type, DataChange::ChangeValue);
    EXPECT_FALSE(m_document.history().canUndo());
    EXPECT_FALSE(m_document.asset().isDirty());
}

TEST_F(CommonDataAssetSettingsTests, TheGridLeavesTheStepsAsTheyAre) {
    m_document.step([&] { settings().fitHome(false); });
    m_document.step([&] { settings().sceneBoundRadius(3); });
    m_document.undo();
    settings().gridSize(3, 1, 2);
    EXPECT_EQ(m_document.history().undoSteps(), 1U);
    EXPECT_EQ(m_document.history().redoSteps(), 1U);
    m_document.undo();
    double first = 0;
    double second = 0;
    EXPECT_EQ(settings().gridSize(first, second), 3);
}

TEST_F(CommonDataAssetSettingsTests, WhatAnObserverOfTheGridSetsIsUndoneAndSaved) {
    TemporaryFile const file;
    m_document.saveAs(file);
    Recorder recorder(settings());
    bool isFirst = true;
    recorder.m_onPre = [&](DataChange *) {
        if (std::exchange(isFirst, false)) settings().sceneBoundRadius(3);
    };
    m_document.step([&] { settings().gridSize(3, 1, 2); });
    EXPECT_TRUE(m_document.asset().isDirty());
    EXPECT_EQ(m_document.history().undoSteps(), 1U);
    m_document.undo();
    EXPECT_EQ(settings().sceneBoundRadius(), 1.8);
    m_document.redo();
    m_document.save();
    EXPECT_EQ(SettingsDocument(file.path()).settings().sceneBoundRadius(), 3);
}

TEST_F(CommonDataAssetSettingsTests, WhatAnObserverSetsIsAPartOfTheStep) {
    Recorder recorder(settings());
    recorder.m_onPre = [&](DataChange *) {
        settings().unsubscribe(&recorder);
        settings().sceneFront(TgVector3d(0, 0, 1));
        settings().sceneUp(TgVector3d(1, 0, 0)); // what the caller sets comes after
    };
    std::vector<Bits> const before = m_document.values();
    m_document.step([&] { settings().sceneUp(TgVector3d(0, 1, 0)); });
    std::vector<Bits> const after = m_document.values();
    EXPECT_EQ(exactly(settings().sceneUp()), exactly(TgVector3d(0, 1, 0)));
    EXPECT_EQ(exactly(settings().sceneFront()), exactly(TgVector3d(0, 0, 1)));
    EXPECT_EQ(m_document.history().undoSteps(), 1U);
    m_document.undo();
    EXPECT_EQ(m_document.values(), before);
    m_document.redo();
    EXPECT_EQ(m_document.values(), after);
}

TEST_F(CommonDataAssetSettingsTests, AnObserverThatThrowsBeforeKeepsTheValue) {
    Recorder recorder(settings());
    recorder.m_onPre = [](DataChange *) { throw std::runtime_error("no"); };
    EXPECT_THROW(settings().fitHome(false), std::runtime_error);
    EXPECT_TRUE(settings().fitHome());
    EXPECT_THROW(settings().activateUnitSystem(m_document.system()), std::runtime_error);
    EXPECT_FALSE(settings().activeUnitSystem());
    EXPECT_THROW(settings().gridSize(1, 2, 3), std::runtime_error);
    double first = 0;
    double second = 0;
    EXPECT_EQ(settings().gridSize(first, second), 0);
}

TEST_F(CommonDataAssetSettingsTests, ABracketOfTheCallersRecordsSmallerStepsThanTheSetters) {
    m_document.step([&] {
        EntityMembers const members{StrongRef<Entity>(&settings())};
        EXPECT_TRUE(members.set("sceneUp.x", L"1e-12"));
    });
    EXPECT_EQ(settings().sceneUp().x, 1e-12);
    m_document.undo();
    EXPECT_EQ(settings().sceneUp().x, 0);
    m_document.redo();
    EXPECT_EQ(settings().sceneUp().x, 1e-12);
}

TEST_F(CommonDataAssetSettingsTests, SettingsInitializedIsNotUndoable) {
    m_document.step([&] {
        settings().settingsInitialized(true);
        settings().fitHome(false);
    });
    m_document.undo();
    EXPECT_TRUE(settings().fitHome());
    EXPECT_TRUE(settings().settingsInitialized());
    m_document.redo();
    EXPECT_TRUE(settings().settingsInitialized());
}

// Undo and redo are still there, and lead to a file that has the mark.
TEST_F(CommonDataAssetSettingsTests, WhatMakesNoChangeLeavesTheStepsAndIsSavedAfterThem) {
    TemporaryFile const file;
    m_document.step([&] { settings().fitHome(false); });
    m_document.step([&] { settings().sceneBoundRadius(3); });
    m_document.undo();
    m_document.saveAs(file);
    settings().settingsInitialized(true);
    settings().namedViews(m_document.views());
    EXPECT_EQ(m_document.history().undoSteps(), 1U);
    EXPECT_EQ(m_document.history().redoSteps(), 1U);
    m_document.undo();
    m_document.save();
    SettingsDocument const undone(file.path());
    EXPECT_TRUE(undone.settings().settingsInitialized());
    EXPECT_TRUE(undone.settings().namedViews());
    EXPECT_TRUE(undone.settings().fitHome());
    m_document.redo();
    m_document.redo();
    m_document.save();
    EXPECT_EQ(valuesIn(file.path()), m_document.values());
    EXPECT_TRUE(settings().settingsInitialized());
}

TEST_F(CommonDataAssetSettingsTests, NoSystemIsActiveUntilOneIsActivated) {
    EXPECT_FALSE(settings().activeUnitSystem());
    settings().activateUnitSystem(m_document.system());
    EXPECT_EQ(settings().activeUnitSystem(), m_document.system());
}

TEST_F(CommonDataAssetSettingsTests, ActivatingTheActiveSystemDoesNothing) {
    settings().activateUnitSystem(m_document.system());
    Recorder recorder(settings());
    m_document.step([&] { settings().activateUnitSystem(m_document.system()); });
    EXPECT_TRUE(recorder.m_told.empty());
    EXPECT_FALSE(m_document.history().canUndo());
}

TEST_F(CommonDataAssetSettingsTests, ActivatingNullDeactivates) {
    Recorder recorder(settings());
    settings().activateUnitSystem(nullptr);
    EXPECT_TRUE(recorder.m_told.empty());
    settings().activateUnitSystem(m_document.system());
    m_document.step([&] { settings().activateUnitSystem(nullptr); });
    EXPECT_EQ(recorder.m_told.size(), 4U);
    EXPECT_FALSE(settings().activeUnitSystem());
    m_document.undo();
    EXPECT_EQ(settings().activeUnitSystem(), m_document.system());
}

TEST_F(CommonDataAssetSettingsTests, ASystemThatIsGoneIsNoLongerActive) {
    StrongRef<Units::UnitSystem> const system = m_document.system();
    settings().activateUnitSystem(system);
    m_document.step([&] { Units::UnitSystems::find(m_document.segment())->removeChild(system); });
    // The caller's reference keeps it until it goes.
    EXPECT_EQ(settings().activeUnitSystem(), system);
    m_document.undo();

    StrongRef<Units::UnitSystem> made;
    m_document.step([&] {
        made = Units::UnitSystem::make(Units::UnitSystems::find(m_document.segment()),
                                       std::wstring(L"Second"), "second");
        settings().activateUnitSystem(made);
    });
    m_document.undo();
    EXPECT_EQ(settings().activeUnitSystem(), system);
    m_document.redo();
    EXPECT_EQ(settings().activeUnitSystem(), made);
}

TEST_F(CommonDataAssetSettingsTests, NothingHappensIfTheActiveSystemIsGoneAndNullIsActivated) {
    StrongRef<Units::UnitSystems> const systems = Units::UnitSystems::find(m_document.segment());
    {
        StrongRef<Units::UnitSystem> const second =
            Units::UnitSystem::make(systems, std::wstring(L"Second"), "second");
        settings().activateUnitSystem(second);
        systems->removeChild(second);
    }
    EXPECT_FALSE(settings().activeUnitSystem());
    Recorder recorder(settings());
    settings().activateUnitSystem(nullptr);
    EXPECT_TRUE(recorder.m_told.empty());
}

TEST_F(CommonDataAssetSettingsTests, TheSettingsDoNotOwnTheActiveSystem) {
    PassiveRef<Units::UnitSystem> passive(m_document.system());
    settings().activateUnitSystem(m_document.system());
    StrongRef<Units::UnitSystems> const systems = Units::UnitSystems::find(m_document.segment());
    systems->removeChild(systems->child(0));
    EXPECT_FALSE(passive);
}

TEST_F(CommonDataAssetSettingsTests, TheSettingsOwnTheViews) {
    settings().namedViews(m_document.views());
    m_document.segment()->addRoot(nullptr, "NamedViews");
    ASSERT_TRUE(settings().namedViews());
    EXPECT_TRUE(settings().namedViews()->isAlive());
    PassiveRef<NameView::NamedViews> const views(settings().namedViews());
    settings().namedViews(nullptr);
    EXPECT_FALSE(views);
}

TEST_F(CommonDataAssetSettingsTests, NamedViewsAreNullWhileTheirMakingIsUndone) {
    TemporaryFile const file;
    m_document.step([&] {
        StrongRef<NameView::NamedViews> const made =
            NameView::NamedViews::make(m_document.segment());
        m_document.segment()->addRoot(made, "Made");
        settings().namedViews(made);
    });
    unsigned long long const id = settings().namedViews()->id();
    m_document.undo();
    EXPECT_FALSE(settings().namedViews());
    m_document.saveAs(file);
    EXPECT_FALSE(SettingsDocument(file.path()).settings().namedViews());
    m_document.redo();
    ASSERT_TRUE(settings().namedViews());
    EXPECT_EQ(settings().namedViews()->id(), id);
    m_document.save();
    EXPECT_EQ(SettingsDocument(file.path()).settings().namedViews()->id(), id);
    // Another undo, with the file as it is after the redo.
    m_document.undo();
    m_document.save();
    EXPECT_FALSE(SettingsDocument(file.path()).settings().namedViews());
}

// Where the views look from, to and at which size.
std::vector<std::vector<ExactPlace>> camerasOf(NameView::NamedViews const & views) {
    std::vector<std::vector<ExactPlace>> all;
    for (unsigned i = 0; i < views.children(); ++i) {
        Scene::Camera const & camera = *query<NameView::NamedView>(views.child(i).get())->camera();
        all.push_back({exactly(camera.position()),
                       exactly(camera.target()),
                       exactly(camera.up()),
                       {{camera.extentsWidth(), camera.extentsHeight(), 0}}});
    }
    return all;
}

TEST_F(CommonDataAssetSettingsTests, FlagsOfTheViewAreStoredOnly) {
    settings().namedViews(m_document.views());
    NameView::NamedViews::makeDefaultNamedViews(m_document.views());
    TemporaryFile const file;
    m_document.saveAs(file);
    std::vector<Bits> const before = m_document.values();
    auto const cameras = camerasOf(*m_document.views());
    settings().perspWithOrthoFaces(true);
    settings().locktoSelection(true);
    settings().fitHome(false);
    std::vector<Bits> const after = m_document.values();
    for (std::size_t i = 0; i < before.size(); ++i)
        EXPECT_EQ(before[i] == after[i], i < 10 || i > 12) << allSettings()[i].name;
    ASSERT_EQ(cameras.size(), 4U);
    EXPECT_TRUE(camerasOf(*m_document.views()) == cameras);
}

TEST_F(CommonDataAssetSettingsTests, SettersOutliveTheDocument) {
    StrongRef<Settings> left;
    {
        SettingsDocument const closed;
        left = StrongRef<Settings>(&closed.settings());
    }
    left->sceneUp(TgVector3d(0, 1, 0));
    left->settingsInitialized(true);
    left->gridSize(1, 2, 3);
    EXPECT_EQ(exactly(left->sceneUp()), exactly(TgVector3d(0, 1, 0)));
    EXPECT_TRUE(left->settingsInitialized());
    EXPECT_FALSE(left->namedViews());
    EXPECT_FALSE(left->activeUnitSystem());
}

} // namespace

} // namespace Vn::CommonData
