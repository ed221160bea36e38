// The files that released versions wrote stay readable, whatever becomes of the format.  A file of
// each version lies in the folder Released, and is never written again.

#include <filesystem>
#include <string>

#include <gtest/gtest.h>

#include "Platform/DataModel/DocumentFile.h"
#include "Tests/DataModel/DocumentTestEntities.h"

namespace Vn::Testing {

namespace {

class ReleasedFormatTests : public ::testing::Test,
                            public ::testing::WithParamInterface<char const *> {
protected:
    void SetUp() override {
        if constexpr (sizeof(wchar_t) == 2) GTEST_SKIP() << "texts of the files don't fit wchar_t";
        std::filesystem::copy_file(std::filesystem::path(VN_RELEASED_DOCUMENTS) / GetParam(),
                                   m_file.path());
        std::filesystem::permissions(m_file.path(), std::filesystem::perms::owner_write,
                                     std::filesystem::perm_options::add);
    }

    TemporaryFile m_file;
};

TEST_P(ReleasedFormatTests, IsReadInFull) {
    StrongRef<Asset> const expected = Asset::make(nullptr);
    makeExtremes(*expected);
    StrongRef<Asset> asset;
    Status const status = DocumentFile::load(m_file.path(), nullptr, asset);
    ASSERT_TRUE(status) << status.toString();
    EXPECT_EQ(dump(*asset), dump(*expected));
}

TEST_P(ReleasedFormatTests, IsWrittenToAndReadAgain) {
    StrongRef<Asset> asset;
    ASSERT_TRUE(DocumentFile::load(m_file.path(), nullptr, asset));
    StrongRef<Entity> const root = design(*asset)->rootEntity("one");
    auto & one = static_cast<Everything &>(*root);
    one.change([&] { one.m_int = 5; });
    Status const saved = DocumentFile::save(*asset);
    ASSERT_TRUE(saved) << saved.toString();
    StrongRef<Asset> again;
    ASSERT_TRUE(DocumentFile::load(m_file.path(), nullptr, again));
    EXPECT_EQ(dump(*again), dump(*asset));
}

INSTANTIATE_TEST_SUITE_P(Files, ReleasedFormatTests, ::testing::Values("format-1.vnd"),
                         [](auto const & file) {
                             return "Format" + std::to_string(file.index + 1);
                         });

} // namespace

} // namespace Vn::Testing
