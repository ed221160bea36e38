// Writes what the fuzzer of documents starts from into a directory: real documents of a few
// entities, in small pages, so that they are short.

#include <filesystem>
#include <string>

#include <sqlite3.h>

#include "Platform/DataModel/DocumentFile.h"
#include "Tests/DataModel/DocumentTestEntities.h"

int main(int count, char ** arguments) {
    using namespace Vn;
    if (count != 2) return 2;
    std::filesystem::path const directory = arguments[1];
    std::filesystem::create_directories(directory);
    for (unsigned seed = 0; seed < 12; ++seed) {
        StrongRef<Asset> const asset = Testing::randomDocument(seed, seed * 2);
        std::filesystem::path const file = directory / std::to_string(seed);
        if (!DocumentFile::saveAs(*asset, file)) return 1;
        sqlite3 * database = nullptr;
        bool const good = sqlite3_open(file.string().c_str(), &database) == SQLITE_OK &&
                          sqlite3_exec(database, "PRAGMA page_size=512; VACUUM", nullptr, nullptr,
                                       nullptr) == SQLITE_OK;
        sqlite3_close(database);
        if (!good) return 1;
    }
    return 0;
}
