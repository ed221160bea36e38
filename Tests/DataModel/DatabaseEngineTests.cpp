// The database engine is the same everywhere: that of Debian 12, which on Windows we bring
// ourselves.

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Tests/DataModel/DocumentSql.h"
#include "Tests/Support/TemporaryDirectory.h"

namespace Vn::Testing {
namespace {

constexpr char c_version[] = "3.40.1";

// What Debian 12's reports, without the compiler and the kind of mutex, which are the system's.
std::vector<std::string> const c_options = {
    "ATOMIC_INTRINSICS=1",
    "DEFAULT_AUTOVACUUM",
    "DEFAULT_CACHE_SIZE=-2000",
    "DEFAULT_FILE_FORMAT=4",
    "DEFAULT_JOURNAL_SIZE_LIMIT=-1",
    "DEFAULT_MMAP_SIZE=0",
    "DEFAULT_PAGE_SIZE=4096",
    "DEFAULT_PCACHE_INITSZ=20",
    "DEFAULT_RECURSIVE_TRIGGERS",
    "DEFAULT_SECTOR_SIZE=4096",
    "DEFAULT_SYNCHRONOUS=2",
    "DEFAULT_WAL_AUTOCHECKPOINT=1000",
    "DEFAULT_WAL_SYNCHRONOUS=2",
    "DEFAULT_WORKER_THREADS=0",
    "ENABLE_COLUMN_METADATA",
    "ENABLE_DBSTAT_VTAB",
    "ENABLE_FTS3",
    "ENABLE_FTS3_PARENTHESIS",
    "ENABLE_FTS3_TOKENIZER",
    "ENABLE_FTS4",
    "ENABLE_FTS5",
    "ENABLE_LOAD_EXTENSION",
    "ENABLE_MATH_FUNCTIONS",
    "ENABLE_PREUPDATE_HOOK",
    "ENABLE_RTREE",
    "ENABLE_SESSION",
    "ENABLE_STMTVTAB",
    "ENABLE_UNLOCK_NOTIFY",
    "ENABLE_UPDATE_DELETE_LIMIT",
    "HAVE_ISNAN",
    "LIKE_DOESNT_MATCH_BLOBS",
    "MALLOC_SOFT_LIMIT=1024",
    "MAX_ATTACHED=10",
    "MAX_COLUMN=2000",
    "MAX_COMPOUND_SELECT=500",
    "MAX_DEFAULT_PAGE_SIZE=32768",
    "MAX_EXPR_DEPTH=1000",
    "MAX_FUNCTION_ARG=127",
    "MAX_LENGTH=1000000000",
    "MAX_LIKE_PATTERN_LENGTH=50000",
    "MAX_MMAP_SIZE=0x7fff0000",
    "MAX_PAGE_COUNT=1073741823",
    "MAX_PAGE_SIZE=65536",
    "MAX_SCHEMA_RETRY=25",
    "MAX_SQL_LENGTH=1000000000",
    "MAX_TRIGGER_DEPTH=1000",
    "MAX_VARIABLE_NUMBER=250000",
    "MAX_VDBE_OP=250000000",
    "MAX_WORKER_THREADS=8",
    "OMIT_LOOKASIDE",
    "SECURE_DELETE",
    "SOUNDEX",
    "SYSTEM_MALLOC",
    "TEMP_STORE=1",
    "THREADSAFE=1",
    "USE_URI",
};

TEST(DatabaseEngineTests, VersionAndOptionsAreThoseOfDebian) {
#ifndef _WIN32
    if (std::string(sqlite3_libversion()) != c_version)
        GTEST_SKIP() << "this system has SQLite " << sqlite3_libversion()
                     << ", not that of Debian 12";
#endif
    EXPECT_STREQ(sqlite3_libversion(), c_version);
    EXPECT_STREQ(sqlite3_libversion(), SQLITE_VERSION);
    TemporaryFile const file;
    std::vector<std::string> options;
    for (auto const & row : Sql(file.path()).query("PRAGMA compile_options")) {
        std::string const & option = row.front();
        if (!option.starts_with("COMPILER=") && !option.starts_with("MUTEX_"))
            options.push_back(option);
    }
    std::sort(options.begin(), options.end());
    EXPECT_THAT(options, ::testing::ElementsAreArray(c_options));
}

} // namespace
} // namespace Vn::Testing
