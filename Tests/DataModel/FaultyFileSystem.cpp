#include "Tests/DataModel/FaultyFileSystem.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <random>
#include <sys/stat.h>

#include <gtest/gtest.h>

#include "Platform/DataModel/DocumentFile.h"
#include "Tests/Support/FileContent.h"

namespace Vn::Testing {

namespace {

constexpr char c_name[] = "faulty";

// What tells a file from others whatever its name; 0 if there is none.
std::uint64_t nodeOf(std::string const & path) {
    struct stat status {};
    return stat(path.c_str(), &status) == 0 ? static_cast<std::uint64_t>(status.st_ino) : 0;
}

} // namespace

// An open file; that of the file system below stands right after it.
struct FaultyFile {
    sqlite3_file m_base;
    FaultyFileSystem * m_pSystem;
    std::string * m_pPath;

    sqlite3_file * below() { return reinterpret_cast<sqlite3_file *>(this + 1); }
    static FaultyFile & of(sqlite3_file * file) { return *reinterpret_cast<FaultyFile *>(file); }
};

struct FaultyMethods {
    static sqlite3_io_methods const * below(sqlite3_file * file) {
        return FaultyFile::of(file).below()->pMethods;
    }
    static sqlite3_vfs * vfsBelow() { return sqlite3_vfs_find(nullptr); }

    static int close(sqlite3_file * file) {
        FaultyFile & self = FaultyFile::of(file);
        int const result = below(file)->xClose(self.below());
        delete self.m_pPath;
        return result;
    }
    static int read(sqlite3_file * file, void * to, int count, sqlite3_int64 offset) {
        return below(file)->xRead(FaultyFile::of(file).below(), to, count, offset);
    }
    static int write(sqlite3_file * file, void const * from, int count, sqlite3_int64 offset) {
        FaultyFile & self = FaultyFile::of(file);
        if (self.m_pSystem->fails()) {
            below(file)->xWrite(self.below(), from, count / 2, offset);
            return SQLITE_IOERR_WRITE;
        }
        sqlite3_int64 size = 0;
        below(file)->xFileSize(self.below(), &size);
        if (offset + count > size && offset + count - size > self.m_pSystem->m_room) {
            self.m_pSystem->m_bFailed = true;
            return SQLITE_FULL;
        }
        if (offset + count > size) self.m_pSystem->m_room -= offset + count - size;
        return below(file)->xWrite(self.below(), from, count, offset);
    }
    static int truncate(sqlite3_file * file, sqlite3_int64 size) {
        FaultyFile & self = FaultyFile::of(file);
        if (self.m_pSystem->fails()) return SQLITE_IOERR_TRUNCATE;
        return below(file)->xTruncate(self.below(), size);
    }
    static int sync(sqlite3_file * file, int flags) {
        FaultyFile & self = FaultyFile::of(file);
        if (self.m_pSystem->fails()) return SQLITE_IOERR_FSYNC;
        int const result = below(file)->xSync(self.below(), flags);
        if (self.m_pPath)
            self.m_pSystem->m_synced[nodeOf(*self.m_pPath)] = {*self.m_pPath,
                                                               contentOf(*self.m_pPath)};
        return result;
    }
    static int fileSize(sqlite3_file * file, sqlite3_int64 * size) {
        return below(file)->xFileSize(FaultyFile::of(file).below(), size);
    }
    static int lock(sqlite3_file * file, int level) {
        return below(file)->xLock(FaultyFile::of(file).below(), level);
    }
    static int unlock(sqlite3_file * file, int level) {
        return below(file)->xUnlock(FaultyFile::of(file).below(), level);
    }
    static int checkReservedLock(sqlite3_file * file, int * taken) {
        return below(file)->xCheckReservedLock(FaultyFile::of(file).below(), taken);
    }
    static int fileControl(sqlite3_file * file, int operation, void * argument) {
        return below(file)->xFileControl(FaultyFile::of(file).below(), operation, argument);
    }
    static int sectorSize(sqlite3_file * file) {
        return below(file)->xSectorSize(FaultyFile::of(file).below());
    }
    static int deviceCharacteristics(sqlite3_file * file) {
        return below(file)->xDeviceCharacteristics(FaultyFile::of(file).below());
    }

    static int open(sqlite3_vfs * vfs, char const * name, sqlite3_file * file, int flags,
                    int * outFlags) {
        static constexpr sqlite3_io_methods c_methods = {1,
                                                         close,
                                                         read,
                                                         write,
                                                         truncate,
                                                         sync,
                                                         fileSize,
                                                         lock,
                                                         unlock,
                                                         checkReservedLock,
                                                         fileControl,
                                                         sectorSize,
                                                         deviceCharacteristics,
                                                         nullptr,
                                                         nullptr,
                                                         nullptr,
                                                         nullptr,
                                                         nullptr,
                                                         nullptr};
        auto & system = *static_cast<FaultyFileSystem *>(vfs->pAppData);
        FaultyFile & self = FaultyFile::of(file);
        self.m_base.pMethods = nullptr;
        self.m_pSystem = &system;
        self.m_pPath = nullptr;
        if (system.fails()) return SQLITE_CANTOPEN;
        int const result = vfsBelow()->xOpen(vfsBelow(), name, self.below(), flags, outFlags);
        if (result != SQLITE_OK) return result;
        if (name) {
            self.m_pPath = new std::string(name);
            // One that is there already is on the disk, unless it was written through here.
            std::string const content = contentOf(*self.m_pPath);
            auto const node = nodeOf(*self.m_pPath);
            if (content.empty() || !system.m_synced.contains(node))
                system.m_synced[node] = {*self.m_pPath, content};
        }
        self.m_base.pMethods = &c_methods;
        return SQLITE_OK;
    }
    static int remove(sqlite3_vfs * vfs, char const * name, int syncDirectory) {
        auto & system = *static_cast<FaultyFileSystem *>(vfs->pAppData);
        if (system.fails()) return SQLITE_IOERR_DELETE;
        auto const node = nodeOf(name);
        int const result = vfsBelow()->xDelete(vfsBelow(), name, syncDirectory);
        if (result == SQLITE_OK) system.m_synced.erase(node);
        // To wait for the directory is a call of its own, which fails when the file is gone
        // already.
        return syncDirectory && system.fails() ? SQLITE_IOERR_DIR_FSYNC : result;
    }
    static int access(sqlite3_vfs *, char const * name, int flags, int * result) {
        return vfsBelow()->xAccess(vfsBelow(), name, flags, result);
    }
    static int fullPathname(sqlite3_vfs *, char const * name, int size, char * out) {
        return vfsBelow()->xFullPathname(vfsBelow(), name, size, out);
    }
    static int randomness(sqlite3_vfs *, int size, char * out) {
        return vfsBelow()->xRandomness(vfsBelow(), size, out);
    }
    static int sleep(sqlite3_vfs *, int microseconds) {
        return vfsBelow()->xSleep(vfsBelow(), microseconds);
    }
    static int currentTime(sqlite3_vfs *, double * time) {
        return vfsBelow()->xCurrentTime(vfsBelow(), time);
    }
    static int lastError(sqlite3_vfs *, int size, char * text) {
        return vfsBelow()->xGetLastError(vfsBelow(), size, text);
    }
};

FaultyFileSystem::FaultyFileSystem() {
    sqlite3_initialize();
    m_vfs.iVersion = 1;
    m_vfs.szOsFile = static_cast<int>(sizeof(FaultyFile)) + FaultyMethods::vfsBelow()->szOsFile;
    m_vfs.mxPathname = FaultyMethods::vfsBelow()->mxPathname;
    m_vfs.zName = c_name;
    m_vfs.pAppData = this;
    m_vfs.xOpen = FaultyMethods::open;
    m_vfs.xDelete = FaultyMethods::remove;
    m_vfs.xAccess = FaultyMethods::access;
    m_vfs.xFullPathname = FaultyMethods::fullPathname;
    m_vfs.xRandomness = FaultyMethods::randomness;
    m_vfs.xSleep = FaultyMethods::sleep;
    m_vfs.xCurrentTime = FaultyMethods::currentTime;
    m_vfs.xGetLastError = FaultyMethods::lastError;
    sqlite3_vfs_register(&m_vfs, 0);
    DocumentFile::fileSystem(c_name);
}

FaultyFileSystem::~FaultyFileSystem() {
    DocumentFile::fileSystem({});
    sqlite3_vfs_unregister(&m_vfs);
}

void FaultyFileSystem::failAt(unsigned call, bool forGood) {
    heal();
    m_failAt = call;
    m_bForGood = forGood;
}

void FaultyFileSystem::room(std::int64_t bytes) {
    heal();
    m_room = bytes;
}

void FaultyFileSystem::heal() {
    m_calls = 0;
    m_failAt = 0;
    m_bForGood = false;
    m_bFailed = false;
    m_room = std::numeric_limits<std::int64_t>::max();
}

bool FaultyFileSystem::fails() {
    ++m_calls;
    bool const fails = m_failAt && (m_calls == m_failAt || (m_bForGood && m_calls > m_failAt));
    m_bFailed = m_bFailed || fails;
    return fails;
}

void FaultyFileSystem::forgetUnsynced(unsigned seed) {
    constexpr std::size_t c_sector = 4096;
    std::mt19937 random(seed);
    for (auto const & [node, known] : m_synced) {
        auto const & [opened, synced] = known;
        // It may have been given its final name meanwhile.
        std::string path = opened;
        if (nodeOf(path) != node) path = opened.substr(0, opened.rfind(".saving"));
        if (nodeOf(path) != node) continue;
        std::string const written = contentOf(path);
        std::string left = synced;
        for (std::size_t place = 0; place < written.size(); place += c_sector) {
            if (random() % 2) continue;
            std::size_t const count = std::min(c_sector, written.size() - place);
            if (left.size() < place + count) left.resize(place + count);
            left.replace(place, count, written, place, count);
        }
        std::ofstream(path, std::ios::binary | std::ios::trunc) << left;
    }
    m_synced.clear();
}

} // namespace Vn::Testing
