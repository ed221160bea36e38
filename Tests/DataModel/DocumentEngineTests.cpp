// Windows without the database engine that comes with it.

#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Platform/DataModel/DocumentFile.h"
#include "Tests/DataModel/DocumentEngine.h"
#include "Tests/DataModel/TestEntities.h"
#include "Tests/Support/TemporaryDirectory.h"

namespace Vn::Testing {
namespace {

void expectUnsupported(Status const & status, char const * operation) {
    EXPECT_EQ(status.code(), StatusUnsupported) << status.toString();
    EXPECT_EQ(status.operation(), operation);
    EXPECT_THAT(status.subject(), ::testing::HasSubstr("vn-no-engine.vnd"));
    EXPECT_THAT(status.cause(), ::testing::HasSubstr("winsqlite3.dll"));
    EXPECT_THAT(status.cause(), ::testing::HasSubstr("missing"));
}

TEST(DocumentEngineTests, WithoutItFilesAreUnsupportedAndDocumentsGoOn) {
    if (whyNoFiles().empty()) GTEST_SKIP() << "this Windows has the engine";
    TemporaryDirectory const directory;
    std::filesystem::path const file = directory.path() / "vn-no-engine.vnd";
    StrongRef<Asset> const asset = Asset::make(nullptr);
    StrongRef<Thing> const root = Thing::make(*asset, L"root");
    {
        Transaction transaction(*asset, L"change");
        root->set(&Thing::m_double, 2.5);
        transaction.commit();
    }
    for (int i = 0; i < 2; ++i) { // the second time is as the first
        expectUnsupported(DocumentFile::saveAs(*asset, file), "save the document");
        StrongRef<Asset> loaded = asset;
        expectUnsupported(DocumentFile::load(file, nullptr, loaded), "open the document");
        EXPECT_FALSE(loaded);
        std::vector<std::string> findings{"old"};
        expectUnsupported(DocumentFile::check(file, findings), "check the document");
        EXPECT_TRUE(findings.empty());
    }
    EXPECT_FALSE(std::filesystem::exists(file));
    EXPECT_FALSE(std::filesystem::exists(file.string() + ".saving"));
    EXPECT_TRUE(asset->file().empty());
    EXPECT_TRUE(asset->isDirty());
    EXPECT_EQ(DocumentFile::save(*asset).code(), StatusInvalidArgument);
    ASSERT_TRUE(asset->history().undo().ok());
    EXPECT_EQ(root->m_double, 0);
    ASSERT_TRUE(asset->history().redo().ok());
    EXPECT_EQ(root->m_double, 2.5);
}

} // namespace
} // namespace Vn::Testing
