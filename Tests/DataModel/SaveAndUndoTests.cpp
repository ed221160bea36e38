// Saving in the midst of undo and redo.

#include <filesystem>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "Platform/DataModel/DocumentFile.h"
#include "Platform/DataModel/IEntityObserver.h"
#include "Tests/DataModel/TestEntities.h"
#include "Tests/Support/TemporaryDirectory.h"

namespace Vn::Testing {
namespace {

class SaveAndUndoTests : public ::testing::Test {
protected:
    SaveAndUndoTests() : m_rAsset(Asset::make(nullptr)), m_rRoot(Thing::make(*m_rAsset, L"root")) {
        m_rAsset->segment(SegmentType::DesignSegment)->addRoot(m_rRoot, "root");
    }

    void SetUp() override { ASSERT_TRUE(DocumentFile::saveAs(*m_rAsset, m_file.path()).ok()); }

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
        Status const saved = DocumentFile::save(*m_rAsset);
        ASSERT_TRUE(saved.ok()) << saved.toString();
        EXPECT_FALSE(m_rAsset->isDirty());
        StrongRef<Asset> loaded;
        Status const status = DocumentFile::load(m_file.path(), nullptr, loaded);
        ASSERT_TRUE(status.ok()) << status.toString();
        EXPECT_EQ(dump(*loaded), dump(*m_rAsset));
    }

    TemporaryFile const m_file;
    StrongRef<Asset> m_rAsset;
    StrongRef<Thing> m_rRoot;
};

TEST_F(SaveAndUndoTests, WhatComesBackIsWrittenWhetherOrNotItWasSavedBefore) {
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

TEST_F(SaveAndUndoTests, APassiveReferenceIsWrittenForTheTimeWhenItsTargetComesBack) {
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

TEST_F(SaveAndUndoTests, WhatIsGoneForGoodIsANullReferenceInTheFile) {
    step([&] {
        m_rRoot->add(Thing::make(*m_rAsset, L"target"));
        m_rRoot->set(&Thing::m_rFriend, PassiveRef<Entity>(m_rRoot->m_children[0]));
    });
    expectSaved();
    step([&] { m_rRoot->remove(0); });
    m_rAsset->history().clear();
    expectSaved();
}

TEST_F(SaveAndUndoTests, TheCleanStateIsTheSavedOne) {
    step([&] { m_rRoot->set(&Thing::m_int, 1); });
    expectSaved();
    undo();
    EXPECT_TRUE(m_rAsset->isDirty());
    redo();
    EXPECT_FALSE(m_rAsset->isDirty());
    undo();
    expectSaved();
}

// --- Members that are stored without a bracket --------------------------------------------------

TEST_F(SaveAndUndoTests, AStoreThatIsMarkedIsSavedAndIsNoStep) {
    step([&] { m_rRoot->set(&Thing::m_int, 1); });
    step([&] { m_rRoot->set(&Thing::m_int, 2); });
    undo();
    expectSaved();
    std::vector<std::string> heard;
    Thing::s_log = &heard;
    m_rRoot->m_bool = true;
    m_rRoot->markModified(&m_rRoot->m_bool);
    Thing::s_log = nullptr;
    EXPECT_TRUE(heard.empty());
    EXPECT_TRUE(m_rAsset->isDirty());
    EXPECT_EQ(m_rAsset->history().undoSteps(), 1U);
    EXPECT_EQ(m_rAsset->history().redoSteps(), 1U);
    undo();
    redo();
    EXPECT_TRUE(m_rAsset->isDirty()) << "until it is saved";
    expectSaved();
    undo();
    EXPECT_TRUE(m_rRoot->m_bool);
    expectSaved();
}

TEST_F(SaveAndUndoTests, AStoreInATransactionThatIsAbortedStaysAndIsSaved) {
    {
        Transaction transaction(*m_rAsset, L"step");
        m_rRoot->set(&Thing::m_int, 1);
        m_rRoot->m_bool = true;
        m_rRoot->markModified(&m_rRoot->m_bool);
        transaction.abort();
    }
    EXPECT_TRUE(m_rRoot->m_bool);
    EXPECT_TRUE(m_rAsset->isDirty());
    expectSaved();
}

TEST_F(SaveAndUndoTests, AMarkWhereNothingIsSavedDoesNothing) {
    Segment * const transient = Segment::create(
        m_rAsset.get(), SegmentTypeMgr::get()->segmentType(SegmentType::TransientSegment), true);
    StrongRef<Thing> const passing = Thing::make(transient);
    ASSERT_TRUE(DocumentFile::save(*m_rAsset).ok());
    passing->markModified(&passing->m_bool);
    EXPECT_FALSE(m_rAsset->isDirty());
    StrongRef<Thing> const closed = Thing::make(*StrongRef<Asset>(Asset::make(nullptr)));
    closed->markModified(&closed->m_bool);
    EXPECT_EQ(closed->asset(), nullptr);
}

// As of a document whose settings take the group of named views, which is then undone.
TEST_F(SaveAndUndoTests, AStoredReferenceToWhatIsUndoneIsNullInTheFileUntilARedo) {
    step([&] { m_rRoot->m_rOwned = Thing::make(*m_rAsset, L"views"); });
    m_rRoot->markModified(&m_rRoot->m_rOwned);
    StrongRef<Thing> const views = m_rRoot->m_rOwned;
    undo();
    EXPECT_FALSE(views->isAlive());
    ASSERT_TRUE(DocumentFile::save(*m_rAsset).ok());
    StrongRef<Asset> loaded;
    ASSERT_TRUE(DocumentFile::load(m_file.path(), nullptr, loaded).ok());
    auto const root = [&]() -> Thing & {
        return static_cast<Thing &>(*loaded->segmentAt(0)->rootEntity("root"));
    };
    EXPECT_FALSE(root().m_rOwned);
    EXPECT_EQ(m_rRoot->m_rOwned, views) << "it stays in memory";

    redo();
    EXPECT_TRUE(views->isAlive());
    expectSaved();
    ASSERT_TRUE(DocumentFile::load(m_file.path(), nullptr, loaded).ok());
    ASSERT_TRUE(root().m_rOwned);
    EXPECT_EQ(root().m_rOwned->m_name, L"views");

    // Its owner didn't change, and the row that it refers to goes.
    undo();
    ASSERT_TRUE(DocumentFile::save(*m_rAsset).ok());
    Status const status = DocumentFile::load(m_file.path(), nullptr, loaded);
    ASSERT_TRUE(status.ok()) << status.toString();
    EXPECT_FALSE(root().m_rOwned);
    redo();
    expectSaved();
}

TEST_F(SaveAndUndoTests, StoredListsOfWhatIsUndoneAreWrittenWithNulls) {
    StrongRef<Thing> const kept = Thing::make(*m_rAsset, L"kept");
    StrongRef<Thing> undone;
    step([&] { undone = Thing::make(*m_rAsset, L"undone"); });
    m_rRoot->m_children = {kept, undone};
    m_rRoot->m_friends = {PassiveRef<Entity>(undone.get()), PassiveRef<Entity>(kept.get())};
    m_rRoot->markModified(&m_rRoot->m_friends);
    expectSaved();
    undo();
    ASSERT_TRUE(DocumentFile::save(*m_rAsset).ok());
    StrongRef<Asset> loaded;
    Status const status = DocumentFile::load(m_file.path(), nullptr, loaded);
    ASSERT_TRUE(status.ok()) << status.toString();
    auto const & root = static_cast<Thing &>(*loaded->segmentAt(0)->rootEntity("root"));
    ASSERT_EQ(root.m_children.size(), 2U);
    EXPECT_TRUE(root.m_children[0]);
    EXPECT_FALSE(root.m_children[1]);
    EXPECT_FALSE(root.m_friends[0]);
    EXPECT_TRUE(root.m_friends[1]);
    redo();
    expectSaved();
}

TEST_F(SaveAndUndoTests, AStoreThatNobodyMarkedLeavesAFileThatOpens) {
    StrongRef<Thing> views;
    step([&] { views = Thing::make(*m_rAsset, L"views"); });
    m_rRoot->m_rOwned = views; // and no mark
    undo();
    step([&] { m_rRoot->set(&Thing::m_int, 1); });
    ASSERT_TRUE(DocumentFile::save(*m_rAsset).ok());
    StrongRef<Asset> loaded;
    Status const status = DocumentFile::load(m_file.path(), nullptr, loaded);
    EXPECT_TRUE(status.ok()) << status.toString();
}

// A hook of an undo made it, which isn't a step and marks nothing.
TEST_F(SaveAndUndoTests, ATargetThatNobodyMarkedIsWrittenWithItsOwner) {
    struct Maker : IEntityObserver {
        void preChange(Entity *, DataChange::ETransact, DataChange::EChangeType,
                       DataChange *) override {}
        void postChange(Entity * entity, DataChange::ETransact transact, DataChange::EChangeType,
                        DataChange *) override {
            if (!DataChange::test(transact, DataChange::TransactReplay)) return;
            m_rMade = Thing::make(*entity->asset(), L"made");
            m_rMade->m_rOwned = Thing::make(*entity->asset(), L"made for it");
        }
        void preDeletion(Entity *, DataChange::ETransact) override {}
        StrongRef<Thing> m_rMade;
    } maker;
    step([&] { m_rRoot->set(&Thing::m_int, 1); });
    expectSaved();
    m_rRoot->subscribe(&maker);
    undo();
    m_rRoot->unsubscribe(&maker);
    ASSERT_TRUE(maker.m_rMade);
    m_rRoot->m_rOwned = maker.m_rMade;
    m_rRoot->markModified(&m_rRoot->m_rOwned);
    expectSaved();
}

TEST_F(SaveAndUndoTests, AReferenceIntoAnotherDocumentFailsTheSaveWithItsPlace) {
    expectSaved();
    std::wstring const saved = dump(*m_rAsset);
    StrongRef<Asset> other = Asset::make(nullptr);
    StrongRef<Thing> const stranger = Thing::make(*other, L"stranger");
    TemporaryFile const beside;
    auto const expectRefused = [&](char const * member, char const * what) {
        m_rRoot->markModified(&m_rRoot->m_rOwned);
        for (Status const & status :
             {DocumentFile::save(*m_rAsset), DocumentFile::saveAs(*m_rAsset, beside.path())}) {
            EXPECT_FALSE(status.ok());
            std::string const text = status.toString();
            EXPECT_NE(text.find("entity 1, member Thing." + std::string(member)), std::string::npos)
                << text;
            EXPECT_NE(text.find(what), std::string::npos) << text;
        }
        EXPECT_TRUE(m_rAsset->isDirty());
        EXPECT_FALSE(std::filesystem::exists(beside.path()));
        StrongRef<Asset> loaded;
        ASSERT_TRUE(DocumentFile::load(m_file.path(), nullptr, loaded).ok());
        EXPECT_EQ(dump(*loaded), saved);
    };
    m_rRoot->m_rOwned = stranger;
    expectRefused("owned", "another document");
    m_rRoot->m_rOwned.reset();
    m_rRoot->m_children = {stranger};
    expectRefused("children", "another document");
    m_rRoot->m_children.clear();
    m_rRoot->m_rFriend = PassiveRef<Entity>(stranger.get());
    expectRefused("friend", "another document");
    m_rRoot->m_rFriend.reset();
    m_rRoot->m_friends = {PassiveRef<Entity>(stranger.get())};
    expectRefused("friends", "another document");
    m_rRoot->m_friends.clear();
    m_rRoot->m_rOwned = stranger;
    other.reset();
    expectRefused("owned", "closed document");
    m_rRoot->m_rOwned.reset();
    expectSaved();
}

} // namespace
} // namespace Vn::Testing
