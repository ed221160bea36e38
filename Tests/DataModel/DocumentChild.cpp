// Another program that uses a document, for the tests of what two programs do to one.
//
//   VnDocumentChild JOB FILE [NUMBER]
//
// It does its job, writes one byte to tell that it has, and waits to be killed.

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <thread>

#include <sqlite3.h>

#include "Platform/Base/OS.h"
#include "Platform/DataModel/DocumentFile.h"
#include "Tests/DataModel/DocumentTestEntities.h"

namespace {

using namespace Vn;
using namespace Vn::Testing;

bool run(std::string const & file, char const * sql) {
    sqlite3 * database = nullptr; // open until the end
    return sqlite3_open(file.c_str(), &database) == SQLITE_OK &&
           sqlite3_exec(database, sql, nullptr, nullptr, nullptr) == SQLITE_OK;
}

// Saves the same document again and again.
bool saveOften(std::string const & file, unsigned seed) {
    StrongRef<Asset> const asset = randomDocument(seed, 100);
    for (int i = 0; i < 40; ++i) {
        Status const status = DocumentFile::saveAs(*asset, std::u8string(file.begin(), file.end()));
        if (status || status.code() == StatusBusy) continue;
        std::fprintf(stderr, "%s\n", status.toString().c_str());
        return false;
    }
    return true;
}

} // namespace

int main(int count, char ** values) {
    std::vector<std::string> const arguments = OS::arguments(count, values);
    if (arguments.size() < 2) return 2;
    std::string const & job = arguments[0];
    std::string const & file = arguments[1];
    bool isDone = false;
    if (job == "save")
        return saveOften(file, static_cast<unsigned>(std::atoi(arguments.back().c_str()))) ? 0 : 1;
    if (job == "writeHalf")
        isDone = run(file, "PRAGMA cache_size=1; BEGIN; UPDATE Row SET \"Row.x\"=7.5; "
                           "DELETE FROM lists");
    else if (job == "read")
        isDone = run(file, "BEGIN; SELECT * FROM document");
    else if (job == "make")
        isDone = run(file, "PRAGMA locking_mode=EXCLUSIVE; CREATE TABLE document(id)");
    if (!isDone) return 1;
    std::putchar('d');
    std::fflush(stdout);
    for (;;) std::this_thread::sleep_for(std::chrono::hours(1));
}
