// The name that a document is about to take, and what lies beside it.

#ifndef VN_PLATFORM_DATAMODEL_FILE_REMAINS_H
#define VN_PLATFORM_DATAMODEL_FILE_REMAINS_H

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "Platform/DataModel/File/Database.h"

namespace Vn::DataModel {

// Gives a document that was written beside it a name, without harm to anyone who uses the file that
// has the name, and to what a crash left there.  Failures are thrown as FileFailure.
//
//   1. makeSaving: the file that is written, beside the name.
//   2. takeOld: the file that has the name, if there is one, is whole and nobody uses it.
//   3. keepRemains: nothing that lies beside the name could be taken for the new file's.
//   4. renameSaving: the new file has the name.
//
// After each step, and within it, the file with the name is the old one or the new one, and is
// whole.
class FileName {
public:
    // `operation` and `file` are for messages; `target` is the name.
    FileName(std::string operation, std::filesystem::path file, std::filesystem::path target,
             std::string fileSystem);
    // Whatever was made and has no name yet is removed.
    ~FileName();
    FileName(FileName const &) = delete;
    FileName & operator=(FileName const &) = delete;

    // Makes the file that is to be written, opens it and takes it.  A link or another file under
    // its name is neither followed nor written to.  Busy if another program is just saving under
    // that name.
    Database & makeSaving();
    // Takes the file that has the name from all other programs until the end.  If a crash left a
    // journal, the file is first brought back to what it was.  Busy if another program is using it.
    void takeOld();
    // The file that takeOld took, opened.
    Database & old() noexcept { return m_old; }
    // What lies beside the name and could be the only copy of something gets another name.
    void keepRemains();
    void renameSaving();

    // The new names of what was kept.
    std::vector<std::filesystem::path> & kept() noexcept { return m_kept; }

private:
    [[noreturn]] void fail(EStatus code, std::string_view cause) const;
    std::filesystem::path beside(char const * ending) const;
    // Renames a file; the answer is its new name.
    std::filesystem::path keep(std::filesystem::path const & file);
    // Deals with what has the name of the file to write, unless that is gone by then.
    void keepOldSaving();
    // Whether a file is a whole document, or nothing that a save could have written.
    bool isWorthKeeping(std::filesystem::path const & file) const;

    std::string const m_operation;
    std::filesystem::path const m_file;
    std::filesystem::path const m_target;
    std::string const m_fileSystem;
    std::filesystem::path const m_saving;
    Database m_database;
    OS::FileHold m_hold; // of the file to write, until it has its name
    Database m_old;
    bool m_bMade = false; // and not renamed
    std::vector<std::filesystem::path> m_kept;
};

} // namespace Vn::DataModel

#endif
