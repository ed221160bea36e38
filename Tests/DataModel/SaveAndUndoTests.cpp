// Saving in the midst of undo and redo.

#include <filesystem>

#include <gtest/gtest.h>

#include "Platform/DataModel/DocumentFile.h"
#include "Tests/DataModel/DocumentEngine.h"
#include "Tests/DataModel/TestEntities.h"

namespace Vn::Testing {
namespace {

class SaveAndUndoTests : public FileTest {
protected:
    SaveAndUndoTests() : m_rAsset(Asset::make(nullptr)), m_rRoot(Thing::make(*m_rAsset, L"root")) {
        m_rAsset->segment(SegmentType::DesignSegment)->addRoot(m_rRoot, "root");
        std::filesystem::create_directory(m_folder);
    }
    ~SaveAndUndoTests() override {
        std::error_code ignored;
        std::filesystem::remove_all(m_folder, ignored);
    }

    void SetUp() override {
        FileTest::SetUp();
        if (IsSkipped()) return;
        ASSERT_TRUE(DocumentFile::saveAs(*m_rAsset, m_folder / "a.vnd").ok());
    }

    template <class Work>
    void step(Work && work) {
        Transaction transaction(*m_rAsset, L"step");
        work();
        transaction.commit();
    }
    void undo() { ASSERT_TRUE(m_rAsset->history().undo().ok()); }
    void redo() { ASSERT_TRUE(m_rAsset->history().redo().ok()); }

    // Saves, and sees that the file holds what the document does.
    void expectSaved() {
        ASSERT_TRUE(DocumentFile::save(*m_rAsset).ok());
        EXPECT_FALSE(m_rAsset->isDirty());
        StrongRef<Asset> loaded;
        Status const status = DocumentFile::load(m_folder / "a.vnd", nullptr, loaded);
        ASSERT_TRUE(status.ok()) << status.toString();
        EXPECT_EQ(dump(*loaded), dump(*m_rAsset));
    }

    std::filesystem::path const m_folder = std::filesystem::temp_directory_path()
        / ("vn-save-and-undo-" + std::to_string(reinterpret_cast<std::uintptr_t>(this)));
    StrongRef<Asset> m_rAsset;
    StrongRef<Thing> m_rRoot;
};

TEST_F(SaveAndUndoTests, whatComesBackIsWrittenWhetherOrNotItWasSavedBefore) {
    step([&] { m_rRoot->add(Thing::make(*m_rAsset, L"never saved alive")); });
    undo();
    expectSaved();
    redo();
    expectSaved();
    undo();
    expectSaved();
    redo();
    expectSaved();
}

TEST_F(SaveAndUndoTests, aPassiveReferenceIsWrittenForTheTimeWhenItsTargetComesBack) {
    step([&] {
        m_rRoot->add(Thing::make(*m_rAsset, L"target"));
        m_rRoot->set(&Thing::m_rFriend, PassiveRef<Entity>(m_rRoot->m_children[0]));
    });
    expectSaved();
    step([&] { m_rRoot->remove(0); });
    // Written while the target is gone, and not touched when it comes back.
    step([&] { m_rRoot->set(&Thing::m_int, 1); });
    expectSaved();
    undo();
    undo();
    expectSaved();
    EXPECT_TRUE(m_rRoot->m_rFriend);
}

TEST_F(SaveAndUndoTests, whatIsGoneForGoodIsANullReferenceInTheFile) {
    step([&] {
        m_rRoot->add(Thing::make(*m_rAsset, L"target"));
        m_rRoot->set(&Thing::m_rFriend, PassiveRef<Entity>(m_rRoot->m_children[0]));
    });
    expectSaved();
    step([&] { m_rRoot->remove(0); });
    m_rAsset->history().clear();
    expectSaved();
}

TEST_F(SaveAndUndoTests, theCleanStateIsTheSavedOne) {
    step([&] { m_rRoot->set(&Thing::m_int, 1); });
    expectSaved();
    undo();
    EXPECT_TRUE(m_rAsset->isDirty());
    redo();
    EXPECT_FALSE(m_rAsset->isDirty());
    undo();
    expectSaved();
}

} // namespace
} // namespace Vn::Testing
