// Numbers at the ends of their ranges, and files at the end of theirs.

#include <stdexcept>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#ifndef _WIN32
#include <sys/resource.h>
#endif

#include "Platform/DataModel/DocumentFile.h"
#include "Tests/DataModel/DocumentSql.h"
#include "Tests/DataModel/DocumentTestEntities.h"
#include "Tests/Support/FileContent.h"

namespace Vn::Testing {

namespace {

using ::testing::HasSubstr;
using ::testing::IsEmpty;

class DocumentFileRangeTests : public ::testing::Test {
protected:
    void SetUp() override {
        StrongRef<Asset> const asset = Asset::make(nullptr);
        design(*asset)->addRoot(Row::make(design(*asset)), "root");
        ASSERT_TRUE(DocumentFile::saveAs(*asset, m_file.path()));
    }

    StrongRef<Asset> open(std::filesystem::path const & file) {
        std::vector<std::string> findings;
        Status status = DocumentFile::check(file, findings);
        EXPECT_TRUE(status) << status.toString();
        EXPECT_THAT(findings, IsEmpty());
        StrongRef<Asset> asset;
        status = DocumentFile::load(file, nullptr, asset);
        EXPECT_TRUE(status) << status.toString();
        return asset;
    }

    static StrongRef<Row> root(Asset & asset) {
        return StrongRef<Row>(static_cast<Row *>(design(asset)->rootEntity("root").get()));
    }
    static void rename(Asset & asset, wchar_t const * name) {
        StrongRef<Row> const row = root(asset);
        row->change([&] { row->m_name = name; });
    }

    TemporaryFile m_file;
    TemporaryFile m_other;
};

} // namespace

TEST_F(DocumentFileRangeTests, NextEntity4611686018427387904LeavesNoIdsForNewEntities) {
    Sql(m_file.path()).run("UPDATE document SET next_entity=4611686018427387904");
    StrongRef<Asset> const asset = open(m_file.path());
    ASSERT_TRUE(asset);
    EXPECT_THROW(Row::make(design(*asset)), std::length_error);
    // What is there can be changed and saved.
    rename(*asset, L"changed");
    Status const status = DocumentFile::save(*asset);
    EXPECT_TRUE(status) << status.toString();
    EXPECT_EQ(root(*open(m_file.path()))->m_name, L"changed");
}

TEST_F(DocumentFileRangeTests, TheLastIdIsUsedAndSaved) {
    Sql(m_file.path()).run("UPDATE document SET next_entity=4611686018427387903");
    StrongRef<Asset> const asset = open(m_file.path());
    ASSERT_TRUE(asset);
    StrongRef<Row> const last = Row::make(design(*asset));
    EXPECT_EQ(last->id(), 4611686018427387903ULL);
    EXPECT_THROW(Row::make(design(*asset)), std::length_error);
    design(*asset)->addRoot(last, "last");
    Status const status = DocumentFile::save(*asset);
    EXPECT_TRUE(status) << status.toString();
    EXPECT_TRUE(open(m_file.path())->entity(4611686018427387903ULL));
}

TEST_F(DocumentFileRangeTests, Generation9223372036854775807IsSavedUnderAnotherNameOnly) {
    Sql(m_file.path()).run("UPDATE document SET generation=9223372036854775807");
    StrongRef<Asset> const asset = open(m_file.path());
    ASSERT_TRUE(asset);
    std::string const bytes = contentOf(m_file.path());
    rename(*asset, L"changed");
    Status const refused = DocumentFile::save(*asset);
    EXPECT_EQ(refused.code(), StatusFailed);
    EXPECT_THAT(refused.toString(), HasSubstr("it can't be saved more often under its own name"));
    EXPECT_EQ(contentOf(m_file.path()), bytes);
    EXPECT_TRUE(asset->isDirty());
    Status const status = DocumentFile::saveAs(*asset, m_other.path());
    EXPECT_TRUE(status) << status.toString();
    EXPECT_EQ(root(*open(m_other.path()))->m_name, L"changed");
    rename(*asset, L"again");
    EXPECT_TRUE(DocumentFile::save(*asset));
    EXPECT_EQ(query(m_other.path(), "SELECT generation FROM document").front().front(), "2");
}

TEST_F(DocumentFileRangeTests, TheLastGenerationIsReached) {
    Sql(m_file.path()).run("UPDATE document SET generation=9223372036854775806");
    StrongRef<Asset> const asset = open(m_file.path());
    ASSERT_TRUE(asset);
    rename(*asset, L"changed");
    EXPECT_TRUE(DocumentFile::save(*asset));
    EXPECT_TRUE(open(m_file.path()));
    rename(*asset, L"again");
    EXPECT_FALSE(DocumentFile::save(*asset));
    EXPECT_EQ(root(*open(m_file.path()))->m_name, L"changed");
}

TEST_F(DocumentFileRangeTests, WhatACheckPassesALoadTakes) {
    for (char const * const change :
         {"next_entity=0", "next_entity=1", "next_entity=-1", "next_entity=4611686018427387905",
          "next_entity=9223372036854775807", "next_entity=2.0", "generation=-1",
          "generation=9223372036854775807", "generation=1.5", "generation=NULL"}) {
        SCOPED_TRACE(change);
        TemporaryFile const file;
        std::filesystem::copy_file(m_file.path(), file.path());
        Sql(file.path()).run(std::string("UPDATE document SET ") + change);
        std::vector<std::string> findings;
        EXPECT_TRUE(DocumentFile::check(file.path(), findings));
        StrongRef<Asset> asset;
        EXPECT_EQ(DocumentFile::load(file.path(), nullptr, asset).ok(), findings.empty());
    }
}

// Of many roots each is found by its key and by its entity, and an undo puts it back where it was.
TEST_F(DocumentFileRangeTests, ManyRootsComeBackInTheirOrder) {
    constexpr int c_roots = 80'000;
    StrongRef<Asset> const asset = open(m_file.path());
    ASSERT_TRUE(asset);
    Segment & segment = *design(*asset);
    StrongRef<Row> const row = root(*asset);
    for (int i = 0; i < c_roots; ++i) segment.addRoot(row, "key " + std::to_string(i));
    ASSERT_TRUE(DocumentFile::save(*asset));
    StrongRef<Asset> const loaded = open(m_file.path());
    std::vector<std::string> before;
    std::vector<std::string> after;
    design(*loaded)->rootEntityIds(before);
    ASSERT_EQ(before.size(), c_roots + 1U);
    EXPECT_EQ(before.front(), "root");
    EXPECT_EQ(before.back(), "key " + std::to_string(c_roots - 1));
    EXPECT_EQ(*design(*loaded)->rootKey(root(*loaded).get()), "root");

    StrongRef<Entity> const target = root(*loaded);
    {
        Transaction transaction(*loaded, L"Take every third out");
        for (std::size_t i = 0; i < before.size(); i += 3)
            design(*loaded)->addRoot(nullptr, before[i]);
        design(*loaded)->addRoot(target, "root"); // at the end now
        transaction.commit();
    }
    EXPECT_EQ(*design(*loaded)->rootKey(target.get()), "key 0");
    design(*loaded)->rootEntityIds(after);
    EXPECT_EQ(after.back(), "root");
    ASSERT_TRUE(loaded->history().undo());
    design(*loaded)->rootEntityIds(after);
    EXPECT_EQ(after, before);
    ASSERT_TRUE(loaded->history().redo());
    EXPECT_EQ(*design(*loaded)->rootKey(target.get()), "key 0");
}

TEST_F(DocumentFileRangeTests, ATypeAfterTheLastNumberIsRefused) {
    Sql(m_file.path())
        .run("UPDATE members SET type=1000000; UPDATE types SET number=1000000 WHERE "
             "table_name IS NOT NULL");
    StrongRef<Asset> const asset = open(m_file.path());
    ASSERT_TRUE(asset);
    std::string const bytes = contentOf(m_file.path());
    design(*asset)->addRoot(Everything::make(design(*asset)), "another");
    EXPECT_THAT(DocumentFile::save(*asset).toString(),
                HasSubstr("no number left for another type"));
    EXPECT_EQ(contentOf(m_file.path()), bytes);
    Status const status = DocumentFile::saveAs(*asset, m_file.path());
    EXPECT_TRUE(status) << status.toString();
    EXPECT_TRUE(open(m_file.path()));
}

#ifndef _WIN32 // where no limit is set for the sizes of files

TEST_F(DocumentFileRangeTests, ALimitOfFileSizesIsToldAsWhatItIs) {
    StrongRef<Asset> const asset = open(m_file.path());
    ASSERT_TRUE(asset);
    for (int i = 0; i < 3000; ++i)
        design(*asset)->addRoot(Row::make(design(*asset)), std::to_string(i));
    std::string const before = contentOf(m_file.path());
    rlimit old{};
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &old), 0);
    rlimit low = old;
    low.rlim_cur = 50'000;
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &low), 0);
    Status const again = DocumentFile::save(*asset);
    Status const whole = DocumentFile::saveAs(*asset, m_other.path());
    setrlimit(RLIMIT_FSIZE, &old);
    for (Status const & status : {again, whole}) {
        EXPECT_EQ(status.code(), StatusNoSpace) << status.toString();
        EXPECT_THAT(status.toString(), HasSubstr("it would be larger than files may be"));
    }
    EXPECT_FALSE(std::filesystem::exists(m_other.path()));
    EXPECT_FALSE(std::filesystem::exists(m_other.text() + ".saving"));
    EXPECT_FALSE(std::filesystem::exists(m_other.text() + ".saving-journal"));
    ASSERT_TRUE(open(m_file.path()));
    EXPECT_EQ(open(m_file.path())->entities(), 1U);
    EXPECT_TRUE(DocumentFile::save(*asset));
    EXPECT_EQ(dump(*open(m_file.path())), dump(*asset));
}

#endif

} // namespace Vn::Testing
