// Settings in files: odd values, older and newer versions, and files that somebody changed.

#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <limits>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Platform/DataModel/DocumentFile.h"
#include "Platform/DataModel/GeometryMetaTypes.h"
#include "Platform/DataModel/MemberSet.h"
#include "Platform/DataModel/MetaType.h"
#include "Platform/DataModel/Segment.h"
#include "Tests/CommonData/AddIn/SettingsTesting.h"
#include "Tests/DataModel/DocumentSql.h"
#include "Tests/Support/Exactly.h"

namespace Vn::CommonData {

namespace {

using Settings = CommonDataAssetSettings;
using ::testing::HasSubstr;
using Vn::Testing::query;
using Vn::Testing::Sql;

// A number that isn't an ordinary one, in each member that can hold it.
class OddNumberTests : public testing::TestWithParam<double> {
protected:
    void setAll() const {
        Settings & settings = m_document.settings();
        double const odd = GetParam();
        TgVector3d const vector(odd, 1, odd);
        TgPoint3d const point(2, odd, odd);
        settings.defaultSceneFront(vector);
        settings.sceneFront(vector);
        settings.defaultSceneUp(vector);
        settings.sceneUp(vector);
        settings.sceneBoundRadius(odd);
        settings.globalBoundRadius(odd);
        settings.sceneBoundBoxCenter(point);
        settings.sceneBoundBoxExtent(vector);
        settings.defaultHomePosition(point);
        settings.defaultHomeTarget(point);
        settings.defaultHomeUp(vector);
        settings.defaultHomeExtentsWidth(odd);
        settings.defaultHomeExtentsHeight(odd);
        settings.currentHomePosition(point);
        settings.currentHomeTarget(point);
        settings.currentHomeUp(vector);
        settings.currHomeExtentsWidth(odd);
        settings.currHomeExtentsHeight(odd);
    }
    // Which settings of numbers have it, each in all components that were given it.
    static std::vector<std::string> oddOnes(std::vector<Bits> const & values) {
        std::vector<std::string> names;
        for (std::size_t i = 0; i < values.size(); ++i) {
            MemberMetaType * const kind = allSettings()[i].kind;
            if (!isOdd(values[i].back())) continue;
            if (kind == IntrinsicMetaType<double>::get() ||
                (kind == TgVector3dMetaType::get() && isOdd(values[i][0])) ||
                (kind == TgPoint3dMetaType::get() && isOdd(values[i][1])))
                names.push_back(allSettings()[i].name);
        }
        return names;
    }
    static bool isOdd(std::uint64_t bits) {
        double const value = std::bit_cast<double>(bits);
        return std::isnan(GetParam()) ? std::isnan(value)
                                      : bits == std::bit_cast<std::uint64_t>(GetParam());
    }

    SettingsDocument m_document;
};

INSTANTIATE_TEST_SUITE_P(Numbers, OddNumberTests,
                         testing::Values(std::numeric_limits<double>::quiet_NaN(),
                                         std::numeric_limits<double>::infinity(),
                                         -std::numeric_limits<double>::infinity(), 1e308, -1e308,
                                         std::numeric_limits<double>::max(),
                                         std::numeric_limits<double>::min(),
                                         std::numeric_limits<double>::denorm_min(), -5e-320, -0.0,
                                         0.1 + 0.2 /* takes all 17 digits */));

TEST_P(OddNumberTests, IsStoredUndoneSavedAndLoadedAsItIs) {
    std::vector<Bits> const before = m_document.values();
    m_document.step([&] { setAll(); });
    std::vector<std::string> const odd = oddOnes(m_document.values());
    EXPECT_EQ(odd.size(), 18U);
    TemporaryFile const file;
    m_document.saveAs(file);
    EXPECT_EQ(oddOnes(valuesIn(file.path())), odd);
    m_document.undo();
    EXPECT_EQ(m_document.values(), before);
    m_document.redo();
    EXPECT_EQ(oddOnes(m_document.values()), odd);
}

TEST(CommonDataAssetSettingsFileTests, TheMembersInAFileAreThoseOfTheTableInOrder) {
    SettingsDocument const document;
    TemporaryFile const file;
    document.saveAs(file);
    // A point or a vector has three rows.
    auto const rows = query(file.path(), "SELECT DISTINCT iif(name GLOB '*.?', substr(name, 1, "
                                         "length(name) - 2), name) FROM (SELECT * FROM members "
                                         "WHERE class = 'CommonDataAssetSettings' ORDER BY "
                                         "position)");
    ASSERT_EQ(rows.size(), allSettings().size());
    for (std::size_t i = 0; i < rows.size(); ++i) EXPECT_EQ(rows[i][0], allSettings()[i].name);
}

TEST(CommonDataAssetSettingsFileTests, TheQueryOfTheDocumentsFormatShowsTheSettings) {
    SettingsDocument const document;
    document.settings().activateUnitSystem(document.system());
    document.settings().sceneUp(TgVector3d(0, 1, 0));
    TemporaryFile const file;
    document.saveAs(file);
    std::ifstream page(VN_DOCUMENT_FORMAT);
    ASSERT_TRUE(page);
    std::string const sql = Vn::Testing::blockOf(page, "```sql settings");
    ASSERT_FALSE(sql.empty());
    EXPECT_EQ(Vn::Testing::shellText(query(file.path(), sql)),
              Vn::Testing::blockOf(page, "```text"));
}

class OlderSettingsTests : public testing::Test {
protected:
    // A document that the first version of the class wrote, with `sceneUp` and `fitHome` changed.
    OlderSettingsTests() {
        std::ifstream script(VN_SETTINGS_OF_VERSION_0, std::ios::binary);
        EXPECT_TRUE(script.is_open());
        Sql(m_file.path())
            .run(std::string(std::istreambuf_iterator<char>(script),
                             std::istreambuf_iterator<char>()));
    }

    // Takes a member out of the file, as if it had never been in it.
    void lose(std::string const & name) const {
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

    TemporaryFile const m_file;
};

TEST_F(OlderSettingsTests, Version0LoadsWithItsValuesAndWithoutViews) {
    SettingsDocument const document(m_file.path());
    Settings const & settings = document.settings();
    for (Setting const & setting : allSettings())
        if (setting.name == "sceneUp")
            EXPECT_EQ(exactly(settings.sceneUp()), exactly(TgVector3d(0, 1, 0)));
        else if (setting.name == "fitHome")
            EXPECT_FALSE(settings.fitHome());
        else
            EXPECT_EQ(setting.get(settings), setting.standard) << setting.name;
    EXPECT_FALSE(settings.namedViews());
}

TEST_F(OlderSettingsTests, AreLiftedToThePresentVersion) {
    SettingsDocument const document(m_file.path());
    EXPECT_EQ(document.settings().version(), 1U);
    EXPECT_FALSE(document.settings().isMarkedMigrating());
    EXPECT_FALSE(document.asset().isMigrating());
}

TEST_F(OlderSettingsTests, Version0HasTheFirst25Members) {
    SettingsDocument const document(m_file.path());
    MemberSet const & older = *Settings::s_metaType()->memberSet(0);
    MemberSet const & latest = *Settings::s_metaType()->memberSet(c_latestVersion);
    ASSERT_EQ(older.members(), 25U);
    for (unsigned i = 0; i < older.members(); ++i) {
        EXPECT_EQ(older.member(i).name(), allSettings()[i].name);
        EXPECT_EQ(older.member(i).type(), allSettings()[i].kind);
        EXPECT_EQ(older.member(i).options(), latest.member(i).options());
    }
}

TEST_F(OlderSettingsTests, AreSavedAsThePresentVersion) {
    {
        SettingsDocument const document(m_file.path());
        document.settings().namedViews(NameView::NamedViews::make(document.segment()));
        document.save();
    }
    EXPECT_EQ(query(m_file.path(), "SELECT version FROM types WHERE id = "
                                   "'23FD63FB-4EBE-4c85-A42B-5D9809AA3499'")[0][0],
              "1");
    SettingsDocument const again(m_file.path());
    EXPECT_TRUE(again.settings().namedViews());
    EXPECT_EQ(exactly(again.settings().sceneUp()), exactly(TgVector3d(0, 1, 0)));
}

TEST_F(OlderSettingsTests, WhatAFileLacksIsZeroAndNotTheDefault) {
    for (char const * const name : {"fitHome", "sceneBoundRadius", "currHomeProjection",
                                    "sceneUp.x", "sceneUp.y", "sceneUp.z"})
        lose(name);
    SettingsDocument const document(m_file.path());
    Settings const & settings = document.settings();
    EXPECT_FALSE(settings.fitHome());
    EXPECT_EQ(settings.sceneBoundRadius(), 0);
    EXPECT_EQ(exactly(settings.sceneUp()), exactly(TgVector3d()));
    EXPECT_EQ(settings.currHomeProjection(), 0U);
    EXPECT_EQ(settings.defaultHomeProjection(), 2U);
}

// A file of today, changed by statements.
class ChangedSettingsTests : public testing::Test {
protected:
    ChangedSettingsTests() {
        m_document.settings().namedViews(m_document.views());
        m_document.settings().activateUnitSystem(m_document.system());
        m_document.saveAs(m_file);
    }
    void change(std::string const & statement) const { Sql(m_file.path()).run(statement); }
    // Why the file isn't loaded.
    Status whyRefused() const {
        StrongRef<Asset> asset;
        Status status = DocumentFile::load(m_file.path(), nullptr, asset);
        EXPECT_FALSE(status);
        EXPECT_FALSE(asset);
        return status;
    }

    SettingsDocument const m_document;
    TemporaryFile const m_file;
};

TEST_F(ChangedSettingsTests, ALaterVersionIsRefused) {
    change("UPDATE types SET version = 2 WHERE id = '23FD63FB-4EBE-4c85-A42B-5D9809AA3499'");
    Status const status = whyRefused();
    EXPECT_EQ(status.code(), StatusNewerFormat);
    EXPECT_THAT(status.toString(), HasSubstr("CommonDataAssetSettings"));
}

TEST_F(ChangedSettingsTests, ViewsThatAreOfAnotherClassAreRefused) {
    change("UPDATE CommonDataAssetSettings SET \"CommonDataAssetSettings.namedViews\" = " +
           std::to_string(m_document.system()->Entity::id()));
    Status const status = whyRefused();
    EXPECT_EQ(status.code(), StatusCorrupt);
    EXPECT_THAT(status.toString(), HasSubstr("CommonDataAssetSettings.namedViews"));
    EXPECT_THAT(status.toString(), HasSubstr("is of another class"));
}

TEST_F(ChangedSettingsTests, AnActiveSystemThatIsOfAnotherClassIsRefused) {
    change("UPDATE CommonDataAssetSettings SET \"CommonDataAssetSettings.activeUnitSystem\" = " +
           std::to_string(m_document.views()->id()));
    Status const status = whyRefused();
    EXPECT_EQ(status.code(), StatusCorrupt);
    EXPECT_THAT(status.toString(), HasSubstr("CommonDataAssetSettings.activeUnitSystem"));
    EXPECT_THAT(status.toString(), HasSubstr("is of another class"));
}

TEST_F(ChangedSettingsTests, SettingsThatOwnThemselvesAreRefused) {
    change("UPDATE CommonDataAssetSettings SET \"CommonDataAssetSettings.namedViews\" = id");
    EXPECT_EQ(whyRefused().code(), StatusCorrupt);
}

TEST_F(ChangedSettingsTests, AnActiveSystemThatWasDeletedSinceIsNone) {
    change("UPDATE CommonDataAssetSettings SET \"CommonDataAssetSettings.activeUnitSystem\" = "
           "(SELECT next_entity + 5 FROM document);"
           "UPDATE document SET next_entity = next_entity + 10");
    EXPECT_FALSE(SettingsDocument(m_file.path()).settings().activeUnitSystem());
}

TEST_F(ChangedSettingsTests, TwoSettingsLoadAndTheRootIsTheDocuments) {
    unsigned long long const id = m_document.settings().id();
    change("CREATE TEMP TABLE second AS SELECT * FROM CommonDataAssetSettings;"
           "UPDATE second SET id = id + 1000, \"CommonDataAssetSettings.namedViews\" = NULL,"
           " \"CommonDataAssetSettings.fitHome\" = 0;"
           "INSERT INTO CommonDataAssetSettings SELECT * FROM second;"
           "UPDATE document SET next_entity = next_entity + 2000;");
    SettingsDocument const loaded(m_file.path());
    EXPECT_EQ(loaded.settings().id(), id);
    EXPECT_TRUE(loaded.settings().fitHome());
    StrongRef<Entity> const second(loaded.asset().entity(id + 1000));
    ASSERT_NE(Vn::query<Settings>(second.get()), nullptr);
    EXPECT_FALSE(Vn::query<Settings>(second.get())->fitHome());
}

TEST_F(ChangedSettingsTests, ADocumentWithoutSettingsLoads) {
    change("DELETE FROM CommonDataAssetSettings;"
           "DELETE FROM roots WHERE key = 'AssetSettings'");
    SettingsDocument const loaded(m_file.path());
    EXPECT_EQ(loaded.found(), nullptr);
    ASSERT_TRUE(Settings::make(loaded.segment()));
    ASSERT_NE(loaded.found(), nullptr);
    loaded.save();
    EXPECT_NE(SettingsDocument(m_file.path()).found(), nullptr);
}

TEST_F(ChangedSettingsTests, AnotherEntityUnderTheirKeyIsNoSettings) {
    change("UPDATE roots SET entity = " + std::to_string(m_document.views()->id()) +
           " WHERE key = 'AssetSettings'");
    EXPECT_EQ(SettingsDocument(m_file.path()).found(), nullptr);
}

} // namespace

} // namespace Vn::CommonData
