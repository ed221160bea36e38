#include "Platform/DataModel/File/Remains.h"

#include <algorithm>
#include <array>
#include <fstream>
#include <system_error>
#include <utility>

#include "Platform/Base/LocalizedText.h"
#include "Platform/Base/OS.h"
#include "Platform/DataModel/File/Checker.h"
#include "Platform/DataModel/File/Schema.h"
#include "Platform/DataModel/Limits.h"

namespace Vn::DataModel {

namespace {

namespace fs = std::filesystem;

constexpr char c_saving[] = ".saving";

fs::file_type typeOf(fs::path const & file) {
    std::error_code error;
    return fs::symlink_status(file, error).type();
}

// The first bytes of a regular file.  Not for one that the engine has open: to close it would lose
// locks.
template <std::size_t Size>
std::string firstBytes(fs::path const & file) {
    std::array<char, Size> bytes{};
    std::ifstream in(file, std::ios::binary);
    in.read(bytes.data(), Size);
    return std::string(bytes.data(), static_cast<std::size_t>(in.gcount()));
}

bool isZero(std::string const & bytes) {
    return std::all_of(bytes.begin(), bytes.end(), [](char c) { return c == 0; });
}

} // namespace

FileName::FileName(std::string operation, fs::path file, fs::path target, std::string fileSystem)
    : m_operation(std::move(operation)), m_file(std::move(file)), m_target(std::move(target)),
      m_fileSystem(std::move(fileSystem)), m_saving(beside(c_saving)),
      m_database(m_operation, m_file, m_fileSystem), m_old(m_operation, m_file, m_fileSystem) {}

FileName::~FileName() {
    std::error_code error;
    // As long as the file is open and taken, nobody else gives its name to another.
    if (m_bMade && OS::c_renamesOpenFiles) fs::remove(m_saving, error);
    m_database.close();
    if (m_bMade && !OS::c_renamesOpenFiles) {
        // It may stay for as long as another program looks at it, and mustn't look like a document.
        fs::resize_file(m_saving, 0, error);
        fs::remove(m_saving, error);
    }
}

void FileName::fail(EStatus code, std::string_view cause) const {
    throw FileFailure{Status(code, m_operation, pathText(m_file), cause)};
}

fs::path FileName::beside(char const * ending) const {
    fs::path name = m_target;
    name += ending;
    return name;
}

fs::path FileName::keep(fs::path const & file) {
    for (int i = 1; i <= Limits::c_keptFiles; ++i) {
        fs::path name = file;
        name += i == 1 ? ".kept" : ".kept." + std::to_string(i);
        Status const renamed = OS::renameToFreeName(file, name);
        if (renamed) return name;
        if (renamed.code() != StatusAlreadyExists)
            fail(renamed.code(), localized("%1% is there and can't be renamed: %2%", pathText(file),
                                           renamed.cause()));
    }
    fail(StatusAlreadyExists,
         localized("%1% is there, and too many were kept before", pathText(file)));
}

// --- The file to write -------------------------------------------------------------------------

Database & FileName::makeSaving() {
    for (int i = 0; i < Limits::c_savingAttempts; ++i) {
        Status const made = OS::createFile(m_saving);
        if (made.code() == StatusAlreadyExists) {
            keepOldSaving();
            continue;
        }
        // Some directories say that there is nothing of that name.
        std::error_code error;
        if (made.code() == StatusAccessDenied ||
            (made.code() == StatusNotFound && fs::is_directory(m_saving.parent_path(), error)))
            fail(StatusAccessDenied, localized("no file can be made in its directory"));
        if (!made && !fs::exists(m_saving, error) && error == std::errc::filename_too_long)
            fail(StatusInvalidArgument,
                 localized("the name is too long for \".saving\" to stand after it until the "
                           "document is saved"));
        if (!made) fail(made.code(), made.cause());
        m_bMade = true;
        try {
            m_database.open(m_saving);
            if (m_database.take() && !m_database.hasMoved() && m_hold.take(m_saving)) {
                m_database.beginEmpty();
                return m_database;
            }
        } catch (FileFailure const & failure) {
            if (failure.status.code() != StatusNotFound) throw;
        }
        // Another program took it for the remains of a crash before it was taken here.
        m_bMade = false;
        m_database.close();
    }
    fail(StatusBusy, localized("another program is saving it"));
}

void FileName::keepOldSaving() {
    fs::file_type const type = typeOf(m_saving);
    if (type == fs::file_type::not_found) return;
    if (type == fs::file_type::symlink) {
        m_kept.push_back(keep(m_saving));
        return;
    }
    if (type != fs::file_type::regular)
        fail(StatusAlreadyExists, localized("%1% is there and isn't a file", pathText(m_saving)));
    fs::path name;
    OS::FileHold hold;
    if (Status const held = hold.take(m_saving); !held) {
        if (held.code() == StatusNotFound) return;
        fail(held.code(),
             held.code() == StatusBusy ? localized("another program is saving it") : held.cause());
    }
    {
        Database stale(m_operation, m_saving, m_fileSystem);
        try {
            stale.open(m_saving);
        } catch (FileFailure const & failure) {
            if (failure.status.code() == StatusNotFound) return;
            throw;
        }
        if (!stale.take()) fail(StatusBusy, localized("another program is saving it"));
        if (stale.hasMoved()) return;
        // Nobody writes it, and nobody will.
        if constexpr (OS::c_renamesOpenFiles) name = keep(m_saving);
    }
    if constexpr (!OS::c_renamesOpenFiles) name = keep(m_saving);
    std::error_code error;
    if (isWorthKeeping(name))
        m_kept.push_back(std::move(name));
    else
        fs::remove(name, error);
}

bool FileName::isWorthKeeping(fs::path const & file) const {
    std::string const first = firstBytes<100>(file);
    if (isZero(first)) return false; // nothing, or a save that hadn't come to its end
    std::vector<std::string> findings;
    std::vector<std::string> unknownTypes;
    try {
        DocumentChecker(file, m_operation, m_fileSystem, findings, unknownTypes).check();
    } catch (FileFailure const &) {
        return true; // who knows
    }
    constexpr std::string_view c_magic("SQLite format 3\0", 16);
    return findings.empty() || !first.starts_with(c_magic);
}

// --- The file with the name --------------------------------------------------------------------

void FileName::takeOld() {
    m_old.open(m_target);
    Database::Header header;
    constexpr std::string_view c_magic("SQLite format 3\0", 16);
    bool const isDatabase =
        m_old.readHeader(header) && std::equal(c_magic.begin(), c_magic.end(), header.begin());
    bool const isLogged = isDatabase && (header[18] == 2 || header[19] == 2);
    std::error_code error;
    if (isLogged && fs::file_size(beside("-wal"), error) > 0 && !error)
        fail(StatusBusy,
             localized("it is a database of another program, and its last changes are in %1%",
                       pathText(beside("-wal"))));
    bool isTaken = false;
    if (isDatabase && !isLogged) {
        try {
            m_old.run("BEGIN EXCLUSIVE");
            isTaken = true;
        } catch (FileFailure const & failure) {
            // What is damaged can't be made whole, and is replaced like anything else.
            if (failure.status.code() != StatusCorrupt) throw;
        }
    }
    if (!isTaken && !m_old.take()) fail(StatusBusy, localized("another program is using the file"));
    if (m_old.hasMoved())
        fail(StatusBusy,
             localized("another program has moved the file, or put another in its place"));
}

void FileName::keepRemains() {
    bool hasKept = false;
    for (char const * const ending : {"-journal", "-wal", "-shm"}) {
        fs::path const name = beside(ending);
        fs::file_type const type = typeOf(name);
        if (type == fs::file_type::not_found) continue;
        if (type != fs::file_type::regular && type != fs::file_type::symlink)
            fail(StatusAlreadyExists, localized("%1% is there and isn't a file", pathText(name)));
        std::error_code error;
        // Without a beginning a journal says nothing.
        if (type == fs::file_type::regular && isZero(firstBytes<28>(name))) {
            if (!fs::remove(name, error) && error)
                fail(StatusIO,
                     localized("%1% can't be removed: %2%", pathText(name), OS::errorText(error)));
            continue;
        }
        m_kept.push_back(keep(name));
        hasKept = true;
    }
    if (!hasKept) return;
    // The old name must not come back after a crash, beside the new file.
    Status const synced =
        OS::syncDirectory(m_target.has_parent_path() ? m_target.parent_path() : fs::path("."));
    if (!synced) fail(synced.code(), synced.cause());
}

void FileName::renameSaving() {
    if (m_database.isOpen() && m_database.hasMoved())
        fail(StatusBusy, localized("another program has taken %1% away", pathText(m_saving)));
    if constexpr (!OS::c_renamesOpenFiles) {
        m_database.close();
        m_old.close();
    }
    Status const renamed = OS::renameFile(m_saving, m_target);
    if (renamed.code() == StatusBusy)
        fail(StatusBusy, localized("another program is using the file"));
    if (!renamed) fail(renamed.code(), renamed.cause());
    m_bMade = false;
    m_hold.release();
    m_database.close();
    m_old.close();
}

} // namespace Vn::DataModel
