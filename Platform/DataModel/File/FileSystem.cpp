#include "Platform/DataModel/File/FileSystem.h"

#include <cstdint>
#include <new>

namespace Vn::DataModel {

struct OwnFiles::Methods {
    static OwnFiles & of(sqlite3_vfs * vfs) noexcept {
        return *static_cast<OwnFiles *>(vfs->pAppData);
    }
    static sqlite3_vfs * below(sqlite3_vfs * vfs) noexcept { return of(vfs).m_pBelow; }

    static int open(sqlite3_vfs * vfs, char const * name, sqlite3_file * file, int flags,
                    int * outFlags) {
        OwnFiles & self = of(vfs);
        file->pMethods = nullptr;
        bool const isMain = (flags & SQLITE_OPEN_MAIN_DB) != 0;
        try {
            if (isMain && name) {
                self.m_main = name;
                self.m_journal = self.m_main + "-journal";
                self.m_log = self.m_main + "-wal";
            } else if (flags & (SQLITE_OPEN_SUPER_JOURNAL | SQLITE_OPEN_WAL)) {
                self.m_strange = name ? name : "";
                return SQLITE_CANTOPEN;
            } else if (name && self.isStrange(name, self.m_journal))
                return SQLITE_CANTOPEN;
        } catch (std::bad_alloc const &) {
            return SQLITE_NOMEM;
        }
        int const result = below(vfs)->xOpen(below(vfs), name, file, flags, outFlags);
        if (isMain && result == SQLITE_OK) self.m_pMain = file;
        return result;
    }
    static int remove(sqlite3_vfs * vfs, char const * name, int syncDirectory) {
        OwnFiles & self = of(vfs);
        if (self.isStrange(name, self.m_journal)) return SQLITE_IOERR_DELETE;
        return below(vfs)->xDelete(below(vfs), name, syncDirectory);
    }
    static int access(sqlite3_vfs * vfs, char const * name, int flags, int * result) {
        OwnFiles & self = of(vfs);
        *result = 0;
        if (name == self.m_log || (self.m_bIgnoringJournal && name == self.m_journal))
            return SQLITE_OK;
        if (self.isStrange(name, self.m_journal)) return SQLITE_IOERR_ACCESS;
        // Another file may have the name by now, and then the journal is that one's.
        if (isMoved(self.m_pMain)) {
            self.m_bMoved = true;
            return SQLITE_IOERR_ACCESS;
        }
        return below(vfs)->xAccess(below(vfs), name, flags, result);
    }
    static int fullPathname(sqlite3_vfs * vfs, char const * name, int size, char * out) {
        return below(vfs)->xFullPathname(below(vfs), name, size, out);
    }
    static int randomness(sqlite3_vfs * vfs, int size, char * out) {
        return below(vfs)->xRandomness(below(vfs), size, out);
    }
    static int sleep(sqlite3_vfs * vfs, int microseconds) {
        return below(vfs)->xSleep(below(vfs), microseconds);
    }
    static int currentTime(sqlite3_vfs * vfs, double * time) {
        return below(vfs)->xCurrentTime(below(vfs), time);
    }
    static int lastError(sqlite3_vfs * vfs, int size, char * text) {
        return below(vfs)->xGetLastError(below(vfs), size, text);
    }
};

OwnFiles::OwnFiles(sqlite3_vfs * below) : m_pBelow(below) {
    if (!below) return;
    // Version 1 of the interface.  The files are those of the file system below, so that nothing is
    // said here of how they are read and written.
    m_name = "document " + std::to_string(reinterpret_cast<std::uintptr_t>(this));
    m_vfs.iVersion = 1;
    m_vfs.szOsFile = below->szOsFile;
    m_vfs.mxPathname = below->mxPathname;
    m_vfs.zName = m_name.c_str();
    m_vfs.pAppData = this;
    m_vfs.xOpen = Methods::open;
    m_vfs.xDelete = Methods::remove;
    m_vfs.xAccess = Methods::access;
    m_vfs.xFullPathname = Methods::fullPathname;
    m_vfs.xRandomness = Methods::randomness;
    m_vfs.xSleep = Methods::sleep;
    m_vfs.xCurrentTime = Methods::currentTime;
    m_vfs.xGetLastError = Methods::lastError;
}

int OwnFiles::open(std::string const & name, sqlite3 ** database, int flags) {
    *database = nullptr;
    if (!m_pBelow) return SQLITE_ERROR;
    // The engine looks for the name now and never again.
    if (int const result = sqlite3_vfs_register(&m_vfs, 0); result != SQLITE_OK) return result;
    int const result = sqlite3_open_v2(name.c_str(), database, flags, m_name.c_str());
    sqlite3_vfs_unregister(&m_vfs);
    return result;
}

bool OwnFiles::isMoved(sqlite3_file * file) noexcept {
    // Where files that are open can't be renamed the answer stays as it is.
    int moved = 0;
    if (file && file->pMethods) file->pMethods->xFileControl(file, SQLITE_FCNTL_HAS_MOVED, &moved);
    return moved != 0;
}

bool OwnFiles::isStrange(char const * name, std::string const & own) noexcept {
    if (name == own) return false;
    try {
        m_strange = name;
    } catch (std::bad_alloc const &) {
        m_strange.assign(1, '?'); // fits without memory
    }
    return true;
}

} // namespace Vn::DataModel
