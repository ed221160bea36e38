// The add-in as a host uses it: loaded by the manager, which hands documents on.

#include <filesystem>
#include <fstream>
#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "Platform/AddInMgr/AddIn.h"
#include "Platform/AddInMgr/AddInMgr.h"
#include "Platform/AddInMgr/IAddIn.h"
#include "Platform/AddInMgr/IAddInInitializeAsset.h"
#include "Platform/AddInMgr/IApplicationServerAddIn.h"
#include "Platform/Base/InterfaceId.h"
#include "Platform/Base/PathInfo.h"
#include "Platform/Base/UnitTest.h"
#include "Platform/DataModel/Asset.h"
#include "Platform/DataModel/AssetAdapter.h"
#include "Platform/Scene/SceneAssetAdapter.h"
#include "Tests/Support/TemporaryDirectory.h"

namespace Vn::Testing {

namespace {

class CommonDataAddInTests : public testing::Test {
protected:
    // The type of the documents that the add-in serves.
    static std::string servedType() {
        Status const status = load();
        EXPECT_TRUE(status.ok()) << status.toString();
        return AddIn::defaultCommonDataServerAddIn()->assetTypeId();
    }

    // Once in the process, as a host does.
    static Status load() {
        static Status const s_status = [] {
            Status const status = AddInMgr::get()->configure();
            return status.ok() ? AddInMgr::get()->load() : status;
        }();
        return s_status;
    }
    static StrongRef<Asset> document(AssetType const * type) { return Asset::make(type); }

    AssetType const m_served{servedType()};
    AddIn * const m_pAddIn = AddInMgr::get()->addIn("CommonData");
};

TEST_F(CommonDataAddInTests, TheDefaultServerIsTheRecordOfTheModule) {
    ASSERT_NE(m_pAddIn, nullptr);
    EXPECT_EQ(AddIn::defaultCommonDataServerAddIn(), m_pAddIn);
    EXPECT_EQ(m_pAddIn->state(), EAddInState::Loaded);
    EXPECT_TRUE(m_pAddIn->isCoreAddIn());
    EXPECT_FALSE(m_pAddIn->assetTypeId().empty());
}

TEST_F(CommonDataAddInTests, AnUnknownIdIsAnsweredByNull) {
    IAddIn * const object = m_pAddIn->object();
    ASSERT_NE(object, nullptr);
    EXPECT_EQ(object->queryInterface(UniqueString::find("Vn::Scene::INodeSource", true)), nullptr);
    EXPECT_EQ(object->queryInterface(nullptr), nullptr);
}

TEST_F(CommonDataAddInTests, BothSidesLeadToEachOther) {
    IAddIn * const object = m_pAddIn->object();
    ASSERT_NE(object, nullptr);
    EXPECT_EQ(query<IAddIn>(object), object);
    EXPECT_NE(query<IServerAddIn>(object), nullptr);
    EXPECT_NE(query<IApplicationServerAddIn>(object), nullptr);
    auto * const hooks = query<IAddInInitializeAsset>(object);
    ASSERT_NE(hooks, nullptr);
    EXPECT_EQ(hooks->getInterfaceId(), object->getInterfaceId());
    EXPECT_EQ(hooks->queryInterface(object->getInterfaceId()), object);
}

TEST_F(CommonDataAddInTests, AServedDocumentIsEquippedByBothHooks) {
    auto * const hooks = query<IAddInInitializeAsset>(m_pAddIn->object());
    ASSERT_NE(hooks, nullptr);
    StrongRef<Asset> const asset = document(&m_served);
    hooks->initializeNewAsset(asset.get(), nullptr);
    EXPECT_EQ(asset->adapter(), nullptr);
    hooks->initializeLoadedAsset(asset.get(), nullptr);
    auto * const adapter = query<Scene::SceneAssetAdapter>(asset->adapter());
    ASSERT_NE(adapter, nullptr);
    EXPECT_NE(asset->segment(2U), nullptr);
    EXPECT_EQ(adapter->scene(), nullptr);
    hooks->fullyInitializeLoadedAsset(asset.get(), nullptr);
    EXPECT_NE(adapter->scene(), nullptr);
}

TEST_F(CommonDataAddInTests, TheManagerHandsNewAndOpenedDocumentsOn) {
    StrongRef<Asset> const made = document(&m_served);
    ASSERT_TRUE(AddInMgr::get()->initializeNewAsset(made.get()).ok());
    EXPECT_NE(query<Scene::SceneAssetAdapter>(made->adapter()), nullptr);
    StrongRef<Asset> const opened = document(&m_served);
    ASSERT_TRUE(AddInMgr::get()->initializeOpenedAsset(opened.get()).ok());
    EXPECT_NE(query<Scene::SceneAssetAdapter>(opened->adapter()), nullptr);
}

class OtherDocumentsTests : public CommonDataAddInTests {
protected:
    // Both hooks pass it without effect.
    void expectPassed(AssetType const * type) {
        auto * const hooks = query<IAddInInitializeAsset>(m_pAddIn->object());
        ASSERT_NE(hooks, nullptr);
        StrongRef<Asset> const asset = document(type);
        hooks->initializeLoadedAsset(asset.get(), nullptr);
        hooks->fullyInitializeLoadedAsset(asset.get(), nullptr);
        EXPECT_EQ(asset->adapter(), nullptr);
        EXPECT_EQ(asset->segments(), 1U);
        EXPECT_FALSE(asset->isDirty());
    }
};

TEST_F(OtherDocumentsTests, AnAssetWithoutATypePassesBothHooks) { expectPassed(nullptr); }

TEST_F(OtherDocumentsTests, AnAssetOfAnotherTypePassesBothHooks) {
    std::string const & served = m_served.identifier();
    std::string others[] = {"Another", served, served, served};
    others[1].push_back('\0');
    others[2].push_back(' ');
    others[3].erase(0, 1);
    for (std::string const & other : others) {
        AssetType const type(other);
        expectPassed(&type);
    }
}

TEST_F(OtherDocumentsTests, AnAdapterThatIsThereStays) {
    StrongRef<Asset> const asset = document(nullptr);
    auto adapter = std::make_unique<AssetAdapter>(asset.get());
    AssetAdapter const * const before = adapter.get();
    asset->adapter(std::move(adapter));
    ASSERT_TRUE(AddInMgr::get()->initializeOpenedAsset(asset.get()).ok());
    EXPECT_EQ(asset->adapter(), before);
}

// --- The self-check ----------------------------------------------------------------------------

class ConfigurationCheckTests : public CommonDataAddInTests {
protected:
    // A root directory of its own, with copies of the two files.
    ConfigurationCheckTests() : m_root(m_directory.path()) {
        std::filesystem::path const server =
            PathInfo::fromText(PathInfo::rootDirectory(true)) / "Server";
        std::filesystem::copy(server, m_root / "Server", std::filesystem::copy_options::recursive);
        PathInfo::rootDirectory(PathInfo::toText(m_root));
    }
    ~ConfigurationCheckTests() override { PathInfo::rootDirectory(L""); }

    static UnitTest::Report run() {
        std::vector<UnitTest::Report> const reports = UnitTest::run("VantorCore");
        EXPECT_EQ(reports.size(), 1U);
        return reports.empty() ? UnitTest::Report() : reports.front();
    }
    // Replaces one text in a file by another.
    void replace(std::filesystem::path const & file, std::string const & from,
                 std::string const & to) const {
        std::ifstream in(m_root / file, std::ios::binary);
        std::string content{std::istreambuf_iterator<char>(in), {}};
        in.close();
        std::size_t const at = content.find(from);
        ASSERT_NE(at, content.npos);
        content.replace(at, from.size(), to);
        std::ofstream(m_root / file, std::ios::binary) << content;
    }

    TemporaryDirectory m_directory;
    std::filesystem::path const m_root;
    std::filesystem::path const m_configuration =
        "Server/CommonData/Configuration/VnCommonData10.xml";
    std::filesystem::path const m_schema = "Server/AddInMgr/Configuration/Schema/AddinSchema.xsd";
};

TEST_F(ConfigurationCheckTests, TheConfigurationIsValidByTheSchema) {
    UnitTest::Report const report = run();
    EXPECT_EQ(report.name, "vnCommonDataAddInConfigureUnitTests");
    EXPECT_EQ(report.assertions, 1U);
    EXPECT_TRUE(report.passed());
}

TEST_F(ConfigurationCheckTests, AnElementOfAnotherNameFails) {
    replace(m_configuration, "<AddIn ", "<Addin ");
    UnitTest::Report const report = run();
    ASSERT_EQ(report.failures.size(), 1U);
    EXPECT_EQ(report.failures[0], L"XMLUtility::schemaValidator(addInConfigure, addInSchema)");
}

TEST_F(ConfigurationCheckTests, AMissingFileFails) {
    std::filesystem::remove(m_root / m_configuration);
    EXPECT_FALSE(run().passed());
}

TEST_F(ConfigurationCheckTests, AMissingSchemaFails) {
    std::filesystem::remove(m_root / m_schema);
    EXPECT_FALSE(run().passed());
}

TEST_F(ConfigurationCheckTests, ADamagedSchemaFails) {
    replace(m_schema, "<xs:element", "<xs:elemen");
    EXPECT_FALSE(run().passed());
}

} // namespace

} // namespace Vn::Testing
