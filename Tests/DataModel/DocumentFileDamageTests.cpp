// Files that were damaged, or made to do harm: each ends in a status with a reason.

#include <fstream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Platform/DataModel/DocumentFile.h"
#include "Tests/DataModel/DocumentSql.h"
#include "Tests/DataModel/DocumentTestEntities.h"
#include "Tests/Support/FileContent.h"

namespace Vn::Testing {

namespace {

using ::testing::HasSubstr;

// Entities 1 and 2 are Everything, and 1 owns 2; 3 to 5 are rows, the children of 1; 6 was deleted.
void saveSample(std::filesystem::path const & file) {
    StrongRef<Asset> const asset = Asset::make(nullptr);
    StrongRef<Everything> const one = Everything::make(design(*asset));
    StrongRef<Everything> const two = Everything::make(design(*asset));
    design(*asset)->addRoot(one, "root");
    one->m_rOwned = StrongRef<Piece>(two);
    one->m_wide = L"some text";
    one->m_texts = {GlobalizedString("module", "key", L"text"), GlobalizedString(L"plain")};
    one->m_strings = {"a", "\xFF"};
    one->m_doubles = {1.5, -0.0};
    one->m_ints = {1, 2};
    one->m_spots = {{1, L"a", nullptr}, {2, L"b", nullptr}};
    for (int i = 0; i < 3; ++i) {
        StrongRef<Row> const row = Row::make(design(*asset));
        row->m_rParent = PassiveRef<Piece>(one.get());
        one->m_children.push_back(StrongRef<Piece>(row));
    }
    one->m_rRow = PassiveRef<Row>(static_cast<Row *>(one->m_children[0].get()));
    one->m_friends = {PassiveRef<Entity>(one->m_children[1].get())};
    StrongRef<Row> const gone = Row::make(design(*asset));
    const_cast<StrongRef<Row> &>(gone).reset();
    asset->history().clear();
    Status const status = DocumentFile::saveAs(*asset, file);
    ASSERT_TRUE(status) << status.toString();
}

void write(std::filesystem::path const & file, std::string const & content) {
    std::ofstream(file, std::ios::binary | std::ios::trunc) << content;
}

// Opens and checks whatever is there: it works, or there is a reason why not.
bool tryFile(std::filesystem::path const & file) {
    StrongRef<Asset> asset;
    Status const status = DocumentFile::load(file, nullptr, asset);
    EXPECT_EQ(static_cast<bool>(asset), status.ok());
    if (!status) {
        EXPECT_FALSE(status.cause().empty());
        EXPECT_FALSE(status.subject().empty());
    } else
        EXPECT_FALSE(dump(*asset).empty());
    std::vector<std::string> findings;
    Status const checked = DocumentFile::check(file, findings);
    EXPECT_TRUE(checked || !checked.cause().empty());
    return status.ok();
}

struct Damage {
    std::string sql;
    std::string cause;
    EStatus code = StatusCorrupt;
    bool isFound = true; // by the check, which knows nothing of classes
};

std::string list(std::string const & member, std::string const & items) {
    return "UPDATE lists SET items=" + items +
           " WHERE member=(SELECT position FROM members WHERE type=(SELECT number FROM types WHERE "
           "id='Test-Everything') AND name='" +
           member + "')";
}

std::vector<Damage> damages() {
    std::string const row = "INSERT INTO Row SELECT ";
    std::string const rest = ", segment, \"Piece.name\", \"Piece.rParent\", \"Row.x\", \"Row.y\", "
                             "\"Row.number\", \"Row.flag\" FROM Row WHERE id=3";
    std::string const deep(100'000, '[');
    return {
        // The tables.
        {"DROP TABLE roots", "a table is missing"},
        {"DROP TABLE Row", "a table is missing"},
        {"CREATE VIEW v AS SELECT 1", "a document has no view v"},
        {"DROP TABLE document; CREATE VIEW document AS SELECT 'a' AS id, 'b' AS stamp, 1 AS "
         "generation, 9 AS next_entity",
         "a document has no view document"},
        {"CREATE TRIGGER t AFTER INSERT ON roots BEGIN SELECT 1; END",
         "a document has no trigger t"},
        {"CREATE INDEX i ON roots(key)", "a document has no index i"},
        {"CREATE TABLE extra(x)", "a document has no table extra"},
        {"ALTER TABLE Row ADD COLUMN extra", "the table Row isn't as it should be"},
        {"ALTER TABLE lists ADD COLUMN extra", "the table lists isn't as it should be"},
        {"PRAGMA journal_mode=WAL", "it was switched to another mode"},
        // The row of the document.
        {"DELETE FROM document", "the row of the document is missing"},
        {"INSERT INTO document SELECT * FROM document", "there are two rows of the document"},
        {"UPDATE document SET stamp=NULL", "the stamp of the document isn't a text"},
        {"UPDATE document SET next_entity=0", "the next id is out of range"},
        {"UPDATE document SET next_entity=4611686018427387905", "the next id is out of range"},
        {"UPDATE document SET next_entity=4", "its id is out of range"},
        // The types and their members.
        {"UPDATE types SET name=CAST(x'FF' AS TEXT) WHERE id='Test-Row'",
         "the name of a type isn't UTF-8"},
        {"UPDATE types SET id='Unknown' WHERE id='Test-Row'",
         "the type RowMetaType (Unknown) isn't known to this program", StatusUnsupported, false},
        {"DELETE FROM types WHERE id='Test-Piece'; UPDATE types SET id='Test-Piece' WHERE "
         "id='Test-Row'",
         "has entities and is abstract", StatusCorrupt, false},
        {"UPDATE types SET id='Test-Spot' WHERE id='Test-Row'; DELETE FROM types WHERE "
         "what='value'",
         "", StatusCorrupt, false},
        {"UPDATE types SET version=-1", "is out of range"},
        {"UPDATE types SET version='one'", "the version of a type isn't a whole number"},
        {"UPDATE types SET what='thing'", "is neither of entities nor of values"},
        {"UPDATE types SET number=9000000 WHERE id='Test-Piece'",
         "the number of a type is out of range"},
        {"UPDATE types SET table_name='document' WHERE id='Test-Row'", "is unfit"},
        {"UPDATE members SET kind='int' WHERE name='bool'", "isn't what the class has",
         StatusCorrupt, false},
        {"UPDATE members SET kind='thing' WHERE name='x'", "is of no kind"},
        {"UPDATE members SET element='Vector' WHERE name='ints'", "has elements of no kind"},
        {"UPDATE members SET list=77 WHERE list IS NOT NULL", "belongs to no list"},
        {"UPDATE members SET name='other' WHERE name='int'", "isn't what the class has",
         StatusCorrupt, false},
        {"DELETE FROM members WHERE name='int'", "is missing"},
        {"DELETE FROM members WHERE class='Row' AND position="
         "(SELECT max(position) FROM members WHERE class='Row')",
         "the table Row isn't as it should be"},
        {"UPDATE members SET column_name=CAST(x'C3' AS TEXT) WHERE name='int'",
         "the column of a member isn't UTF-8"},
        {"UPDATE members SET class='' WHERE name='int'", "the name of a member is unfit"},
        // The segments.
        {"DELETE FROM segments", "its segment isn't in the file", StatusCorrupt, true},
        {"UPDATE segments SET kind=9", "there is no segment of kind 9", StatusCorrupt, true},
        {"UPDATE segments SET kind=2", "there is no segment of kind 2", StatusCorrupt, true},
        {"UPDATE Row SET segment='x'", "its segment isn't in the file"},
        {"UPDATE Row SET segment=3", "its segment isn't in the file"},
        // The ids.
        {row + "0" + rest, "its id is out of range"},
        {row + "-7" + rest, "its id is out of range"},
        {row + "4611686018427387904" + rest, "its id is out of range"},
        {row + "1" + rest, "its id is that of another entity"},
        // The values.
        {"UPDATE Row SET \"Row.number\"=-1 WHERE id=4",
         "entity 4, member Row.number: it isn't a whole number of that kind"},
        {"UPDATE Row SET \"Row.number\"=4294967296", "it isn't a whole number of that kind"},
        {"UPDATE Row SET \"Row.number\"=NULL", "it isn't a whole number of that kind"},
        {"UPDATE Row SET \"Row.number\"=1.0", "it isn't a whole number of that kind"},
        {"UPDATE Row SET \"Row.flag\"=2", "it is neither true nor false"},
        {"UPDATE Row SET \"Row.x\"='1'", "it isn't a number"},
        {"UPDATE Everything SET \"Everything.float\"=1e39", "it is beyond the range of a float"},
        {"UPDATE Row SET \"Piece.name\"=CAST(x'C328' AS TEXT)", "it isn't a well-formed text"},
        {"UPDATE Row SET \"Piece.name\"=x'C0AF'", "it isn't a well-formed text"},
        {"UPDATE Row SET \"Piece.name\"=7", "it isn't a well-formed text"},
        {"UPDATE Everything SET \"Everything.string\"=CAST(x'FF' AS TEXT)",
         "it isn't a well-formed text"},
        {"UPDATE Everything SET \"Everything.text:key\"='half'", "it isn't a well-formed text"},
        // The references.
        {"UPDATE Everything SET \"Everything.rOwned\"=6 WHERE id=1",
         "entity 1, member Everything.rOwned: there is no entity 6"},
        {"UPDATE Everything SET \"Everything.rFriend\"=7", "there is no entity 7"},
        {"UPDATE Everything SET \"Everything.rFriend\"=0", "it isn't the id of an entity"},
        {"UPDATE Everything SET \"Everything.rFriend\"=-1", "it isn't the id of an entity"},
        {"UPDATE Everything SET \"Everything.rFriend\"='1'", "it isn't the id of an entity"},
        {"UPDATE Everything SET \"Everything.rRow\"=1 WHERE id=2", "entity 1 is of another class",
         StatusCorrupt, false},
        {"UPDATE Everything SET \"Everything.rOwned\"=1 WHERE id=1", "owns itself in a circle"},
        {"UPDATE Everything SET \"Everything.rOwned\"=1 WHERE id=2", "owns itself in a circle"},
        {list("children", "'[3,4,99]'"),
         "entity 1, member Everything.children: there is no entity 99"},
        {list("children", "'[1]'"), "owns itself in a circle"},
        {"UPDATE roots SET entity=99", "the root root: there is no such entity"},
        {"UPDATE roots SET entity='1'", "a root has no place"},
        {"UPDATE roots SET segment=3", "its entity is in another segment"},
        {"UPDATE roots SET key=CAST(x'FF' AS TEXT)", "the key of a root isn't a text"},
        {"INSERT INTO roots VALUES(1, 7, 'root', 1)", "there are two of them"},
        // The lists.
        {list("ints", "'[1,2'"), "its items aren't a list of that kind"},
        {list("ints", "'[]'"), "it isn't a whole number of that kind"},
        {list("ints", "'[1,]'"), "it isn't a whole number of that kind"},
        {list("ints", "'1'"), "its items aren't a list of that kind"},
        {list("ints", "'[1] '"), "its items aren't a list of that kind"},
        {list("ints", "'[3000000000]'"), "it isn't a whole number of that kind"},
        {list("ints", "'[99999999999999999999999]'"), "it isn't a whole number of that kind"},
        {list("ints", "'[null]'"), "it isn't a whole number of that kind"},
        {list("ints", "'" + deep + "'"), "it isn't a whole number of that kind"},
        {list("ints", "x'5B315D'"), "its items aren't a text"},
        {list("ints", "NULL"), "its items aren't a text"},
        {list("doubles", "'[inf]'"), "it isn't a number"},
        {list("doubles", "'[1e9999]'"), "its items aren't a list of that kind"},
        {list("doubles", "'[1e400]'"), "it isn't a number"},
        {list("doubles", "'[-]'"), "it isn't a number"},
        {list("strings", "'[\"a]'"), "it isn't a well-formed text"},
        {list("strings", "'[\"\\q\"]'"), "it isn't a well-formed text"},
        {list("strings", "'[\"\\u12\"]'"), "it isn't a well-formed text"},
        {list("strings", "'[\"\\ud800\"]'"), "it isn't a well-formed text"},
        {list("strings", "'[{\"bytes\":\"abc\"}]'"), "it isn't a well-formed text"},
        {list("strings", "'[{\"bytes\":\"'"), "it isn't a well-formed text"},
        {list("strings", "'" + deep + "'"), "it isn't a well-formed text"},
        {list("texts", "'[[\"module\",\"key\"]]'"), "it isn't a well-formed text"},
        {list("texts", "'" + deep + "'"), "it isn't a well-formed text"},
        {list("spots", "'[{\"x\":1.0}]'"), "its items aren't a list of that kind"},
        {list("spots", "'[{\"x\":1.0,\"label\":\"a\",\"at\":99}]'"), "there is no entity 99"},
        {list("spots", "'[{\"x\":true,\"label\":\"a\",\"at\":null}]'"), "it isn't a number"},
        {list("spots", "'" + deep + "'"), "its items aren't a list of that kind"},
        {"UPDATE lists SET member=99 WHERE member=(SELECT max(member) FROM lists) AND entity=1",
         "there is no such member"},
        {"UPDATE lists SET member=0 WHERE member=(SELECT max(member) FROM lists) AND entity=1",
         "there is no such member"},
        {"UPDATE lists SET entity=99 WHERE entity=1", "there is no such entity"},
        {"UPDATE lists SET chunk='x' WHERE entity=1", "its key isn't one"},
        {"UPDATE lists SET chunk=4611686018427387904 WHERE entity=1", ""},
        // A list of a thousand million elements that isn't there.
        {list("ints", "zeroblob(0) || '[' || replace(hex(zeroblob(500)), '00', '1,') || 'x'"),
         "it isn't a whole number of that kind"},
    };
}

} // namespace

TEST(DocumentFileDamageTests, WhatIsWrongIsNamed) {
    for (Damage const & damage : damages()) {
        SCOPED_TRACE(damage.sql.substr(0, 200));
        TemporaryFile const file;
        saveSample(file.path());
        std::string const whole = contentOf(file.path());
        Sql(file.path()).run(damage.sql);
        EXPECT_NE(contentOf(file.path()), whole) << "nothing was damaged";
        StrongRef<Asset> asset;
        Status const status = DocumentFile::load(file.path(), nullptr, asset);
        EXPECT_EQ(status.code(), damage.code) << status.toString();
        EXPECT_THAT(status.toString(), HasSubstr(damage.cause));
        EXPECT_THAT(status.toString(), HasSubstr(file.text()));
        EXPECT_FALSE(asset);
        std::vector<std::string> findings;
        Status const checked = DocumentFile::check(file.path(), findings);
        EXPECT_TRUE(checked) << checked.toString();
        EXPECT_EQ(!findings.empty(), damage.isFound) << ::testing::PrintToString(findings);
    }
}

TEST(DocumentFileDamageTests, TheSampleItselfIsWhole) {
    TemporaryFile const file;
    saveSample(file.path());
    EXPECT_TRUE(tryFile(file.path()));
    std::vector<std::string> findings;
    EXPECT_TRUE(DocumentFile::check(file.path(), findings));
    EXPECT_TRUE(findings.empty());
    EXPECT_EQ(DocumentFile::check(file.text() + "x", findings).code(), StatusNotFound);
}

TEST(DocumentFileDamageTests, AWholeNumberServesAsAReal) {
    TemporaryFile const file;
    saveSample(file.path());
    Sql(file.path()).run("UPDATE Row SET \"Row.x\"=5");
    EXPECT_TRUE(tryFile(file.path()));
}

TEST(DocumentFileDamageTests, CutFilesAreRefused) {
    TemporaryFile const file;
    saveSample(file.path());
    std::string const whole = contentOf(file.path());
    for (std::size_t length = 0; length < whole.size(); length += 509) {
        SCOPED_TRACE(length);
        write(file.path(), whole.substr(0, length));
        EXPECT_FALSE(tryFile(file.path()));
        std::vector<std::string> findings;
        EXPECT_TRUE(DocumentFile::check(file.path(), findings));
        EXPECT_FALSE(findings.empty());
    }
    write(file.path(), whole + std::string(10'000, 'x'));
    tryFile(file.path());
    write(file.path(), std::string(whole.size(), '\0'));
    EXPECT_FALSE(tryFile(file.path()));
}

TEST(DocumentFileDamageTests, FlippedBytesDoNoHarm) {
    TemporaryFile const file;
    saveSample(file.path());
    std::string const whole = contentOf(file.path());
    unsigned refused = 0;
    unsigned tried = 0;
    auto const tryWith = [&](std::size_t place, char flip) {
        std::string damaged = whole;
        damaged[place] = static_cast<char>(damaged[place] ^ flip);
        write(file.path(), damaged);
        SCOPED_TRACE(place);
        refused += !tryFile(file.path());
        ++tried;
    };
    // All of the header, and a part of what holds something.
    for (std::size_t place = 0; place < 100; ++place)
        for (char const flip : {'\x01', '\x80', '\xFF'}) tryWith(place, flip);
    std::size_t held = 0;
    for (std::size_t place = 100; place < whole.size(); ++place)
        if (whole[place] != '\0' && held++ % 7 == 0) tryWith(place, held % 2 ? '\xFF' : '\x01');
    // Many flips hit what is read.
    EXPECT_GT(refused, tried / 4);
}

TEST(DocumentFileDamageTests, ExchangedPagesDoNoHarm) {
    TemporaryFile const file;
    saveSample(file.path());
    std::string const whole = contentOf(file.path());
    std::size_t const pages = whole.size() / 4096;
    for (std::size_t a = 0; a < pages; ++a)
        for (std::size_t b = a + 1; b < pages; ++b) {
            std::string damaged = whole;
            damaged.replace(a * 4096, 4096, whole, b * 4096, 4096);
            damaged.replace(b * 4096, 4096, whole, a * 4096, 4096);
            write(file.path(), damaged);
            tryFile(file.path());
        }
}

// A file that fails late, after a million children or a long chain, is left again without trouble.
TEST(DocumentFileDamageTests, ALargeDocumentThatFailsLateGoesAgain) {
    TemporaryFile const file;
    {
        StrongRef<Asset> const asset = Asset::make(nullptr);
        StrongRef<Everything> const root = Everything::make(design(*asset));
        design(*asset)->addRoot(root, "root");
        for (int i = 0; i < 200'000; ++i)
            root->m_children.push_back(StrongRef<Piece>(Row::make(design(*asset))));
        Everything * last = root.get();
        for (int i = 0; i < 50'000; ++i) {
            StrongRef<Everything> const next = Everything::make(design(*asset));
            last->m_rOwned = StrongRef<Piece>(next);
            last = next.get();
        }
        ASSERT_TRUE(DocumentFile::saveAs(*asset, file.path()));
    }
    Sql(file.path()).run("UPDATE roots SET entity=777777777");
    StrongRef<Asset> asset;
    EXPECT_EQ(DocumentFile::load(file.path(), nullptr, asset).code(), StatusCorrupt);
    EXPECT_FALSE(asset);
    // The chain closed to a circle.
    Sql(file.path())
        .run("UPDATE roots SET entity=1; UPDATE Everything SET \"Everything.rOwned\"=200002 "
             "WHERE id=(SELECT max(id) FROM Everything)");
    Status const status = DocumentFile::load(file.path(), nullptr, asset);
    EXPECT_THAT(status.toString(), HasSubstr("owns itself in a circle"));
}

} // namespace Vn::Testing
