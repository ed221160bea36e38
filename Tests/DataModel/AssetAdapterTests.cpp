#include "Platform/DataModel/AssetAdapter.h"

#include <cstddef>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Platform/DataModel/DocumentFile.h"
#include "Tests/DataModel/DocumentSql.h"
#include "Tests/DataModel/TestEntities.h"
#include "Tests/Support/TemporaryDirectory.h"
#include "Tests/Support/VirtualPlace.h"

namespace Vn::Testing {
namespace {

using ::testing::ElementsAre;

// Writes down what it is told, and does what a test wants meanwhile.
class Equipment : public AssetAdapter {
public:
    Equipment(Asset * asset, std::vector<std::string> & log) : AssetAdapter(asset), m_log(log) {}

    // The place of each operation in the table of virtual operations.
    static std::vector<std::size_t> places();

    std::function<void(std::string const &)> m_hook;
    bool m_bCanDirty = true;

    bool isAssetDirty() const override { return AssetAdapter::isAssetDirty(); }
    bool canDirtyAsset() const override { return m_bCanDirty; }
    void onPostAssetSave() override { note("saved"); }
    void onInitializeNewAsset() override { note("new"); }
    void onInitializeLoadedAsset() override { note("loaded"); }
    void onFullyInitializeLoadedAsset() override { note("fully loaded"); }
    void onUpgradeMetaType(MetaType * type, unsigned version) override {
        note("upgraded " + type->identifier() + " from " + std::to_string(version));
    }
    void onCreateSpecialSerializers() override { note("create"); }
    void onReleaseSpecialSerializers() override { note("release"); }
    void onPostStartTransacting() override { note("transaction"); }
    void onPostAssetLoadUpdate() override { note("update"); }
    void onTranslatorCallback(ETranslation station) override {
        note(station == TranslationBegins ? "translation" : "translated");
    }
    Segment * onDesignSegment() const override { return asset()->segment(1U); }
    Segment * onTransientSegment() const override { return asset()->segment(2U); }
    void onPreDelete() override { note("end"); }

private:
    void note(std::string what) {
        m_log.push_back(what);
        if (m_hook) m_hook(what);
    }

    std::vector<std::string> & m_log;
};

std::vector<std::size_t> Equipment::places() {
    return {placeOf(&Equipment::getInterfaceId),
            placeOf(&Equipment::queryInterface),
            placeOf(&Equipment::isAssetDirty),
            placeOf(&Equipment::onPostAssetSave),
            placeOf(&Equipment::canDirtyAsset),
            placeOf(&Equipment::onInitializeNewAsset),
            placeOf(&Equipment::onInitializeLoadedAsset),
            placeOf(&Equipment::onFullyInitializeLoadedAsset),
            placeOf(&Equipment::onUpgradeMetaType),
            placeOf(&Equipment::onCreateSpecialSerializers),
            placeOf(&Equipment::onReleaseSpecialSerializers),
            placeOf(&Equipment::onPostStartTransacting),
            placeOf(&Equipment::onPostAssetLoadUpdate),
            placeOf(&Equipment::onTranslatorCallback),
            placeOf(&Equipment::onDesignSegment),
            placeOf(&Equipment::onTransientSegment),
            placeOf(&Equipment::onPreDelete)};
}

class AssetAdapterTests : public ::testing::Test {
protected:
    AssetAdapterTests() { equip(); }

    void equip() {
        auto made = std::make_unique<Equipment>(m_rAsset.get(), m_log);
        m_pEquipment = made.get();
        m_rAsset->adapter(std::move(made));
    }

    std::vector<std::string> m_log;
    StrongRef<Asset> m_rAsset = Asset::make(nullptr);
    Equipment * m_pEquipment = nullptr;
    TemporaryDirectory m_directory;
};

TEST_F(AssetAdapterTests, TheVirtualOperationsStandInTheirOrder) {
    std::vector<std::size_t> const places = Equipment::places();
    for (std::size_t i = 1; i < places.size(); ++i)
        EXPECT_EQ(places[i], places[i - 1] + 1) << "operation " << i;
}

TEST_F(AssetAdapterTests, ANewDocumentIsToldTheStationsOfItsLife) {
    m_pEquipment->initializeNewAsset();
    m_pEquipment->initializeLoadedAsset();
    m_pEquipment->fullyInitializeLoadedAsset();
    m_pEquipment->translatorCallback(AssetAdapter::TranslationBegins);
    m_pEquipment->translatorCallback(AssetAdapter::TranslationEnds);
    m_rAsset.reset();
    EXPECT_THAT(m_log, ElementsAre("new", "loaded", "fully loaded", "update", "translation",
                                   "translated", "end"));
}

TEST_F(AssetAdapterTests, ASaveStandsBetweenTheSpecialSerializers) {
    Thing::make(*m_rAsset);
    ASSERT_TRUE(DocumentFile::saveAs(*m_rAsset, m_directory.path() / "a.vnd"));
    EXPECT_THAT(m_log, ElementsAre("create", "saved", "release"));
    m_log.clear();
    EXPECT_FALSE(DocumentFile::saveAs(*m_rAsset, m_directory.path() / "missing" / "a.vnd"));
    EXPECT_THAT(m_log, ElementsAre("create", "release"));
}

TEST_F(AssetAdapterTests, ASaveWhoseSerializersCantBeMadeFailsAndLeavesTheFile) {
    StrongRef<Thing> const thing = Thing::make(*m_rAsset, L"before");
    m_rAsset->segment(SegmentType::DesignSegment)->addRoot(StrongRef<Entity>(thing.get()), "thing");
    auto const file = m_directory.path() / "a.vnd";
    ASSERT_TRUE(DocumentFile::saveAs(*m_rAsset, file));
    thing->set(&Thing::m_name, std::wstring(L"after"));
    m_pEquipment->m_hook = [](std::string const & what) {
        if (what == "create") throw std::runtime_error("no device");
    };
    Status const status = DocumentFile::save(*m_rAsset);
    EXPECT_EQ(status.cause(), "no device");
    EXPECT_TRUE(m_rAsset->isDirty());
    StrongRef<Asset> read;
    ASSERT_TRUE(DocumentFile::load(file, nullptr, read));
    StrongRef<Entity> const root = read->segment(SegmentType::DesignSegment)->rootEntity("thing");
    ASSERT_TRUE(root);
    EXPECT_EQ(static_cast<Thing *>(root.get())->m_name, L"before");

    m_pEquipment->m_hook = [](std::string const & what) {
        if (what == "release") throw std::runtime_error("too late");
    };
    EXPECT_TRUE(DocumentFile::save(*m_rAsset));
}

TEST_F(AssetAdapterTests, OnlyTheOutermostTransactionIsTold) {
    Transaction outer(*m_rAsset, L"outer");
    {
        Transaction inner(*m_rAsset, L"inner");
        Thing::make(*m_rAsset);
        inner.commit();
    }
    outer.commit();
    EXPECT_THAT(m_log, ElementsAre("transaction"));
    ASSERT_TRUE(m_rAsset->history().undo());
    EXPECT_THAT(m_log, ElementsAre("transaction"));
}

TEST_F(AssetAdapterTests, WhatIsChangedAtTheStartOfATransactionIsAPartOfIt) {
    StrongRef<Thing> const thing = Thing::make(*m_rAsset, L"a");
    m_pEquipment->m_hook = [&](std::string const & what) {
        if (what == "transaction") thing->set(&Thing::m_int, 7);
    };
    {
        Transaction transaction(*m_rAsset, L"rename");
        thing->set(&Thing::m_name, std::wstring(L"b"));
        transaction.commit();
    }
    ASSERT_TRUE(m_rAsset->history().undo());
    EXPECT_EQ(thing->m_int, 0);
    EXPECT_EQ(thing->m_name, L"a");
}

TEST_F(AssetAdapterTests, AnExceptionAtTheStartEndsTheTransaction) {
    StrongRef<Thing> const thing = Thing::make(*m_rAsset, L"a");
    m_pEquipment->m_hook = [&](std::string const & what) {
        if (what != "transaction") return;
        thing->set(&Thing::m_int, 7);
        throw std::runtime_error("not now");
    };
    EXPECT_THROW(Transaction(*m_rAsset, L"rename"), std::runtime_error);
    EXPECT_FALSE(m_rAsset->history().isInTransaction());
    EXPECT_EQ(thing->m_int, 0);
    EXPECT_EQ(m_rAsset->history().undoSteps(), 0U);
}

TEST_F(AssetAdapterTests, AnOlderClassOfTheFileIsToldOnce) {
    StrongRef<Thing> const thing = Thing::make(*m_rAsset);
    auto const file = m_directory.path() / "a.vnd";
    ASSERT_TRUE(DocumentFile::saveAs(*m_rAsset, file));
    Sql(file).run("UPDATE types SET version=0 WHERE id = '" + Thing::s_metaTypeId() + "'");
    ASSERT_TRUE(DocumentFile::load(file, nullptr, m_rAsset));
    m_log.clear();
    equip();
    m_pEquipment->initializeLoadedAsset();
    m_pEquipment->initializeLoadedAsset();
    EXPECT_THAT(m_log, ElementsAre("loaded", "upgraded Test-Thing from 0", "loaded"));
}

TEST_F(AssetAdapterTests, WhatTheEndThrowsEndsNothingElse) {
    m_pEquipment->m_hook = [](std::string const &) { throw std::runtime_error("no"); };
    PassiveRef<Asset> const asset = m_rAsset;
    m_rAsset.reset();
    EXPECT_FALSE(asset);
    EXPECT_THAT(m_log, ElementsAre("end"));
}

TEST_F(AssetAdapterTests, ADocumentThatCantBeDirtyNeverIs) {
    EXPECT_FALSE(m_pEquipment->isAssetDirty());
    Thing::make(*m_rAsset);
    EXPECT_TRUE(m_pEquipment->isAssetDirty());
    m_pEquipment->m_bCanDirty = false;
    EXPECT_FALSE(m_pEquipment->isAssetDirty());
    EXPECT_TRUE(m_rAsset->isDirty());
}

// Settings of a class that a test brings.
class Preferences : public AssetSettings {
public:
    static StrongRefCreator<Preferences> make(Segment * segment) {
        StrongRefCreator<Preferences> made(new Preferences(segment));
        made->postCreation(DataChange::TransactDirect);
        return made;
    }
    void postCreationAgain(DataChange::ETransact transact) { onPostCreation(transact); }

protected:
    explicit Preferences(Segment * segment) : AssetSettings(segment) {}
    EntityMetaType * onMetaType() const override { return AssetSettings::s_metaType(); }
};

class AssetSettingsTests : public AssetAdapterTests {
protected:
    Segment * design() { return m_rAsset->segment(SegmentType::DesignSegment); }
};

TEST_F(AssetSettingsTests, TheFirstOfADocumentAreItsSettings) {
    EXPECT_EQ(m_pEquipment->assetSettings(), nullptr);
    StrongRef<Preferences> const first = Preferences::make(design());
    EXPECT_EQ(m_pEquipment->assetSettings().get(), first.get());
    EXPECT_EQ(design()->rootEntity("AssetSettings").get(), first.get());
    StrongRef<Preferences> const second = Preferences::make(design());
    EXPECT_EQ(m_pEquipment->assetSettings().get(), first.get());
}

TEST_F(AssetSettingsTests, TheyComeAndGoWithTheirStep) {
    StrongRef<Preferences> held;
    {
        Transaction transaction(*m_rAsset, L"settings");
        held = Preferences::make(design());
        transaction.commit();
    }
    ASSERT_TRUE(m_rAsset->history().undo());
    EXPECT_EQ(m_pEquipment->assetSettings(), nullptr);
    ASSERT_TRUE(m_rAsset->history().redo());
    EXPECT_EQ(m_pEquipment->assetSettings().get(), held.get());
}

TEST_F(AssetSettingsTests, AReplayPutsNothingUnderTheKey) {
    StrongRef<Preferences> const settings = Preferences::make(design());
    design()->addRoot(nullptr, AssetSettings::segmentRootId());
    settings->postCreationAgain(DataChange::TransactReplay);
    EXPECT_EQ(m_pEquipment->assetSettings(), nullptr);
    settings->postCreationAgain(DataChange::TransactDirect);
    EXPECT_EQ(m_pEquipment->assetSettings().get(), settings.get());
}

TEST_F(AssetSettingsTests, AnotherEntityUnderTheKeyStays) {
    StrongRef<Thing> const thing = Thing::make(*m_rAsset);
    design()->addRoot(StrongRef<Entity>(thing.get()), AssetSettings::segmentRootId());
    StrongRef<Preferences> const settings = Preferences::make(design());
    EXPECT_EQ(design()->rootEntity("AssetSettings").get(), thing.get());
    EXPECT_EQ(m_pEquipment->assetSettings(), nullptr);
}

} // namespace
} // namespace Vn::Testing
