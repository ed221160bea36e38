// Documents of a size that shows a quadratic step or a recursion.  All of it runs on a stack of 1
// MiB.

#include <filesystem>
#include <functional>

#include <gtest/gtest.h>

#include "Platform/DataModel/DocumentFile.h"
#include "Tests/DataModel/TestEntities.h"
#include "Tests/Support/SmallStack.h"
#include "Tests/Support/TemporaryDirectory.h"

namespace Vn::Testing {
namespace {

class LargeDocumentTests : public ::testing::Test {
protected:
    TemporaryFile const m_file;

    // Makes a document by `fill`, and takes it through everything that can be done with it.
    void exercise(std::size_t entities, std::function<void(Thing &)> const & fill) {
        onSmallStack([&] {
            StrongRef<Asset> asset = Asset::make(nullptr);
            {
                StrongRef<Thing> const root = Thing::make(*asset, L"root");
                asset->segment(SegmentType::DesignSegment)->addRoot(root, "root");
                Transaction transaction(*asset, L"make");
                fill(*root);
                transaction.commit();
            }
            ASSERT_EQ(asset->entities(), entities);
            ASSERT_TRUE(asset->history().undo().ok());
            ASSERT_EQ(asset->entities(), 1U);
            ASSERT_TRUE(asset->history().redo().ok());
            ASSERT_EQ(asset->entities(), entities);
            {
                Transaction transaction(*asset, L"change");
                for (Entity * const entity : asset->allEntities())
                    query<Thing>(entity)->set(&Thing::m_double, 2.5);
                transaction.commit();
            }
            ASSERT_TRUE(asset->history().undo().ok());
            ASSERT_TRUE(asset->history().redo().ok());
            Status status = DocumentFile::saveAs(*asset, m_file.path());
            ASSERT_TRUE(status.ok()) << status.toString();
            std::wstring const before = dump(*asset);
            asset.reset();
            status = DocumentFile::load(m_file.path(), nullptr, asset);
            ASSERT_TRUE(status.ok()) << status.toString();
            ASSERT_EQ(asset->entities(), entities);
            ASSERT_TRUE(dump(*asset) == before);
            {
                StrongRef<Thing> const root(query<Thing>(
                    asset->segment(SegmentType::DesignSegment)->rootEntity("root").get()));
                Transaction transaction(*asset, L"delete");
                root->set(&Thing::m_children, std::vector<StrongRef<Thing>>());
                transaction.commit();
            }
            ASSERT_EQ(asset->entities(), 1U);
            ASSERT_TRUE(asset->history().undo().ok());
            ASSERT_EQ(asset->entities(), entities);
            ASSERT_TRUE(asset->history().redo().ok());
            status = DocumentFile::save(*asset);
            ASSERT_TRUE(status.ok()) << status.toString();
            asset.reset();
            status = DocumentFile::load(m_file.path(), nullptr, asset);
            ASSERT_TRUE(status.ok()) << status.toString();
            ASSERT_EQ(asset->entities(), 1U);
        });
    }
};

TEST_F(LargeDocumentTests, AGroupOfAMillionChildren) {
    constexpr std::size_t c_children = 1'000'000;
    exercise(c_children + 1, [](Thing & root) {
        for (std::size_t i = 0; i < c_children; ++i) root.add(Thing::make(*root.asset()));
    });
}

TEST_F(LargeDocumentTests, AChainOfAHundredThousandParents) {
    constexpr std::size_t c_length = 100'000;
    exercise(c_length + 1, [](Thing & root) {
        Thing * last = &root;
        for (std::size_t i = 0; i < c_length; ++i) {
            StrongRef<Thing> const next = Thing::make(*root.asset());
            last->add(next);
            last = next.get();
        }
    });
}

} // namespace
} // namespace Vn::Testing
