// Saving onto devices that fail: whatever happens, the file holds the document before or after the
// save, and the open document goes on.

#include <filesystem>
#include <functional>
#include <string>

#include <gtest/gtest.h>

#include "Platform/DataModel/DocumentFile.h"
#include "Tests/DataModel/DocumentSql.h"
#include "Tests/DataModel/DocumentTestEntities.h"
#include "Tests/DataModel/FaultyFileSystem.h"
#include "Tests/Support/FileContent.h"

namespace Vn::Testing {

namespace {

StrongRef<Asset> load(std::filesystem::path const & file) {
    StrongRef<Asset> asset;
    Status const status = DocumentFile::load(file, nullptr, asset);
    EXPECT_TRUE(status) << status.toString();
    return asset;
}

// A document with a file, and changes of every sort that aren't saved.
class Scene {
public:
    Scene() {
        asset = Asset::make(nullptr);
        StrongRef<Everything> const root = Everything::make(design(*asset));
        design(*asset)->addRoot(root, "root");
        for (int i = 0; i < 1500; ++i) {
            StrongRef<Row> const row = Row::make(design(*asset));
            row->m_name = L"row " + std::to_wstring(i);
            root->m_children.push_back(StrongRef<Piece>(row));
        }
        EXPECT_TRUE(DocumentFile::saveAs(*asset, file.path()));
        before = dump(*asset);
        root->change([&] {
            root->m_wide = L"changed";
            for (std::size_t i = 0; i < 400; ++i)
                root->m_children.erase(root->m_children.begin() +
                                       static_cast<std::ptrdiff_t>(i * 2));
            for (int i = 0; i < 50; ++i)
                root->m_children.push_back(StrongRef<Piece>(Row::make(design(*asset))));
        });
        design(*asset)->addRoot(Row::make(design(*asset)), "another");
        after = dump(*asset);
        EXPECT_NE(before, after);
    }

    TemporaryFile file;
    StrongRef<Asset> asset;
    std::string before;
    std::string after;
};

using Save = std::function<Status(Scene &)>;

Status saveAgain(Scene & scene) { return DocumentFile::save(*scene.asset); }
Status saveOver(Scene & scene) { return DocumentFile::saveAs(*scene.asset, scene.file.path()); }

// What must hold after a save that may have failed.
void expectOldOrNew(Scene & scene, Status const & status) {
    StrongRef<Asset> const found = load(scene.file.path());
    ASSERT_TRUE(found);
    std::string const text = dump(*found);
    if (status) {
        EXPECT_EQ(text, scene.after);
    } else {
        EXPECT_TRUE(text == scene.before || text == scene.after);
    }
    std::vector<std::string> findings;
    EXPECT_TRUE(DocumentFile::check(scene.file.path(), findings));
    EXPECT_TRUE(findings.empty()) << findings.front();
    if (!status) {
        EXPECT_FALSE(status.operation().empty());
        EXPECT_FALSE(status.cause().empty());
        EXPECT_NE(status.subject().find(scene.file.text()), std::string::npos) << status.subject();
        EXPECT_EQ(dump(*scene.asset), scene.after);
        EXPECT_TRUE(scene.asset->isDirty());
    }
}

// The document is saved elsewhere, or where it was.
void expectGoesOn(Scene & scene, bool elsewhere) {
    TemporaryFile const other;
    Status const status = elsewhere ? DocumentFile::saveAs(*scene.asset, other.path())
                                    : DocumentFile::save(*scene.asset);
    EXPECT_TRUE(status) << status.toString();
    EXPECT_EQ(dump(*load(elsewhere ? other.path() : scene.file.path())), scene.after);
    EXPECT_FALSE(scene.asset->isDirty());
}

// Lets the n-th call fail, n rising until nothing fails any more.  Returns the last n.
unsigned forEachFailingCall(Save const & save, bool forGood, bool powerGoes, unsigned seed = 0) {
    FaultyFileSystem faulty;
    for (unsigned call = 1;; ++call) {
        SCOPED_TRACE(call);
        faulty.heal();
        Scene scene;
        faulty.failAt(call, forGood);
        Status const status = save(scene);
        bool const failed = faulty.hasFailed();
        faulty.heal();
        if (powerGoes) faulty.forgetUnsynced(seed * 1000 + call);
        expectOldOrNew(scene, status);
        if (!status && !powerGoes) expectGoesOn(scene, call % 2);
        if (!failed) {
            EXPECT_TRUE(status) << status.toString();
            return call;
        }
        if (::testing::Test::HasFailure()) return call;
    }
}

} // namespace

TEST(DocumentFileFaultTests, EveryFailingCallOfALaterSaveLeavesTheOldOrTheNewDocument) {
    EXPECT_GT(forEachFailingCall(saveAgain, false, false), 10U);
}

TEST(DocumentFileFaultTests, EveryFailingCallOfAWholeSaveLeavesTheOldOrTheNewDocument) {
    EXPECT_GT(forEachFailingCall(saveOver, false, false), 10U);
}

TEST(DocumentFileFaultTests, ADeviceThatFailsForGoodLeavesTheOldOrTheNewDocument) {
    EXPECT_GT(forEachFailingCall(saveAgain, true, false), 10U);
    EXPECT_GT(forEachFailingCall(saveOver, true, false), 10U);
}

TEST(DocumentFileFaultTests, WhenThePowerGoesTheOldOrTheNewDocumentIsLeft) {
    for (unsigned seed = 0; seed < 3; ++seed) {
        EXPECT_GT(forEachFailingCall(saveAgain, true, true, seed), 10U);
        EXPECT_GT(forEachFailingCall(saveOver, true, true, seed), 10U);
    }
}

TEST(DocumentFileFaultTests, AFullDiskLeavesTheOldOrTheNewDocument) {
    for (bool const whole : {false, true}) {
        FaultyFileSystem faulty;
        bool wasFull = false;
        for (std::int64_t room = 0;; room += 4096) {
            SCOPED_TRACE(room);
            faulty.heal();
            Scene scene;
            faulty.room(room);
            Status const status = whole ? saveOver(scene) : saveAgain(scene);
            bool const failed = faulty.hasFailed();
            faulty.heal();
            if (!status) {
                EXPECT_EQ(status.code(), StatusNoSpace) << status.toString();
                wasFull = true;
            }
            expectOldOrNew(scene, status);
            if (!status) expectGoesOn(scene, room % 8192 == 0);
            EXPECT_FALSE(std::filesystem::exists(scene.file.text() + ".saving"));
            if (!failed || HasFailure()) break;
        }
        EXPECT_TRUE(wasFull);
    }
}

// The changes are more than the engine keeps in memory, so the file has some before the disk is
// full.
TEST(DocumentFileFaultTests, AFullDiskInTheMiddleOfALargeSaveLeavesTheFileAsItWas) {
    FaultyFileSystem faulty;
    Scene scene;
    std::string const before = contentOf(scene.file.path());
    StrongRef<Entity> const root = design(*scene.asset)->rootEntity("root");
    auto & everything = dynamic_cast<Everything &>(*root);
    everything.change([&] { everything.m_wide = std::wstring(8'000'000, L'x'); });
    faulty.room(1'000'000);
    Status const status = saveAgain(scene);
    EXPECT_EQ(status.code(), StatusNoSpace) << status.toString();
    EXPECT_TRUE(contentOf(scene.file.path()) == before);
    EXPECT_FALSE(std::filesystem::exists(scene.file.text() + "-journal"));
    faulty.heal();
    EXPECT_TRUE(saveAgain(scene));
}

TEST(DocumentFileFaultTests, TheFirstSaveLeavesAFileOrNone) {
    FaultyFileSystem faulty;
    for (unsigned call = 1;; ++call) {
        SCOPED_TRACE(call);
        TemporaryFile const file;
        StrongRef<Asset> const asset = randomDocument(call, 40);
        faulty.failAt(call, false);
        Status const status = DocumentFile::saveAs(*asset, file.path());
        bool const failed = faulty.hasFailed();
        faulty.heal();
        EXPECT_EQ(std::filesystem::exists(file.path()), status.ok());
        if (!status) {
            EXPECT_TRUE(asset->file().empty());
            EXPECT_TRUE(DocumentFile::saveAs(*asset, file.path()));
        }
        EXPECT_EQ(dump(*load(file.path())), dump(*asset));
        if (!failed || HasFailure()) break;
    }
}

// A save that was cut short leaves a journal.  What replaces the file must not leave it to the
// new one.
TEST(DocumentFileFaultTests, TheJournalOfACrashIsntAppliedToTheFileThatReplacesIt) {
    FaultyFileSystem faulty;
    Scene scene;
    for (unsigned call = 1;; ++call) {
        SCOPED_TRACE(call);
        faulty.heal();
        ASSERT_TRUE(DocumentFile::saveAs(*scene.asset, scene.file.path()));
        scene.asset->segment(SegmentType::DesignSegment)
            ->addRoot(Row::make(design(*scene.asset)), "root " + std::to_string(call));
        faulty.failAt(call, true);
        Status const status = DocumentFile::save(*scene.asset);
        faulty.heal();
        if (status) break;
        // From another document, so that nothing of the failed save is known.
        StrongRef<Asset> const other = randomDocument(call, 400);
        ASSERT_TRUE(DocumentFile::saveAs(*other, scene.file.path()));
        EXPECT_FALSE(std::filesystem::exists(scene.file.text() + "-journal"));
        EXPECT_EQ(dump(*load(scene.file.path())), dump(*other));
    }
}

} // namespace Vn::Testing
