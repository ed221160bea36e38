// Documents on disk: what comes back, what is written, and what is refused.

#include "Platform/DataModel/DocumentFile.h"

#include <algorithm>
#include <cmath>
#include <csignal>
#include <fstream>
#include <map>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Platform/Base/OS.h"
#include "Tests/DataModel/DocumentSql.h"
#include "Tests/DataModel/DocumentTestEntities.h"
#include "Tests/Support/SmallStack.h"

namespace Vn::Testing {

namespace {

using ::testing::HasSubstr;

Segment * segmentOf(Asset & asset, unsigned kind) {
    return Segment::create(&asset, SegmentTypeMgr::get()->segmentType(kind), false);
}

StrongRef<Asset> load(std::filesystem::path const & file) {
    StrongRef<Asset> asset;
    Status const status = DocumentFile::load(file, nullptr, asset);
    EXPECT_TRUE(status) << status.toString();
    return asset;
}

#define VN_EXPECT_OK(expression)                                                                   \
    do {                                                                                           \
        Status const outcome = (expression);                                                       \
        EXPECT_TRUE(outcome) << outcome.toString();                                                \
    } while (false)

// Nothing is found wrong with the file, and what it holds is the document.
void expectSaved(Asset const & asset, std::filesystem::path const & file) {
    std::vector<std::string> findings;
    VN_EXPECT_OK(DocumentFile::check(file, findings));
    EXPECT_THAT(findings, ::testing::IsEmpty());
    StrongRef<Asset> const other = load(file);
    ASSERT_TRUE(other);
    EXPECT_EQ(dump(*other), dump(asset));
    EXPECT_FALSE(other->isDirty());
    EXPECT_EQ(other->history().undoSteps(), 0U);
}

// The rows of each table as texts.
std::map<std::string, std::vector<std::string>> rowsOf(std::filesystem::path const & file) {
    std::map<std::string, std::vector<std::string>> tables;
    for (auto const & row : query(file, "SELECT name FROM sqlite_schema WHERE type='table'")) {
        std::string const & table = row.front();
        for (auto const & values : query(file, "SELECT * FROM \"" + table + '"')) {
            std::string text;
            for (std::string const & value : values) text += value + '|';
            tables[table].push_back(text);
        }
        std::sort(tables[table].begin(), tables[table].end());
    }
    return tables;
}

// The rows that one has and the other hasn't.
std::vector<std::string> differing(std::map<std::string, std::vector<std::string>> const & a,
                                   std::map<std::string, std::vector<std::string>> const & b) {
    std::vector<std::string> found;
    for (auto const & [table, rows] : a) {
        auto const i = b.find(table);
        for (std::string const & row : rows)
            if (i == b.end() || !std::binary_search(i->second.begin(), i->second.end(), row))
                found.push_back(table + ": " + row);
    }
    return found;
}

} // namespace

TEST(DocumentFileTests, AnEmptyDocumentComesBack) {
    TemporaryFile const file;
    StrongRef<Asset> const asset = Asset::make(nullptr);
    VN_EXPECT_OK(DocumentFile::saveAs(*asset, file.path()));
    expectSaved(*asset, file.path());
}

TEST(DocumentFileTests, EveryKindOfMemberComesBack) {
    TemporaryFile const file;
    StrongRef<Asset> const asset = Asset::make(nullptr);
    StrongRef<Everything> const one = makeExtremes(*asset);
    VN_EXPECT_OK(DocumentFile::saveAs(*asset, file.path()));
    expectSaved(*asset, file.path());
    StrongRef<Asset> const other = load(file.path());
    EXPECT_EQ(static_cast<Everything *>(other->entity(one->id()).get())->m_unsaved, 7);
    EXPECT_TRUE(std::signbit(static_cast<Everything *>(other->entity(one->id()).get())->m_double));
}

TEST(DocumentFileTests, RandomDocumentsComeBackThroughManySaves) {
    for (unsigned seed = 0; seed < 40; ++seed) {
        SCOPED_TRACE(seed);
        TemporaryFile const file;
        StrongRef<Asset> asset = randomDocument(seed, 5 + seed * 3);
        VN_EXPECT_OK(DocumentFile::saveAs(*asset, file.path()));
        expectSaved(*asset, file.path());
        for (unsigned round = 0; round < 6; ++round) {
            {
                Transaction transaction(*asset, L"Change");
                changeRandomly(*asset, seed * 100 + round);
                transaction.commit();
            }
            if (round % 3 == 1) static_cast<void>(asset->history().undo());
            VN_EXPECT_OK(DocumentFile::save(*asset));
            EXPECT_FALSE(asset->isDirty());
            expectSaved(*asset, file.path());
            if (round % 3 == 1 && asset->history().canRedo()) {
                VN_EXPECT_OK(asset->history().redo());
                VN_EXPECT_OK(DocumentFile::save(*asset));
                expectSaved(*asset, file.path());
            }
            if (round == 3) asset = load(file.path()); // and on with what was loaded
        }
    }
}

TEST(DocumentFileTests, SavingAgainWritesOnlyWhatChanged) {
    TemporaryFile const file;
    StrongRef<Asset> const asset = Asset::make(nullptr);
    StrongRef<Everything> const root = Everything::make(design(*asset));
    design(*asset)->addRoot(root, "root");
    std::vector<StrongRef<Row>> rows;
    for (int i = 0; i < 20'000; ++i) {
        rows.push_back(Row::make(design(*asset)));
        root->m_children.push_back(StrongRef<Piece>(rows.back()));
    }
    VN_EXPECT_OK(DocumentFile::saveAs(*asset, file.path()));
    auto before = rowsOf(file.path());
    auto const bytes = [&] {
        std::ifstream in(file.path(), std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(in), {});
    };
    std::string const image = bytes();

    // One field: its row, and that of the document.
    rows[777]->change([&] { rows[777]->m_x = 2.5; });
    VN_EXPECT_OK(DocumentFile::save(*asset));
    auto after = rowsOf(file.path());
    std::vector<std::string> const found = differing(after, before);
    ASSERT_EQ(found.size(), 2U);
    EXPECT_THAT(found[0], ::testing::StartsWith("Row: " + std::to_string(rows[777]->id()) + "|1|"));
    EXPECT_THAT(found[1], ::testing::StartsWith("document: "));
    std::string const changed = bytes();
    ASSERT_EQ(changed.size(), image.size());
    std::size_t pages = 0;
    for (std::size_t page = 0; page < image.size(); page += 4096)
        pages += image.compare(page, 4096, changed, page, 4096) != 0;
    EXPECT_LE(pages, 3U); // the row, the document, the header

    // Nothing changed: not a byte.
    VN_EXPECT_OK(DocumentFile::save(*asset));
    EXPECT_EQ(bytes(), changed);

    // A child more in the middle of the list: its row, that of the parent, and the chunk around it.
    StrongRef<Row> const more = Row::make(design(*asset));
    before = after;
    root->change([&] {
        root->m_children.insert(root->m_children.begin() + 10'000, StrongRef<Piece>(more));
    });
    VN_EXPECT_OK(DocumentFile::save(*asset));
    after = rowsOf(file.path());
    EXPECT_LE(differing(after, before).size(), 6U);
    EXPECT_GT(before["lists"].size(), 40U);

    // And away.
    before = after;
    root->change([&] { root->m_children.erase(root->m_children.begin() + 3'000); });
    rows[3'000].reset();
    VN_EXPECT_OK(DocumentFile::save(*asset));
    after = rowsOf(file.path());
    EXPECT_LE(differing(after, before).size(), 5U);
    EXPECT_EQ(after["Row"].size(), before["Row"].size() - 1);
    expectSaved(*asset, file.path());
}

// Rows are written many at a time, of each class by itself.
TEST(DocumentFileTests, AnyNumberOfEntitiesComesBack) {
    for (std::size_t const count : {1U, 31U, 32U, 33U, 64U, 100U}) {
        TemporaryFile const file;
        StrongRef<Asset> const asset = Asset::make(nullptr);
        std::vector<StrongRef<Piece>> pieces;
        for (std::size_t i = 0; i < count; ++i) {
            pieces.emplace_back(Row::make(design(*asset)));
            pieces.emplace_back(Everything::make(design(*asset)));
        }
        auto const rename = [&](std::wstring const & name) {
            for (StrongRef<Piece> const & piece : pieces)
                piece->change([&] { piece->m_name = name + std::to_wstring(piece->id()); });
        };
        rename(L"\u00FCber the length of a text that needs no memory of its own ");
        VN_EXPECT_OK(DocumentFile::saveAs(*asset, file.path()));
        expectSaved(*asset, file.path());
        rename(L"another name of each ");
        VN_EXPECT_OK(DocumentFile::save(*asset));
        expectSaved(*asset, file.path());
    }
}

TEST(DocumentFileTests, SaveAsLeavesTheOtherFileAlone) {
    TemporaryFile const first;
    TemporaryFile const second;
    StrongRef<Asset> const asset = randomDocument(1, 30);
    VN_EXPECT_OK(DocumentFile::saveAs(*asset, first.path()));
    EXPECT_EQ(asset->file(), first.path());
    std::string const before = dump(*asset);
    changeRandomly(*asset, 5);
    VN_EXPECT_OK(DocumentFile::saveAs(*asset, second.path()));
    EXPECT_EQ(asset->file(), second.path());
    EXPECT_FALSE(std::filesystem::exists(second.text() + ".saving"));
    EXPECT_EQ(dump(*load(first.path())), before);
    expectSaved(*asset, second.path());
    changeRandomly(*asset, 6);
    VN_EXPECT_OK(DocumentFile::save(*asset));
    EXPECT_EQ(dump(*load(first.path())), before);
    expectSaved(*asset, second.path());
    // In place of another document, and of what isn't a document at all.
    VN_EXPECT_OK(DocumentFile::saveAs(*asset, first.path()));
    expectSaved(*asset, first.path());
    std::ofstream(second.path()) << "something else";
    VN_EXPECT_OK(DocumentFile::saveAs(*asset, second.path()));
    expectSaved(*asset, second.path());
}

TEST(DocumentFileTests, WhatACrashLeftBesideIsOverwritten) {
    TemporaryFile const file;
    std::ofstream(file.text() + ".saving") << std::string(100'000, 'x');
    StrongRef<Asset> const asset = randomDocument(2, 10);
    VN_EXPECT_OK(DocumentFile::saveAs(*asset, file.path()));
    expectSaved(*asset, file.path());
    EXPECT_FALSE(std::filesystem::exists(file.text() + ".saving"));
}

TEST(DocumentFileTests, ALinkIsFollowed) {
    TemporaryFile const file;
    TemporaryFile const link;
    StrongRef<Asset> const asset = randomDocument(3, 10);
    VN_EXPECT_OK(DocumentFile::saveAs(*asset, file.path()));
    std::error_code error;
    std::filesystem::create_symlink(file.path(), link.path(), error);
    if (error) GTEST_SKIP() << "there are no links here: " << error.message();
    changeRandomly(*asset, 1);
    VN_EXPECT_OK(DocumentFile::saveAs(*asset, link.path()));
    EXPECT_TRUE(std::filesystem::is_symlink(link.path()));
    expectSaved(*asset, file.path());
}

TEST(DocumentFileTests, IdsSurviveAndAreNeverUsedAgain) {
    TemporaryFile const file;
    StrongRef<Asset> asset = Asset::make(nullptr);
    StrongRef<Everything> root = Everything::make(design(*asset));
    design(*asset)->addRoot(root, "root");
    StrongRef<Row> row = Row::make(design(*asset));
    unsigned long long const gone = row->id();
    row.reset();
    asset->history().clear();
    VN_EXPECT_OK(DocumentFile::saveAs(*asset, file.path()));
    StrongRef<Asset> const other = load(file.path());
    EXPECT_TRUE(other->entity(root->id()));
    EXPECT_FALSE(other->entity(gone));
    StrongRef<Row> const next = Row::make(design(*other));
    EXPECT_GT(next->id(), gone);
}

TEST(DocumentFileTests, TransientSegmentsArentWritten) {
    TemporaryFile const file;
    StrongRef<Asset> const asset = Asset::make(nullptr);
    Segment * const transient = segmentOf(*asset, SegmentType::TransientSegment);
    StrongRef<Everything> const root = Everything::make(design(*asset));
    StrongRef<Everything> const passing = Everything::make(transient);
    design(*asset)->addRoot(root, "root");
    transient->addRoot(passing, "passing");
    root->m_rOwned = StrongRef<Piece>(passing);
    root->m_rFriend = PassiveRef<Entity>(passing.get());
    root->m_friends = {PassiveRef<Entity>(passing.get())};
    root->m_children = {StrongRef<Piece>(passing)};
    VN_EXPECT_OK(DocumentFile::saveAs(*asset, file.path()));
    passing->change([&] { passing->m_int = 3; });
    VN_EXPECT_OK(DocumentFile::save(*asset));
    StrongRef<Asset> const other = load(file.path());
    EXPECT_EQ(other->entities(), 1U);
    EXPECT_EQ(other->segments(), 1U);
    auto const & loaded = static_cast<Everything &>(*other->entity(root->id()));
    EXPECT_FALSE(loaded.m_rOwned);
    EXPECT_FALSE(loaded.m_rFriend);
    ASSERT_EQ(loaded.m_friends.size(), 1U);
    EXPECT_FALSE(loaded.m_friends[0]);
    ASSERT_EQ(loaded.m_children.size(), 1U);
    EXPECT_FALSE(loaded.m_children[0]);
}

TEST(DocumentFileTests, AReferenceToAnotherDocumentIsNeverWrittenAsNull) {
    TemporaryFile const file;
    StrongRef<Asset> const asset = Asset::make(nullptr);
    StrongRef<Asset> const another = Asset::make(nullptr);
    StrongRef<Everything> const root = Everything::make(design(*asset));
    StrongRef<Everything> const foreign = Everything::make(design(*another));
    design(*asset)->addRoot(root, "root");
    auto const expectRefused = [&](char const * member) {
        Status const status = DocumentFile::saveAs(*asset, file.path());
        EXPECT_EQ(status.code(), StatusFailed);
        EXPECT_THAT(status.toString(),
                    HasSubstr("entity 1, member Everything." + std::string(member) +
                              ": it refers to an entity of another document"));
        EXPECT_FALSE(std::filesystem::exists(file.path()));
    };
    root->m_rFriend = PassiveRef<Entity>(foreign.get());
    expectRefused("rFriend");
    root->m_rFriend.reset();
    root->m_rOwned = StrongRef<Piece>(foreign);
    expectRefused("rOwned");
    root->m_rOwned.reset();
    root->m_spots = {{0, L"", PassiveRef<Entity>(foreign.get())}};
    expectRefused("spots");
    root->m_spots.clear();
    VN_EXPECT_OK(DocumentFile::saveAs(*asset, file.path()));
    expectSaved(*asset, file.path());
}

TEST(DocumentFileTests, APassiveReferenceToWhatWasDeletedIsNull) {
    TemporaryFile const file;
    StrongRef<Asset> const asset = Asset::make(nullptr);
    StrongRef<Everything> const root = Everything::make(design(*asset));
    design(*asset)->addRoot(root, "root");
    StrongRef<Row> row = Row::make(design(*asset));
    root->m_rFriend = PassiveRef<Entity>(row.get());
    root->m_friends = {PassiveRef<Entity>(row.get())};
    VN_EXPECT_OK(DocumentFile::saveAs(*asset, file.path()));
    row.reset();
    asset->history().clear();
    VN_EXPECT_OK(DocumentFile::save(*asset));
    EXPECT_EQ(query(file.path(), "SELECT count(*) FROM Row")[0][0], "0");
    expectSaved(*asset, file.path());
}

TEST(DocumentFileTests, WhatNothingOwnsIsKept) {
    TemporaryFile const file;
    StrongRef<Asset> const asset = Asset::make(nullptr);
    std::vector<StrongRef<Row>> rows;
    for (int i = 0; i < 10; ++i) rows.push_back(Row::make(design(*asset)));
    VN_EXPECT_OK(DocumentFile::saveAs(*asset, file.path()));
    expectSaved(*asset, file.path());
    StrongRef<Asset> const other = load(file.path());
    EXPECT_EQ(other->entities(), 10U);
    VN_EXPECT_OK(DocumentFile::save(*other));
    expectSaved(*asset, file.path());
}

TEST(DocumentFileTests, RootsComeBackInTheirOrder) {
    TemporaryFile const file;
    StrongRef<Asset> const asset = Asset::make(nullptr);
    Segment * const alone = segmentOf(*asset, SegmentType::StandaloneSegment);
    for (char const * const key : {"b", "a", "\xFF", "c"})
        design(*asset)->addRoot(Row::make(design(*asset)), key);
    alone->addRoot(Row::make(alone), "b");
    design(*asset)->addRoot(Row::make(design(*asset)), std::string("nul\0", 4));
    VN_EXPECT_OK(DocumentFile::saveAs(*asset, file.path()));
    expectSaved(*asset, file.path());
    design(*asset)->addRoot(nullptr, "a");
    design(*asset)->addRoot(Row::make(design(*asset)), "b");
    VN_EXPECT_OK(DocumentFile::save(*asset));
    expectSaved(*asset, file.path());
}

TEST(DocumentFileTests, WhatIsUndoneAfterASaveIsSavedAgain) {
    TemporaryFile const file;
    StrongRef<Asset> const asset = Asset::make(nullptr);
    StrongRef<Everything> const root = Everything::make(design(*asset));
    design(*asset)->addRoot(root, "root");
    asset->history().clear();
    VN_EXPECT_OK(DocumentFile::saveAs(*asset, file.path()));
    std::string const empty = dump(*asset);
    {
        Transaction transaction(*asset, L"Make");
        StrongRef<Row> const row = Row::make(design(*asset));
        root->change([&] { root->m_children.push_back(StrongRef<Piece>(row)); });
        transaction.commit();
    }
    VN_EXPECT_OK(DocumentFile::save(*asset));
    std::string const full = dump(*asset);
    for (int i = 0; i < 3; ++i) {
        VN_EXPECT_OK(asset->history().undo());
        EXPECT_TRUE(asset->isDirty());
        VN_EXPECT_OK(DocumentFile::save(*asset));
        EXPECT_EQ(dump(*load(file.path())), empty);
        VN_EXPECT_OK(asset->history().redo());
        VN_EXPECT_OK(DocumentFile::save(*asset));
        EXPECT_EQ(dump(*load(file.path())), full);
    }
}

// It is changed, dies, the document is saved, and it comes back with the change.
TEST(DocumentFileTests, WhatDiedChangedAndComesBackIsSaved) {
    TemporaryFile const file;
    StrongRef<Asset> const asset = Asset::make(nullptr);
    StrongRef<Everything> const root = Everything::make(design(*asset));
    design(*asset)->addRoot(root, "root");
    Row * const row = Row::make(design(*asset)).get();
    static_cast<void>(row);
    StrongRef<Row> const kept = Row::make(design(*asset));
    root->m_children = {StrongRef<Piece>(kept)};
    VN_EXPECT_OK(DocumentFile::saveAs(*asset, file.path()));
    {
        Transaction transaction(*asset, L"Change");
        kept->change([&] { kept->m_x = 8; });
        transaction.commit();
    }
    unsigned long long const id = kept->id();
    {
        Transaction transaction(*asset, L"Delete");
        root->change([&] { root->m_children.clear(); });
        const_cast<StrongRef<Row> &>(kept).reset();
        transaction.commit();
    }
    ASSERT_FALSE(asset->entity(id));
    VN_EXPECT_OK(DocumentFile::save(*asset));
    expectSaved(*asset, file.path());
    VN_EXPECT_OK(asset->history().undo());
    ASSERT_TRUE(asset->entity(id));
    VN_EXPECT_OK(DocumentFile::save(*asset));
    expectSaved(*asset, file.path());
}

TEST(DocumentFileTests, HooksAreToldAroundEachEntity) {
    TemporaryFile const file;
    StrongRef<Asset> const asset = Asset::make(nullptr);
    auto & type = *Everything::s_metaType();
    StrongRef<Everything> const one = Everything::make(design(*asset));
    StrongRef<Everything> const two = Everything::make(design(*asset));
    type.m_bListening = true;
    VN_EXPECT_OK(DocumentFile::saveAs(*asset, file.path()));
    EXPECT_THAT(std::exchange(type.m_heard, {}),
                ::testing::ElementsAre("preSave 1", "preSave 2", "postSave 1", "postSave 2"));
    two->change([&] { two->m_int = 1; });
    VN_EXPECT_OK(DocumentFile::save(*asset));
    EXPECT_THAT(std::exchange(type.m_heard, {}), ::testing::ElementsAre("preSave 2", "postSave 2"));
    load(file.path());
    EXPECT_THAT(std::exchange(type.m_heard, {}),
                ::testing::ElementsAre("preLoad 1", "preLoad 2", "postLoad 1", "postLoad 2"));
    type.m_bListening = false;
}

TEST(DocumentFileTests, ADocumentThatCantBeSavedSaysWhy) {
    TemporaryFile const file;
    StrongRef<Asset> const asset = randomDocument(4, 10);
    EXPECT_EQ(DocumentFile::save(*asset).code(), StatusInvalidArgument); // there is no file yet
    EXPECT_EQ(DocumentFile::saveAs(*asset, {}).code(), StatusInvalidArgument);
    {
        Transaction transaction(*asset, L"Open");
        Status const status = DocumentFile::saveAs(*asset, file.path());
        EXPECT_THAT(status.toString(), HasSubstr("a transaction is open"));
        EXPECT_FALSE(std::filesystem::exists(file.path()));
    }
    Status status =
        DocumentFile::saveAs(*asset, file.path().parent_path() / "no such" / "file.vnd");
    EXPECT_EQ(status.code(), StatusNotFound) << status.toString();
    if (std::filesystem::path const noFiles = "/proc/self"; std::filesystem::exists(noFiles)) {
        status = DocumentFile::saveAs(*asset, noFiles / "file.vnd");
        EXPECT_EQ(status.code(), StatusAccessDenied) << status.toString();
    }
    status = DocumentFile::saveAs(*asset, file.path().parent_path());
    EXPECT_EQ(status.code(), StatusInvalidArgument);
    EXPECT_THAT(status.toString(), HasSubstr("it is a directory"));
    EXPECT_THAT(status.toString(), HasSubstr(file.path().parent_path().string()));

    VN_EXPECT_OK(DocumentFile::saveAs(*asset, file.path()));
    changeRandomly(*asset, 3);
    std::filesystem::permissions(file.path(), std::filesystem::perms::owner_read);
    status = DocumentFile::save(*asset);
    EXPECT_EQ(status.code(), StatusAccessDenied) << status.toString();
    EXPECT_EQ(DocumentFile::saveAs(*asset, file.path()).code(), StatusAccessDenied);
    EXPECT_TRUE(asset->isDirty());
    std::filesystem::permissions(file.path(), std::filesystem::perms::owner_all);
    auto const given = std::filesystem::status(file.path()).permissions(); // all that there can be
    VN_EXPECT_OK(DocumentFile::save(*asset));
    EXPECT_EQ(std::filesystem::status(file.path()).permissions(), given);
    expectSaved(*asset, file.path());

    std::filesystem::remove(file.path());
    EXPECT_EQ(DocumentFile::save(*asset).code(), StatusNotFound);
    std::filesystem::create_directory(file.path());
    EXPECT_EQ(DocumentFile::save(*asset).code(), StatusInvalidArgument);
    std::filesystem::remove(file.path());
}

TEST(DocumentFileTests, AFileThatAnotherProgramChangedIsntWrittenTo) {
    TemporaryFile const file;
    TemporaryFile const elsewhere;
    StrongRef<Asset> const asset = randomDocument(5, 10);
    VN_EXPECT_OK(DocumentFile::saveAs(*asset, file.path()));
    StrongRef<Asset> const other = load(file.path());
    changeRandomly(*other, 1);
    VN_EXPECT_OK(DocumentFile::save(*other));
    changeRandomly(*asset, 2);
    Status const status = DocumentFile::save(*asset);
    EXPECT_EQ(status.code(), StatusChanged);
    EXPECT_THAT(status.toString(), HasSubstr("the file was changed by another program"));
    expectSaved(*other, file.path());
    VN_EXPECT_OK(DocumentFile::saveAs(*asset, elsewhere.path()));
    expectSaved(*asset, elsewhere.path());
    // Another document in its place is no better.
    VN_EXPECT_OK(DocumentFile::saveAs(*randomDocument(6, 10), elsewhere.path()));
    EXPECT_EQ(DocumentFile::save(*asset).code(), StatusChanged);
}

TEST(DocumentFileTests, AFileInUseIsBusy) {
    TemporaryFile const file;
    StrongRef<Asset> const asset = randomDocument(7, 10);
    VN_EXPECT_OK(DocumentFile::saveAs(*asset, file.path()));
    changeRandomly(*asset, 2);
    {
        Sql const other(file.path());
        other.run("BEGIN EXCLUSIVE");
        Status const status = DocumentFile::save(*asset);
        EXPECT_EQ(status.code(), StatusBusy) << status.toString();
        StrongRef<Asset> loaded;
        EXPECT_EQ(DocumentFile::load(file.path(), nullptr, loaded).code(), StatusBusy);
        EXPECT_FALSE(loaded);
    }
    VN_EXPECT_OK(DocumentFile::save(*asset));
    expectSaved(*asset, file.path());
}

TEST(DocumentFileTests, WhatIsNoDocumentIsRefused) {
    TemporaryFile const file;
    StrongRef<Asset> asset;
    auto const refused = [&] { return DocumentFile::load(file.path(), nullptr, asset); };
    EXPECT_EQ(refused().code(), StatusNotFound);
    EXPECT_EQ(DocumentFile::load({}, nullptr, asset).code(), StatusInvalidArgument);
#ifndef _WIN32 // which has no device of that name
    EXPECT_EQ(DocumentFile::load("/dev/null", nullptr, asset).code(), StatusInvalidArgument);
#endif
    EXPECT_EQ(DocumentFile::load(file.path().parent_path(), nullptr, asset).code(),
              StatusInvalidArgument);
    for (std::string const & content :
         {std::string(), std::string("short"), std::string(5000, 'x')}) {
        std::ofstream(file.path(), std::ios::binary) << content;
        Status const status = refused();
        EXPECT_EQ(status.code(), StatusCorrupt);
        EXPECT_THAT(status.toString(), HasSubstr("it is not a document"));
        std::ofstream(file.path(), std::ios::binary | std::ios::app).flush();
        EXPECT_EQ(std::filesystem::file_size(file.path()),
                  content.size()); // looked at, not touched
    }
    std::filesystem::remove(file.path());
    Sql(file.path()).run("CREATE TABLE something(x)");
    EXPECT_THAT(refused().toString(), HasSubstr("it is not a document"));
}

TEST(DocumentFileTests, ALaterVersionOfTheFormatIsRefused) {
    TemporaryFile const file;
    StrongRef<Asset> asset = randomDocument(8, 5);
    VN_EXPECT_OK(DocumentFile::saveAs(*asset, file.path()));
    Sql(file.path()).run("PRAGMA user_version=2");
    Status const status = DocumentFile::load(file.path(), nullptr, asset);
    EXPECT_EQ(status.code(), StatusNewerFormat);
    EXPECT_THAT(status.toString(), HasSubstr("it has version 2 of the format"));
    EXPECT_FALSE(asset);
}

TEST(DocumentFileTests, ALaterVersionOfATypeIsRefused) {
    TemporaryFile const file;
    StrongRef<Asset> asset = randomDocument(9, 5);
    VN_EXPECT_OK(DocumentFile::saveAs(*asset, file.path()));
    Sql(file.path()).run("UPDATE types SET version=4 WHERE id='Test-Everything'");
    Status const status = DocumentFile::load(file.path(), nullptr, asset);
    EXPECT_EQ(status.code(), StatusNewerFormat);
    EXPECT_THAT(status.toString(), HasSubstr("EverythingMetaType (Test-Everything) has version 4"));
}

// Longer than the 260 characters that paths of Windows once had.
TEST(DocumentFileTests, APathMayBeLongAndHaveAnyCharacters) {
    TemporaryDirectory const temporary;
    std::filesystem::path directory = temporary.path();
    for (char8_t const * const name : {u8"a blank, \u00E4 and \u65E5", u8"\U0001D11E [1] #2 'x'"})
        directory /= std::u8string(name) + std::u8string(120, u8'x');
    std::filesystem::create_directories(directory);
    std::filesystem::path const file = directory / (std::u8string(80, u8'y') + u8" \u00FC.vnd");
    ASSERT_GT(file.u8string().size(), 320U);
    StrongRef<Asset> const asset = Asset::make(nullptr);
    StrongRef<Row> const row = Row::make(design(*asset));
    VN_EXPECT_OK(DocumentFile::saveAs(*asset, file));
    row->change([&] { row->m_x = 5; });
    VN_EXPECT_OK(DocumentFile::save(*asset));
    VN_EXPECT_OK(DocumentFile::saveAs(*asset, file));
    expectSaved(*asset, file);
    std::filesystem::path const other = directory / u8"\u00FC";
    VN_EXPECT_OK(DocumentFile::saveAs(*asset, other));
    expectSaved(*asset, other);
    for (char const * const ending : {".saving", "-journal"})
        EXPECT_FALSE(std::filesystem::exists(std::filesystem::path(file) += ending)) << ending;
}

#ifndef _WIN32 // where the system checks names otherwise

TEST(DocumentFileTests, ANameThatIsTooLongIsToldAsThat) {
    TemporaryFile const file;
    StrongRef<Asset> asset = Asset::make(nullptr);
    std::filesystem::path const directory = file.path().parent_path();
    std::vector<std::string> findings;
    std::filesystem::path const longest = directory / std::string(300, 'x');
    for (Status const & status :
         {DocumentFile::saveAs(*asset, longest), DocumentFile::check(longest, findings)}) {
        EXPECT_EQ(status.code(), StatusInvalidArgument);
        EXPECT_EQ(status.cause(), "the name is longer than names may be");
    }
    StrongRef<Asset> loaded;
    EXPECT_EQ(DocumentFile::load(longest, nullptr, loaded).cause(),
              "the name is longer than names may be");
    // A name that would do, but for what stands after it during the save.
    Status const status = DocumentFile::saveAs(*asset, directory / std::string(252, 'x'));
    EXPECT_EQ(status.code(), StatusInvalidArgument);
    EXPECT_EQ(status.cause(), "the name is too long for \".saving\" to stand after it until the "
                              "document is saved");
    EXPECT_FALSE(std::filesystem::exists(directory / std::string(252, 'x')));
}

#endif

#ifndef _WIN32 // where Ctrl-C isn't a signal, and needs a console

TEST(DocumentFileTests, AnInterruptionEndsALoadAndACheckAndNoSave) {
    TemporaryFile const file;
    StrongRef<Asset> asset = Asset::make(nullptr);
    StrongRef<Row> const row = Row::make(design(*asset));
    OS::NotedInterruptions const noted;
    std::raise(SIGINT);
    VN_EXPECT_OK(DocumentFile::saveAs(*asset, file.path()));
    row->change([&] { row->m_x = 5; });
    VN_EXPECT_OK(DocumentFile::save(*asset));
    StrongRef<Asset> loaded;
    EXPECT_EQ(DocumentFile::load(file.path(), nullptr, loaded).code(), StatusCancelled);
    EXPECT_FALSE(loaded);
    std::vector<std::string> findings;
    EXPECT_EQ(DocumentFile::check(file.path(), findings).code(), StatusCancelled);
    OS::forgetInterruption();
    expectSaved(*asset, file.path());
}

#endif

TEST(DocumentFileTests, AnUnknownTypeIsNamed) {
    TemporaryFile const file;
    StrongRef<Asset> asset = Asset::make(nullptr);
    Changing::become(0);
    StrongRef<Changing> changing = Changing::make(design(*asset));
    VN_EXPECT_OK(DocumentFile::saveAs(*asset, file.path()));
    changing.reset();
    asset.reset();
    Changing::end();
    Status const status = DocumentFile::load(file.path(), nullptr, asset);
    EXPECT_EQ(status.code(), StatusUnsupported);
    EXPECT_THAT(status.toString(), HasSubstr("ChangingMetaType (Test-Changing) isn't known"));
    std::vector<std::string> findings;
    std::vector<std::string> unknownTypes;
    VN_EXPECT_OK(DocumentFile::check(file.path(), findings, unknownTypes));
    EXPECT_TRUE(findings.empty()) << "it isn't damaged for that";
    EXPECT_EQ(unknownTypes, std::vector<std::string>{"ChangingMetaType (Test-Changing)"});
    // What it has none of is no matter, and is forgotten with the next save.
    Sql(file.path()).run("DELETE FROM Changing");
    asset = load(file.path());
    ASSERT_TRUE(asset);
    StrongRef<Row> const row = Row::make(design(*asset));
    VN_EXPECT_OK(DocumentFile::save(*asset));
    EXPECT_EQ(query(file.path(), "SELECT count(*) FROM types WHERE id='Test-Changing'")[0][0], "0");
    expectSaved(*asset, file.path());
}

TEST(DocumentFileTests, AnOlderVersionIsMigrated) {
    TemporaryFile const file;
    Changing::become(0);
    unsigned long long id = 0;
    unsigned long long aloneId = 0;
    {
        StrongRef<Asset> const asset = Asset::make(nullptr);
        Segment * const alone = segmentOf(*asset, SegmentType::StandaloneSegment);
        StrongRef<Everything> const root = Everything::make(design(*asset));
        design(*asset)->addRoot(root, "root");
        StrongRef<Changing> const changing = Changing::make(design(*asset));
        StrongRef<Changing> const still = Changing::make(alone);
        id = changing->id();
        aloneId = still->id();
        StrongRef<Row> const later = Row::make(design(*asset));
        root->m_children = {StrongRef<Piece>(changing), StrongRef<Piece>(later)};
        for (StrongRef<Changing> const & each : {changing, still}) {
            each->m_name = L"old";
            each->m_count = 3;
            each->m_first = 2.5;
            each->m_rFirstFriend = PassiveRef<Piece>(later.get());
        }
        VN_EXPECT_OK(DocumentFile::saveAs(*asset, file.path()));
    }
    Changing::become(1);
    {
        StrongRef<Asset> const asset = load(file.path());
        ASSERT_TRUE(asset);
        auto & changing = static_cast<Changing &>(*asset->entity(id));
        EXPECT_EQ(changing.m_name, L"old");
        EXPECT_EQ(changing.m_count, 3);
        EXPECT_EQ(changing.m_total, 2.5);
        ASSERT_TRUE(changing.m_rTotalFriend);
        EXPECT_EQ(changing.m_rTotalFriend->id(), id + 2);
        EXPECT_EQ(changing.version(), 1U);
        EXPECT_FALSE(changing.isMarkedMigrating());
        // A standalone segment is never migrated: what the present version has too is read.
        auto & still = static_cast<Changing &>(*asset->entity(aloneId));
        EXPECT_EQ(still.m_count, 3);
        EXPECT_EQ(still.m_total, 0);
        EXPECT_FALSE(asset->isMigrating());
        EXPECT_FALSE(asset->isDirty());
        // The next save writes the file in the present version.
        changing.change([&] { changing.m_total = 4; });
        VN_EXPECT_OK(DocumentFile::save(*asset));
        EXPECT_EQ(query(file.path(), "SELECT version FROM types WHERE id='Test-Changing'")[0][0],
                  "1");
        expectSaved(*asset, file.path());
    }
    Changing::become(0);
    StrongRef<Asset> asset;
    EXPECT_EQ(DocumentFile::load(file.path(), nullptr, asset).code(), StatusNewerFormat);
    Changing::end();
}

TEST(DocumentFileTests, AFailedMigrationLeavesNothingBehind) {
    TemporaryFile const file;
    Changing::become(0);
    {
        StrongRef<Asset> const asset = Asset::make(nullptr);
        StrongRef<Changing> const changing = Changing::make(design(*asset));
        VN_EXPECT_OK(DocumentFile::saveAs(*asset, file.path()));
    }
    Sql(file.path()).run("INSERT INTO roots VALUES(1, 0, 'root', 77)");
    Changing::become(1);
    StrongRef<Asset> asset;
    EXPECT_EQ(DocumentFile::load(file.path(), nullptr, asset).code(), StatusCorrupt);
    EXPECT_FALSE(asset);
    Changing::end();
}

void saveAndLoadAChain() {
    TemporaryFile const file;
    StrongRef<Asset> const asset = Asset::make(nullptr);
    StrongRef<Everything> const root = Everything::make(design(*asset));
    design(*asset)->addRoot(root, "root");
    for (int i = 0; i < 100'000; ++i)
        root->m_children.push_back(StrongRef<Piece>(Row::make(design(*asset))));
    Everything * last = root.get();
    for (int i = 0; i < 100'000; ++i) {
        StrongRef<Everything> const next = Everything::make(design(*asset));
        last->m_rOwned = StrongRef<Piece>(next);
        last = next.get();
    }
    VN_EXPECT_OK(DocumentFile::saveAs(*asset, file.path()));
    StrongRef<Asset> const other = load(file.path());
    ASSERT_TRUE(other);
    EXPECT_EQ(other->entities(), 200'001U);
    EXPECT_EQ(dump(*other), dump(*asset));
    std::vector<std::string> findings;
    VN_EXPECT_OK(DocumentFile::check(file.path(), findings));
    EXPECT_THAT(findings, ::testing::IsEmpty());
}

TEST(DocumentFileTests, ALongChainAndALargeGroupAreLoadedOnASmallStack) {
    onSmallStack(saveAndLoadAChain);
}

} // namespace Vn::Testing
