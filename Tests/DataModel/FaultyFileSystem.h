// A file system that fails when a test wants it to.

#ifndef VN_TESTS_DATAMODEL_FAULTYFILESYSTEM_H
#define VN_TESTS_DATAMODEL_FAULTYFILESYSTEM_H

#include <cstdint>
#include <limits>
#include <map>
#include <string>
#include <utility>

#include <sqlite3.h>

namespace Vn::Testing {

// Stands between the database engine and the file system below, and has the document file use it
// for as long as it lives.  One at a time.
//
// Counted calls are those that change something on the disk or wait for it: opening, writing,
// cutting short, syncing, deleting.
class FaultyFileSystem {
public:
    FaultyFileSystem();
    ~FaultyFileSystem();
    FaultyFileSystem(FaultyFileSystem const &) = delete;
    FaultyFileSystem & operator=(FaultyFileSystem const &) = delete;

    // The n-th counted call from now fails, counted from 1; with `forGood` all after it too.  A
    // write that fails has written half.
    void failAt(unsigned call, bool forGood);
    // Writing makes files grow by no more than that many bytes from now on.
    void room(std::int64_t bytes);
    // Nothing fails any more.
    void heal();
    // Whether something failed since `failAt` or `room`.
    bool hasFailed() const noexcept { return m_bFailed; }
    // The counted calls since then.
    unsigned calls() const noexcept { return m_calls; }

    // The power goes: of what was written since the last sync, some sectors have reached the disk
    // and others haven't.
    void forgetUnsynced(unsigned seed);

private:
    friend struct FaultyFile;
    friend struct FaultyMethods;

    bool fails();

    sqlite3_vfs m_vfs{};
    unsigned m_calls = 0;
    unsigned m_failAt = 0;
    bool m_bForGood = false;
    bool m_bFailed = false;
    std::int64_t m_room = std::numeric_limits<std::int64_t>::max();
    // The files, whatever their names are, by which they were opened, and what they hold for
    // certain.
    std::map<std::uint64_t, std::pair<std::string, std::string>> m_synced;
};

} // namespace Vn::Testing

#endif
