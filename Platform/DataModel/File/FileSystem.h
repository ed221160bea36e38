// The file system as the database engine may use it for one document.

#ifndef VN_PLATFORM_DATAMODEL_FILE_FILESYSTEM_H
#define VN_PLATFORM_DATAMODEL_FILE_FILESYSTEM_H

#include <string>

#include <sqlite3.h>

namespace Vn::DataModel {

// Gives one connection the file that it opens, that file's own journal, and temporary files without
// a name.  Any other file is out of reach.  That matters for a journal that names another file, as
// those of a transaction across several databases do: the engine would look into that file, and
// delete it.  Documents are never written that way, so that such a journal is damaged or forged.
//
// What else lies beside a document is not looked at: a document has no write-ahead log.
class OwnFiles {
public:
    // `below` does the work; null is none, and nothing can be opened then.
    explicit OwnFiles(sqlite3_vfs * below);
    OwnFiles(OwnFiles const &) = delete;
    OwnFiles & operator=(OwnFiles const &) = delete;

    // sqlite3_open_v2 by way of this.  The object must live as long as the connection.
    int open(std::string const & name, sqlite3 ** database, int flags);
    // From now on the file has no journal, whatever lies beside it.
    void ignoreJournal() noexcept { m_bIgnoringJournal = true; }

    // Why the engine was kept from what it wanted; empty if it never was.
    std::string const & strangeFile() const noexcept { return m_strange; }
    bool hasMoved() const noexcept { return m_bMoved; }

    // Whether the name of an open file has gone to another file, or to none.
    static bool isMoved(sqlite3_file * file) noexcept;

private:
    struct Methods;

    // Notes a file that is none of the document's.
    bool isStrange(char const * name, std::string const & own) noexcept;

    sqlite3_vfs * const m_pBelow;
    sqlite3_vfs m_vfs{};
    std::string m_name; // of this file system
    std::string m_main; // the file that is open
    std::string m_journal;
    std::string m_log;
    sqlite3_file * m_pMain = nullptr;
    bool m_bIgnoringJournal = false;
    std::string m_strange;
    bool m_bMoved = false;
};

} // namespace Vn::DataModel

#endif
