// How the console makes and opens documents.

#include <gtest/gtest.h>
#include <stdexcept>

#include "Console/Documents/Hosting.h"
#include "Console/Documents/Session.h"
#include "Console/Documents/TextCommands.h"
#include "Platform/AddInMgr/AddIn.h"
#include "Platform/Base/InterfaceId.h"
#include "Platform/Base/PathInfo.h"
#include "Platform/Base/Text.h"
#include "Platform/Base/TextCommandService.h"
#include "Platform/DataModel/DocumentFile.h"
#include "Platform/Scene/INodeSource.h"
#include "Server/CommonData/AddIn/CommonDataAssetAdapter.h"
#include "Server/CommonData/Managed/CommonBaseEntity.h"
#include "Server/CommonData/Managed/PersistedEntity.h"
#include "Tests/Base/TestOptions.h"
#include "Tests/Support/TemporaryDirectory.h"

namespace Vn::Console::Tests {

namespace {

// An entity that lets the add-in fail which asks for its node.
class Faulty : public Managed::Persisted<Faulty, CommonData::CommonBaseEntity, Scene::INodeSource> {
public:
    static constexpr Managed::PersistedClass c_class{"Vn::Console::Tests::Faulty",
                                                     "4E0A76C7-3D0B-4A4E-8C55-2B6A4C1D9F21", 0};
    static EntityMetaType * s_metaType();
    static StrongRefCreator<Faulty> make(Segment * segment) { return create(segment); }

    Vrx::Graphics::ARenderNode * renderNode() const override {
        throw std::runtime_error("the lamp is broken");
    }
    Vrx::Graphics::GroupNode * groupNode() const override { return nullptr; }

private:
    friend Managed::PersistedAccess;
    explicit Faulty(Segment * segment) : Persisted(segment) { initializeMemberSetIfNeeded(); }
    Faulty(Segment * segment, unsigned long long id) : Persisted(segment, id) {
        initializeMemberSetIfNeeded();
    }
    void initializeMemberSet(unsigned, MemberSet *) {}
};

class FaultyMetaType final : public Managed::PersistedMetaType<Faulty> {
} s_faulty;

EntityMetaType * Faulty::s_metaType() { return &s_faulty; }

void expectEquipped(Asset & asset) {
    ASSERT_NE(asset.assetType(), nullptr);
    EXPECT_EQ(asset.assetType()->identifier(),
              AddIn::defaultCommonDataServerAddIn()->assetTypeId());
    auto const * const adapter = query<CommonDataAssetAdapter>(asset.adapter());
    ASSERT_NE(adapter, nullptr);
    EXPECT_NE(adapter->scene(), nullptr);
    EXPECT_NE(asset.segment(SegmentType::TransientSegment), nullptr);
    EXPECT_FALSE(asset.isDirty());
    EXPECT_EQ(asset.history().undoSteps(), 0U);
}

class HostingTests : public testing::Test {
protected:
    std::filesystem::path const & path() const { return m_file.path(); }
    // A file that is good, but that an add-in fails with.
    void saveFaulty() const {
        StrongRef<Asset> asset;
        ASSERT_TRUE(makeDocument(asset));
        Segment * const design = asset->segment(SegmentType::DesignSegment);
        design->addRoot(StrongRef<Faulty>(Faulty::make(design)), "Faulty");
        ASSERT_TRUE(DocumentFile::saveAs(*asset, path()));
    }

    Testing::TemporaryFile const m_file;
    std::size_t const m_open = Asset::openAssets();
};

TEST_F(HostingTests, DocumentsAreTypedAndEquipped) {
    StrongRef<Asset> made;
    ASSERT_TRUE(makeDocument(made));
    expectEquipped(*made);
    ASSERT_TRUE(DocumentFile::saveAs(*made, path()));
    StrongRef<Asset> loaded;
    ASSERT_TRUE(loadDocument(path(), loaded));
    expectEquipped(*loaded);
    EXPECT_EQ(Asset::openAssets(), m_open + 2);
}

TEST_F(HostingTests, DocumentsOfASessionAreTypedAndEquipped) {
    DocumentSession session;
    ASSERT_TRUE(session.makeNew());
    expectEquipped(session.asset());
    EXPECT_EQ(session.root()->id(), 1U) << "nothing that lasts was made before";
    ASSERT_TRUE(session.saveAs(path()));
    ASSERT_TRUE(session.open(path()));
    expectEquipped(session.asset());
    EXPECT_EQ(Asset::openAssets(), m_open + 1);
}

TEST_F(HostingTests, AFileThatCantBeReadLeavesNoDocument) {
    StrongRef<Asset> asset;
    ASSERT_TRUE(makeDocument(asset));
    EXPECT_EQ(loadDocument(path(), asset).code(), StatusNotFound);
    EXPECT_FALSE(asset);
    EXPECT_EQ(Asset::openAssets(), m_open);
}

TEST_F(HostingTests, AnAddInThatFailsClosesTheDocument) {
    saveFaulty();
    std::string const before = Testing::contentOf(path());
    StrongRef<Asset> asset;
    Status const status = loadDocument(path(), asset);
    EXPECT_EQ(status.code(), StatusFailed);
    EXPECT_NE(status.toString().find("the lamp is broken"), std::string::npos) << status.toString();
    EXPECT_FALSE(asset);
    EXPECT_EQ(Asset::openAssets(), m_open);
    EXPECT_TRUE(Testing::contentOf(path()) == before);
}

TEST_F(HostingTests, ASessionKeepsItsDocumentIfAnAddInFailsWithAnother) {
    saveFaulty();
    DocumentSession session;
    DocumentTextCommands const commands(session);
    ASSERT_TRUE(session.makeNew());
    StrongRef<Entity> const root = session.root();
    EXPECT_EQ(session.open(path()).code(), StatusFailed);
    EXPECT_EQ(session.root(), root);
    // The file isn't damaged for that.
    TextCommand * const check = TextCommandService::get().find(L"Document", L"Check");
    ASSERT_NE(check, nullptr);
    TextCommandResult const result =
        check->run(TextCommandParameters({PathInfo::toText(path())}, {}));
    EXPECT_EQ(result.status, 1);
    EXPECT_NE(result.text.find(L"the lamp is broken"), std::wstring::npos)
        << Text::toUtf8(result.text);
    EXPECT_EQ(result.text.find(L"damaged"), std::wstring::npos) << Text::toUtf8(result.text);
    EXPECT_EQ(Asset::openAssets(), m_open + 1);
}

} // namespace

} // namespace Vn::Console::Tests
