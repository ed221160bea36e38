// What lies beside a document: what a crash left there, what other programs use, and what is
// forged.

#include <deque>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Platform/DataModel/DocumentFile.h"
#include "Tests/DataModel/DocumentSql.h"
#include "Tests/DataModel/DocumentTestEntities.h"
#include "Tests/DataModel/FaultyFileSystem.h"
#include "Tests/Support/ChildProcess.h"
#include "Tests/Support/FileContent.h"
#include "Tests/Support/TemporaryDirectory.h"

namespace Vn::Testing {

namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

#define VN_EXPECT_OK(expression)                                                                   \
    do {                                                                                           \
        Status const outcome = (expression);                                                       \
        EXPECT_TRUE(outcome) << outcome.toString();                                                \
    } while (false)

void write(fs::path const & file, std::string const & bytes) {
    std::ofstream(file, std::ios::binary | std::ios::trunc) << bytes;
}

std::string dumpOf(fs::path const & file) {
    StrongRef<Asset> asset;
    Status const status = DocumentFile::load(file, nullptr, asset);
    return status ? dump(*asset) : status.toString();
}

void expectSaved(Asset const & asset, fs::path const & file) {
    std::vector<std::string> findings;
    VN_EXPECT_OK(DocumentFile::check(file, findings));
    EXPECT_THAT(findings, IsEmpty());
    EXPECT_EQ(dumpOf(file), dump(asset));
}

void changeMuch(Asset & asset, unsigned seed) {
    for (unsigned i = 0; i < 20; ++i) changeRandomly(asset, seed * 100 + i);
}

std::string bigEndian(std::size_t number) {
    std::string bytes;
    for (int shift = 24; shift >= 0; shift -= 8) bytes += static_cast<char>(number >> shift & 0xFF);
    return bytes;
}

// A journal of a transaction across several databases, which says that the file `super` lists them.
std::string journalThatNames(std::string const & super, fs::path const & database) {
    constexpr std::size_t c_pageSize = 4096;
    std::string const magic("\xd9\xd5\x05\xf9\x20\xa1\x63\xd7", 8);
    std::string journal = magic + bigEndian(0) + bigEndian(7) +
                          bigEndian(fs::file_size(database) / c_pageSize) + bigEndian(512) +
                          bigEndian(c_pageSize);
    journal.resize(512);
    std::size_t sum = 0;
    for (char const c : super) sum += static_cast<std::size_t>(static_cast<signed char>(c));
    return journal + bigEndian(1) + super + bigEndian(super.size()) + bigEndian(sum) + magic;
}

class DocumentFileRemainsTests : public ::testing::Test {
protected:
    TemporaryFile m_file;
    TemporaryFile m_other;
    std::vector<fs::path> m_kept;
};

} // namespace

// A save is cut short at each of its calls, the file is moved away, and a new document takes its
// name.
TEST_F(DocumentFileRemainsTests, ALeftoverJournalDoesntDestroyANewDocument) {
    FaultyFileSystem faulty;
    unsigned hot = 0;
    for (unsigned call = 1;; ++call) {
        SCOPED_TRACE(call);
        TemporaryFile const file;
        TemporaryFile const moved;
        StrongRef<Asset> const asset = randomDocument(call, 400);
        VN_EXPECT_OK(DocumentFile::saveAs(*asset, file.path()));
        std::string const before = dump(*asset);
        changeMuch(*asset, call);
        faulty.failAt(call, true);
        Status const status = DocumentFile::save(*asset);
        faulty.heal();
        if (status) break;
        fs::rename(file.path(), moved.path());
        bool const isLeft = fs::exists(file.text() + "-journal");

        StrongRef<Asset> const other = randomDocument(call + 1000, 30);
        VN_EXPECT_OK(DocumentFile::saveAsKeeping(*other, file.path(), m_kept));
        expectSaved(*other, file.path());
        EXPECT_FALSE(fs::exists(file.text() + "-journal"));
        // The journal brings the file back that was moved away.
        if (isLeft && !m_kept.empty()) {
            ++hot;
            EXPECT_THAT(m_kept, ElementsAre(fs::path(file.text() + "-journal.kept")));
            fs::rename(m_kept.front(), moved.text() + "-journal");
        }
        std::string const found = dumpOf(moved.path());
        EXPECT_TRUE(found == before || found == dump(*asset)) << found.substr(0, 200);
        if (HasFailure()) break;
    }
    EXPECT_GT(hot, 3U);
}

TEST_F(DocumentFileRemainsTests, WhatIsKeptTakesNoNameThatIsThere) {
    write(m_file.text() + "-journal", "one");
    write(m_file.text() + "-journal.kept", "two");
    write(m_file.text() + "-wal", "three");
    StrongRef<Asset> const asset = randomDocument(1, 10);
    VN_EXPECT_OK(DocumentFile::saveAsKeeping(*asset, m_file.path(), m_kept));
    EXPECT_THAT(m_kept, ElementsAre(fs::path(m_file.text() + "-journal.kept.2"),
                                    fs::path(m_file.text() + "-wal.kept")));
    EXPECT_EQ(contentOf(m_kept.front()), "one");
    EXPECT_EQ(contentOf(m_file.text() + "-journal.kept"), "two");
    expectSaved(*asset, m_file.path());
}

TEST_F(DocumentFileRemainsTests, ADirectoryUnderTheNameOfAJournalIsNamed) {
    fs::create_directory(m_file.text() + "-journal");
    StrongRef<Asset> const asset = randomDocument(1, 10);
    Status const status = DocumentFile::saveAs(*asset, m_file.path());
    EXPECT_EQ(status.code(), StatusAlreadyExists);
    EXPECT_THAT(status.toString(), HasSubstr("-journal is there and isn't a file"));
    EXPECT_FALSE(fs::exists(m_file.path()));
    EXPECT_FALSE(fs::exists(m_file.text() + ".saving"));
    VN_EXPECT_OK(DocumentFile::saveAs(*asset, m_other.path()));
}

TEST_F(DocumentFileRemainsTests, AForgedJournalDeletesNoStrangersFile) {
    StrongRef<Asset> const asset = randomDocument(2, 10);
    VN_EXPECT_OK(DocumentFile::saveAs(*asset, m_file.path()));
    std::string const strange = m_other.text();
    std::string const journal = journalThatNames(strange, m_file.path());

    // The engine by itself would delete it.
    write(strange, "a stranger's");
    TemporaryFile const copy;
    fs::copy_file(m_file.path(), copy.path());
    write(copy.text() + "-journal", journal);
    Sql(copy.path()).query("SELECT * FROM document");
    EXPECT_FALSE(fs::exists(strange));

    write(strange, "a stranger's");
    write(m_file.text() + "-journal", journal);
    std::string const document = contentOf(m_file.path());
    StrongRef<Asset> loaded;
    Status const status = DocumentFile::load(m_file.path(), nullptr, loaded);
    EXPECT_EQ(status.code(), StatusCorrupt);
    EXPECT_THAT(status.toString(), HasSubstr("it names the file " + strange));
    std::vector<std::string> findings;
    VN_EXPECT_OK(DocumentFile::check(m_file.path(), findings));
    EXPECT_THAT(findings, ElementsAre(HasSubstr("it names the file " + strange)));
    changeMuch(*asset, 3);
    EXPECT_EQ(DocumentFile::save(*asset).code(), StatusCorrupt);
    EXPECT_EQ(contentOf(strange), "a stranger's");
    EXPECT_EQ(contentOf(m_file.text() + "-journal"), journal);
    EXPECT_EQ(contentOf(m_file.path()), document);
    // In place of the document another is saved, and the journal isn't lost.
    VN_EXPECT_OK(DocumentFile::saveAsKeeping(*asset, m_file.path(), m_kept));
    EXPECT_THAT(m_kept, ElementsAre(fs::path(m_file.text() + "-journal.kept")));
    EXPECT_EQ(contentOf(strange), "a stranger's");
    expectSaved(*asset, m_file.path());
}

TEST_F(DocumentFileRemainsTests, AWriteAheadLogBesideIsntLookedAt) {
    StrongRef<Asset> const asset = randomDocument(3, 10);
    VN_EXPECT_OK(DocumentFile::saveAs(*asset, m_file.path()));
    write(m_file.text() + "-wal", "a log");
    expectSaved(*asset, m_file.path());
    changeMuch(*asset, 4);
    VN_EXPECT_OK(DocumentFile::save(*asset));
    expectSaved(*asset, m_file.path());
    EXPECT_EQ(contentOf(m_file.text() + "-wal"), "a log");
}

TEST_F(DocumentFileRemainsTests, ALinkUnderTheNameOfTheFileToWriteIsntFollowed) {
    StrongRef<Asset> const other = randomDocument(4, 10);
    VN_EXPECT_OK(DocumentFile::saveAs(*other, m_other.path()));
    std::string const bytes = contentOf(m_other.path());
    StrongRef<Asset> const asset = randomDocument(5, 10);
    std::error_code error;
    fs::create_symlink(m_other.path(), m_file.text() + ".saving", error);
    if (error) GTEST_SKIP() << "there are no links here: " << error.message();
    VN_EXPECT_OK(DocumentFile::saveAsKeeping(*asset, m_file.path(), m_kept));
    EXPECT_THAT(m_kept, ElementsAre(fs::path(m_file.text() + ".saving.kept")));
    EXPECT_EQ(contentOf(m_other.path()), bytes);
    EXPECT_FALSE(fs::is_symlink(m_file.path()));
    expectSaved(*asset, m_file.path());
    // A second name of the other file is no better.
    fs::create_hard_link(m_other.path(), m_file.text() + ".saving");
    VN_EXPECT_OK(DocumentFile::saveAs(*asset, m_file.path()));
    EXPECT_EQ(contentOf(m_other.path()), bytes);
    expectSaved(*asset, m_file.path());
}

TEST_F(DocumentFileRemainsTests, AWholeDocumentThatHadNoNameYetIsKept) {
    StrongRef<Asset> const first = randomDocument(6, 10);
    VN_EXPECT_OK(DocumentFile::saveAs(*first, m_file.path()));
    fs::rename(m_file.path(), m_file.text() + ".saving");
    StrongRef<Asset> const asset = randomDocument(7, 10);
    VN_EXPECT_OK(DocumentFile::saveAsKeeping(*asset, m_file.path(), m_kept));
    expectSaved(*asset, m_file.path());
    ASSERT_THAT(m_kept, ElementsAre(fs::path(m_file.text() + ".saving.kept")));
    expectSaved(*first, m_kept.front());
}

TEST_F(DocumentFileRemainsTests, WhatASaveThatWasCutShortHadWrittenIsRemoved) {
    StrongRef<Asset> const asset = randomDocument(8, 200);
    VN_EXPECT_OK(DocumentFile::saveAs(*asset, m_other.path()));
    std::string const whole = contentOf(m_other.path());
    for (std::string const & written :
         {std::string(), std::string(8192, '\0'), whole.substr(0, whole.size() / 2)}) {
        write(m_file.text() + ".saving", written);
        VN_EXPECT_OK(DocumentFile::saveAsKeeping(*asset, m_file.path(), m_kept));
        EXPECT_THAT(m_kept, IsEmpty());
        EXPECT_FALSE(fs::exists(m_file.text() + ".saving"));
        EXPECT_FALSE(fs::exists(m_file.text() + ".saving.kept"));
    }
}

TEST_F(DocumentFileRemainsTests, AFileThatAnotherProgramReplacedIsntWrittenTo) {
    StrongRef<Asset> const asset = randomDocument(9, 10);
    VN_EXPECT_OK(DocumentFile::saveAs(*asset, m_file.path()));
    StrongRef<Asset> const other = randomDocument(10, 10);
    VN_EXPECT_OK(DocumentFile::saveAs(*other, m_file.path()));
    changeMuch(*asset, 1);
    EXPECT_THAT(DocumentFile::save(*asset).toString(),
                HasSubstr("another program has put another document in its place"));
    expectSaved(*other, m_file.path());
    write(m_file.path(), "a letter");
    EXPECT_THAT(DocumentFile::save(*asset).toString(), HasSubstr("it is not a document"));
    EXPECT_EQ(contentOf(m_file.path()), "a letter");
    VN_EXPECT_OK(DocumentFile::saveAs(*asset, m_other.path()));
    expectSaved(*asset, m_other.path());
}

namespace {

// Another program, which has done its job when the constructor is done, and lives as long as this.
class Other {
public:
    Other(char const * job, std::string const & file) : m_process(VN_DOCUMENT_CHILD, {job, file}) {
        char done = 0;
        EXPECT_TRUE(m_process.read(&done, 1));
    }

private:
    ChildProcess m_process;
};

} // namespace

// The other program has written half of its changes into the file, and then dies.
TEST_F(DocumentFileRemainsTests, AFailedSaveOverAFileInUseLeavesItsJournal) {
    StrongRef<Asset> const asset = randomDocument(11, 2000);
    VN_EXPECT_OK(DocumentFile::saveAs(*asset, m_file.path()));
    std::string const before = dump(*asset);
    std::string const bytes = contentOf(m_file.path());
    {
        Other const other("writeHalf", m_file.text());
        ASSERT_NE(contentOf(m_file.path()), bytes);
        ASSERT_GT(fs::file_size(m_file.text() + "-journal"), 0U);
        StrongRef<Asset> const another = randomDocument(12, 10);
        Status const status = DocumentFile::saveAs(*another, m_file.path());
        EXPECT_EQ(status.code(), StatusBusy);
        EXPECT_THAT(status.toString(), HasSubstr("another program is using the file"));
        EXPECT_GT(fs::file_size(m_file.text() + "-journal"), 0U);
        EXPECT_FALSE(fs::exists(m_file.text() + ".saving"));
        VN_EXPECT_OK(DocumentFile::saveAs(*another, m_other.path()));
    }
    EXPECT_EQ(dumpOf(m_file.path()), before);
}

TEST_F(DocumentFileRemainsTests, AFileThatIsBeingReadIsntReplaced) {
    StrongRef<Asset> const asset = randomDocument(13, 10);
    VN_EXPECT_OK(DocumentFile::saveAs(*asset, m_file.path()));
    {
        Other const other("read", m_file.text());
        EXPECT_EQ(DocumentFile::saveAs(*asset, m_file.path()).code(), StatusBusy);
    }
    VN_EXPECT_OK(DocumentFile::saveAs(*asset, m_file.path()));
}

TEST_F(DocumentFileRemainsTests, SavesAtOnceDontDestroyEachOthersWork) {
    std::deque<ChildProcess> children;
    for (unsigned child = 0; child < 4; ++child)
        children.emplace_back(VN_DOCUMENT_CHILD, std::vector{std::string("save"), m_file.text(),
                                                             std::to_string(child)});
    for (ChildProcess & child : children) EXPECT_EQ(child.wait(), 0);
    std::string const found = dumpOf(m_file.path());
    bool isOne = false;
    for (unsigned child = 0; child < 4; ++child)
        isOne = isOne || found == dump(*randomDocument(child, 100));
    EXPECT_TRUE(isOne) << found.substr(0, 200);
    for (auto const & entry : fs::directory_iterator(m_file.path().parent_path()))
        EXPECT_FALSE(entry.path().string().starts_with(m_file.text() + '.')) << entry.path();
}

// A save that is killed while the child has the new file leaves it; the next save isn't kept from
// its work.
TEST_F(DocumentFileRemainsTests, TheFileOfAKilledSaveIsBusyOnlyWhileItLives) {
    StrongRef<Asset> const asset = randomDocument(14, 10);
    std::string const saving = m_file.text() + ".saving";
    {
        Other const other("make", saving);
        Status const status = DocumentFile::saveAs(*asset, m_file.path());
        EXPECT_EQ(status.code(), StatusBusy);
        EXPECT_THAT(status.toString(), HasSubstr("another program is saving it"));
        EXPECT_TRUE(fs::exists(saving));
    }
    VN_EXPECT_OK(DocumentFile::saveAsKeeping(*asset, m_file.path(), m_kept));
    EXPECT_THAT(m_kept, IsEmpty());
    expectSaved(*asset, m_file.path());
}

} // namespace Vn::Testing
